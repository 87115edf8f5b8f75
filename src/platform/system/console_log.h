// SPDX-License-Identifier: Apache-2.0
// The console log: lines a component leaves for whoever looks into the system's log, not
// for the person at the dialog or the terminal.
#pragma once

#include <string_view>

namespace varno::sys {

// Leaves `line` in the user's system log (syslog, debug level, as "varno-print"); with
// VARNO_CONSOLE_LOG=stderr in the environment it goes to standard error instead, where a
// developer or a test reads it.
void ConsoleLog(std::string_view line);

}  // namespace varno::sys
