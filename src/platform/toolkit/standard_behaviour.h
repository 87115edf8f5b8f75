// SPDX-License-Identifier: Apache-2.0
// The standard behaviour: what happens to an event that every handler passed on.
//
// One table by event type, and for a click one by kind (standard_behaviour.cc):
//
//   kEventControlTrack  the click's own change: a check box toggles, a radio button turns
//                       on and its sibling radio buttons off, a spin control steps by one
//                       for its up and down parts; a choice from a menu sets the value of
//                       a pop-up button or tab control, the menu value of a bevel button,
//                       the text of a combo box; a clock takes the date and time the
//                       event carries
//   kEventControlHit    sends the chosen menu item's command, else the control's own, to
//                       the control (so it rises to its window and the application)
//   text input          tab moves the focus to the next field, return and enter click the
//                       default button, escape the cancel button; other characters edit
//                       the text of an edit text or combo box, replacing the selection
//
// Every other event has no standard behaviour and ends as eventNotHandledErr.
#pragma once

#include "platform/toolkit/control.h"
#include "platform/toolkit/event.h"

namespace varno::toolkit {

// Sends kEventCommandProcess carrying `command` to `target`; returns the event's result.
OSStatus SendCommandEvent(Control& target, const HICommand& command);

}  // namespace varno::toolkit
