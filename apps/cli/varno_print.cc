// varno-print: the command-line host. It loads the plug-in bundle the way a printing
// framework does, opens the Print dialog (headless) on a printer — the bundled sample
// printer unless told otherwise — makes the choices given on the command line as a person
// would, and writes the resulting print-settings ticket.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dialog_settings.h"
#include "host/plugin_entry.h"
#include "platform/plist/file.h"
#include "platform/plist/text.h"
#include "platform/print/framework_driver.h"
#include "platform/print/session.h"
#include "platform/toolkit/window.h"
#include "ppd_defaults.h"

namespace {

using namespace varno;

constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

constexpr const char* kUsage =
    "usage: varno-print [--ppd FILE | -P QUEUE [--server HOST[:PORT]]]\n"
    "                   [--ticket IN.plist] [--save-ticket OUT.plist] [--summary] [--list]\n"
    "                   [--session FILE] [--save FILE] [--bundle-path DIR] [setting options]\n"
    "\n"
    "Loads the Varno plug-in bundle, opens the Print dialog on a printer, makes the choices\n"
    "given as setting options and writes the print-settings ticket to standard output as\n"
    "an XML property list.\n"
    "\n"
    "  --ppd FILE             the printer described by this PPD file\n"
    "  -P, --queue QUEUE      this CUPS queue (its PPD is fetched from the scheduler)\n"
    "  --server HOST          the scheduler of -P (default: the usual CUPS server)\n"
    "  --ticket IN.plist      start from a print-settings ticket saved earlier\n"
    "  --save-ticket OUT.plist  save the ticket to this file instead of printing it\n"
    "  --summary              print the dialog's summary of the settings instead of the ticket\n"
    "  --list                 print every setting option with its choices and current value\n"
    "  --session FILE         start from a whole session saved with --save\n"
    "  --save FILE            save the whole session (printer and tickets) to FILE\n"
    "  --bundle-path DIR      look for the plug-in bundle in DIR first\n"
    "  --help                 show this text\n"
    "\n"
    "Setting options (a choice is its PPD keyword or its shown text, in any case):\n"
    "  --image-quality CHOICE  --toner-saver on|off  --negative-image on|off\n"
    "  --mirror-image on|off   --banner-sheet CHOICE --request-offset CHOICE\n"
    "  --feed-edge CHOICE\n"
    "\n"
    "Without --ppd, -P or --session the bundled sample printer is used.\n";

struct Options {
  std::optional<std::string> ppd, queue, server, ticket, saveTicket, session, save, bundlePath;
  bool summary = false;
  bool list = false;
  // (setting option, value) in command-line order.
  std::vector<std::pair<const cli::SettingOption*, std::string>> settings;
};

int Fail(const std::string& message, int status = kExitFailure) {
  std::cerr << "varno-print: " << message << "\n";
  return status;
}

// Parses the command line; nullopt (after a message) when it is wrong.
std::optional<Options> ParseArguments(int argc, char** argv, bool& help) {
  Options options;
  const std::vector<std::pair<std::string_view, std::optional<std::string>*>> valued = {
      {"--ppd", &options.ppd},           {"--queue", &options.queue},
      {"-P", &options.queue},            {"--server", &options.server},
      {"--ticket", &options.ticket},     {"--save-ticket", &options.saveTicket},
      {"--session", &options.session},   {"--save", &options.save},
      {"--bundle-path", &options.bundlePath}};
  auto usage = [](const std::string& message) {
    std::cerr << "varno-print: " << message << "\n" << kUsage;
    return std::nullopt;
  };
  for (int i = 1; i < argc; ++i) {
    std::string_view arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      help = true;
      return options;
    }
    if (arg == "--summary" || arg == "--list") {
      (arg == "--list" ? options.list : options.summary) = true;
      continue;
    }
    std::optional<std::string>* slot = nullptr;
    for (const auto& [name, target] : valued)
      if (arg == name) slot = target;
    const cli::SettingOption* setting =
        arg.starts_with("--") ? cli::FindSettingOption(arg.substr(2)) : nullptr;
    if (!slot && !setting) return usage("unknown argument '" + std::string(arg) + "'");
    if (i + 1 >= argc) return usage(std::string(arg) + " needs a value");
    if (setting) options.settings.emplace_back(setting, argv[++i]);
    else *slot = argv[++i];
  }
  if (options.ppd && options.queue) return usage("give --ppd or -P, not both");
  if (options.server && !options.queue) return usage("--server goes with -P");
  return options;
}

// The sample printer's PPD: installed beside the program, or in the source tree of a build.
std::filesystem::path SamplePPD() {
  std::error_code ec;
  std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (!ec) {
    std::filesystem::path installed = exe.parent_path().parent_path() / "share/varno/Varno-AT120A.ppd";
    if (std::filesystem::exists(installed, ec)) return installed;
  }
  return VARNO_SAMPLE_PPD;
}

void PrependBundlePath(const std::string& dir) {
  std::string value = dir;
  if (const char* old = std::getenv(bundle::kBundlePathVariable); old && *old)
    value += std::string(":") + old;
  ::setenv(bundle::kBundlePathVariable, value.c_str(), 1);
}

// Reads the printer's PPD and records its default choices in the ticket's PPD dictionary,
// keeping any choice the ticket already holds (a saved ticket's choices win).
int AddPrinterDefaults(print::Session& session, cli::PPDDefaults& defaults) {
  std::string error;
  std::optional<std::filesystem::path> ppd = session.ppdPath(&error);
  if (!ppd) return Fail(error);
  if (!cli::ReadPPDDefaults(*ppd, defaults, error)) return Fail(error);
  std::cerr << "varno-print: printer " << defaults.nickName << " (" << ppd->string() << ")\n";
  plist::Dictionary choices = session.printSettings().ppdDictionary();
  for (const auto& [keyword, choice] : defaults.choices)
    if (!choices.contains(keyword)) choices.set(keyword, choice);
  return 0;
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
  else if (options.queue) session->setPrinterQueue(*options.queue, options.server.value_or(""));
  else if (session->printer().kind == print::Printer::Kind::None)
    session->setPrinterPPD(SamplePPD().string());
  return session;
}

std::string SummaryText(print::FrameworkDriver& driver) {
  plist::Array titles, values;
  if (driver.getSummaryText(titles, values) != noErr) return {};
  std::string text;
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

int Run(const Options& options) {
  if (options.bundlePath) PrependBundlePath(*options.bundlePath);

  std::string error;
  std::unique_ptr<print::Session> session = OpenSession(options, error);
  if (!session) return Fail(error);
  cli::PPDDefaults ppd;
  if (int status = AddPrinterDefaults(*session, ppd)) return status;

  // The dialog the plug-in draws into; declared before the driver, which closes and
  // terminates the plug-in while the window still exists.
  std::unique_ptr<toolkit::Window> window = toolkit::Window::create({0, 0, 700, 600}, "Print");
  window->setVisible(true);
  toolkit::Control* pane =
      window->embed(toolkit::Control::create(toolkit::ControlKind::UserPane, {0, 0, 500, 600}));
  print::FrameworkDriver driver;
  if (driver.loadByIdentifier(host::kPlugInBundleIdentifier) != noErr) return Fail(driver.error());
  print::PMPDEVersion version{};
  driver.getAPIVersion(version);
  std::cerr << "varno-print: plug-in " << host::kPlugInBundleIdentifier << " from "
            << driver.bundle()->path().string() << " (interface " << version.buildVersionMajor
            << "." << version.buildVersionMinor << ")\n";
  if (driver.prologue() != noErr || driver.initialize(session.get(), pane) != noErr ||
      driver.open() != noErr)
    return Fail("the plug-in could not open its panels: " + driver.error());

  cli::DialogSettings settings(*window, ppd);
  for (const auto& [setting, value] : options.settings) {
    switch (settings.apply(*setting, value, &error)) {
      case cli::ApplyResult::Applied: break;
      case cli::ApplyResult::UnknownChoice: return Fail(error, kExitUsage);
      case cli::ApplyResult::Failed: return Fail(error);
    }
  }
  if (driver.sync(false) != noErr) return Fail("writing the ticket failed: " + driver.error());
  const print::Ticket ticket = session->printSettings();
  WarnAboutKeptTonerSaver(options, ticket);

  if (options.list) std::cout << settings.list();
  if (options.summary) {
    const std::string summary = SummaryText(driver);
    if (summary.empty()) std::cerr << "varno-print: no panel gives a summary of its settings\n";
    std::cout << summary;
  }
  if (driver.close() != noErr || driver.terminate(noErr) != noErr)
    return Fail("the plug-in failed to close: " + driver.error());

  if (options.save) {
    if (!session->save(*options.save, &error)) return Fail(error);
    std::cerr << "varno-print: session saved to " << *options.save << "\n";
  }
  if (options.saveTicket) {
    if (!ticket.save(*options.saveTicket, &error)) return Fail(error);
    std::cerr << "varno-print: ticket saved to " << *options.saveTicket << "\n";
  } else if (!options.list && !options.summary) {
    std::optional<std::string> xml = plist::ToXML(ticket.toPropertyList(), &error);
    if (!xml) return Fail(error);
    std::cout << *xml;
  }
  return std::cout.flush() ? 0 : Fail("cannot write to standard output");
}

}  // namespace

int main(int argc, char** argv) {
  bool help = false;
  std::optional<Options> options = ParseArguments(argc, argv, help);
  if (!options) return kExitUsage;
  if (help) {
    std::cout << kUsage;
    return 0;
  }
  return Run(*options);
}
