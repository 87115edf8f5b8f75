// SPDX-License-Identifier: Apache-2.0
// The framework's pane pop-up: which of the panes in the dialog's toolkit window is shown.
//
// The panes keep their settings in one ticket, so the framework carries settings from one
// to the other as a desktop print dialog does: the pane being left writes itself into the
// ticket, the pane being entered reads it. Before the ticket is used every pane writes
// itself, the shown one last: where two panes write the same keys (the covers), what the
// person sees is what counts.
#pragma once

#include <QComboBox>
#include <QString>
#include <functional>
#include <string>
#include <vector>

#include "platform/status.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/event.h"

namespace varno::qt {

// One pane: its title in the pop-up, the user pane it draws into, and how it is reached.
struct ChoosablePane {
  QString title;
  toolkit::Control* area = nullptr;
  std::function<OSStatus(bool syncDirection)> sync;  // false: into the ticket; true: from it
  std::function<std::string()> error;                // why the last call failed, in words
};

class PaneChooser {
 public:
  // Lists the panes in `popup`, which stays the caller's; the caller connects its choice to
  // show().
  explicit PaneChooser(QComboBox* popup);

  // Lists one more pane. The first one is shown, every later one hidden.
  void add(ChoosablePane pane);
  // Forgets every pane; their areas stay as they are.
  void clear();
  // The index of the pane shown; -1 without panes.
  int shown() const { return shown_; }

  // Shows the pane at `index`: the one shown writes itself into the ticket, then the chosen
  // one reads it. A pane that cannot write itself stays shown. Each returns what went wrong
  // in a sentence for the status line, or an empty text.
  QString show(int index);
  // Every pane into the ticket, the shown one last.
  QString writeAll();
  // Every pane from the ticket, so that none writes old settings back later.
  QString readAll();

  // Sends `command` to the contents of the shown pane, whose handlers hear it first (then
  // it rises through the window as any command does). eventNotHandledErr without panes.
  OSStatus sendToShown(const toolkit::HICommand& command);

 private:
  QString sync(const ChoosablePane& pane, bool syncDirection) const;

  QComboBox* popup_;
  std::vector<ChoosablePane> panes_;
  int shown_ = -1;
};

}  // namespace varno::qt
