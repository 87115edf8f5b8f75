// SPDX-License-Identifier: Apache-2.0
#include "command_line.h"

#include <algorithm>
#include <charconv>
#include <iostream>
#include <system_error>
#include <string_view>

namespace varno::cli {

const char* const kUsage =
    "usage: varno-print [--ppd FILE | -P QUEUE[/INSTANCE] [-h SERVER[:PORT]]] [setting options]\n"
    "                   [-o KEY=VALUE]... [-n COPIES] [-t TITLE]\n"
    "                   [--ticket IN.plist | --ticket-from-defaults] [--save-ticket OUT.plist]\n"
    "                   [--summary] [--list] [--dry-run] [--save-defaults]\n"
    "                   [special pages options] [--list-special-pages]\n"
    "                   [--session FILE] [--save FILE] [--bundle-path DIR] [-v] [FILE...]\n"
    "\n"
    "Loads the Varno plug-in bundle, opens the Print dialog on a printer and makes the\n"
    "choices given as setting options. With -P and files it prints them as one job on the\n"
    "CUPS queue; otherwise it writes the print-settings ticket to standard output as an\n"
    "XML property list.\n"
    "\n"
    "  --ppd FILE               the printer described by this PPD file\n"
    "  -P, -d, --queue QUEUE    this CUPS queue (its PPD is fetched from the scheduler);\n"
    "                           QUEUE/INSTANCE names a saved set of options of it, which\n"
    "                           a job starts from unless --ticket or --session is given\n"
    "  -h, --server HOST[:PORT] the scheduler of -P (default: CUPS_SERVER or the usual one)\n"
    "  --ticket IN.plist        start from a print-settings ticket saved earlier\n"
    "  --ticket-from-defaults   start from the defaults saved for the queue (-P)\n"
    "  --save-ticket OUT.plist  save the ticket to this file instead of printing it\n"
    "  --summary                print the dialog's summary of the settings instead\n"
    "  --list                   print every setting option with its choices and value\n"
    "  --dry-run                print the job's options instead of submitting it\n"
    "  --save-defaults          keep the ticket as the queue's default options (-P), so\n"
    "                           jobs from any application carry it\n"
    "  --session FILE           start from a whole session saved with --save\n"
    "  --save FILE              save the whole session (printer and tickets) to FILE\n"
    "  --bundle-path DIR        look for the plug-in bundle in DIR first\n"
    "  -n, --copies COPIES      print COPIES copies (1 to 9999)\n"
    "  -t, --title TITLE        name the job TITLE (default: the first file's name)\n"
    "  -o KEY=VALUE             choose VALUE for the printer's PPD option KEY before the\n"
    "                           dialog opens, as a ticket holding it would (repeatable)\n"
    "  -v, --verbose            say which printer and plug-in are used, and what was saved\n"
    "  --version                show the program's version\n"
    "  --help                   show this text\n"
    "\n"
    "Setting options (a choice is its PPD keyword or its shown text, in any case):\n"
    "  --job-type normal|secure|sample|delayed|mailbox|fax   with its set-up:\n"
    "      --passcode DIGITS    (secure; mailbox for a secure stored job; without it a\n"
    "                           secure job gets a made-up passcode, said once)\n"
    "      --print-at HH:MM     (delayed: the next time it is HH:MM, local time)\n"
    "      --mailbox NUMBER     --job-name NAME|auto      (mailbox)\n"
    "  --paper-size CHOICE     --paper-color CHOICE  --paper-type CHOICE\n"
    "  --custom-size WIDTHxLENGTH[pt|mm|in]           (within the printer's limits)\n"
    "  --two-sided one|long|short                     --output-bin CHOICE\n"
    "  --separators none|blank|printed[:SOURCE]       (between transparencies)\n"
    "  --covers none|front|back|both[:SIZE,COLOR,TYPE][:SIDES]\n"
    "                          (SIDES: blank, front, back or both printed)\n"
    "  --image-quality CHOICE  --toner-saver on|off  --negative-image on|off\n"
    "  --mirror-image on|off   --banner-sheet CHOICE --request-offset CHOICE\n"
    "  --feed-edge CHOICE\n"
    "  --staple none|single|dual|multiple  --punch none|2|3|4|generic\n"
    "  --fold none|c|z|z-half|bi           (finishing menu choices, in order)\n"
    "  --booklet none|fold|fold-staple[,layout][,outlines][,gutter=N][,creep=N][,size=SIZE]\n"
    "  --offset default|none|sets|subsets|sets-and-subsets[,subset=N]\n"
    "  --custom-finishing TEXT\n"
    "A job is confirmed as the Print button does it: a LAN fax job needs recipients,\n"
    "which only the dialog sets so far.\n"
    "\n"
    "Special pages options, made in the Special Pages pane after the settings above, in\n"
    "command-line order. SIZE,COLOR,TYPE is the pages' paper (an empty part: the job's):\n"
    "  --insert PAGES|before-1[:qty=N][:SIZE,COLOR,TYPE]\n"
    "                          N blank sheets (default 1) after each page of PAGES, as\n"
    "                          typed in the dialog (5,2,5 or 3-6), or before page 1\n"
    "  --exception RANGES[:one|long|short][:SIZE,COLOR,TYPE]\n"
    "                          page ranges (1-3,7) printed 1-sided or 2-sided on the\n"
    "                          long or short edge, or on other paper; a range over\n"
    "                          earlier ones takes their place on its pages\n"
    "  --delete-special-pages all|N[,N...]\n"
    "                          delete everything, or rows N of the pane's list\n"
    "  --list-special-pages    print the pane's list (row 1 is the line below the titles)\n"
    "\n"
    "Every option that takes a value also takes it as --name=value (-Pqueue for the short\n"
    "ones). Without --ppd, -P or --session the bundled sample printer is used.\n"
    "Exit status: 0 done, 1 failed (the message says why), 2 the command line is wrong.\n";

// The scheduler's default limit on copies (MaxCopies in cupsd.conf).
constexpr int kMaxCopies = 9999;

std::optional<Options> ParseArguments(int argc, char** argv) {
  Options options;
  const std::vector<std::pair<std::string_view, std::optional<std::string>*>> valued = {
      {"--ppd", &options.ppd},         {"--queue", &options.queue},
      {"-P", &options.queue},          {"-d", &options.queue},
      {"--server", &options.server},   {"-h", &options.server},
      {"--ticket", &options.ticket},   {"--save-ticket", &options.saveTicket},
      {"--session", &options.session}, {"--save", &options.save},
      {"--bundle-path", &options.bundlePath}, {"-t", &options.title},
      {"--title", &options.title},     {"--passcode", &options.setup.passcode},
      {"--print-at", &options.setup.printAt}, {"--mailbox", &options.setup.mailbox},
      {"--job-name", &options.setup.jobName}};
  const std::vector<std::pair<std::string_view, bool*>> flags = {
      {"--summary", &options.summary},         {"--list", &options.list},
      {"--dry-run", &options.dryRun},          {"--save-defaults", &options.saveDefaults},
      {"--ticket-from-defaults", &options.ticketFromDefaults}, {"--help", &options.help},
      {"--version", &options.version},         {"--verbose", &options.verbose},
      {"-v", &options.verbose},                {"--list-special-pages", &options.listSpecialPages}};
  auto usage = [](const std::string& message) {
    std::cerr << "varno-print: " << message << "\nTry 'varno-print --help' for more information.\n";
    return std::nullopt;
  };
  bool onlyFiles = false;
  for (int i = 1; i < argc; ++i) {
    std::string_view arg = argv[i];
    if (onlyFiles || arg == "-" || !arg.starts_with("-")) {
      options.files.emplace_back(arg);
      continue;
    }
    if (arg == "--") {
      onlyFiles = true;
      continue;
    }
    // The name and, when it is written into the same argument, the value:
    // "--name=value", or a one-letter option with its value attached ("-Pqueue").
    std::string_view name = arg;
    std::optional<std::string_view> attached;
    if (arg.starts_with("--")) {
      if (std::size_t equals = arg.find('='); equals != std::string_view::npos) {
        name = arg.substr(0, equals);
        attached = arg.substr(equals + 1);
      }
    } else if (arg.size() > 2) {
      name = arg.substr(0, 2);
      attached = arg.substr(2);
    }

    bool* flag = nullptr;
    for (const auto& [flagName, target] : flags)
      if (name == flagName) flag = target;
    if (flag) {
      if (attached) return usage(std::string(name) + " takes no value");
      *flag = true;
      if (options.help || options.version) return options;
      continue;
    }
    std::optional<std::string>* slot = nullptr;
    for (const auto& [valuedName, target] : valued)
      if (name == valuedName) slot = target;
    const bool ppdChoice = name == "-o";
    const bool copies = name == "-n" || name == "--copies";
    const bool specialPages = IsSpecialPagesOption(name);
    const SettingOption* setting = name.starts_with("--") ? FindSettingOption(name.substr(2)) : nullptr;
    if (!slot && !setting && !ppdChoice && !copies && !specialPages)
      return usage("unknown option '" + std::string(name) + "'");
    std::string value;
    if (attached) value = *attached;
    else if (i + 1 < argc) value = argv[++i];
    else return usage(std::string(name) + " needs a value");

    if (setting) {
      options.settings.emplace_back(setting, value);
    } else if (specialPages) {
      std::string error;
      std::optional<SpecialPagesRequest> request = ReadSpecialPagesOption(name, value, &error);
      if (!request) return usage(error);
      options.specialPages.push_back(std::move(*request));
    } else if (copies) {
      int count = 0;
      const auto [end, fault] = std::from_chars(value.data(), value.data() + value.size(), count);
      if (fault != std::errc() || end != value.data() + value.size() || count < 1 || count > kMaxCopies)
        return usage(std::string(name) + " takes a number of copies from 1 to " +
                     std::to_string(kMaxCopies) + ", not '" + value + "'");
      options.copies = count;
    } else if (ppdChoice) {
      const std::size_t equals = value.find('=');
      if (equals == 0 || equals == std::string::npos || equals + 1 == value.size())
        return usage("-o takes KEY=VALUE, a PPD option and one of its choices, not '" + value + "'");
      options.ppdChoices.emplace_back(value.substr(0, equals), value.substr(equals + 1));
    } else {
      *slot = value;
    }
  }
  std::optional<std::string> jobType;
  for (const auto& [setting, value] : options.settings)
    if (std::string_view(setting->name) == "job-type") jobType = value;
  if (std::optional<std::string> wrong = CheckJobSetup(options.setup, jobType)) return usage(*wrong);
  if (options.ppd && options.queue) return usage("give --ppd or -P, not both");
  if (options.queue && options.queue->find('/') != std::string::npos &&
      (options.queue->front() == '/' || options.queue->back() == '/' ||
       std::count(options.queue->begin(), options.queue->end(), '/') > 1))
    return usage("-P takes QUEUE or QUEUE/INSTANCE, not '" + *options.queue + "'");
  if (options.server && !options.queue) return usage("-h goes with -P");
  if (options.ticket && options.ticketFromDefaults)
    return usage("give --ticket or --ticket-from-defaults, not both");
  if (!options.queue) {
    if (!options.files.empty()) return usage("files are printed on a queue: give -P QUEUE");
    if (options.saveDefaults) return usage("--save-defaults needs -P QUEUE");
    if (options.ticketFromDefaults) return usage("--ticket-from-defaults needs -P QUEUE");
  }
  return options;
}

}  // namespace varno::cli
