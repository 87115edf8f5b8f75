// SPDX-License-Identifier: Apache-2.0
#include "common/job_setup.h"

#include "platform/print/cups_queue.h"
#include "platform/print/framework_keys.h"

namespace varno::hosts {

std::filesystem::path SamplePPD() {
  // The PPD lies at the same place relative to the program in an installed tree and in the
  // build tree, so no absolute path is compiled in.
  std::error_code ec;
  const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  return (exe.parent_path() / VARNO_SAMPLE_PPD_FROM_PROGRAM).lexically_normal();
}

bool ReadPrinter(print::Session& session, PPDDefaults& ppd, std::string& error,
                 std::filesystem::path* pathOut) {
  std::optional<std::filesystem::path> path = session.ppdPath(&error);
  if (!path) return false;
  if (pathOut) *pathOut = *path;
  return ReadPPDDefaults(*path, ppd, error);
}

bool IsVarnoPrinter(const PPDDefaults& ppd) { return ppd.manufacturer == kPrinterMaker; }

std::string NotVarnoMessage(const std::filesystem::path& path, const PPDDefaults& ppd) {
  return path.string() + ": this printer's PPD is not a Varno PPD (its manufacturer is \"" +
         ppd.manufacturer + "\"); choose a Varno printer with -P QUEUE or --ppd FILE";
}

void AddPrinterDefaults(const PPDDefaults& ppd, print::Session& session) {
  plist::Dictionary choices = session.printSettings().ppdDictionary();
  for (const auto& [keyword, choice] : ppd.choices)
    if (!choices.contains(keyword)) choices.set(keyword, choice);
}

std::optional<std::size_t> StartFromQueueDefaults(const std::string& queue, const std::string& server,
                                                  const PPDDefaults& ppd, print::Session& session,
                                                  std::string& error) {
  std::optional<std::vector<print::JobOption>> defaults = print::ReadQueueDefaults(queue, server, &error);
  if (!defaults) return std::nullopt;
  std::optional<std::vector<std::pair<std::string, plist::Value>>> entries =
      print::DecodeTicketEntries(*defaults, &error);
  if (!entries) {
    error = "the defaults of queue \"" + queue + "\": " + error;
    return std::nullopt;
  }
  // Entries read back from a queue's defaults have lost their writer; they are the ticket's.
  static constexpr const char* kDefaultsClient = "com.varno.print";
  print::Ticket ticket = session.printSettings();
  for (auto& [key, value] : *entries) ticket.setValue(key, std::move(value), kDefaultsClient);
  plist::Dictionary choices = ticket.ppdDictionary();
  for (const print::JobOption& option : print::PlainJobOptions(*defaults))
    if (ppd.choicesOf(option.name)) choices.set(option.name, option.value);
  return entries->size();
}

void WriteFrameworkSettings(const FrameworkSettings& settings, print::Session& session) {
  print::Ticket ticket = session.printSettings();
  if (settings.jobName) ticket.setValue(print::kJobNameKey, *settings.jobName, print::kFrameworkClient);
  if (settings.copies)
    ticket.setValue(print::kCopiesKey, std::int64_t{*settings.copies}, print::kFrameworkClient);
  if (settings.firstPage && settings.lastPage) {
    ticket.setValue(print::kFirstPageKey, std::int64_t{*settings.firstPage}, print::kFrameworkClient);
    ticket.setValue(print::kLastPageKey, std::int64_t{*settings.lastPage}, print::kFrameworkClient);
  }
  if (settings.orientation) {
    print::Ticket pageFormat = session.pageFormat();
    pageFormat.setValue(print::kOrientationKey, std::int64_t{*settings.orientation},
                        print::kFrameworkClient);
  }
}

std::vector<print::JobOption> FrameworkJobOptions(const FrameworkSettings& settings) {
  std::vector<print::JobOption> options;
  if (settings.copies) options.push_back({"copies", std::to_string(*settings.copies)});
  if (settings.firstPage && settings.lastPage)
    options.push_back({"page-ranges", std::to_string(*settings.firstPage) + "-" +
                                          std::to_string(*settings.lastPage)});
  // IPP's orientation-requested: 3 portrait, 4 landscape, 5 reverse landscape, 6 reverse
  // portrait; the framework numbers them 1 to 4.
  static constexpr int kIPPOrientation[] = {3, 4, 6, 5};
  if (settings.orientation && *settings.orientation >= 1 && *settings.orientation <= 4)
    options.push_back({"orientation-requested", std::to_string(kIPPOrientation[*settings.orientation - 1])});
  return options;
}

}  // namespace varno::hosts
