// SPDX-License-Identifier: Apache-2.0
// The headless event source: a queue of scripted user actions for modal loops.
//
// Each step runs against the window of the modal loop that asks for the next action and
// finds its control there by ID, so a script can be written before the dialog exists.
// A step that cannot be done (no such control, a disabled button) is reported on
// standard error and kept in failures(); the script goes on with the next step. When
// the queue is empty the loop ends as cancelled, so a headless dialog never hangs.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/toolkit/event_source.h"
#include "platform/toolkit/types.h"

namespace varno::toolkit {

class AutomationScript final : public EventSource {
 public:
  using Step = std::function<OSStatus(Window& window)>;

  // Queues a step; `description` names it in failure reports.
  void add(std::string description, Step step);
  // Queue the automation actions of automation.h on the control with that ID.
  void click(ControlID id, ControlPartCode part = kControlNoPart);
  void chooseMenuItem(ControlID id, MenuItemIndex item);
  void chooseMenuItemByText(ControlID id, std::string text);
  void chooseMenuItemByRefCon(ControlID id, URefCon refCon);
  void setFocus(ControlID id);
  void typeText(ControlID id, std::string text);
  void setDateTime(ControlID id, LongDateTime value);
  // Queues a command sent to the window.
  void sendCommand(MenuCommand command);

  std::size_t pending() const { return steps_.size(); }
  // One line per failed step: its description and status.
  const std::vector<std::string>& failures() const { return failures_; }
  // Drops the queued steps and the failures.
  void clear();

  // Runs the next step against `window`; false when the queue is empty.
  bool dispatchNext(Window& window) override;

 private:
  // Queues a step that acts on the control with `id`.
  void addForControl(std::string description, ControlID id, std::function<OSStatus(Control&)> act);

  std::deque<std::pair<std::string, Step>> steps_;
  std::vector<std::string> failures_;
};

}  // namespace varno::toolkit
