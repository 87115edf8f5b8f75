// SPDX-License-Identifier: Apache-2.0
#include "first_paint.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace varno::qt {

namespace {

class FirstPaint final : public QObject {
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint && !done_) {
      done_ = true;
      timespec now{};
      clock_gettime(CLOCK_MONOTONIC, &now);
      std::fprintf(stderr, "first-paint-ns %lld\n",
                   static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec);
      QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    }
    return false;
  }

 private:
  bool done_ = false;
};

}  // namespace

void ReportFirstPaintIfAsked(QWidget& dialog) {
  if (!std::getenv("VARNO_REPORT_FIRST_PAINT")) return;
  dialog.installEventFilter(new FirstPaint(&dialog));
}

}  // namespace varno::qt
