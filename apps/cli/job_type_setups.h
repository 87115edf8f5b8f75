// SPDX-License-Identifier: Apache-2.0
// The job type set-ups on the command line: choosing a job type opens its set-up dialog,
// which varno-print fills in and confirms as a person would, so the dialog's own checks
// decide. A passcode given here is typed into password fields and never repeated.
#pragma once

#include <optional>
#include <string>

#include "dialog_settings.h"

namespace varno::cli {

// What the set-ups get from the command line.
struct JobSetup {
  std::optional<std::string> passcode;  // --passcode DIGITS
  std::optional<std::string> printAt;   // --print-at HH:MM, local time
  std::optional<std::string> mailbox;   // --mailbox NUMBER
  std::optional<std::string> jobName;   // --job-name NAME|auto
  bool empty() const { return !passcode && !printAt && !mailbox && !jobName; }
};

// Null when `setup` fits the job type word given with --job-type (null when none was);
// else why not, for a usage error.
std::optional<std::string> CheckJobSetup(const JobSetup& setup, const std::optional<std::string>& jobType);

// Chooses `jobType` in the job-type pop-up with its set-up filled in from `setup`.
// UnknownChoice when a field refuses what was given (its limits named), Failed with the
// dialog's alert when OK is refused. A notice the accepted dialog showed (a passcode it
// made up) goes to standard error once.
ApplyResult ApplyJobType(toolkit::Control& popup, std::int32_t jobType, const JobSetup& setup,
                         std::string* error);

}  // namespace varno::cli
