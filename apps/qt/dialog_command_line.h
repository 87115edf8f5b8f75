// SPDX-License-Identifier: Apache-2.0
// varno-print-dialog's command line, written as lp users write theirs.
#pragma once

#include <optional>
#include <string>

#include "print_dialog.h"

namespace varno::qt {

struct CommandLine {
  DialogOptions dialog;
  std::optional<std::string> bundlePath;
  bool help = false;
  bool version = false;
};

extern const char* const kDialogUsage;

// nullopt, after one line saying what is wrong and a pointer to --help on standard error,
// when the arguments are wrong.
std::optional<CommandLine> ParseDialogArguments(int argc, char** argv);

}  // namespace varno::qt
