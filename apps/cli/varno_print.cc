// SPDX-License-Identifier: Apache-2.0
// varno-print: the command-line host. It loads the plug-in bundle the way a printing
// framework does, opens the Print dialog (headless) on a printer — the bundled sample
// printer unless told otherwise — makes the choices given on the command line as a person
// would, and then writes the resulting print-settings ticket, or prints files with it on a
// CUPS queue, or keeps it as the queue's defaults.
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "command_line.h"
#include "common/job_setup.h"
#include "dialog_settings.h"
#include "special_pages_options.h"
#include "panels/paper_output/paper_output_panel.h"
#include "platform/plist/file.h"
#include "platform/plist/text.h"
#include "platform/print/cups_queue.h"
#include "platform/print/framework_driver.h"
#include "platform/print/framework_keys.h"
#include "platform/print/job_options.h"
#include "platform/print/session.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/window.h"
#include "vocabulary/plugin_bundle.h"

namespace {

using namespace varno;
using cli::Options;

constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

int Fail(const std::string& message, int status = kExitFailure) {
  std::cerr << "varno-print: " << message << "\n";
  return status;
}

// Informational lines (which printer and plug-in, what was saved) are shown with -v only.
void Say(const Options& options, const std::string& line) {
  if (options.verbose) std::cerr << "varno-print: " << line << "\n";
}

void PrependBundlePath(const std::string& dir) {
  std::string value = dir;
  if (const char* old = std::getenv(bundle::kBundlePathVariable); old && *old)
    value += std::string(":") + old;
  ::setenv(bundle::kBundlePathVariable, value.c_str(), 1);
}

// The session the options describe: saved, or new on the chosen or the sample printer,
// with the ticket to start from.
std::unique_ptr<print::Session> OpenSession(const Options& options, std::string& error) {
  std::unique_ptr<print::Session> session;
  if (options.session) {
    session = print::Session::load(*options.session, &error);
    if (!session) return nullptr;
  } else {
    session = std::make_unique<print::Session>();
  }
  if (options.ticket) {
    std::optional<print::Ticket> ticket = print::Ticket::load(*options.ticket, &error);
    if (!ticket) return nullptr;
    session->setDataItem(print::kPrintSettingsTicket, *ticket);
  }
  if (options.ppd) session->setPrinterPPD(*options.ppd);
  else if (options.queue)
    session->setPrinterQueue(print::SplitDestination(*options.queue).queue, options.server.value_or(""));
  else if (session->printer().kind == print::Printer::Kind::None)
    session->setPrinterPPD(hosts::SamplePPD().string());
  return session;
}

// The printer's PPD, for its default choices and the names of its options.
int ReadPrinter(const Options& options, print::Session& session, hosts::PPDDefaults& ppd) {
  std::string error;
  std::filesystem::path path;
  if (!hosts::ReadPrinter(session, ppd, error, &path)) return Fail(error);
  if (!hosts::IsVarnoPrinter(ppd)) return Fail(hosts::NotVarnoMessage(path, ppd));
  Say(options, "printer " + ppd.nickName + " (" + path.string() + ")");
  return 0;
}

// Starts the ticket from the queue's saved defaults: the ticket entries they carry and
// the choices of the printer's own PPD options.
int ApplyQueueDefaults(const Options& options, const hosts::PPDDefaults& ppd,
                       print::Session& session) {
  std::string error;
  const std::optional<std::size_t> entries =
      hosts::StartFromQueueDefaults(*options.queue, options.server.value_or(""), ppd, session, error);
  if (!entries) return Fail(error);
  Say(options, "started from the defaults of queue " + *options.queue + " (" +
      std::to_string(*entries) + " ticket entries)");
  return 0;
}

// Puts the -o choices into the ticket before the dialog opens, so the panels read them as
// a saved ticket's choices. The option and the choice are matched in any case and stored
// as the PPD spells them; one the printer lacks is a usage error that lists what it has.
int ApplyPPDChoices(const Options& options, const hosts::PPDDefaults& ppd, print::Session& session) {
  plist::Dictionary choices = session.printSettings().ppdDictionary();
  for (const auto& [key, value] : options.ppdChoices) {
    const std::pair<std::string, std::vector<hosts::PPDChoice>>* option = nullptr;
    for (const auto& candidate : ppd.options)
      if (plist::EqualCaseInsensitive(candidate.first, key)) option = &candidate;
    if (!option) {
      std::string names;
      for (const auto& [keyword, unused] : ppd.options) names += (names.empty() ? "" : ", ") + keyword;
      return Fail("-o " + key + ": the printer has no option \"" + key + "\"; its options are: " +
                      names,
                  kExitUsage);
    }
    const hosts::PPDChoice* choice = nullptr;
    std::string offered;
    for (const hosts::PPDChoice& candidate : option->second) {
      if (plist::EqualCaseInsensitive(candidate.keyword, value)) choice = &candidate;
      offered += (offered.empty() ? "" : ", ") + candidate.keyword;
    }
    if (!choice)
      return Fail("-o " + key + ": no choice \"" + value + "\"; the choices are: " + offered,
                  kExitUsage);
    choices.set(option->first, choice->keyword);
  }
  return 0;
}

// Where the job's name comes from: -t, else the first file printed.
std::optional<std::string> JobTitle(const Options& options) {
  if (options.title) return options.title;
  if (!options.files.empty()) return std::filesystem::path(options.files.front()).filename().string();
  return std::nullopt;
}

// The job's name and copies, as the printing framework records them.
hosts::FrameworkSettings FrameworkSettingsOf(const Options& options) {
  hosts::FrameworkSettings settings;
  settings.jobName = JobTitle(options);
  settings.copies = options.copies;
  return settings;
}

// A named instance is a saved preset: a job on it starts from its options, as lp's does,
// unless the job brings its own ticket or is about to become the preset.
bool StartsFromDefaults(const Options& options) {
  if (options.ticketFromDefaults) return true;
  return options.queue && !print::SplitDestination(*options.queue).instance.empty() &&
         !options.ticket && !options.session && !options.saveDefaults;
}

// A summary of the Paper/Output panel as it shows it: its label, then one line a part;
// empty when the panel shows nothing there.
std::string PanelSummaryText(toolkit::Window& window, std::int32_t labelID, std::int32_t viewID) {
  const toolkit::Control* label = window.findByID({panels::kPaperOutputSignature, labelID});
  const toolkit::Control* view = window.findByID({panels::kPaperOutputSignature, viewID});
  if (!label || !view || view->text().empty()) return {};
  std::string text = label->text() + "\n";
  for (std::size_t start = 0; start < view->text().size();) {
    const std::size_t end = std::min(view->text().find('\n', start), view->text().size());
    if (end > start) text += "  " + view->text().substr(start, end - start) + "\n";
    start = end + 1;
  }
  return text;
}

std::string SummaryText(print::FrameworkDriver& driver, toolkit::Window& window) {
  plist::Array titles, values;
  if (driver.getSummaryText(titles, values) != noErr) return {};
  std::string text =
      PanelSummaryText(window, panels::kPaperSummaryLabelID, panels::kStockSummaryViewID) +
      PanelSummaryText(window, panels::kFinishingLabelID, panels::kFinishingSummaryViewID);
  for (std::size_t i = 0; i < titles.size(); ++i) {
    const std::string* title = titles[i].asString();
    const std::string* value = i < values.size() ? values[i].asString() : nullptr;
    text += (title ? *title : std::string("?")) + ": " + (value ? *value : std::string()) + "\n";
  }
  return text;
}

// Clearing the toner-saver box names no choice, so a ticket that already saves toner
// keeps doing so; say so rather than let the user believe it was turned off.
void WarnAboutKeptTonerSaver(const Options& options, const print::Ticket& ticket) {
  for (const auto& [setting, value] : options.settings)
    if (std::string_view(setting->name) == "toner-saver" && !plist::EqualCaseInsensitive(value, "on") &&
        ticket.ppdDictionary().getString("VNEconomode") == "Draft")
      std::cerr << "varno-print: note: the ticket already asked to save toner, and clearing "
                   "the box leaves that in place\n";
}

// Runs the dialog on the session: Prologue, Initialize, Open, the user's choices, a Sync
// to the ticket, the Special Pages pane when it is asked for, then whatever output asks
// for the open dialog (--list, --summary, --list-special-pages).
int RunDialog(const Options& options, const hosts::PPDDefaults& ppd, print::Session& session) {
  // The dialog the plug-in draws into; declared before the driver, which closes and
  // terminates the plug-in while the window still exists.
  std::unique_ptr<toolkit::Window> window = toolkit::Window::create({0, 0, 700, 600}, "Print");
  window->setVisible(true);
  toolkit::Control* pane =
      window->embed(toolkit::Control::create(toolkit::ControlKind::UserPane, {0, 0, 500, 600}));
  // Reached only when the plug-in lets OK go on: it is installed before the plug-in's
  // handlers, which therefore hear the command first.
  bool okAccepted = false;
  window->installHandler({{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}}, [&okAccepted](toolkit::EventHandlerCallRef, toolkit::Event& event) {
    std::optional<toolkit::HICommand> command = event.command();
    if (command && command->commandID == toolkit::kHICommandOK) okAccepted = true;
    return eventNotHandledErr;
  });
  print::FrameworkDriver driver;
  if (driver.loadByIdentifier(vocabulary::kPlugInBundleIdentifier) != noErr) return Fail(driver.error());
  print::PMPDEVersion version{};
  driver.getAPIVersion(version);
  Say(options, std::string("plug-in ") + vocabulary::kPlugInBundleIdentifier + " from " +
      driver.bundle()->path().string() + " (interface " +
      std::to_string(version.buildVersionMajor) + "." + std::to_string(version.buildVersionMinor) + ")");
  if (driver.prologue() != noErr || driver.initialize(&session, pane) != noErr ||
      driver.open() != noErr)
    return Fail("the plug-in could not open its panels: " + driver.error());

  std::string error;
  cli::DialogSettings settings(*window, ppd);
  settings.setJobSetup(&options.setup);
  for (const auto& [setting, value] : options.settings) {
    switch (settings.apply(*setting, value, &error)) {
      case cli::ApplyResult::Applied: break;
      case cli::ApplyResult::UnknownChoice: return Fail(error, kExitUsage);
      case cli::ApplyResult::Failed: return Fail(error);
    }
  }
  // A job that is printed or written out is confirmed with OK, as the Print button does;
  // looking at the settings (--list, --summary) is not.
  if (!options.list && !options.summary && !options.listSpecialPages) {
    const std::size_t notices = toolkit::HeadlessAlerts().notices().size();
    toolkit::SendCommand(*window, toolkit::kHICommandOK);
    if (!okAccepted) {
      const auto& shown = toolkit::HeadlessAlerts().notices();
      if (shown.size() > notices) return Fail(shown.back().header + ": " + shown.back().message);
      return Fail("the dialog did not accept the job: a LAN fax job needs at least one recipient; "
                  "add them in the LAN fax set-up of varno-print-dialog");
    }
  }
  if (driver.sync(false) != noErr) return Fail("writing the ticket failed: " + driver.error());
  WarnAboutKeptTonerSaver(options, session.printSettings());
  std::string specialPages;
  if (!options.specialPages.empty() || options.listSpecialPages) {
    switch (cli::RunSpecialPagesPane(*pane, driver.bundle(), session, ppd, options.specialPages,
                                     options.listSpecialPages ? &specialPages : nullptr, &error)) {
      case cli::ApplyResult::Applied: break;
      case cli::ApplyResult::UnknownChoice: return Fail(error, kExitUsage);
      case cli::ApplyResult::Failed: return Fail(error);
    }
  }

  if (options.list) std::cout << settings.list();
  if (options.summary) {
    const std::string summary = SummaryText(driver, *window);
    if (summary.empty())
      return Fail("no panel of this plug-in gives a summary of its settings yet; use --list to "
                  "see every setting and its value");
    std::cout << summary;
  }
  std::cout << specialPages;
  if (driver.close() != noErr || driver.terminate(noErr) != noErr)
    return Fail("the plug-in failed to close: " + driver.error());
  return 0;
}

// What happens to the finished ticket: kept, saved as defaults, shown as job options,
// printed with the files, or written out.
int Deliver(const Options& options, print::Session& session) {
  std::string error;
  const print::Ticket ticket = session.printSettings();
  if (options.save) {
    if (!session.save(*options.save, &error)) return Fail(error);
    Say(options, "session saved to " + *options.save);
  }
  // Saved before anything reaches a scheduler, so a refused job loses no settings.
  if (options.saveTicket) {
    if (!ticket.save(*options.saveTicket, &error)) return Fail(error);
    Say(options, "ticket saved to " + *options.saveTicket);
  }
  std::optional<std::vector<print::JobOption>> jobOptions = print::TicketToJobOptions(ticket, &error);
  if (!jobOptions) return Fail("the ticket cannot become job options: " + error);
  const std::string destination = options.queue.value_or("");
  const std::string queue = print::SplitDestination(destination).queue;
  const std::string server = options.server.value_or("");

  if (options.saveDefaults) {
    if (!print::SaveQueueDefaults(destination, server, *jobOptions, &error)) return Fail(error);
    Say(options, "the ticket is now the default of " + destination);
  }
  // The scheduler prints copies itself; the ticket's entry tells the panels.
  for (print::JobOption& option : hosts::FrameworkJobOptions(FrameworkSettingsOf(options)))
    jobOptions->push_back(std::move(option));
  if (options.dryRun) {
    for (const print::JobOption& option : *jobOptions)
      std::cout << option.name << "=" << option.value << "\n";
  } else if (!options.files.empty()) {
    const std::vector<std::filesystem::path> files(options.files.begin(), options.files.end());
    const int job = print::SubmitJob(queue, server, files, *jobOptions, JobTitle(options).value_or(""), &error);
    if (job == 0) return Fail(error);
    // As lp says it, on standard output, so scripts written for lp read it the same way.
    std::cout << "request id is " << queue << "-" << job << " (" << files.size() << " file(s))\n";
  } else if (!options.saveTicket && !options.list && !options.summary && !options.listSpecialPages) {
    std::optional<std::string> xml = plist::ToXML(ticket.toPropertyList(), &error);
    if (!xml) return Fail(error);
    std::cout << *xml;
  }
  return std::cout.flush() ? 0 : Fail("cannot write to standard output");
}

int Run(const Options& options) {
  if (options.bundlePath) PrependBundlePath(*options.bundlePath);
  std::string error;
  std::unique_ptr<print::Session> session = OpenSession(options, error);
  if (!session) return Fail(error);
  hosts::PPDDefaults ppd;
  if (int status = ReadPrinter(options, *session, ppd)) return status;
  if (StartsFromDefaults(options))
    if (int status = ApplyQueueDefaults(options, ppd, *session)) return status;
  hosts::AddPrinterDefaults(ppd, *session);
  // Before the dialog opens, so the panels see them as in any application's dialog.
  hosts::WriteFrameworkSettings(FrameworkSettingsOf(options), *session);
  if (int status = ApplyPPDChoices(options, ppd, *session)) return status;
  if (int status = RunDialog(options, ppd, *session)) return status;
  return Deliver(options, *session);
}

}  // namespace

int main(int argc, char** argv) {
  std::optional<Options> options = cli::ParseArguments(argc, argv);
  if (!options) return kExitUsage;
  if (options->help) {
    std::cout << cli::kUsage;
    return 0;
  }
  if (options->version) {
    std::cout << "varno-print " VARNO_VERSION "\n";
    return 0;
  }
  return Run(*options);
}
