// SPDX-License-Identifier: Apache-2.0
#include "platform/plist/text.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace varno::plist {
namespace {

// Full case folding of one UTF-8 string into UTF-16, or nothing when the text is ill-formed.
bool FoldCase(std::string_view utf8, std::vector<UChar>& out) {
  UErrorCode status = U_ZERO_ERROR;
  int32_t length = 0;
  u_strFromUTF8(nullptr, 0, &length, utf8.data(), static_cast<int32_t>(utf8.size()), &status);
  if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return false;
  std::vector<UChar> units(static_cast<std::size_t>(length) + 1);
  status = U_ZERO_ERROR;
  u_strFromUTF8(units.data(), length + 1, &length, utf8.data(), static_cast<int32_t>(utf8.size()),
                &status);
  if (U_FAILURE(status)) return false;

  // Folding can lengthen the text ("ß" -> "ss"), so size the result first.
  status = U_ZERO_ERROR;
  int32_t folded = u_strFoldCase(nullptr, 0, units.data(), length, U_FOLD_CASE_DEFAULT, &status);
  if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return false;
  out.assign(static_cast<std::size_t>(folded) + 1, 0);
  status = U_ZERO_ERROR;
  folded = u_strFoldCase(out.data(), folded + 1, units.data(), length, U_FOLD_CASE_DEFAULT, &status);
  if (U_FAILURE(status)) return false;
  out.resize(static_cast<std::size_t>(folded));
  return true;
}

}  // namespace

int CompareCaseInsensitive(std::string_view a, std::string_view b) {
  std::vector<UChar> fa, fb;
  if (!FoldCase(a, fa) || !FoldCase(b, fb)) return a.compare(b) < 0 ? -1 : (a == b ? 0 : 1);
  // Compare in code point order so the result matches a comparison of the folded UTF-8.
  int r = u_strCompare(fa.data(), static_cast<int32_t>(fa.size()), fb.data(),
                       static_cast<int32_t>(fb.size()), true);
  return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

std::size_t CharacterCount(std::string_view utf8) {
  std::size_t count = 0;
  int32_t i = 0;
  const auto* s = reinterpret_cast<const uint8_t*>(utf8.data());
  const auto length = static_cast<int32_t>(utf8.size());
  while (i < length) {
    UChar32 c;
    U8_NEXT(s, i, length, c);  // an ill-formed sequence counts as one character
    ++count;
  }
  return count;
}

bool IsValidUTF8(std::string_view text) {
  int32_t i = 0;
  const auto* s = reinterpret_cast<const uint8_t*>(text.data());
  const auto length = static_cast<int32_t>(text.size());
  while (i < length) {
    UChar32 c;
    U8_NEXT(s, i, length, c);
    if (c < 0) return false;
  }
  return true;
}

}  // namespace varno::plist
