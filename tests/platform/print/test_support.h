// SPDX-License-Identifier: Apache-2.0
// Readable failure output for tickets and printers in the print tests (gtest would
// otherwise print their bytes).
#pragma once

#include <ostream>

#include "platform/plist/file.h"
#include "platform/print/session.h"
#include "platform/print/ticket.h"
#include "support/temp_dir.h"

namespace varno::print {

inline void PrintTo(const Ticket& ticket, std::ostream* os) {
  *os << plist::ToXML(ticket.toPropertyList()).value_or("(ticket too deep to print)");
}

inline void PrintTo(const Printer& printer, std::ostream* os) {
  static const char* const kinds[] = {"none", "PPD file", "queue"};
  *os << kinds[static_cast<int>(printer.kind)] << " \"" << printer.ppdPath << printer.queue
      << "\" server \"" << printer.server << "\"";
}

}  // namespace varno::print
