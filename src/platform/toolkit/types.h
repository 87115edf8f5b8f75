// SPDX-License-Identifier: Apache-2.0
// The small value types of the toolkit: four-character codes, control IDs, rectangles,
// part codes and text ranges. Everything here is plain data.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/four_char_code.h"
#include "platform/status.h"

namespace varno::toolkit {

class Control;
class Window;
class Menu;
using ControlRef = Control*;
using WindowRef = Window*;
using MenuRef = Menu*;

using ControlPartCode = std::int16_t;
using MenuItemIndex = std::uint16_t;
using MenuID = std::int16_t;
using MenuCommand = OSType;
using URefCon = std::uintptr_t;
using DialogItemIndex = std::int16_t;
// Seconds since 1904-01-01 00:00 local time, what a clock control holds.
using LongDateTime = std::int64_t;

// The four characters of a code as text, for files and diagnostics: 'cntl' -> "cntl".
std::string OSTypeString(OSType code);
// The code of exactly four bytes of text ("ok  " keeps its blanks); nullopt otherwise.
std::optional<OSType> ParseOSType(std::string_view text);

// Controls are found by a four-character signature and a number.
struct ControlID {
  OSType signature = 0;
  std::int32_t id = 0;
  friend bool operator==(const ControlID&, const ControlID&) = default;
};

// A rectangle in the coordinates of the parent control (a window's own bounds are on
// the screen). bottom and right lie just outside.
struct Rect {
  std::int32_t top = 0;
  std::int32_t left = 0;
  std::int32_t bottom = 0;
  std::int32_t right = 0;
  std::int32_t width() const { return right - left; }
  std::int32_t height() const { return bottom - top; }
  friend bool operator==(const Rect&, const Rect&) = default;
};

// A selection in a text, counted in characters (code points): [start, end).
struct TextRange {
  std::int32_t start = 0;
  std::int32_t end = 0;
  friend bool operator==(const TextRange&, const TextRange&) = default;
};

// Part codes carried by clicks and focus changes.
inline constexpr ControlPartCode kControlNoPart = 0;
inline constexpr ControlPartCode kControlFocusNoPart = 0;     // the control loses the focus
inline constexpr ControlPartCode kControlFocusNextPart = -1;  // the control gains the focus
inline constexpr ControlPartCode kControlUpButtonPart = 20;   // spin control: one up
inline constexpr ControlPartCode kControlDownButtonPart = 21; // spin control: one down

// Commands every window understands: the default and the cancel button send them.
inline constexpr MenuCommand kHICommandOK = MakeOSType("ok  ");
inline constexpr MenuCommand kHICommandCancel = MakeOSType("not!");
inline constexpr MenuCommand kHICommandRevert = MakeOSType("rvrt");

}  // namespace varno::toolkit
