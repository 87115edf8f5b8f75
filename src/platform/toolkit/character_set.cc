// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/character_set.h"

#include <cstdint>

#include "platform/toolkit/text_editing.h"

namespace varno::toolkit {
namespace {

// The code point of one character as SplitCharacters cuts it; a stray byte counts as the
// code point of its value, as SplitCharacters counts it as one character.
char32_t DecodeCharacter(std::string_view c) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(c[i]); };
  if (c.size() == 2) return ((byte(0) & 0x1Fu) << 6) | (byte(1) & 0x3Fu);
  if (c.size() == 3) return ((byte(0) & 0x0Fu) << 12) | ((byte(1) & 0x3Fu) << 6) | (byte(2) & 0x3Fu);
  if (c.size() == 4)
    return ((byte(0) & 0x07u) << 18) | ((byte(1) & 0x3Fu) << 12) | ((byte(2) & 0x3Fu) << 6) |
           (byte(3) & 0x3Fu);
  return c.empty() ? 0 : byte(0);
}

}  // namespace

CharacterSet CharacterSet::Range(char32_t first, char32_t last) {
  CharacterSet set;
  set.addRange(first, last);
  return set;
}

void CharacterSet::addCharacters(std::string_view characters) {
  for (std::string_view c : SplitCharacters(characters)) points_.insert(DecodeCharacter(c));
}

void CharacterSet::addRange(char32_t first, char32_t last) {
  for (char32_t c = first; c <= last && c >= first; ++c) points_.insert(c);
}

bool CharacterSet::containsAll(std::string_view characters) const {
  for (std::string_view c : SplitCharacters(characters))
    if (!contains(DecodeCharacter(c))) return false;
  return true;
}

Control::Bytes CharacterSet::toBytes() const {
  Control::Bytes bytes;
  bytes.reserve(points_.size() * 4);
  for (char32_t c : points_)
    for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<std::uint8_t>(c >> shift));
  return bytes;
}

std::optional<CharacterSet> CharacterSet::fromBytes(const Control::Bytes& bytes) {
  if (bytes.size() % 4 != 0) return std::nullopt;
  CharacterSet set;
  for (std::size_t i = 0; i < bytes.size(); i += 4) {
    char32_t c = 0;
    for (int k = 0; k < 4; ++k) c |= static_cast<char32_t>(bytes[i + k]) << (8 * k);
    set.points_.insert(c);
  }
  return set;
}

}  // namespace varno::toolkit
