// SPDX-License-Identifier: Apache-2.0
// The kinds of control and what each kind can do, in one table.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace varno::toolkit {

enum class ControlKind : std::uint8_t {
  Window,       // the root of a window's tree
  UserPane,     // an empty pane that holds other controls
  Group,        // a titled box that holds other controls
  StaticText,
  EditText,     // one line of text; may hide what is typed (password style)
  PushButton,
  CheckBox,
  RadioButton,  // radio buttons that share a parent exclude each other
  PopupButton,  // value: the chosen item of its menu
  BevelButton,  // may carry a menu; the chosen item is its menu value
  ComboBox,     // text plus a list of items (its menu) to choose from
  SpinControl,  // two arrows that step the value within its range
  Clock,        // a date and time
  ImageView,    // shows a picture by name
  ListView,     // rows of the caller's items in columns of properties
  TabControl,   // value: the chosen tab (the items of its menu); holds the tab panes
};

struct KindTraits {
  ControlKind kind;
  const char* name;       // as interface files and state read-backs spell it
  bool embeds;            // may hold other controls
  bool takesFocus;        // may hold the keyboard focus
  bool editsText;         // typed characters change its text
  bool hasMenu;           // carries a menu
  bool valueIsMenuItem;   // value is an item index: maximum follows the item count
  std::int32_t minimum;   // range of a new control
  std::int32_t maximum;
};

// The traits of a kind.
const KindTraits& Traits(ControlKind kind);
// The kind of that name ("PushButton"), or nullopt.
std::optional<ControlKind> KindNamed(std::string_view name);

}  // namespace varno::toolkit
