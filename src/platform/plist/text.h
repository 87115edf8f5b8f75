// SPDX-License-Identifier: Apache-2.0
// Unicode text rules shared by every layer: case-insensitive comparison with full case
// folding, and character counts for limits on user input (characters, not bytes).
#pragma once

#include <cstddef>
#include <string_view>

namespace varno::plist {

// Compares two UTF-8 strings after full Unicode case folding ("Straße" equals "STRASSE").
// Returns <0, 0 or >0. Ill-formed UTF-8 compares by its bytes after the folded prefix.
int CompareCaseInsensitive(std::string_view a, std::string_view b);
inline bool EqualCaseInsensitive(std::string_view a, std::string_view b) {
  return CompareCaseInsensitive(a, b) == 0;
}

// Number of characters (Unicode code points) in a UTF-8 string; what a field limit counts.
std::size_t CharacterCount(std::string_view utf8);

// True when the text is well-formed UTF-8.
bool IsValidUTF8(std::string_view text);

}  // namespace varno::plist
