// varno-print: the command-line host. It loads the plug-in bundle the way a printing
// framework does, opens a print session on a printer (the bundled sample printer unless
// told otherwise), and writes the resulting print-settings ticket.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/plugin_entry.h"
#include "platform/plist/file.h"
#include "platform/print/framework_driver.h"
#include "platform/print/session.h"
#include "ppd_defaults.h"

namespace {

using namespace varno;

constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

constexpr const char* kUsage =
    "usage: varno-print [--ppd FILE | --queue NAME [--server HOST[:PORT]]]\n"
    "                   [--session FILE] [--save FILE] [--bundle-path DIR]\n"
    "\n"
    "Loads the Varno plug-in bundle, opens a print session and writes its print-settings\n"
    "ticket to standard output as an XML property list.\n"
    "\n"
    "  --ppd FILE         print to the printer described by this PPD file\n"
    "  --queue NAME       print to this CUPS queue (its PPD is fetched from the scheduler)\n"
    "  --server HOST      the scheduler of --queue (default: the usual CUPS server)\n"
    "  --session FILE     start from a session saved earlier with --save\n"
    "  --save FILE        save the whole session (printer and tickets) to FILE\n"
    "  --bundle-path DIR  look for the plug-in bundle in DIR first\n"
    "  --help             show this text\n"
    "\n"
    "Without --ppd, --queue or --session the bundled sample printer is used.\n";

struct Options {
  std::optional<std::string> ppd, queue, server, session, save, bundlePath;
};

int Fail(const std::string& message) {
  std::cerr << "varno-print: " << message << "\n";
  return kExitFailure;
}

// Parses the command line; nullopt (after a message) when it is wrong.
std::optional<Options> ParseArguments(int argc, char** argv, bool& help) {
  Options options;
  const std::vector<std::pair<std::string_view, std::optional<std::string>*>> valued = {
      {"--ppd", &options.ppd},         {"--queue", &options.queue},
      {"--server", &options.server},   {"--session", &options.session},
      {"--save", &options.save},       {"--bundle-path", &options.bundlePath}};
  for (int i = 1; i < argc; ++i) {
    std::string_view arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      help = true;
      return options;
    }
    bool known = false;
    for (const auto& [name, slot] : valued) {
      if (arg != name) continue;
      known = true;
      if (i + 1 >= argc) {
        std::cerr << "varno-print: " << name << " needs a value\n" << kUsage;
        return std::nullopt;
      }
      *slot = argv[++i];
    }
    if (!known) {
      std::cerr << "varno-print: unknown argument '" << arg << "'\n" << kUsage;
      return std::nullopt;
    }
  }
  if (options.ppd && options.queue) {
    std::cerr << "varno-print: give --ppd or --queue, not both\n";
    return std::nullopt;
  }
  if (options.server && !options.queue) {
    std::cerr << "varno-print: --server goes with --queue\n";
    return std::nullopt;
  }
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

// Records the printer's default choices in the ticket's PPD dictionary, keeping any
// choice the ticket already holds (a saved session's choices win).
int AddPrinterDefaults(print::Session& session) {
  std::string error;
  std::optional<std::filesystem::path> ppd = session.ppdPath(&error);
  if (!ppd) return Fail(error);
  cli::PPDDefaults defaults;
  if (!cli::ReadPPDDefaults(*ppd, defaults, error)) return Fail(error);
  std::cerr << "varno-print: printer " << defaults.nickName << " (" << ppd->string() << ")\n";
  plist::Dictionary choices = session.printSettings().ppdDictionary();
  for (const auto& [keyword, choice] : defaults.choices)
    if (!choices.contains(keyword)) choices.set(keyword, choice);
  return 0;
}

int Run(const Options& options) {
  if (options.bundlePath) PrependBundlePath(*options.bundlePath);

  print::FrameworkDriver driver;
  if (driver.loadByIdentifier(host::kPlugInBundleIdentifier) != noErr)
    return Fail(driver.error());
  print::PMPDEVersion version{};
  driver.getAPIVersion(version);
  std::cerr << "varno-print: plug-in " << host::kPlugInBundleIdentifier << " from "
            << driver.bundle()->path().string() << " (interface " << version.buildVersionMajor
            << "." << version.buildVersionMinor << ")\n";

  std::string error;
  std::unique_ptr<print::Session> session;
  if (options.session) {
    session = print::Session::load(*options.session, &error);
    if (!session) return Fail(error);
  } else {
    session = std::make_unique<print::Session>();
  }
  if (options.ppd) session->setPrinterPPD(*options.ppd);
  else if (options.queue) session->setPrinterQueue(*options.queue, options.server.value_or(""));
  else if (session->printer().kind == print::Printer::Kind::None)
    session->setPrinterPPD(SamplePPD().string());

  if (int status = AddPrinterDefaults(*session)) return status;

  if (options.save) {
    if (!session->save(*options.save, &error)) return Fail(error);
    std::cerr << "varno-print: session saved to " << *options.save << "\n";
  }
  std::optional<std::string> xml = plist::ToXML(session->printSettings().toPropertyList(), &error);
  if (!xml) return Fail(error);
  std::cout << *xml;
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
