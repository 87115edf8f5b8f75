// SPDX-License-Identifier: Apache-2.0
// Controls: the nodes of a window's tree.
//
// Every control has a kind, an ID, bounds (in its parent's coordinates), one text (the
// title of a button or window, the content of a text field), a value within a minimum
// and a maximum, its own visible, enabled and active flags, and tagged properties
// (creator, tag) -> bytes that callers attach. Kinds that need more keep it here too: a
// menu, a menu value, a picture name, a date and time, a text selection.
//
// A parent owns its children; the window owns the whole tree. Disposing of a control
// first sends kEventControlDispose to each control of its subtree, children before their
// parent, each to its own handlers only: a child's handler may still use what its
// ancestors hold (a panel's context kept on its pane), so ancestors go last.
//
// Every visible change is announced to the subscribers of the control's window.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/toolkit/control_kinds.h"
#include "platform/toolkit/event_target.h"
#include "platform/toolkit/menu.h"
#include "platform/toolkit/types.h"

namespace varno::toolkit {

class ListView;

// What changed about a control, as told to its window's subscribers.
struct ControlChange {
  enum class What {
    Embedded,      // the control (with its subtree) entered the window's tree
    Removed,       // it is leaving the tree: disposed of, or moved to another parent
    Bounds, Text, Selection, Password, Value, Range, Visible, Enabled, Active,
    Focus,         // the window's focus moved; `control` is the new focus or the window
    Menu,          // its menu was replaced or changed
    MenuValue, Picture, DateTime,
    ListColumns, ListItems, ListSelection,
  };
  Control* control;
  What what;
};

class Control : public EventTarget {
 public:
  using Bytes = std::vector<std::uint8_t>;

  // A new control outside any tree, with the kind's range; a ListView for that kind.
  // Null for ControlKind::Window: windows come from Window::create.
  static std::unique_ptr<Control> create(ControlKind kind, Rect bounds = {},
                                         std::string text = {});
  ~Control() override;

  ControlKind kind() const { return kind_; }
  ControlID id() const { return id_; }
  void setID(ControlID id) { id_ = id; }
  URefCon refCon() const { return refCon_; }
  void setRefCon(URefCon refCon) { refCon_ = refCon; }

  // The tree.
  Control* parent() const { return parent_; }
  // The window at the root of the tree; null for a tree without one.
  Window* window() const;
  std::size_t childCount() const { return children_.size(); }
  // The child at a 0-based index, or null.
  Control* child(std::size_t index) const;
  // This control or the first descendant (depth first, in order) with that ID; null.
  Control* findByID(ControlID id);
  // True when `other` is this control or lies below it.
  bool contains(const Control* other) const;
  // Moves `control` from its parent to the end of this control's children. Fails with
  // errCantEmbedRoot for a window, errControlIsNotEmbedder when this kind holds nothing,
  // errCantEmbedIntoSelf when `control` holds this one, paramErr when `control` has no
  // parent (a control made by create() is embedded with the other overload).
  OSStatus embed(Control& control);
  // Takes a control made by create() and embeds it. Returns it, or null (status in
  // `*status`, as above) when refused, and the control is then freed.
  Control* embed(std::unique_ptr<Control> control, OSStatus* status = nullptr);
  // Sends the disposal events and removes the control from its parent, which frees it.
  // paramErr for a control without a parent (windows go with their owner).
  OSStatus dispose();

  const Rect& bounds() const { return bounds_; }
  void setBounds(const Rect& bounds);

  const std::string& text() const { return text_; }
  // Replaces the text; the caret goes to its end.
  void setText(std::string text);
  // The selection in characters; an empty one is the caret.
  TextRange selection() const { return selection_; }
  // Selects within the text (clamped to it).
  void setSelection(TextRange selection);
  // Replaces text and selection at once, as editing does.
  void replaceText(std::string text, TextRange selection);
  bool isPassword() const { return password_; }
  void setPassword(bool password);

  std::int32_t value() const { return value_; }
  std::int32_t minimum() const { return minimum_; }
  std::int32_t maximum() const { return maximum_; }
  // Sets the value, clamped into [minimum, maximum].
  void setValue(std::int32_t value);
  // Set a bound; the value is clamped again.
  void setMinimum(std::int32_t minimum);
  void setMaximum(std::int32_t maximum);

  // The control's own flags.
  bool isVisible() const { return visible_; }
  bool isEnabled() const { return enabled_; }
  bool isActive() const { return active_; }
  void setVisible(bool visible);
  void setEnabled(bool enabled);
  void setActive(bool active);
  // The flags as seen on screen: the control's and all its ancestors' (window included).
  bool isShown() const;
  bool isEffectivelyEnabled() const;
  bool isEffectivelyActive() const;
  // Shown, enabled and active: what a person can click or type into.
  bool isReachable() const { return isShown() && isEffectivelyEnabled() && isEffectivelyActive(); }
  // True when the control holds its window's keyboard focus.
  bool hasFocus() const;

  // The command a click sends (0: none).
  MenuCommand command() const { return command_; }
  void setCommand(MenuCommand command) { command_ = command; }

  // The menu of pop-up buttons, bevel buttons, combo boxes (their list) and tab controls
  // (their tabs); null for other kinds. Where the value is an item index the maximum
  // follows the item count.
  Menu* menu() const { return menu_.get(); }
  // Replaces the menu; paramErr for a kind without one.
  OSStatus setMenu(MenuPtr menu);
  // The chosen item of a bevel button's menu.
  MenuItemIndex menuValue() const { return menuValue_; }
  void setMenuValue(MenuItemIndex item);

  const std::string& pictureName() const { return pictureName_; }
  void setPictureName(std::string name);
  LongDateTime dateTime() const { return dateTime_; }
  void setDateTime(LongDateTime dateTime);
  // A clock that shows and edits the time of day only (hours and minutes); its date is
  // kept but not shown. Announced as a DateTime change: what the clock shows changed.
  bool isTimeOnly() const { return timeOnly_; }
  void setTimeOnly(bool timeOnly);

  // Tagged properties: bytes the caller attaches, untouched by the toolkit.
  void setProperty(OSType creator, OSType tag, Bytes bytes);
  // The bytes, or null when there is no such property.
  const Bytes* property(OSType creator, OSType tag) const;
  // controlPropertyNotFoundErr when there is no such property.
  OSStatus removeProperty(OSType creator, OSType tag);

  // Data under tags the toolkit does not interpret, kept as bytes per part.
  void setData(ControlPartCode part, OSType tag, Bytes bytes);
  const Bytes* data(ControlPartCode part, OSType tag) const;

  // Sends kEventControlDraw to the control's own handlers, as a renderer does before
  // painting it. Returns the event's result.
  OSStatus draw();

  // The parent, or the application for the root of a tree.
  EventTarget* nextTarget() const override;

 protected:
  explicit Control(ControlKind kind);
  // Tells the window's subscribers.
  void notify(ControlChange::What what);
  // Sends kEventControlDispose through the subtree, children first; once only. The
  // most derived destructor calls it, so handlers see a whole control.
  void sendDisposalEvents();
  // The standard behaviour of the kind (standard_behaviour.cc).
  OSStatus standardBehaviour(Event& event) override;

 private:
  // Checks that `control` may become a child of this one.
  OSStatus canEmbed(const Control& control) const;
  void attach(std::unique_ptr<Control> control);
  std::unique_ptr<Control> detach(Control& child);
  // Clamps the value after a change of value or range.
  void clampValue(std::int32_t wanted);

  ControlKind kind_;
  ControlID id_;
  URefCon refCon_ = 0;
  Control* parent_ = nullptr;
  std::vector<std::unique_ptr<Control>> children_;
  Rect bounds_;
  std::string text_;
  TextRange selection_;
  bool password_ = false;
  std::int32_t value_;
  std::int32_t minimum_;
  std::int32_t maximum_;
  bool visible_ = true;
  bool enabled_ = true;
  bool active_ = true;
  MenuCommand command_ = 0;
  MenuPtr menu_;
  Subscription menuSubscription_;
  MenuItemIndex menuValue_ = 0;
  std::string pictureName_;
  LongDateTime dateTime_ = 0;
  bool timeOnly_ = false;
  std::map<std::pair<OSType, OSType>, Bytes> properties_;
  std::map<std::pair<ControlPartCode, OSType>, Bytes> data_;
  bool disposalSent_ = false;
};

// Moves `control` into `parent` and makes it visible; nothing is drawn until a renderer
// hears of the change. Returns the first failing status (paramErr for null).
OSStatus EmbedAndShowControl(Control* control, Control* parent);

// The control as a list view, or null when it is another kind.
ListView* AsListView(Control* control);

}  // namespace varno::toolkit
