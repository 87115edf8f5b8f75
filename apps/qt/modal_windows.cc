// SPDX-License-Identifier: Apache-2.0
#include "modal_windows.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>

#include "platform/toolkit/automation.h"
#include "platform/toolkit/text_editing.h"

namespace varno::qt {

namespace {

// A toolkit window as a dialog: escape and the close box go to the toolkit, which clicks
// the window's cancel button; the dialog never closes itself.
class ToolkitDialog final : public QDialog {
 public:
  ToolkitDialog(QWidget* parent, toolkit::Window* window, bool* closedByPerson)
      : QDialog(parent), window_(window), closedByPerson_(closedByPerson) {}
  void forget() { window_ = nullptr; }

 protected:
  void reject() override {
    if (window_) toolkit::PressKey(*window_, toolkit::kEscapeCharCode);
  }
  void closeEvent(QCloseEvent* event) override {
    if (window_) {
      *closedByPerson_ = true;
      event->ignore();  // the loop ends and the dialog's owner disposes of the window
    }
  }

 private:
  toolkit::Window* window_;
  bool* closedByPerson_;
};

}  // namespace

ModalWindows::~ModalWindows() {
  for (auto& [window, shown] : shown_)
    if (shown->dialog) delete shown->dialog.data();
}

QDialog* ModalWindows::dialogFor(const toolkit::Window* window) const {
  auto it = shown_.find(window);
  return it == shown_.end() ? nullptr : it->second->dialog.data();
}

ModalWindows::Shown& ModalWindows::show(toolkit::Window& window) {
  std::unique_ptr<Shown>& shown = shown_[&window];
  if (shown && shown->dialog) return *shown;
  shown = std::make_unique<Shown>();
  auto* dialog = new ToolkitDialog(QApplication::activeWindow(), &window, &shown->closedByPerson);
  dialog->setModal(true);
  auto* renderer = new WindowRenderer(window, dialog, pictures_);
  const toolkit::Window* key = &window;
  renderer->setOnWindowGone([this, dialog, key] {
    dialog->forget();
    dialog->hide();
    dialog->deleteLater();
    shown_.erase(key);
  });
  dialog->setWindowTitle(QString::fromStdString(window.text()));
  dialog->show();
  if (onShown_) onShown_(dialog, &window);
  return *shown;
}

bool ModalWindows::dispatchNext(toolkit::Window& window) {
  Shown& shown = show(window);
  if (shown.closedByPerson) return false;
  // One round of whatever Qt has for us, waiting for it when there is nothing yet.
  QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  if (shown.closedByPerson) {
    shown.closedByPerson = false;
    return false;
  }
  return true;
}

}  // namespace varno::qt
