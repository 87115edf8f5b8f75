// SPDX-License-Identifier: Apache-2.0
// Modal loops of windows (declared in window.h).
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/standard_behaviour.h"
#include "platform/toolkit/window.h"

namespace varno::toolkit {

OSStatus Window::runModalLoop() {
  if (modalRunning_) return paramErr;
  EventSource& source = Application::shared().eventSource();
  auto alive = watch();
  modalRunning_ = true;
  modalQuit_ = false;
  OSStatus result = noErr;
  while (!modalQuit_) {
    if (source.dispatchNext(*this)) {
      if (alive.expired()) return noErr;  // a handler disposed of the window
      continue;
    }
    // Nobody will act any more: leave as a person pressing escape would, so the dialog's
    // own cancel handling runs, and end the loop even if that handling does not.
    if (cancelButton_ && cancelButton_->isReachable()) {
      Click(*cancelButton_);
    } else {
      HICommand cancel;
      cancel.attributes = kHICommandFromWindow;
      cancel.commandID = kHICommandCancel;
      SendCommandEvent(*this, cancel);
    }
    if (alive.expired()) return userCanceledErr;
    result = userCanceledErr;
    break;
  }
  modalRunning_ = false;
  modalQuit_ = false;
  return result;
}

OSStatus Window::quitModalLoop() {
  if (!modalRunning_) return paramErr;
  modalQuit_ = true;
  return noErr;
}

}  // namespace varno::toolkit
