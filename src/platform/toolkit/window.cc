// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/window.h"

namespace varno::toolkit {
namespace {

void SendFocusEvent(Control& control, ControlPartCode part) {
  Event event(kEventClassControl, kEventControlSetFocusPart);
  event.set<Control*>(kEventParamDirectObject, typeControlRef, &control);
  event.set<ControlPartCode>(kEventParamControlPart, typeControlPartCode, part);
  control.send(event);
}

}  // namespace

Window::Window() : Control(ControlKind::Window) {}

std::unique_ptr<Window> Window::create(Rect bounds, std::string title) {
  std::unique_ptr<Window> window(new Window());
  window->setBounds(bounds);
  window->setText(std::move(title));
  window->setVisible(false);
  return window;
}

Window::~Window() {
  emit({this, ControlChange::What::Removed});
  // Subscribers have been told the whole tree goes; the disposal handlers' changes
  // would only reach a renderer that has already let go of it.
  changes_ = ChangeSignal<ControlChange>();
  focus_ = defaultButton_ = cancelButton_ = nullptr;
  sendDisposalEvents();
}

OSStatus Window::setFocus(Control* control, ControlPartCode part) {
  if (control == this) control = nullptr;
  if (control) {
    if (control->window() != this) return paramErr;
    if (!Traits(control->kind()).takesFocus) return errControlDoesntSupportFocus;
  }
  if (control == focus_) return noErr;
  if (Control* old = std::exchange(focus_, nullptr)) SendFocusEvent(*old, kControlFocusNoPart);
  focus_ = control;
  emit({control ? control : this, ControlChange::What::Focus});
  if (control) SendFocusEvent(*control, part);
  return noErr;
}

OSStatus Window::setDefaultButton(Control* button) {
  if (button && button->window() != this) return paramErr;
  defaultButton_ = button;
  return noErr;
}

OSStatus Window::setCancelButton(Control* button) {
  if (button && button->window() != this) return paramErr;
  cancelButton_ = button;
  return noErr;
}

void Window::forget(const Control& leaving) {
  if (leaving.contains(focus_)) {
    focus_ = nullptr;
    emit({this, ControlChange::What::Focus});
  }
  if (leaving.contains(defaultButton_)) defaultButton_ = nullptr;
  if (leaving.contains(cancelButton_)) cancelButton_ = nullptr;
}

}  // namespace varno::toolkit
