// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/text_editing.h"

#include <algorithm>
#include <vector>

namespace varno::toolkit {
namespace {

// The byte length of the UTF-8 sequence that starts with `lead`; 1 for a stray byte.
std::size_t SequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if ((lead & 0xE0) == 0xC0) return 2;
  if ((lead & 0xF0) == 0xE0) return 3;
  if ((lead & 0xF8) == 0xF0) return 4;
  return 1;
}

}  // namespace

std::vector<std::string_view> SplitCharacters(std::string_view text) {
  std::vector<std::string_view> characters;
  while (!text.empty()) {
    std::size_t n = std::min(SequenceLength(static_cast<unsigned char>(text[0])), text.size());
    characters.push_back(text.substr(0, n));
    text.remove_prefix(n);
  }
  return characters;
}

std::int32_t CountCharacters(std::string_view text) {
  return static_cast<std::int32_t>(SplitCharacters(text).size());
}

bool ApplyTyping(std::string& text, TextRange& selection, std::string_view typed) {
  std::vector<std::string> characters;
  for (std::string_view c : SplitCharacters(text)) characters.emplace_back(c);
  auto size = static_cast<std::int32_t>(characters.size());
  std::int32_t start = std::clamp(selection.start, 0, size);
  std::int32_t end = std::clamp(selection.end, start, size);
  bool changed = false;

  auto removeSelection = [&] {
    characters.erase(characters.begin() + start, characters.begin() + end);
    end = start;
  };
  for (std::string_view c : SplitCharacters(typed)) {
    auto code = static_cast<unsigned char>(c[0]);
    if (c.size() == 1 && (code < 0x20 || code == 0x7F)) {
      bool hasSelection = start != end;
      switch (code) {
        case kBackspaceCharCode:
          if (!hasSelection && start > 0) --start;
          changed |= start != end;
          removeSelection();
          break;
        case kDeleteCharCode:
          if (!hasSelection && end < static_cast<std::int32_t>(characters.size())) ++end;
          changed |= start != end;
          removeSelection();
          break;
        case kLeftArrowCharCode:
          start = end = hasSelection ? start : std::max(start - 1, 0);
          changed = true;
          break;
        case kRightArrowCharCode:
          start = end = hasSelection ? end
                                     : std::min(end + 1, static_cast<std::int32_t>(characters.size()));
          changed = true;
          break;
        default:
          break;
      }
      continue;
    }
    removeSelection();
    characters.insert(characters.begin() + start, std::string(c));
    start = end = start + 1;
    changed = true;
  }
  if (!changed) return false;
  text.clear();
  for (const std::string& c : characters) text += c;
  selection = {start, end};
  return true;
}

}  // namespace varno::toolkit
