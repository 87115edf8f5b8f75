// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/standard_behaviour.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "platform/toolkit/automation.h"
#include "platform/toolkit/text_editing.h"
#include "platform/toolkit/window.h"

namespace varno::toolkit {
namespace {

std::optional<MenuItemIndex> ChosenItem(const Event& event) {
  return event.get<MenuItemIndex>(kEventParamMenuItemIndex, typeMenuItemIndex);
}

// --- What a click changes, by kind -------------------------------------------------

void ToggleCheckBox(Control& control, const Event&) {
  // A mixed box (value 2) turns on, as a click on it does.
  control.setValue(control.value() == 1 ? 0 : 1);
}

void TurnOnRadioButton(Control& control, const Event&) {
  control.setValue(1);
  Control* parent = control.parent();
  for (std::size_t i = 0; parent && i < parent->childCount(); ++i) {
    Control* sibling = parent->child(i);
    if (sibling != &control && sibling->kind() == ControlKind::RadioButton) sibling->setValue(0);
  }
}

void StepSpinControl(Control& control, const Event& event) {
  auto part = event.get<ControlPartCode>(kEventParamControlPart, typeControlPartCode);
  if (part == kControlUpButtonPart) control.setValue(control.value() + 1);
  if (part == kControlDownButtonPart) control.setValue(control.value() - 1);
}

void ChooseValue(Control& control, const Event& event) {
  if (auto item = ChosenItem(event)) control.setValue(*item);
}

void ChooseMenuValue(Control& control, const Event& event) {
  if (auto item = ChosenItem(event)) control.setMenuValue(*item);
}

void ChooseText(Control& control, const Event& event) {
  auto item = ChosenItem(event);
  const MenuItem* chosen = item && control.menu() ? control.menu()->item(*item) : nullptr;
  if (chosen) control.setText(chosen->text);
}

void SetClock(Control& control, const Event& event) {
  if (auto value = event.get<LongDateTime>(kEventParamDateTime, typeLongDateTime))
    control.setDateTime(*value);
}

struct Tracking {
  ControlKind kind;
  void (*track)(Control&, const Event&);
};

constexpr Tracking kTracking[] = {
    {ControlKind::CheckBox, ToggleCheckBox},
    {ControlKind::RadioButton, TurnOnRadioButton},
    {ControlKind::SpinControl, StepSpinControl},
    {ControlKind::PopupButton, ChooseValue},
    {ControlKind::TabControl, ChooseValue},
    {ControlKind::BevelButton, ChooseMenuValue},
    {ControlKind::ComboBox, ChooseText},
    {ControlKind::Clock, SetClock},
};

// --- Behaviours by event type ------------------------------------------------------

OSStatus Track(Control& control, Event& event) {
  for (const Tracking& t : kTracking) {
    if (t.kind == control.kind()) {
      t.track(control, event);
      return noErr;
    }
  }
  return eventNotHandledErr;
}

OSStatus SendHitCommand(Control& control, Event& event) {
  HICommand command;
  command.attributes = kHICommandFromControl;
  command.commandID = control.command();
  command.control = &control;
  auto item = ChosenItem(event);
  // A submenu's item names its own menu; a top item the control's.
  Menu* menu = event.get<Menu*>(kEventParamMenuRef, typeMenuRef).value_or(control.menu());
  const MenuItem* chosen = item && menu ? menu->item(*item) : nullptr;
  if (chosen && chosen->command) {
    command.attributes = kHICommandFromMenu;
    command.commandID = chosen->command;
    command.menu = menu;
    command.menuItemIndex = *item;
  }
  if (!command.commandID) return eventNotHandledErr;
  return SendCommandEvent(control, command);
}

// Every control of the tree that can take the focus now, in tree order.
void CollectFocusable(Control& control, std::vector<Control*>& out) {
  if (Traits(control.kind()).takesFocus && control.isReachable()) out.push_back(&control);
  for (std::size_t i = 0; i < control.childCount(); ++i) CollectFocusable(*control.child(i), out);
}

OSStatus MoveFocusForward(Window& window) {
  std::vector<Control*> fields;
  CollectFocusable(window, fields);
  if (fields.empty()) return eventNotHandledErr;
  auto it = std::find(fields.begin(), fields.end(), window.focus());
  Control* next = (it == fields.end() || ++it == fields.end()) ? fields.front() : *it;
  return window.setFocus(next);
}

OSStatus ClickIfThere(Control* button) {
  if (!button) return eventNotHandledErr;
  Click(*button);
  return noErr;
}

OSStatus TypeCharacters(Control& control, Event& event) {
  std::optional<std::string> typed = event.text(kEventParamTextInputSendText);
  if (!typed || typed->empty()) return eventNotHandledErr;
  Window* window = control.window();
  if (window && typed->size() == 1) {
    switch ((*typed)[0]) {
      case kTabCharCode: return MoveFocusForward(*window);
      case kReturnCharCode:
      case 0x03:  // enter
        return ClickIfThere(window->defaultButton());
      case kEscapeCharCode: return ClickIfThere(window->cancelButton());
      default: break;
    }
  }
  if (!Traits(control.kind()).editsText) return eventNotHandledErr;
  std::string text = control.text();
  TextRange selection = control.selection();
  if (ApplyTyping(text, selection, *typed)) control.replaceText(std::move(text), selection);
  return noErr;
}

struct Behaviour {
  EventTypeSpec type;
  OSStatus (*run)(Control&, Event&);
};

constexpr Behaviour kBehaviours[] = {
    {{kEventClassControl, kEventControlTrack}, Track},
    {{kEventClassControl, kEventControlHit}, SendHitCommand},
    {{kEventClassTextInput, kEventTextInputUnicodeForKeyEvent}, TypeCharacters},
};

}  // namespace

OSStatus Control::standardBehaviour(Event& event) {
  for (const Behaviour& b : kBehaviours) {
    if (event.is(b.type)) return b.run(*this, event);
  }
  return eventNotHandledErr;
}

OSStatus SendCommandEvent(Control& target, const HICommand& command) {
  Event event(kEventClassCommand, kEventCommandProcess);
  event.set<HICommand>(kEventParamDirectObject, typeHICommand, command);
  return target.send(event);
}

}  // namespace varno::toolkit
