// SPDX-License-Identifier: Apache-2.0
// The delayed print set-up of the Paper/Output panel: the time of day at which the
// printer releases the job.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/bundle/bundle.h"
#include "platform/status.h"
#include "platform/toolkit/event_target.h"
#include "platform/toolkit/types.h"
#include "platform/toolkit/window.h"
#include "ui/panel_ui.h"

namespace varno::panels {

// Controls of the window "DelayedPrint" of the interface file "DelayedPrint".
inline constexpr toolkit::ControlID kDelayedTimeLabelID{ui::kPanelUICreator, 21000};
inline constexpr toolkit::ControlID kDelayedClockID{ui::kPanelUICreator, 21001};
inline constexpr toolkit::ControlID kDelayedIconID{ui::kPanelUICreator, 21002};
inline constexpr toolkit::ControlID kDelayedOKButtonID{ui::kPanelUICreator, 1};
inline constexpr toolkit::ControlID kDelayedCancelButtonID{ui::kPanelUICreator, 2};

inline constexpr toolkit::MenuCommand kDelayedHelpCommand = MakeOSType("Vhlp");
inline constexpr const char* kDelayedHelpPage = "How_to/m_ht_use_Delayed_Print.htm";
inline constexpr const char* kDelayedPrintPicture = "JobType_DelayPrint.gif";

// What the dialog works on while it runs. Times count seconds since 1 January 1904 in
// local time, as the panel's delayed print time does.
struct DelayedPrintSetupDialog {
  bundle::BundleRef bundle;
  toolkit::Window* window = nullptr;
  std::int32_t result = 2;  // 1 accepted, 2 cancelled
  toolkit::Control* clock = nullptr;
  toolkit::Control* icon = nullptr;
  toolkit::EventHandlerRef handler = nullptr;
  std::optional<std::int64_t> now = std::nullopt;  // when OK compares; unset: the system clock
  std::int64_t acceptedTime = 0;    // what OK made of the clock
};

// Runs the window "DelayedPrint" with the clock showing `*time`. OK takes the clock's time
// of day on today's date, or on tomorrow's when that is earlier than now (a time equal to
// now stays today), and puts it into `*time`; Cancel changes nothing. Returns paramErr
// for a null argument, the status of loading the window (nothing changes then), else
// noErr. The second form takes "now" from the caller instead of the system clock.
OSStatus RunModalDelayedPrintSetup(const bundle::BundleRef& bundle, std::int64_t* time);
OSStatus RunModalDelayedPrintSetup(const bundle::BundleRef& bundle, std::int64_t* time,
                                   std::int64_t now);

// Sets the clock to `time`, shows the picture and installs the handler. errUnknownControl
// when the window has no clock.
OSStatus InitializeDelayedPrintSetup(DelayedPrintSetupDialog* dialog, std::int64_t time);
// Removes the handler that InitializeDelayedPrintSetup installed.
void FinalizeDelayedPrintSetup(DelayedPrintSetupDialog* dialog);
// The window's commands "ok  ", "not!" and "Vhlp"; `dialogState` is the
// DelayedPrintSetupDialog.
OSStatus DelayedPrintEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                                  void* dialogState);

}  // namespace varno::panels
