// SPDX-License-Identifier: Apache-2.0
#include "panels/paper_output/delayed_print_setup.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string>

#include "host/dialog_host.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"

namespace varno::panels {

namespace {

constexpr std::int64_t kSecondsFrom1904To1970 = 2082844800;
constexpr std::int64_t kSecondsPerDay = 86400;

// Now, in seconds since 1904 local time: the wall clock the printer holds the job by.
std::int64_t LocalNowSince1904() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return static_cast<std::int64_t>(now) + local.tm_gmtoff + kSecondsFrom1904To1970;
}

// Seconds into the day; local times count whole days of 86400 seconds from 1904.
std::int64_t TimeOfDay(std::int64_t time) {
  return ((time % kSecondsPerDay) + kSecondsPerDay) % kSecondsPerDay;
}

// The next time the clock's time of day comes: today, or tomorrow once it has passed.
std::int64_t NextOccurrence(std::int64_t clock, std::int64_t now) {
  std::int64_t time = now - TimeOfDay(now) + TimeOfDay(clock);
  if (time < now) time += kSecondsPerDay;
  return time;
}

void EndWith(DelayedPrintSetupDialog& dialog, std::int32_t result) {
  dialog.result = result;
  dialog.window->quitModalLoop();
}

OSStatus RunDialog(const bundle::BundleRef& bundle, std::int64_t* time,
                   std::optional<std::int64_t> now) {
  if (!bundle || !time) return paramErr;
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::unique_ptr<toolkit::Window> window;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(bundle, "DelayedPrint", &file, &error);
  if (status == noErr) status = file->createWindow("DelayedPrint", &window, &error);
  DelayedPrintSetupDialog dialog{bundle, window.get()};
  dialog.now = now;
  if (status == noErr) {
    status = InitializeDelayedPrintSetup(&dialog, *time);
    if (status != noErr) error = "the window \"DelayedPrint\" has no clock 21001";
  }
  if (status != noErr) {
    std::fprintf(stderr, "RunModalDelayedPrintSetup() failed (%d): %s\n", status, error.c_str());
    return status;
  }
  window->setVisible(true);
  window->runModalLoop();
  FinalizeDelayedPrintSetup(&dialog);
  if (dialog.result == 1) *time = dialog.acceptedTime;
  return noErr;
}

}  // namespace

OSStatus DelayedPrintEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                  void* dialogState) {
  auto* dialog = static_cast<DelayedPrintSetupDialog*>(dialogState);
  const std::optional<toolkit::HICommand> command = event ? event->command() : std::nullopt;
  if (!dialog || !command) return eventNotHandledErr;
  switch (command->commandID) {
    case toolkit::kHICommandOK:
      // Now is read as OK is pressed: the dialog may have stood open past the chosen time.
      dialog->acceptedTime =
          NextOccurrence(dialog->clock->dateTime(), dialog->now.value_or(LocalNowSince1904()));
      EndWith(*dialog, 1);
      return noErr;
    case toolkit::kHICommandCancel: EndWith(*dialog, 2); return noErr;
    case kDelayedHelpCommand: return host::DisplayHelp(dialog->bundle, kDelayedHelpPage, nullptr);
    default: return eventNotHandledErr;
  }
}

OSStatus InitializeDelayedPrintSetup(DelayedPrintSetupDialog* dialog, std::int64_t time) {
  if (!dialog || !dialog->window || !dialog->bundle) return paramErr;
  toolkit::Window& window = *dialog->window;
  dialog->clock = window.findByID(kDelayedClockID);
  dialog->icon = window.findByID(kDelayedIconID);
  if (!dialog->clock || dialog->clock->kind() != toolkit::ControlKind::Clock)
    return errUnknownControl;
  dialog->clock->setDateTime(time);
  toolkit::Control* const buttons[] = {window.findByID(kDelayedCancelButtonID),
                                       window.findByID(kDelayedOKButtonID)};
  ui::SetButtonsToSameWidth(buttons);
  if (dialog->icon) ui::DrawImage(dialog->bundle, kDelayedPrintPicture, dialog->icon);

  static constexpr std::array<toolkit::EventTypeSpec, 1> kCommands{
      {{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}}};
  dialog->handler = window.installHandler(kCommands, DelayedPrintEventHandler, dialog);
  window.setFocus(dialog->clock);
  return noErr;
}

void FinalizeDelayedPrintSetup(DelayedPrintSetupDialog* dialog) {
  if (!dialog || !dialog->handler) return;
  toolkit::RemoveEventHandler(dialog->handler);
  dialog->handler = nullptr;
}

OSStatus RunModalDelayedPrintSetup(const bundle::BundleRef& bundle, std::int64_t* time) {
  return RunDialog(bundle, time, std::nullopt);
}

OSStatus RunModalDelayedPrintSetup(const bundle::BundleRef& bundle, std::int64_t* time,
                                   std::int64_t now) {
  return RunDialog(bundle, time, now);
}

}  // namespace varno::panels
