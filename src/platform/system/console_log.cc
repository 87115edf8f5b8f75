// SPDX-License-Identifier: Apache-2.0
#include "platform/system/console_log.h"

#include <syslog.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace varno::sys {

void ConsoleLog(std::string_view line) {
  const char* where = std::getenv("VARNO_CONSOLE_LOG");
  const std::string text(line);
  if (where && std::string_view(where) == "stderr") {
    std::fprintf(stderr, "%s\n", text.c_str());
    return;
  }
  syslog(LOG_USER | LOG_DEBUG, "%s", text.c_str());
}

}  // namespace varno::sys
