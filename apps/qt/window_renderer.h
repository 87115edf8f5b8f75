// SPDX-License-Identifier: Apache-2.0
// Mirrors one toolkit window as Qt widgets, and a person's actions on them back into the
// toolkit.
//
// Every control becomes a widget of the matching kind at its bounds, under its parent's
// widget. The widgets change only when the window or a menu announces a change; what a
// person does (a click, a menu choice, typing, a key) becomes the automation call that
// varno-print makes for the same action, so the panels' handlers decide everything, and
// the widget is then set again from the control, whatever the handlers did.
#pragma once

#include <QPointer>
#include <QWidget>
#include <map>
#include <memory>

#include "platform/bundle/bundle.h"
#include "platform/toolkit/change_signal.h"
#include "platform/toolkit/list_view.h"
#include "platform/toolkit/window.h"

namespace varno::qt {

class WindowRenderer final : public QObject {
 public:
  // Renders `window` into `root`, which stands for the window itself and is sized to
  // it. `pictures` is the bundle whose resources hold the pictures the controls name.
  WindowRenderer(toolkit::Window& window, QWidget* root, bundle::BundleRef pictures);
  ~WindowRenderer() override;

  toolkit::Window* window() const { return window_; }
  QWidget* root() const { return root_; }
  // The widget that shows `control`, or null.
  QWidget* widgetFor(const toolkit::Control* control) const;
  // The control a widget (or one of its inner widgets) shows, or null.
  toolkit::Control* controlFor(const QWidget* widget) const;
  // Called when the window goes away (disposed of): the renderer then holds no control.
  void setOnWindowGone(std::function<void()> callback) { onWindowGone_ = std::move(callback); }
  // The bundle for pictures, when the plug-in changes.
  void setPictureBundle(bundle::BundleRef pictures) { pictures_ = std::move(pictures); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Rendered {
    QPointer<QWidget> widget;
    toolkit::Subscription menu;  // the control's menu, while it has one
  };

  void changed(const toolkit::ControlChange& change);
  // Makes the widgets of `control` and its subtree under its parent's widget.
  void build(toolkit::Control& control);
  QWidget* makeWidget(toolkit::Control& control, QWidget* parent);
  // Forgets the subtree and deletes its widgets.
  void drop(toolkit::Control& control);
  // Writes the control's state into its widget: everything, or one aspect.
  void refresh(toolkit::Control& control);
  void refreshAspect(toolkit::Control& control, toolkit::ControlChange::What what);
  void refreshMenu(toolkit::Control& control);
  // The list's columns and rows, then its selection; or the selection alone.
  void refreshList(toolkit::ListView& list);
  void refreshListSelection(toolkit::ListView& list);
  void refreshFocus();
  void refreshAccessibleName(toolkit::Control& control);
  void subscribeMenu(toolkit::Control& control);
  // Connects the widget's signals to the automation calls of the kind.
  void connectActions(toolkit::Control& control, QWidget* widget);
  // Handles a key pressed in a text field; true when the toolkit took it.
  bool typed(toolkit::Control& control, QKeyEvent* key);
  // Runs a person's action, then shows the control as the handlers left it (when it is
  // still there).
  template <typename Action>
  void act(toolkit::Control& control, Action action);
  void updateTabOrder();

  toolkit::Window* window_;
  QPointer<QWidget> root_;
  bundle::BundleRef pictures_;
  std::map<const toolkit::Control*, Rendered> rendered_;
  std::map<const QWidget*, toolkit::Control*> controls_;
  toolkit::Subscription subscription_;
  std::function<void()> onWindowGone_;
  int updating_ = 0;  // >0 while widgets are written from the toolkit: their signals are ours
};

}  // namespace varno::qt
