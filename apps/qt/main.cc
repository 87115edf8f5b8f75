// SPDX-License-Identifier: Apache-2.0
// varno-print-dialog: the Print dialog with the Varno options, on the Linux desktop.
#include <QApplication>
#include <cstdlib>
#include <iostream>

#include "dialog_command_line.h"
#include "first_paint.h"
#include "platform/bundle/bundle.h"
#include "print_dialog.h"

int main(int argc, char** argv) {
  std::optional<varno::qt::CommandLine> line = varno::qt::ParseDialogArguments(argc, argv);
  if (!line) return 2;
  if (line->help) {
    std::cout << varno::qt::kDialogUsage;
    return 0;
  }
  if (line->version) {
    std::cout << "varno-print-dialog " VARNO_VERSION "\n";
    return 0;
  }
  if (line->bundlePath) {
    std::string value = *line->bundlePath;
    if (const char* old = std::getenv(varno::bundle::kBundlePathVariable); old && *old)
      value += std::string(":") + old;
    ::setenv(varno::bundle::kBundlePathVariable, value.c_str(), 1);
  }
  // Qt would abort with a list of its platform plug-ins; say what to do instead.
  auto set = [](const char* name) { return std::getenv(name) && *std::getenv(name); };
  if (!set("DISPLAY") && !set("WAYLAND_DISPLAY") && !set("QT_QPA_PLATFORM")) {
    std::cerr << "varno-print-dialog: there is no desktop to show the dialog on (neither DISPLAY "
                 "nor WAYLAND_DISPLAY is set); start it from a desktop session, or use varno-print "
                 "on the command line\n";
    return 1;
  }
  QApplication app(argc, argv);
  QApplication::setApplicationName("varno-print-dialog");
  QApplication::setApplicationVersion(VARNO_VERSION);
  QApplication::setWindowIcon(QIcon::fromTheme("varno-print-dialog"));
  varno::qt::PrintDialog dialog(std::move(line->dialog));
  varno::qt::ReportFirstPaintIfAsked(dialog);
  dialog.show();
  return app.exec();
}
