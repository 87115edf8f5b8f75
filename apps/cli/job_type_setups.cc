// SPDX-License-Identifier: Apache-2.0
#include "job_type_setups.h"

#include <ctime>
#include <iostream>
#include <memory>

#include "panels/paper_output/delayed_print_setup.h"
#include "panels/paper_output/paper_output_panel.h"
#include "panels/paper_output/saved_job_dialog.h"
#include "panels/paper_output/secure_print_setup.h"
#include "paper_dialogs.h"
#include "platform/plist/text.h"
#include "platform/status_text.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/window.h"

namespace varno::cli {
namespace {

using toolkit::Control;

constexpr std::int64_t kSecondsFrom1904To1970 = 2082844800;

// Seconds into the day of "HH:MM"; nullopt when it is no time of day.
std::optional<std::int64_t> TimeOfDay(std::string_view text) {
  if (text.size() != 5 || text[2] != ':') return std::nullopt;
  for (std::size_t i : {0u, 1u, 3u, 4u})
    if (text[i] < '0' || text[i] > '9') return std::nullopt;
  const int hours = (text[0] - '0') * 10 + (text[1] - '0');
  const int minutes = (text[3] - '0') * 10 + (text[4] - '0');
  if (hours > 23 || minutes > 59) return std::nullopt;
  return hours * 3600 + minutes * 60;
}

// Today at `seconds` into the day, in seconds since 1904 local time, as the clock counts.
toolkit::LongDateTime TodayAt(std::int64_t seconds) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const std::int64_t localNow = static_cast<std::int64_t>(now) + local.tm_gmtoff + kSecondsFrom1904To1970;
  return localNow - localNow % 86400 + seconds;
}

// Types `text` into `field` afresh; when the field's limits keep it from holding exactly
// that, `refused` takes `why` and the dialog is cancelled, so nothing half-typed is kept.
void TypeExactly(toolkit::AutomationScript& script, toolkit::ControlID field, const std::string& text,
                 std::shared_ptr<std::string> refused, std::string why) {
  ScriptRetype(script, field, text);
  script.add("check what the field took", [field, text, refused, why](toolkit::Window& window) {
    Control* control = window.findByID(field);
    if (control && control->text() == text) return noErr;
    *refused = why;
    return toolkit::SendCommand(window, toolkit::kHICommandCancel);
  });
}

void QueueSecurePrint(toolkit::AutomationScript& script, const JobSetup& setup,
                      std::shared_ptr<std::string> refused) {
  if (setup.passcode) {
    const std::string why = "--passcode: a secure print passcode is " +
                            std::to_string(panels::kMinSecurePasscodeLength) + " to " +
                            std::to_string(panels::kMaxSecurePasscodeLength) + " digits";
    TypeExactly(script, panels::kSecurePasscodeFieldID, *setup.passcode, refused, why);
    TypeExactly(script, panels::kSecureConfirmFieldID, *setup.passcode, refused, why);
  }
}

void QueueDelayedPrint(toolkit::AutomationScript& script, const JobSetup& setup) {
  if (setup.printAt) script.setDateTime(panels::kDelayedClockID, TodayAt(*TimeOfDay(*setup.printAt)));
}

void QueueSavedJob(toolkit::AutomationScript& script, const JobSetup& setup,
                   std::shared_ptr<std::string> refused) {
  if (setup.jobName && plist::EqualCaseInsensitive(*setup.jobName, "auto"))
    script.chooseMenuItem(panels::kSavedJobNameBoxID, 1);  // the document's own name
  else if (setup.jobName)
    TypeExactly(script, panels::kSavedJobNameBoxID, *setup.jobName, refused,
                "--job-name: a stored job's name is up to " +
                    std::to_string(panels::kMaxSavedJobNameLength) +
                    " plain ASCII characters (letters, digits, spaces, punctuation), or auto");
  if (setup.mailbox)
    TypeExactly(script, panels::kSavedJobFolderBoxID, *setup.mailbox, refused,
                "--mailbox: a folder number is up to " + std::to_string(panels::kMaxSavedJobFolderLength) +
                    " digits, " + std::to_string(panels::kMinSavedJobFolder) + " to " +
                    std::to_string(panels::kMaxSavedJobFolder));
  if (setup.passcode) {
    script.add("secure the stored job", [](toolkit::Window& window) {
      Control* box = window.findByID(panels::kSavedJobSecureCheckBoxID);
      if (!box) return errUnknownControl;
      return box->value() != 0 ? noErr : toolkit::Click(*box);
    });
    const std::string why = "--passcode: a stored job's passcode is " +
                            std::to_string(panels::kMinSavedJobPasscodeLength) + " to " +
                            std::to_string(panels::kMaxSavedJobPasscodeLength) + " digits";
    TypeExactly(script, panels::kSavedJobPasscodeFieldID, *setup.passcode, refused, why);
    TypeExactly(script, panels::kSavedJobConfirmFieldID, *setup.passcode, refused, why);
  }
}

}  // namespace

std::optional<std::string> CheckJobSetup(const JobSetup& setup, const std::optional<std::string>& jobType) {
  auto is = [&jobType](const char* word) { return jobType && plist::EqualCaseInsensitive(*jobType, word); };
  if (setup.passcode && !is("secure") && !is("mailbox"))
    return "--passcode goes with --job-type secure, or with --job-type mailbox for a secure stored job";
  if (setup.printAt && !is("delayed")) return "--print-at goes with --job-type delayed";
  if (setup.printAt && !TimeOfDay(*setup.printAt))
    return "--print-at takes a time of day as HH:MM (00:00 to 23:59), such as 18:30";
  if (setup.mailbox && !is("mailbox")) return "--mailbox goes with --job-type mailbox";
  if (setup.jobName && !is("mailbox")) return "--job-name goes with --job-type mailbox";
  if (setup.jobName && setup.jobName->empty()) return "--job-name needs a name, or auto for the document's";
  return std::nullopt;
}

ApplyResult ApplyJobType(Control& popup, std::int32_t jobType, const JobSetup& setup, std::string* error) {
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  script.clear();
  auto refused = std::make_shared<std::string>();
  const bool hasSetup = jobType == panels::kSecurePrintJob || jobType == panels::kDelayedPrintJob ||
                        jobType == panels::kSavedJob;
  if (jobType == panels::kSecurePrintJob) QueueSecurePrint(script, setup, refused);
  if (jobType == panels::kDelayedPrintJob) QueueDelayedPrint(script, setup);
  if (jobType == panels::kSavedJob) QueueSavedJob(script, setup, refused);
  if (hasSetup) {
    script.sendCommand(toolkit::kHICommandOK);
    // Reached only when the dialog stayed open after OK: it refused what it was given.
    script.sendCommand(toolkit::kHICommandCancel);
  }
  const std::size_t noticesBefore = toolkit::HeadlessAlerts().notices().size();
  const OSStatus status = toolkit::ChooseMenuItemByRefCon(popup, static_cast<toolkit::URefCon>(jobType));
  const bool okRefused = hasSetup && script.pending() == 0;
  const std::vector<std::string> failures = script.failures();
  script.clear();
  const auto& notices = toolkit::HeadlessAlerts().notices();
  if (!refused->empty()) {
    if (error) *error = *refused;
    return ApplyResult::UnknownChoice;
  }
  if (status != noErr || !failures.empty()) {
    if (error)
      *error = "--job-type: the set-up could not be filled in: " +
               (status != noErr ? StatusMessage(status) : failures.front());
    return ApplyResult::Failed;
  }
  if (okRefused) {
    if (error) {
      *error = "--job-type: the set-up refused what it was given";
      if (notices.size() > noticesBefore)
        *error = notices.back().header + ": " + notices.back().message;
    }
    return ApplyResult::Failed;
  }
  // Said once, here: the person types a made-up passcode at the printer.
  for (std::size_t i = noticesBefore; i < notices.size(); ++i)
    std::cerr << "varno-print: " << notices[i].header << ": " << notices[i].message << "\n";
  return ApplyResult::Applied;
}

}  // namespace varno::cli
