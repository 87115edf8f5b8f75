// SPDX-License-Identifier: Apache-2.0
// Editing a one-line text field by typed characters, counted in characters (code points).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/toolkit/types.h"

namespace varno::toolkit {

// Typed characters that edit rather than insert.
inline constexpr char kBackspaceCharCode = 0x08;
inline constexpr char kTabCharCode = 0x09;
inline constexpr char kReturnCharCode = 0x0D;
inline constexpr char kEscapeCharCode = 0x1B;
inline constexpr char kLeftArrowCharCode = 0x1C;
inline constexpr char kRightArrowCharCode = 0x1D;
inline constexpr char kDeleteCharCode = 0x7F;  // forward delete

// The text cut into characters; a stray byte is one character.
std::vector<std::string_view> SplitCharacters(std::string_view text);

// The number of characters of a UTF-8 text; a stray byte counts as one.
std::int32_t CountCharacters(std::string_view text);

// Applies typed characters to a text and its selection, as a one-line field does:
// printable characters replace the selection, backspace and forward delete remove the
// selection or one character, the left and right arrows move the caret, other control
// characters are ignored. Returns false when nothing changed.
bool ApplyTyping(std::string& text, TextRange& selection, std::string_view typed);

}  // namespace varno::toolkit
