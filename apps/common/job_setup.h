// SPDX-License-Identifier: Apache-2.0
// What both hosts do to a session before the plug-in opens, and what they send with a job:
// the printer's PPD and its maker, the printer's default choices, and the printing
// framework's own settings (copies, pages, orientation) as tickets and job options hold them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/ppd_defaults.h"
#include "platform/print/job_options.h"
#include "platform/print/session.h"

namespace varno::hosts {

// The PPD maker whose printers the plug-in serves; it refuses any other.
inline constexpr std::string_view kPrinterMaker = "Varno";

// The sample printer's PPD: installed beside the programs, or in the build tree.
std::filesystem::path SamplePPD();

// Reads the session's printer PPD into `ppd`. False, with the reason, when it cannot be
// fetched or read. `path` receives the file read.
bool ReadPrinter(print::Session& session, PPDDefaults& ppd, std::string& error,
                 std::filesystem::path* path = nullptr);
bool IsVarnoPrinter(const PPDDefaults& ppd);
// Says that the printer at `path` is another maker's and what to do.
std::string NotVarnoMessage(const std::filesystem::path& path, const PPDDefaults& ppd);

// Records the printer's default choices in the ticket's PPD dictionary, keeping any
// choice the ticket already holds (a saved ticket's choices win).
void AddPrinterDefaults(const PPDDefaults& ppd, print::Session& session);

// Starts the session's ticket from the saved defaults of `queue` ("QUEUE" or
// "QUEUE/INSTANCE"): the ticket entries they carry and the choices of the printer's own
// PPD options. The number of ticket entries, or nullopt with the reason.
std::optional<std::size_t> StartFromQueueDefaults(const std::string& queue, const std::string& server,
                                                  const PPDDefaults& ppd, print::Session& session,
                                                  std::string& error);

// The framework's own settings of a job.
struct FrameworkSettings {
  std::optional<std::string> jobName = {};
  std::optional<int> copies = {};
  std::optional<int> firstPage = {};  // both or neither: the pages to print
  std::optional<int> lastPage = {};
  std::optional<int> orientation = {};  // 1 portrait, 2 landscape, 3 and 4 reversed
};
// Writes them into the print-settings and page-format tickets, as the printing framework
// does before the plug-in opens, so the panels see them. What is unset is left alone.
void WriteFrameworkSettings(const FrameworkSettings& settings, print::Session& session);
// The job options that carry them to the scheduler, which prints copies, page ranges and
// orientation itself.
std::vector<print::JobOption> FrameworkJobOptions(const FrameworkSettings& settings);

}  // namespace varno::hosts
