// SPDX-License-Identifier: Apache-2.0
// Menus: the item lists of pop-up buttons, bevel buttons, combo boxes and tab controls.
//
// Items are numbered from 1. Each has a text, a command (a four-character code that a
// choice sends), a reference value (panels keep the ticket value an item stands for),
// an enabled and a checked state and an optional submenu. Index 0 stands for the menu
// itself wherever an item index is taken: its reference value and enabled state.
//
// Menus are reference counted, as the controls that show them and the items that hold
// them as submenus share them; MenuPtr holds one reference.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/toolkit/change_signal.h"
#include "platform/toolkit/types.h"

namespace varno::toolkit {

// One reference to a menu; copying adds one.
class MenuPtr {
 public:
  MenuPtr() = default;
  // Adds a reference to `menu` (null stays null).
  explicit MenuPtr(Menu* menu);
  // Takes over a reference the caller already holds.
  static MenuPtr adopt(Menu* menu);
  MenuPtr(const MenuPtr& other) : MenuPtr(other.menu_) {}
  MenuPtr(MenuPtr&& other) noexcept : menu_(std::exchange(other.menu_, nullptr)) {}
  MenuPtr& operator=(MenuPtr other) noexcept {
    std::swap(menu_, other.menu_);
    return *this;
  }
  ~MenuPtr();

  Menu* get() const { return menu_; }
  Menu* operator->() const { return menu_; }
  Menu& operator*() const { return *menu_; }
  explicit operator bool() const { return menu_ != nullptr; }
  // Gives the reference to the caller, who must release it.
  Menu* release() { return std::exchange(menu_, nullptr); }

 private:
  Menu* menu_ = nullptr;
};

struct MenuItem {
  std::string text;
  MenuCommand command = 0;
  URefCon refCon = 0;
  bool enabled = true;
  bool checked = false;
  MenuPtr submenu;
};

// What changed in a menu. `item` is the first item concerned (0 for the menu itself).
struct MenuChange {
  enum class What { Items, Item, Title, Enabled };  // Items: inserted or deleted
  Menu* menu;
  What what;
  MenuItemIndex item;
};

class Menu {
 public:
  // A new empty menu, enabled, reference value 0.
  static MenuPtr create(MenuID id = 0, std::string title = {});
  Menu(const Menu&) = delete;
  Menu& operator=(const Menu&) = delete;

  // Reference counting; the menu is freed when the last reference goes.
  void retain() { ++references_; }
  void release();

  MenuID id() const { return id_; }
  const std::string& title() const { return title_; }
  void setTitle(std::string title);

  MenuItemIndex count() const { return static_cast<MenuItemIndex>(items_.size()); }
  // The item at a 1-based index, or null.
  const MenuItem* item(MenuItemIndex index) const;

  // Inserts an item after item `after` (0: first; beyond the end: last) and returns its
  // index, or 0 when the menu is full (65535 items).
  MenuItemIndex insertItem(MenuItemIndex after, std::string text, MenuCommand command = 0);
  // Appends an item and returns its index (0 when full).
  MenuItemIndex appendItem(std::string text, MenuCommand command = 0) {
    return insertItem(count(), std::move(text), command);
  }
  // Removes an item; menuItemNotFoundErr when there is none at `index`.
  OSStatus deleteItem(MenuItemIndex index);
  void deleteAllItems();

  // Item setters; menuItemNotFoundErr for a missing item. Index 0 sets the menu's own
  // reference value or enabled state where that makes sense.
  OSStatus setItemText(MenuItemIndex index, std::string text);
  OSStatus setItemCommand(MenuItemIndex index, MenuCommand command);
  OSStatus setItemRefCon(MenuItemIndex index, URefCon refCon);
  OSStatus setItemEnabled(MenuItemIndex index, bool enabled);
  OSStatus setItemChecked(MenuItemIndex index, bool checked);
  // paramErr when the submenu is this menu or holds it (the references would cycle).
  OSStatus setItemSubmenu(MenuItemIndex index, MenuPtr submenu);

  // The menu's own reference value and enabled state.
  URefCon refCon() const { return refCon_; }
  void setRefCon(URefCon refCon) { refCon_ = refCon; }
  bool isEnabled() const { return enabled_; }

  // The first item with that command, text or reference value; 0 when none.
  MenuItemIndex findCommand(MenuCommand command) const;
  MenuItemIndex findText(std::string_view text) const;
  MenuItemIndex findRefCon(URefCon refCon) const;

  // Calls `callback` after every visible change, until the subscription goes.
  [[nodiscard]] Subscription subscribe(ChangeSignal<MenuChange>::Callback callback) {
    return changes_.subscribe(std::move(callback));
  }

 private:
  Menu(MenuID id, std::string title) : id_(id), title_(std::move(title)) {}
  ~Menu() = default;
  // Applies `change` to item `index` and announces it.
  template <typename Change>
  OSStatus changeItem(MenuItemIndex index, MenuChange::What what, Change change);
  // True when `menu` is this menu or a submenu of it, at any depth.
  bool holds(const Menu* menu) const;
  void notify(MenuChange::What what, MenuItemIndex item) { changes_.emit({this, what, item}); }

  int references_ = 1;
  MenuID id_;
  std::string title_;
  std::vector<MenuItem> items_;
  URefCon refCon_ = 0;
  bool enabled_ = true;
  ChangeSignal<MenuChange> changes_;
};

}  // namespace varno::toolkit
