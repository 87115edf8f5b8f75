// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/menu.h"

#include <algorithm>
#include <limits>

namespace varno::toolkit {

MenuPtr::MenuPtr(Menu* menu) : menu_(menu) {
  if (menu_) menu_->retain();
}

MenuPtr MenuPtr::adopt(Menu* menu) {
  MenuPtr ptr;
  ptr.menu_ = menu;
  return ptr;
}

MenuPtr::~MenuPtr() {
  if (menu_) menu_->release();
}

MenuPtr Menu::create(MenuID id, std::string title) {
  return MenuPtr::adopt(new Menu(id, std::move(title)));
}

void Menu::release() {
  if (--references_ == 0) delete this;
}

void Menu::setTitle(std::string title) {
  title_ = std::move(title);
  notify(MenuChange::What::Title, 0);
}

const MenuItem* Menu::item(MenuItemIndex index) const {
  if (index < 1 || index > items_.size()) return nullptr;
  return &items_[index - 1];
}

MenuItemIndex Menu::insertItem(MenuItemIndex after, std::string text, MenuCommand command) {
  if (items_.size() >= std::numeric_limits<MenuItemIndex>::max()) return 0;
  std::size_t position = std::min<std::size_t>(after, items_.size());
  MenuItem item;
  item.text = std::move(text);
  item.command = command;
  items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(position), std::move(item));
  auto index = static_cast<MenuItemIndex>(position + 1);
  notify(MenuChange::What::Items, index);
  return index;
}

OSStatus Menu::deleteItem(MenuItemIndex index) {
  if (!item(index)) return menuItemNotFoundErr;
  items_.erase(items_.begin() + (index - 1));
  notify(MenuChange::What::Items, index);
  return noErr;
}

void Menu::deleteAllItems() {
  if (items_.empty()) return;
  items_.clear();
  notify(MenuChange::What::Items, 1);
}

template <typename Change>
OSStatus Menu::changeItem(MenuItemIndex index, MenuChange::What what, Change change) {
  if (!item(index)) return menuItemNotFoundErr;
  change(items_[index - 1]);
  notify(what, index);
  return noErr;
}

OSStatus Menu::setItemText(MenuItemIndex index, std::string text) {
  return changeItem(index, MenuChange::What::Item,
                    [&](MenuItem& item) { item.text = std::move(text); });
}

OSStatus Menu::setItemCommand(MenuItemIndex index, MenuCommand command) {
  return changeItem(index, MenuChange::What::Item,
                    [&](MenuItem& item) { item.command = command; });
}

OSStatus Menu::setItemRefCon(MenuItemIndex index, URefCon refCon) {
  if (index == 0) {
    refCon_ = refCon;
    return noErr;
  }
  // The reference value is not shown, so nobody is told.
  if (!item(index)) return menuItemNotFoundErr;
  items_[index - 1].refCon = refCon;
  return noErr;
}

OSStatus Menu::setItemEnabled(MenuItemIndex index, bool enabled) {
  if (index == 0) {
    enabled_ = enabled;
    notify(MenuChange::What::Enabled, 0);
    return noErr;
  }
  return changeItem(index, MenuChange::What::Item,
                    [&](MenuItem& item) { item.enabled = enabled; });
}

OSStatus Menu::setItemChecked(MenuItemIndex index, bool checked) {
  return changeItem(index, MenuChange::What::Item,
                    [&](MenuItem& item) { item.checked = checked; });
}

OSStatus Menu::setItemSubmenu(MenuItemIndex index, MenuPtr submenu) {
  if (submenu && submenu->holds(this)) return paramErr;
  return changeItem(index, MenuChange::What::Item,
                    [&](MenuItem& item) { item.submenu = std::move(submenu); });
}

bool Menu::holds(const Menu* menu) const {
  if (menu == this) return true;
  for (const MenuItem& item : items_) {
    if (item.submenu && item.submenu->holds(menu)) return true;
  }
  return false;
}

MenuItemIndex Menu::findCommand(MenuCommand command) const {
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (items_[i].command == command) return static_cast<MenuItemIndex>(i + 1);
  }
  return 0;
}

MenuItemIndex Menu::findText(std::string_view text) const {
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (items_[i].text == text) return static_cast<MenuItemIndex>(i + 1);
  }
  return 0;
}

MenuItemIndex Menu::findRefCon(URefCon refCon) const {
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (items_[i].refCon == refCon) return static_cast<MenuItemIndex>(i + 1);
  }
  return 0;
}

}  // namespace varno::toolkit
