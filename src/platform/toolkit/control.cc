// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/control.h"

#include <algorithm>

#include "platform/toolkit/application.h"
#include "platform/toolkit/list_view.h"
#include "platform/toolkit/text_editing.h"
#include "platform/toolkit/window.h"

namespace varno::toolkit {

std::unique_ptr<Control> Control::create(ControlKind kind, Rect bounds, std::string text) {
  std::unique_ptr<Control> control;
  if (kind == ControlKind::Window) return nullptr;
  if (kind == ControlKind::ListView) {
    control.reset(new ListView());
  } else {
    control.reset(new Control(kind));
  }
  control->bounds_ = bounds;
  control->setText(std::move(text));
  return control;
}

Control::Control(ControlKind kind)
    : kind_(kind), minimum_(Traits(kind).minimum), maximum_(Traits(kind).maximum) {
  value_ = std::min(std::max(minimum_, 0), maximum_);
  // Every kind with a menu starts with an empty one, so callers can fill it at once.
  if (Traits(kind).hasMenu) setMenu(Menu::create());
}

Control::~Control() { sendDisposalEvents(); }

Window* Control::window() const {
  const Control* root = this;
  while (root->parent_) root = root->parent_;
  if (root->kind_ != ControlKind::Window) return nullptr;
  return static_cast<Window*>(const_cast<Control*>(root));
}

Control* Control::child(std::size_t index) const {
  return index < children_.size() ? children_[index].get() : nullptr;
}

Control* Control::findByID(ControlID id) {
  if (id_ == id) return this;
  for (const auto& child : children_) {
    if (Control* found = child->findByID(id)) return found;
  }
  return nullptr;
}

bool Control::contains(const Control* other) const {
  for (const Control* c = other; c; c = c->parent_) {
    if (c == this) return true;
  }
  return false;
}

OSStatus Control::canEmbed(const Control& control) const {
  if (control.kind_ == ControlKind::Window) return errCantEmbedRoot;
  if (!Traits(kind_).embeds) return errControlIsNotEmbedder;
  if (control.contains(this)) return errCantEmbedIntoSelf;
  return noErr;
}

OSStatus Control::embed(Control& control) {
  if (OSStatus status = canEmbed(control)) return status;
  if (control.parent_ == this) return noErr;
  if (!control.parent_) return paramErr;
  attach(control.parent_->detach(control));
  return noErr;
}

Control* Control::embed(std::unique_ptr<Control> control, OSStatus* status) {
  OSStatus result = !control || control->parent_ ? paramErr : canEmbed(*control);
  if (status) *status = result;
  if (result != noErr) return nullptr;
  Control* embedded = control.get();
  attach(std::move(control));
  return embedded;
}

void Control::attach(std::unique_ptr<Control> control) {
  Control* child = control.get();
  child->parent_ = this;
  children_.push_back(std::move(control));
  child->notify(ControlChange::What::Embedded);
}

std::unique_ptr<Control> Control::detach(Control& child) {
  if (Window* window = child.window()) {
    child.notify(ControlChange::What::Removed);
    window->forget(child);
  }
  auto it = std::find_if(children_.begin(), children_.end(),
                         [&](const auto& c) { return c.get() == &child; });
  std::unique_ptr<Control> owned = std::move(*it);
  children_.erase(it);
  owned->parent_ = nullptr;
  return owned;
}

OSStatus Control::dispose() {
  if (!parent_) return paramErr;
  sendDisposalEvents();
  parent_->detach(*this);  // the returned owner frees this control
  return noErr;
}

void Control::sendDisposalEvents() {
  if (disposalSent_) return;
  disposalSent_ = true;
  // By index: a handler that changes the tree must not leave us on a freed iterator.
  for (std::size_t i = 0; i < children_.size(); ++i) children_[i]->sendDisposalEvents();
  Event event(kEventClassControl, kEventControlDispose);
  event.set<Control*>(kEventParamDirectObject, typeControlRef, this);
  send(event, kEventTargetDontPropagate);
}

void Control::notify(ControlChange::What what) {
  if (Window* w = window()) w->emit({this, what});
}

void Control::setBounds(const Rect& bounds) {
  if (bounds_ == bounds) return;
  bounds_ = bounds;
  notify(ControlChange::What::Bounds);
}

void Control::setText(std::string text) {
  std::int32_t end = CountCharacters(text);
  text_ = std::move(text);
  selection_ = {end, end};
  notify(ControlChange::What::Text);
}

void Control::setSelection(TextRange selection) {
  std::int32_t size = CountCharacters(text_);
  selection.start = std::clamp(selection.start, 0, size);
  selection.end = std::clamp(selection.end, selection.start, size);
  if (selection == selection_) return;
  selection_ = selection;
  notify(ControlChange::What::Selection);
}

void Control::replaceText(std::string text, TextRange selection) {
  text_ = std::move(text);
  notify(ControlChange::What::Text);
  selection_ = {-1, -1};  // always announce the new selection
  setSelection(selection);
}

void Control::setPassword(bool password) {
  if (password_ == password) return;
  password_ = password;
  notify(ControlChange::What::Password);
}

void Control::clampValue(std::int32_t wanted) {
  std::int32_t value = std::min(std::max(wanted, minimum_), maximum_);
  if (value == value_) return;
  value_ = value;
  notify(ControlChange::What::Value);
}

void Control::setValue(std::int32_t value) { clampValue(value); }

void Control::setMinimum(std::int32_t minimum) {
  minimum_ = minimum;
  notify(ControlChange::What::Range);
  clampValue(value_);
}

void Control::setMaximum(std::int32_t maximum) {
  maximum_ = maximum;
  notify(ControlChange::What::Range);
  clampValue(value_);
}

void Control::setVisible(bool visible) {
  if (visible_ == visible) return;
  visible_ = visible;
  notify(ControlChange::What::Visible);
}

void Control::setEnabled(bool enabled) {
  if (enabled_ == enabled) return;
  enabled_ = enabled;
  notify(ControlChange::What::Enabled);
}

void Control::setActive(bool active) {
  if (active_ == active) return;
  active_ = active;
  notify(ControlChange::What::Active);
}

bool Control::isShown() const {
  for (const Control* c = this; c; c = c->parent_) {
    if (!c->visible_) return false;
  }
  return true;
}

bool Control::isEffectivelyEnabled() const {
  for (const Control* c = this; c; c = c->parent_) {
    if (!c->enabled_) return false;
  }
  return true;
}

bool Control::isEffectivelyActive() const {
  for (const Control* c = this; c; c = c->parent_) {
    if (!c->active_) return false;
  }
  return true;
}

bool Control::hasFocus() const {
  Window* w = window();
  return w && w->focus() == this;
}

OSStatus Control::setMenu(MenuPtr menu) {
  if (!Traits(kind_).hasMenu) return paramErr;
  menuSubscription_.reset();
  menu_ = std::move(menu);
  auto menuChanged = [this] {
    if (Traits(kind_).valueIsMenuItem) setMaximum(menu_ ? menu_->count() : 0);
    notify(ControlChange::What::Menu);
  };
  if (menu_) menuSubscription_ = menu_->subscribe([menuChanged](const MenuChange&) { menuChanged(); });
  menuChanged();
  return noErr;
}

void Control::setMenuValue(MenuItemIndex item) {
  if (menuValue_ == item) return;
  menuValue_ = item;
  notify(ControlChange::What::MenuValue);
}

void Control::setPictureName(std::string name) {
  if (pictureName_ == name) return;
  pictureName_ = std::move(name);
  notify(ControlChange::What::Picture);
}

void Control::setDateTime(LongDateTime dateTime) {
  if (dateTime_ == dateTime) return;
  dateTime_ = dateTime;
  notify(ControlChange::What::DateTime);
}

void Control::setTimeOnly(bool timeOnly) {
  if (timeOnly_ == timeOnly) return;
  timeOnly_ = timeOnly;
  notify(ControlChange::What::DateTime);
}

void Control::setProperty(OSType creator, OSType tag, Bytes bytes) {
  properties_[{creator, tag}] = std::move(bytes);
}

const Control::Bytes* Control::property(OSType creator, OSType tag) const {
  auto it = properties_.find({creator, tag});
  return it == properties_.end() ? nullptr : &it->second;
}

OSStatus Control::removeProperty(OSType creator, OSType tag) {
  return properties_.erase({creator, tag}) ? noErr : controlPropertyNotFoundErr;
}

void Control::setData(ControlPartCode part, OSType tag, Bytes bytes) {
  data_[{part, tag}] = std::move(bytes);
}

const Control::Bytes* Control::data(ControlPartCode part, OSType tag) const {
  auto it = data_.find({part, tag});
  return it == data_.end() ? nullptr : &it->second;
}

OSStatus Control::draw() {
  Event event(kEventClassControl, kEventControlDraw);
  event.set<Control*>(kEventParamDirectObject, typeControlRef, this);
  return send(event, kEventTargetDontPropagate);
}

EventTarget* Control::nextTarget() const {
  if (parent_) return parent_;
  return &Application::shared();
}

OSStatus EmbedAndShowControl(Control* control, Control* parent) {
  if (!control || !parent) return paramErr;
  if (OSStatus status = parent->embed(*control)) return status;
  control->setVisible(true);
  return noErr;
}

ListView* AsListView(Control* control) {
  if (!control || control->kind() != ControlKind::ListView) return nullptr;
  return static_cast<ListView*>(control);
}

}  // namespace varno::toolkit
