// SPDX-License-Identifier: Apache-2.0
// The toolkit's modal loops on Qt's event loop: the event source that makes
// Window::runModalLoop wait for a person.
//
// The first time a loop asks for an action on a window, the window is shown as a modal Qt
// dialog over the dialog that is active; each action is then whatever Qt delivers next.
// Closing the dialog from the window manager ends the loop as cancelled, as escape does.
// The dialog goes when its toolkit window is disposed of.
#pragma once

#include <QDialog>
#include <QPointer>
#include <map>
#include <memory>

#include "platform/bundle/bundle.h"
#include "platform/toolkit/event_source.h"
#include "window_renderer.h"

namespace varno::qt {

class ModalWindows final : public toolkit::EventSource {
 public:
  ModalWindows() = default;
  ~ModalWindows() override;
  ModalWindows(const ModalWindows&) = delete;
  ModalWindows& operator=(const ModalWindows&) = delete;

  // The bundle whose pictures the dialogs show.
  void setPictureBundle(bundle::BundleRef bundle) { pictures_ = std::move(bundle); }
  bool dispatchNext(toolkit::Window& window) override;
  // The Qt dialog that shows `window`, or null (for tests and screenshots).
  QDialog* dialogFor(const toolkit::Window* window) const;
  // Called with each dialog when it is first shown.
  void setOnShown(std::function<void(QDialog*, toolkit::Window*)> callback) { onShown_ = std::move(callback); }

 private:
  struct Shown {
    QPointer<QDialog> dialog;
    bool closedByPerson = false;
  };
  Shown& show(toolkit::Window& window);

  bundle::BundleRef pictures_;
  std::map<const toolkit::Window*, std::unique_ptr<Shown>> shown_;
  std::function<void(QDialog*, toolkit::Window*)> onShown_;
};

}  // namespace varno::qt
