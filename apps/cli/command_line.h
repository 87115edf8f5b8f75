// SPDX-License-Identifier: Apache-2.0
// varno-print's command line: what the user asked for, checked before anything runs.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dialog_settings.h"
#include "job_type_setups.h"
#include "special_pages_options.h"

namespace varno::cli {

struct Options {
  // queue: "QUEUE" or "QUEUE/INSTANCE", as -P or -d gave it.
  std::optional<std::string> ppd, queue, server, ticket, saveTicket, session, save, bundlePath;
  std::optional<std::string> title;  // -t: the job's name
  std::optional<int> copies;         // -n
  bool summary = false;
  bool list = false;
  bool dryRun = false;
  bool saveDefaults = false;
  bool ticketFromDefaults = false;
  bool help = false;
  bool version = false;
  bool verbose = false;  // the informational lines on standard error
  bool listSpecialPages = false;
  // -o KEY=VALUE: PPD choices, in command-line order.
  std::vector<std::pair<std::string, std::string>> ppdChoices;
  // What the job type's set-up gets: --passcode, --print-at, --mailbox, --job-name.
  JobSetup setup;
  // (setting option, value) in command-line order.
  std::vector<std::pair<const SettingOption*, std::string>> settings;
  // --insert, --exception, --delete-special-pages in command-line order.
  std::vector<SpecialPagesRequest> specialPages;
  // Files to print, in order.
  std::vector<std::string> files;
};

extern const char* const kUsage;

// Parses the arguments as lp users write them: "--name value" or "--name=value", "-Pqueue"
// or "-P queue", "-o KEY=VALUE" repeated. nullopt, after one line saying what is wrong and
// a pointer to --help on standard error, when they are wrong.
std::optional<Options> ParseArguments(int argc, char** argv);

}  // namespace varno::cli
