// SPDX-License-Identifier: Apache-2.0
// The yardstick for varno-print-dialog's start-up: the least a Qt Widgets program does to
// put a dialog on screen. An empty QDialog, with the same first-paint report as the real
// dialog (VARNO_REPORT_FIRST_PAINT), so bench/first_paint.py times both the same way.
#include <QApplication>
#include <QDialog>

#include "first_paint.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QDialog dialog;
  varno::qt::ReportFirstPaintIfAsked(dialog);
  dialog.show();
  return app.exec();
}
