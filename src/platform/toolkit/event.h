// SPDX-License-Identifier: Apache-2.0
// Events: a class and a kind (four-character code and number) and named parameters.
//
// Parameters are typed bytes, as they travel between code that knows nothing of each
// other: the sender stores a value under a name and a type code, a handler asks for it
// by name and type. Typed text (the characters of a key press) travels as UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/toolkit/types.h"

namespace varno::toolkit {

struct EventTypeSpec {
  OSType eventClass;
  std::uint32_t eventKind;
  friend bool operator==(const EventTypeSpec&, const EventTypeSpec&) = default;
};

// Event classes and the kinds the panels use.
inline constexpr OSType kEventClassControl = MakeOSType("cntl");
inline constexpr OSType kEventClassCommand = MakeOSType("cmds");
inline constexpr OSType kEventClassMenu = MakeOSType("menu");
inline constexpr OSType kEventClassTextInput = MakeOSType("text");
inline constexpr OSType kEventClassHIComboBox = MakeOSType("hicb");

inline constexpr std::uint32_t kEventControlHit = 1;            // a click ended in the control
inline constexpr std::uint32_t kEventControlDraw = 4;           // draw the control now
inline constexpr std::uint32_t kEventControlSetFocusPart = 7;   // the focus arrives or leaves
inline constexpr std::uint32_t kEventControlTrack = 51;         // a click: change the value
inline constexpr std::uint32_t kEventControlDispose = 1001;     // the control is about to go
inline constexpr std::uint32_t kEventCommandProcess = 1;        // run a command
inline constexpr std::uint32_t kEventMenuEnableItems = 8;       // a menu is about to open
inline constexpr std::uint32_t kEventTextInputUnicodeForKeyEvent = 2;  // characters typed
inline constexpr std::uint32_t kEventComboBoxListItemSelected = 1;     // chosen from the list

// Parameter names.
inline constexpr OSType kEventParamDirectObject = MakeOSType("----");
inline constexpr OSType kEventParamControlPart = MakeOSType("cprt");
inline constexpr OSType kEventParamTextInputSendText = MakeOSType("tstx");
inline constexpr OSType kEventParamMenuItemIndex = MakeOSType("item");
// The menu the chosen item belongs to, when it is a submenu of the control's menu.
inline constexpr OSType kEventParamMenuRef = MakeOSType("mnrf");
// The date and time a person set on a clock (LongDateTime).
inline constexpr OSType kEventParamDateTime = MakeOSType("ldt ");

// Parameter types.
inline constexpr OSType typeControlRef = MakeOSType("ctrl");
inline constexpr OSType typeMenuRef = MakeOSType("menu");
inline constexpr OSType typeHICommand = MakeOSType("hcmd");
inline constexpr OSType typeUTF8Text = MakeOSType("utf8");
inline constexpr OSType typeControlPartCode = MakeOSType("cprt");
inline constexpr OSType typeMenuItemIndex = MakeOSType("midx");
inline constexpr OSType typeSInt32 = MakeOSType("long");
inline constexpr OSType typeUInt32 = MakeOSType("magn");
inline constexpr OSType typeLongDateTime = MakeOSType("ldt ");

// Where a command came from.
inline constexpr std::uint32_t kHICommandFromMenu = 1;
inline constexpr std::uint32_t kHICommandFromControl = 2;
inline constexpr std::uint32_t kHICommandFromWindow = 4;

// The direct object of a command event.
struct HICommand {
  std::uint32_t attributes = 0;
  MenuCommand commandID = 0;
  ControlRef control = nullptr;     // with kHICommandFromControl
  MenuRef menu = nullptr;           // with kHICommandFromMenu
  MenuItemIndex menuItemIndex = 0;  // with kHICommandFromMenu
};

class Event {
 public:
  Event(OSType eventClass, std::uint32_t kind) : class_(eventClass), kind_(kind) {}

  OSType eventClass() const { return class_; }
  std::uint32_t kind() const { return kind_; }
  bool is(EventTypeSpec type) const { return type.eventClass == class_ && type.eventKind == kind_; }

  // Stores a copy of `size` bytes under `name`, replacing what was there.
  void setParameter(OSType name, OSType type, const void* data, std::size_t size);
  // Copies the parameter into `data` (at most `bufferSize` bytes; `data` may be null to
  // ask for the size) and reports its type and full size. eventParameterNotFoundErr when
  // there is none; paramErr when it has another type than `desiredType`.
  OSStatus getParameter(OSType name, OSType desiredType, OSType* actualType,
                        std::size_t bufferSize, std::size_t* actualSize, void* data) const;

  // Typed access for plain values (pointers, numbers, HICommand).
  template <typename T>
  void set(OSType name, OSType type, const T& value) {
    setParameter(name, type, &value, sizeof value);
  }
  // The value, when the parameter exists with that type and size.
  template <typename T>
  std::optional<T> get(OSType name, OSType type) const {
    T value{};
    std::size_t size = 0;
    if (getParameter(name, type, nullptr, sizeof value, &size, &value) != noErr ||
        size != sizeof value) {
      return std::nullopt;
    }
    return value;
  }
  void setText(OSType name, std::string_view utf8) {
    setParameter(name, typeUTF8Text, utf8.data(), utf8.size());
  }
  // The UTF-8 text stored under `name`.
  std::optional<std::string> text(OSType name) const;

  // The control that is the direct object, or null.
  Control* control() const;
  // The command that is the direct object of a command event.
  std::optional<HICommand> command() const;

 private:
  struct Parameter {
    OSType name;
    OSType type;
    std::vector<unsigned char> bytes;
  };
  const Parameter* find(OSType name) const;

  OSType class_;
  std::uint32_t kind_;
  std::vector<Parameter> parameters_;
};

}  // namespace varno::toolkit
