// SPDX-License-Identifier: Apache-2.0
// For the start-up benchmark: with VARNO_REPORT_FIRST_PAINT set, the program prints the
// monotonic clock at the dialog's first paint ("first-paint-ns N" on standard error) and
// quits, so a script that notes the clock before starting it measures start to first paint.
#pragma once

#include <QWidget>

namespace varno::qt {

void ReportFirstPaintIfAsked(QWidget& dialog);

}  // namespace varno::qt
