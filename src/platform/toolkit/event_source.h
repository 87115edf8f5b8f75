// SPDX-License-Identifier: Apache-2.0
// Where modal loops take the user's actions from.
//
// Headless, the source is a script of automation steps (automation_script.h); a
// graphical host supplies one that waits for a person.
#pragma once

namespace varno::toolkit {

class Window;

class EventSource {
 public:
  virtual ~EventSource() = default;
  // Delivers the next user action to `window`, the window of the innermost modal loop.
  // Returns false when there will be none, and the loop then ends as cancelled.
  virtual bool dispatchNext(Window& window) = 0;
};

}  // namespace varno::toolkit
