// SPDX-License-Identifier: Apache-2.0
// Windows: the root control of a tree, with the keyboard focus, the default and cancel
// buttons, modal loops and the subscribers that mirror the tree.
#pragma once

#include <memory>
#include <string>

#include "platform/toolkit/change_signal.h"
#include "platform/toolkit/control.h"

namespace varno::toolkit {

class Window final : public Control {
 public:
  // A new window, hidden, with bounds on the screen and a title (its text).
  static std::unique_ptr<Window> create(Rect bounds = {}, std::string title = {});
  // Tells subscribers the window is going (Removed), then disposes of the tree silently.
  ~Window() override;

  // The control with the keyboard focus, or null.
  Control* focus() const { return focus_; }
  // Moves the keyboard focus to `control` (null or the window: nowhere). The control
  // losing it hears kEventControlSetFocusPart with kControlFocusNoPart, then the one
  // gaining it hears it with `part`. errControlDoesntSupportFocus for a kind that never
  // takes the focus, paramErr for a control of another tree. No events when nothing moves.
  OSStatus setFocus(Control* control, ControlPartCode part = kControlFocusNextPart);

  // The buttons that Return and Escape press; null when none. paramErr for a control of
  // another tree.
  Control* defaultButton() const { return defaultButton_; }
  Control* cancelButton() const { return cancelButton_; }
  OSStatus setDefaultButton(Control* button);
  OSStatus setCancelButton(Control* button);

  // Runs the window as a modal loop: takes user actions from the application's event
  // source until quitModalLoop() is called. Returns noErr then. When the source has no
  // more actions the loop ends as cancelled: the cancel button is clicked (or, without
  // one, kHICommandCancel sent to the window) and userCanceledErr returned. paramErr when
  // the window runs a loop already. (modal_loop.cc)
  OSStatus runModalLoop();
  // Ends the window's modal loop after the current action; paramErr when none runs.
  OSStatus quitModalLoop();
  bool inModalLoop() const { return modalRunning_; }

  // Calls `callback` after every visible change in the tree, until the subscription goes.
  [[nodiscard]] Subscription subscribe(ChangeSignal<ControlChange>::Callback callback) {
    return changes_.subscribe(std::move(callback));
  }

 private:
  friend class Control;
  Window();
  void emit(const ControlChange& change) { changes_.emit(change); }
  // Drops focus, default and cancel button when they lie in a subtree that leaves.
  void forget(const Control& leaving);

  Control* focus_ = nullptr;
  Control* defaultButton_ = nullptr;
  Control* cancelButton_ = nullptr;
  bool modalRunning_ = false;
  bool modalQuit_ = false;
  ChangeSignal<ControlChange> changes_;
};

}  // namespace varno::toolkit
