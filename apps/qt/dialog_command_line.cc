// SPDX-License-Identifier: Apache-2.0
#include "dialog_command_line.h"

#include <iostream>
#include <string_view>

namespace varno::qt {

const char* const kDialogUsage =
    "Usage: varno-print-dialog [-P QUEUE[/INSTANCE] [-h SERVER[:PORT]] | --ppd FILE]\n"
    "                          [--ticket IN.plist] [--bundle-path DIR] [FILE...]\n"
    "\n"
    "Opens the Print dialog with the Varno options on a printer: the queue given with -P\n"
    "(or -d), a printer description given with --ppd, or else the bundled sample printer.\n"
    "The printer chooser lists the queues of the print server too.\n"
    "\n"
    "  -P, -d QUEUE        the printer queue, or a saved instance QUEUE/INSTANCE\n"
    "  -h SERVER[:PORT]    the print server (default: CUPS_SERVER or the local one)\n"
    "  --ppd FILE          a printer description without a queue (nothing can be printed)\n"
    "  --ticket IN.plist   start from settings saved with Save Settings... or varno-print\n"
    "  --bundle-path DIR   look for the plug-in bundle in DIR first\n"
    "  --help, --version\n"
    "  FILE...             the files to print (or choose them in the dialog)\n";

namespace {

bool Refuse(const std::string& message) {
  std::cerr << "varno-print-dialog: " << message << "\n"
            << "Try 'varno-print-dialog --help' for more information.\n";
  return false;
}

}  // namespace

std::optional<CommandLine> ParseDialogArguments(int argc, char** argv) {
  CommandLine line;
  bool onlyFiles = false;
  for (int i = 1; i < argc; ++i) {
    std::string_view arg = argv[i];
    if (onlyFiles || arg.empty() || arg.front() != '-' || arg == "-") {
      line.dialog.files.emplace_back(arg);
      continue;
    }
    if (arg == "--") {
      onlyFiles = true;
      continue;
    }
    if (arg == "--help") {
      line.help = true;
      continue;
    }
    if (arg == "--version") {
      line.version = true;
      continue;
    }
    // The option's name and its value: "-Pq", "-P q", "--ppd=f" or "--ppd f".
    std::string name;
    std::optional<std::string> value;
    if (arg.starts_with("--")) {
      const std::size_t equals = arg.find('=');
      name = std::string(arg.substr(0, equals));
      if (equals != std::string_view::npos) value = std::string(arg.substr(equals + 1));
    } else {
      name = std::string(arg.substr(0, 2));
      if (arg.size() > 2) value = std::string(arg.substr(2));
    }
    std::optional<std::string>* target = nullptr;
    if (name == "-P" || name == "-d") target = &line.dialog.queue;
    else if (name == "-h") target = &line.dialog.server;
    else if (name == "--ppd") target = &line.dialog.ppd;
    else if (name == "--ticket") target = &line.dialog.ticket;
    else if (name == "--bundle-path") target = &line.bundlePath;
    else {
      Refuse("unknown option " + name);
      return std::nullopt;
    }
    if (!value) {
      if (i + 1 >= argc) {
        Refuse(name + " needs a value");
        return std::nullopt;
      }
      value = argv[++i];
    }
    if (value->empty()) {
      Refuse(name + " needs a value that is not empty");
      return std::nullopt;
    }
    *target = std::move(value);
  }
  if (line.dialog.ppd && line.dialog.queue) {
    Refuse("--ppd and -P name two printers; give one of them");
    return std::nullopt;
  }
  if (line.dialog.server && !line.dialog.queue && !line.dialog.ppd) {
    // -h alone lists that server's queues; the sample printer is shown first.
  }
  return line;
}

}  // namespace varno::qt
