// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/list_view.h"

#include <algorithm>

namespace varno::toolkit {
namespace {

// A selection being built: items in the order they were selected, each once. An item
// taken out leaves a hole, so the others keep their places without moving the rest.
class SelectionBuilder {
 public:
  explicit SelectionBuilder(const std::vector<DataBrowserItemID>& start) {
    for (DataBrowserItemID item : start) add(item);
  }
  bool contains(DataBrowserItemID item) const { return slots_.contains(item); }
  void add(DataBrowserItemID item) {
    if (slots_.emplace(item, order_.size()).second) order_.push_back(item);
  }
  void remove(DataBrowserItemID item) {
    auto it = slots_.find(item);
    if (it == slots_.end()) return;
    order_[it->second] = kDataBrowserNoItem;  // never an item of a list
    slots_.erase(it);
  }
  // The items in order; contains() still answers for them afterwards.
  std::vector<DataBrowserItemID> take() {
    std::erase(order_, kDataBrowserNoItem);
    return std::move(order_);
  }

 private:
  std::vector<DataBrowserItemID> order_;
  std::unordered_map<DataBrowserItemID, std::size_t> slots_;
};

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

bool ListView::containsItem(DataBrowserItemID item) const { return rows_.contains(item); }

std::optional<std::size_t> ListView::rowOf(DataBrowserItemID item) const {
  auto it = rows_.find(item);
  if (it == rows_.end()) return std::nullopt;
  return it->second;
}

bool ListView::isSelected(DataBrowserItemID item) const { return selected_.contains(item); }

DataBrowserItemID ListView::anchor() const {
  return selection_.empty() ? kDataBrowserNoItem : selection_.front();
}

OSStatus ListView::addItems(std::span<const DataBrowserItemID> items) {
  std::unordered_set<DataBrowserItemID> seen(items.size());
  for (DataBrowserItemID item : items) {
    if (item == kDataBrowserNoItem || containsItem(item) || !seen.insert(item).second) {
      return paramErr;
    }
  }
  if (items.empty()) return noErr;
  std::vector<Notice> notices;
  notices.reserve(items.size());
  items_.reserve(items_.size() + items.size());
  rows_.reserve(items_.size() + items.size());
  for (DataBrowserItemID item : items) {
    rows_.emplace(item, items_.size());
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
  // Rows are marked by position, then the list closes up in one pass.
  std::vector<bool> gone(items_.size());
  std::vector<Notice> notices;
  notices.reserve(doomed.size() + 1);
  std::size_t firstGone = items_.size();
  for (DataBrowserItemID item : doomed) {
    const std::size_t row = rows_.at(item);
    gone[row] = true;
    firstGone = std::min(firstGone, row);
    notices.emplace_back(item, kDataBrowserItemRemoved);
  }
  const std::size_t selected = selection_.size();
  std::erase_if(selection_, [&](DataBrowserItemID item) { return gone[rows_.at(item)]; });
  std::size_t kept = firstGone;
  for (std::size_t row = firstGone; row < items_.size(); ++row) {
    const DataBrowserItemID item = items_[row];
    if (gone[row]) {
      rows_.erase(item);
      selected_.erase(item);
    } else {
      rows_[item] = kept;
      items_[kept++] = item;
    }
  }
  items_.resize(kept);
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
  SelectionBuilder next(how == kDataBrowserItemsAssign ? std::vector<DataBrowserItemID>() : selection_);
  switch (how) {
    case kDataBrowserItemsAssign:
    case kDataBrowserItemsAdd:
      for (DataBrowserItemID item : items) next.add(item);
      break;
    case kDataBrowserItemsToggle:
      for (DataBrowserItemID item : items) {
        if (next.contains(item)) {
          next.remove(item);
        } else {
          next.add(item);
        }
      }
      break;
    case kDataBrowserItemsRemove:
      for (DataBrowserItemID item : items) next.remove(item);
      break;
    default:
      return paramErr;
  }
  std::vector<DataBrowserItemID> chosen = next.take();
  if (chosen == selection_) return noErr;
  std::vector<Notice> notices;
  for (DataBrowserItemID item : selection_) {
    if (!next.contains(item)) notices.emplace_back(item, kDataBrowserItemDeselected);
  }
  for (DataBrowserItemID item : chosen) {
    if (!isSelected(item)) notices.emplace_back(item, kDataBrowserItemSelected);
  }
  notices.emplace_back(kDataBrowserNoItem, kDataBrowserSelectionSetChanged);
  selection_ = std::move(chosen);
  selected_ = std::unordered_set<DataBrowserItemID>(selection_.begin(), selection_.end());
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
