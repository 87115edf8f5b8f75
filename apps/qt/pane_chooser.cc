// SPDX-License-Identifier: Apache-2.0
#include "pane_chooser.h"

#include <QCoreApplication>
#include <QSignalBlocker>

#include "platform/toolkit/standard_behaviour.h"

namespace varno::qt {

namespace {

QString Tr(const char* text) { return QCoreApplication::translate("PaneChooser", text); }

}  // namespace

PaneChooser::PaneChooser(QComboBox* popup) : popup_(popup) { clear(); }

void PaneChooser::add(ChoosablePane pane) {
  pane.area->setVisible(panes_.empty());
  if (panes_.empty()) shown_ = 0;
  const QSignalBlocker blocker(popup_);
  popup_->addItem(pane.title);
  popup_->setCurrentIndex(shown_);
  popup_->setEnabled(true);
  panes_.push_back(std::move(pane));
}

void PaneChooser::clear() {
  panes_.clear();
  shown_ = -1;
  const QSignalBlocker blocker(popup_);
  popup_->clear();
  popup_->setEnabled(false);
}

QString PaneChooser::show(int index) {
  if (index == shown_ || index < 0 || index >= static_cast<int>(panes_.size())) return {};
  if (QString problem = sync(panes_[shown_], false); !problem.isEmpty()) {
    const QSignalBlocker blocker(popup_);
    popup_->setCurrentIndex(shown_);
    return problem;
  }
  panes_[shown_].area->setVisible(false);
  panes_[index].area->setVisible(true);
  shown_ = index;
  return sync(panes_[index], true);
}

QString PaneChooser::writeAll() {
  for (int i = 0; i < static_cast<int>(panes_.size()); ++i)
    if (i != shown_)
      if (QString problem = sync(panes_[i], false); !problem.isEmpty()) return problem;
  return shown_ < 0 ? QString() : sync(panes_[shown_], false);
}

QString PaneChooser::readAll() {
  for (const ChoosablePane& pane : panes_)
    if (QString problem = sync(pane, true); !problem.isEmpty()) return problem;
  return {};
}

OSStatus PaneChooser::sendToShown(const toolkit::HICommand& command) {
  if (shown_ < 0) return eventNotHandledErr;
  // The pane's own handlers sit on what it embedded into the area, not on the area.
  toolkit::Control* area = panes_[shown_].area;
  return toolkit::SendCommandEvent(area->childCount() > 0 ? *area->child(0) : *area, command);
}

QString PaneChooser::sync(const ChoosablePane& pane, bool syncDirection) const {
  if (pane.sync(syncDirection) == noErr) return {};
  const QString why = QString::fromStdString(pane.error());
  return (syncDirection ? Tr("The %1 pane could not show the settings: %2. Its controls may be out of date; "
                             "close the Print dialog and open it again to start afresh.")
                        : Tr("The %1 pane could not write its settings: %2. Try again; if it keeps failing, "
                             "close the Print dialog and open it again to start afresh."))
      .arg(pane.title, why);
}

}  // namespace varno::qt
