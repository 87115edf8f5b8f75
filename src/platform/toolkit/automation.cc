// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/automation.h"

#include <algorithm>

#include "platform/toolkit/alerts.h"
#include "platform/toolkit/standard_behaviour.h"
#include "platform/toolkit/text_editing.h"
#include "platform/toolkit/window.h"

namespace varno::toolkit {
namespace {

Event ControlEvent(std::uint32_t kind, Control& control, ControlPartCode part) {
  Event event(kEventClassControl, kind);
  event.set<Control*>(kEventParamDirectObject, typeControlRef, &control);
  event.set<ControlPartCode>(kEventParamControlPart, typeControlPartCode, part);
  return event;
}

// Sends typed characters to the window's focus, or to the window.
void SendText(Window& window, std::string_view text) {
  Control* target = window.focus() ? window.focus() : &window;
  Event event(kEventClassTextInput, kEventTextInputUnicodeForKeyEvent);
  event.setText(kEventParamTextInputSendText, text);
  target->send(event);
}

// Checks that a person could choose `item` of the control's menu now.
OSStatus CanChoose(const Control& control, MenuItemIndex item) {
  const Menu* menu = control.menu();
  if (!menu) return paramErr;
  if (!control.isReachable() || !menu->isEnabled()) return errControlHiddenOrDisabled;
  const MenuItem* chosen = menu->item(item);
  if (!chosen) return menuItemNotFoundErr;
  return chosen->enabled ? noErr : errControlHiddenOrDisabled;
}

}  // namespace

OSStatus Click(Control& control, ControlPartCode part) {
  if (!control.isReachable()) return errControlHiddenOrDisabled;
  auto alive = control.watch();
  Window* window = control.window();
  if (window && Traits(control.kind()).takesFocus) window->setFocus(&control);
  if (alive.expired()) return noErr;
  Event track = ControlEvent(kEventControlTrack, control, part);
  control.send(track);
  if (alive.expired()) return noErr;
  Event hit = ControlEvent(kEventControlHit, control, part);
  control.send(hit);
  return noErr;
}

OSStatus ChooseMenuItem(Control& control, MenuItemIndex item) {
  if (OSStatus status = CanChoose(control, item)) return status;
  auto alive = control.watch();
  MenuPtr menu(control.menu());  // kept while handlers run, whatever they do to the control
  Event opening(kEventClassMenu, kEventMenuEnableItems);
  opening.set<Menu*>(kEventParamDirectObject, typeMenuRef, menu.get());
  control.send(opening);
  // The handlers of the opening menu may have disabled the item.
  if (alive.expired()) return noErr;
  if (OSStatus status = CanChoose(control, item)) return status;

  Event track = ControlEvent(kEventControlTrack, control, kControlNoPart);
  track.set<MenuItemIndex>(kEventParamMenuItemIndex, typeMenuItemIndex, item);
  control.send(track);
  if (alive.expired()) return noErr;
  if (control.kind() == ControlKind::ComboBox) {
    Event selected(kEventClassHIComboBox, kEventComboBoxListItemSelected);
    selected.set<Control*>(kEventParamDirectObject, typeControlRef, &control);
    control.send(selected);
  } else {
    Event hit = ControlEvent(kEventControlHit, control, kControlNoPart);
    hit.set<MenuItemIndex>(kEventParamMenuItemIndex, typeMenuItemIndex, item);
    control.send(hit);
  }
  return noErr;
}

OSStatus ChooseSubmenuItem(Control& control, MenuItemIndex item, MenuItemIndex subitem) {
  if (OSStatus status = CanChoose(control, item)) return status;
  MenuPtr submenu(control.menu()->item(item)->submenu);
  if (!submenu) return paramErr;
  auto alive = control.watch();
  MenuPtr menu(control.menu());
  for (Menu* opened : {menu.get(), submenu.get()}) {
    Event opening(kEventClassMenu, kEventMenuEnableItems);
    opening.set<Menu*>(kEventParamDirectObject, typeMenuRef, opened);
    control.send(opening);
    if (alive.expired()) return noErr;
  }
  // The handlers of the opening menus may have disabled either item.
  if (OSStatus status = CanChoose(control, item)) return status;
  const MenuItem* chosen = submenu->item(subitem);
  if (!chosen) return menuItemNotFoundErr;
  if (!chosen->enabled || !submenu->isEnabled()) return errControlHiddenOrDisabled;

  Event track = ControlEvent(kEventControlTrack, control, kControlNoPart);
  control.send(track);
  if (alive.expired()) return noErr;
  Event hit = ControlEvent(kEventControlHit, control, kControlNoPart);
  hit.set<MenuItemIndex>(kEventParamMenuItemIndex, typeMenuItemIndex, subitem);
  hit.set<Menu*>(kEventParamMenuRef, typeMenuRef, submenu.get());
  control.send(hit);
  return noErr;
}

OSStatus ChooseMenuItemByText(Control& control, std::string_view text) {
  if (!control.menu()) return paramErr;
  MenuItemIndex item = control.menu()->findText(text);
  return item ? ChooseMenuItem(control, item) : menuItemNotFoundErr;
}

OSStatus ChooseMenuItemByRefCon(Control& control, URefCon refCon) {
  if (!control.menu()) return paramErr;
  MenuItemIndex item = control.menu()->findRefCon(refCon);
  return item ? ChooseMenuItem(control, item) : menuItemNotFoundErr;
}

OSStatus SetDateTime(Control& clock, LongDateTime value) {
  if (clock.kind() != ControlKind::Clock) return paramErr;
  if (!clock.isReachable()) return errControlHiddenOrDisabled;
  auto alive = clock.watch();
  if (Window* window = clock.window()) window->setFocus(&clock);
  if (alive.expired()) return noErr;
  Event track = ControlEvent(kEventControlTrack, clock, kControlNoPart);
  track.set<LongDateTime>(kEventParamDateTime, typeLongDateTime, value);
  clock.send(track);
  if (alive.expired()) return noErr;
  Event hit = ControlEvent(kEventControlHit, clock, kControlNoPart);
  clock.send(hit);
  return noErr;
}

OSStatus SetFocus(Control& control) {
  if (!Traits(control.kind()).takesFocus) return errControlDoesntSupportFocus;
  if (!control.isReachable()) return errControlHiddenOrDisabled;
  Window* window = control.window();
  if (!window) return paramErr;
  return window->setFocus(&control);
}

OSStatus TypeText(Control& control, std::string_view text) {
  if (!Traits(control.kind()).editsText) return errControlDoesntSupportFocus;
  if (OSStatus status = SetFocus(control)) return status;
  Window& window = *control.window();
  auto alive = window.watch();
  for (std::string_view character : SplitCharacters(text)) {
    if (alive.expired()) break;
    SendText(window, character);
  }
  return noErr;
}

OSStatus PasteText(Control& control, std::string_view text) {
  if (!Traits(control.kind()).editsText) return errControlDoesntSupportFocus;
  if (OSStatus status = SetFocus(control)) return status;
  SendText(*control.window(), text);
  return noErr;
}

OSStatus PressKey(Window& window, char key) {
  if (!window.isReachable()) return errControlHiddenOrDisabled;
  SendText(window, std::string_view(&key, 1));
  return noErr;
}

OSStatus SendCommand(Control& target, MenuCommand command) {
  if (!target.isReachable()) return errControlHiddenOrDisabled;
  HICommand hiCommand;
  hiCommand.commandID = command;
  hiCommand.attributes = target.kind() == ControlKind::Window ? kHICommandFromWindow
                                                               : kHICommandFromControl;
  hiCommand.control = target.kind() == ControlKind::Window ? nullptr : &target;
  SendCommandEvent(target, hiCommand);
  return noErr;
}

OSStatus SelectListItems(ListView& list, std::span<const DataBrowserItemID> items,
                         DataBrowserSetOption how) {
  if (!list.isReachable()) return errControlHiddenOrDisabled;
  return list.setSelection(items, how);
}

OSStatus DoubleClickListItem(ListView& list, DataBrowserItemID item) {
  if (!list.isReachable()) return errControlHiddenOrDisabled;
  return list.doubleClick(item);
}

void AnswerNextAlert(DialogItemIndex button) { HeadlessAlerts().answerNextAlert(button); }

namespace {

plist::Array MenuState(const Menu& menu) {
  plist::Array items;
  for (MenuItemIndex i = 1; i <= menu.count(); ++i) {
    const MenuItem& item = *menu.item(i);
    plist::Dictionary entry{{"Text", item.text},
                            {"RefCon", static_cast<std::int64_t>(item.refCon)},
                            {"Enabled", item.enabled},
                            {"Checked", item.checked}};
    if (item.command) entry.set("Command", OSTypeString(item.command));
    if (item.submenu) entry.set("Items", MenuState(*item.submenu));
    items.append(entry);
  }
  return items;
}

void AddListState(ListView& list, plist::Dictionary& state) {
  plist::Array columns;
  for (const ListColumn& column : list.columns()) {
    columns.append(plist::Dictionary{{"Property", OSTypeString(column.property)},
                                     {"Title", column.title},
                                     {"Width", column.width}});
  }
  plist::Array rows;
  for (DataBrowserItemID item : list.items()) {
    plist::Dictionary cells;
    for (const ListColumn& column : list.columns()) {
      std::string text;
      if (list.cellText(item, column.property, &text) == noErr) {
        cells.set(OSTypeString(column.property), text);
      }
    }
    rows.append(cells);
  }
  plist::Array selection;
  for (DataBrowserItemID item : list.selection()) {
    selection.append(static_cast<std::int64_t>(list.rowOf(item).value_or(list.items().size())));
  }
  state.set("Columns", columns);
  state.set("Rows", rows);
  state.set("Selection", selection);
}

}  // namespace

plist::Dictionary ReadControlState(Control& control, bool withChildren) {
  plist::Dictionary state{{"Kind", Traits(control.kind()).name}};
  if (control.id() != ControlID{}) {
    state.set("Signature", OSTypeString(control.id().signature));
    state.set("ID", control.id().id);
  }
  const Rect& b = control.bounds();
  state.set("Bounds", plist::Array{b.left, b.top, b.width(), b.height()});
  std::string text = control.text();
  if (control.isPassword()) {
    std::string bullets;
    for (std::int32_t i = CountCharacters(text); i > 0; --i) bullets += "\u2022";
    text = bullets;
  }
  state.set("Text", text);
  state.set("Value", control.value());
  state.set("Minimum", control.minimum());
  state.set("Maximum", control.maximum());
  state.set("Visible", control.isVisible());
  state.set("Enabled", control.isEnabled());
  state.set("Active", control.isActive());
  state.set("Reachable", control.isReachable());
  state.set("Focused", control.hasFocus());
  if (control.command()) state.set("Command", OSTypeString(control.command()));
  if (control.menu()) state.set("Menu", MenuState(*control.menu()));
  if (control.kind() == ControlKind::BevelButton) state.set("MenuValue", control.menuValue());
  if (!control.pictureName().empty()) state.set("Picture", control.pictureName());
  if (control.kind() == ControlKind::Clock) {
    state.set("DateTime", control.dateTime());
    state.set("TimeOnly", control.isTimeOnly());
  }
  if (ListView* list = AsListView(&control)) AddListState(*list, state);
  if (withChildren) {
    plist::Array children;
    for (std::size_t i = 0; i < control.childCount(); ++i) {
      children.append(ReadControlState(*control.child(i), true));
    }
    state.set("Children", children);
  }
  return state;
}

}  // namespace varno::toolkit
