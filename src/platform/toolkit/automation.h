// SPDX-License-Identifier: Apache-2.0
// The automation API: what a person does, done by tests and varno-print.
//
// Each action sends the events a person's action would cause, in the same order, so
// handlers and standard behaviour cannot tell the difference. An action returns noErr
// once its events were delivered, or says why a person could not have done it:
// errControlHiddenOrDisabled for a control that is hidden, disabled or inactive (itself
// or above it, window included) or a disabled menu item, menuItemNotFoundErr for a
// missing item, errControlDoesntSupportFocus for typing into a kind that takes no text,
// paramErr for an action the kind does not have. What the handlers returned is not
// reported: like a person, the caller sees only the effects.
#pragma once

#include <span>
#include <string_view>

#include "platform/plist/value.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/list_view.h"

namespace varno::toolkit {

// Clicks the control: a field first takes the keyboard focus; then kEventControlTrack
// (the kind's own change) and kEventControlHit (its command), both carrying `part`.
OSStatus Click(Control& control, ControlPartCode part = kControlNoPart);

// Chooses an item of the control's menu (pop-up, bevel button, tab control, combo box
// list): kEventMenuEnableItems with the menu, kEventControlTrack with the item, then
// kEventComboBoxListItemSelected for a combo box or kEventControlHit with the item for
// the others.
OSStatus ChooseMenuItem(Control& control, MenuItemIndex item);
// The same for the first item with that text, or with that reference value.
OSStatus ChooseMenuItemByText(Control& control, std::string_view text);
OSStatus ChooseMenuItemByRefCon(Control& control, URefCon refCon);
// Chooses item `subitem` of the submenu of item `item`: kEventMenuEnableItems with the
// menu and then the submenu, kEventControlTrack (the control's own value stays), then
// kEventControlHit carrying the submenu and the item, so the command names the submenu.
OSStatus ChooseSubmenuItem(Control& control, MenuItemIndex item, MenuItemIndex subitem);

// Sets a clock to `value`, as a person editing it does: the clock takes the focus, then
// kEventControlTrack carrying the value (kEventParamDateTime; the standard behaviour sets
// it, so a handler that takes the event keeps the old one) and kEventControlHit (the
// clock's command). paramErr for a control that is no clock.
OSStatus SetDateTime(Control& clock, LongDateTime value);

// Moves the keyboard focus into the control, as a click into a field does.
OSStatus SetFocus(Control& control);
// Focuses the control, then types `text` one character per event, to whatever holds the
// focus at that moment (a tab moves it on, as it would for a person).
OSStatus TypeText(Control& control, std::string_view text);
// Focuses the control, then delivers `text` in one event, as a paste does.
OSStatus PasteText(Control& control, std::string_view text);
// Presses one key (text_editing.h codes: tab, return, escape, arrows, backspace) in the
// window: it goes to the control with the focus, or to the window.
OSStatus PressKey(Window& window, char key);

// Sends a command to `target` (usually a window), as a menu or a key equivalent does.
OSStatus SendCommand(Control& target, MenuCommand command);

// Selects rows of a list view as clicks with or without the extending key do.
OSStatus SelectListItems(ListView& list, std::span<const DataBrowserItemID> items,
                         DataBrowserSetOption how = kDataBrowserItemsAssign);
OSStatus DoubleClickListItem(ListView& list, DataBrowserItemID item);

// Queues the button that the next unscripted alert is answered with (headless only).
void AnswerNextAlert(DialogItemIndex button);

// The control's state as a property-list dictionary: Kind, Signature and ID, Bounds
// [left, top, width, height], Text, Value, Minimum, Maximum, Visible, Enabled, Active,
// Reachable, Focused, Command, Menu (items with Text, Command, RefCon, Enabled, Checked,
// Items), MenuValue, Picture, DateTime and TimeOnly (clocks); list views add Columns, Rows (cell texts by
// property) and Selection (row positions in selection order); with `withChildren`,
// Children. A password field's text shows as one bullet per character, so a state dump
// never shows a secret.
plist::Dictionary ReadControlState(Control& control, bool withChildren = false);

}  // namespace varno::toolkit
