// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/list_view.h"

#include <algorithm>
#include <set>

namespace varno::toolkit {
namespace {

bool Holds(const std::vector<DataBrowserItemID>& list, DataBrowserItemID item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

}  // namespace

ListView::~ListView() { sendDisposalEvents(); }

void ListView::setCallbacks(CellTextCallback cellText, NotificationCallback notification) {
  cellText_ = std::move(cellText);
  notification_ = std::move(notification);
  refresh();
}

void ListView::addColumn(ListColumn column) {
  auto it = std::find_if(columns_.begin(), columns_.end(),
                         [&](const ListColumn& c) { return c.property == column.property; });
  if (it == columns_.end()) {
    columns_.push_back(std::move(column));
  } else {
    *it = std::move(column);
  }
  notify(ControlChange::What::ListColumns);
}

bool ListView::containsItem(DataBrowserItemID item) const { return Holds(items_, item); }

bool ListView::isSelected(DataBrowserItemID item) const { return Holds(selection_, item); }

DataBrowserItemID ListView::anchor() const {
  return selection_.empty() ? kDataBrowserNoItem : selection_.front();
}

OSStatus ListView::addItems(std::span<const DataBrowserItemID> items) {
  std::set<DataBrowserItemID> seen;
  for (DataBrowserItemID item : items) {
    if (item == kDataBrowserNoItem || containsItem(item) || !seen.insert(item).second) {
      return paramErr;
    }
  }
  if (items.empty()) return noErr;
  std::vector<Notice> notices;
  for (DataBrowserItemID item : items) {
    items_.push_back(item);
    notices.emplace_back(item, kDataBrowserItemAdded);
  }
  notify(ControlChange::What::ListItems);
  tell(notices);
  return noErr;
}

OSStatus ListView::removeItems(std::span<const DataBrowserItemID> items) {
  std::vector<DataBrowserItemID> doomed(items.begin(), items.end());
  if (doomed.empty()) doomed = items_;
  for (DataBrowserItemID item : doomed) {
    if (!containsItem(item)) return errDataBrowserItemNotFound;
  }
  if (doomed.empty()) return noErr;
  std::vector<Notice> notices;
  std::size_t selected = selection_.size();
  for (DataBrowserItemID item : doomed) {
    std::erase(items_, item);
    std::erase(selection_, item);
    notices.emplace_back(item, kDataBrowserItemRemoved);
  }
  notify(ControlChange::What::ListItems);
  if (selection_.size() != selected) {
    notices.emplace_back(kDataBrowserNoItem, kDataBrowserSelectionSetChanged);
    notify(ControlChange::What::ListSelection);
  }
  tell(notices);
  return noErr;
}

OSStatus ListView::setSelection(std::span<const DataBrowserItemID> items,
                                DataBrowserSetOption how) {
  for (DataBrowserItemID item : items) {
    if (!containsItem(item)) return errDataBrowserItemNotFound;
  }
  std::vector<DataBrowserItemID> next;
  switch (how) {
    case kDataBrowserItemsAssign:
      for (DataBrowserItemID item : items) {
        if (!Holds(next, item)) next.push_back(item);
      }
      break;
    case kDataBrowserItemsAdd:
      next = selection_;
      for (DataBrowserItemID item : items) {
        if (!Holds(next, item)) next.push_back(item);
      }
      break;
    case kDataBrowserItemsToggle:
      next = selection_;
      for (DataBrowserItemID item : items) {
        if (Holds(next, item)) {
          std::erase(next, item);
        } else {
          next.push_back(item);
        }
      }
      break;
    case kDataBrowserItemsRemove:
      next = selection_;
      for (DataBrowserItemID item : items) std::erase(next, item);
      break;
    default:
      return paramErr;
  }
  if (next == selection_) return noErr;
  std::vector<Notice> notices;
  for (DataBrowserItemID item : selection_) {
    if (!Holds(next, item)) notices.emplace_back(item, kDataBrowserItemDeselected);
  }
  for (DataBrowserItemID item : next) {
    if (!Holds(selection_, item)) notices.emplace_back(item, kDataBrowserItemSelected);
  }
  notices.emplace_back(kDataBrowserNoItem, kDataBrowserSelectionSetChanged);
  selection_ = std::move(next);
  notify(ControlChange::What::ListSelection);
  tell(notices);
  return noErr;
}

OSStatus ListView::cellText(DataBrowserItemID item, DataBrowserPropertyID property,
                            std::string* text) {
  if (!text) return paramErr;
  if (!cellText_) return errDataBrowserNotConfigured;
  if (!containsItem(item)) return errDataBrowserItemNotFound;
  return cellText_(*this, item, property, text);
}

OSStatus ListView::doubleClick(DataBrowserItemID item) {
  if (!containsItem(item)) return errDataBrowserItemNotFound;
  tell({{item, kDataBrowserItemDoubleClicked}});
  return noErr;
}

void ListView::tell(const std::vector<Notice>& notices) {
  if (!notification_) return;
  NotificationCallback callback = notification_;  // it may replace the callbacks
  for (const auto& [item, message] : notices) callback(*this, item, message);
}

}  // namespace varno::toolkit
