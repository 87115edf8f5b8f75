// Helpers for the print tests: a scratch folder, and readable failure output for tickets
// and printers (gtest would otherwise print their bytes).
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <ostream>
#include <string>

#include "platform/plist/file.h"
#include "platform/print/session.h"
#include "platform/print/ticket.h"

namespace varno::testing {

// A private temporary folder for one test, removed with everything in it afterwards.
class ScratchDir {
 public:
  ScratchDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "varno-test-XXXXXX").string();
    if (mkdtemp(pattern.data())) path_ = pattern;
  }
  ~ScratchDir() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace varno::testing

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
