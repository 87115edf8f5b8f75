// SPDX-License-Identifier: Apache-2.0
// List views: rows of the caller's items shown in columns.
//
// The list holds only item identifiers (the caller's own values, often pointers to its
// records) and asks the caller for each cell's text through a callback, by item and by
// the column's property (a four-character code). The callback refuses a property it does
// not know with errDataBrowserPropertyNotSupported (-4979).
//
// Rows show in the order they were added. The selection is kept in the order the items
// were selected; its anchor is the earliest selected item still selected. The
// notification callback hears every change of rows and selection, also those a program
// makes, after the change is complete.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/toolkit/control.h"

namespace varno::toolkit {

using DataBrowserItemID = std::uintptr_t;
using DataBrowserPropertyID = OSType;
using DataBrowserItemNotification = std::uint32_t;
using DataBrowserSetOption = std::uint32_t;

inline constexpr DataBrowserItemID kDataBrowserNoItem = 0;

inline constexpr DataBrowserItemNotification kDataBrowserItemAdded = 1;
inline constexpr DataBrowserItemNotification kDataBrowserItemRemoved = 2;
inline constexpr DataBrowserItemNotification kDataBrowserItemSelected = 5;
inline constexpr DataBrowserItemNotification kDataBrowserItemDeselected = 6;
inline constexpr DataBrowserItemNotification kDataBrowserItemDoubleClicked = 7;
inline constexpr DataBrowserItemNotification kDataBrowserSelectionSetChanged = 14;

inline constexpr DataBrowserSetOption kDataBrowserItemsAdd = 0;     // select these too
inline constexpr DataBrowserSetOption kDataBrowserItemsAssign = 1;  // select exactly these
inline constexpr DataBrowserSetOption kDataBrowserItemsToggle = 2;  // flip each
inline constexpr DataBrowserSetOption kDataBrowserItemsRemove = 3;  // deselect these

struct ListColumn {
  DataBrowserPropertyID property = 0;
  std::string title;
  std::int32_t width = 0;
};

class ListView final : public Control {
 public:
  using CellTextCallback = std::function<OSStatus(
      ListView& list, DataBrowserItemID item, DataBrowserPropertyID property, std::string* text)>;
  using NotificationCallback = std::function<void(ListView& list, DataBrowserItemID item,
                                                  DataBrowserItemNotification message)>;

  ~ListView() override;

  void setCallbacks(CellTextCallback cellText, NotificationCallback notification);

  const std::vector<ListColumn>& columns() const { return columns_; }
  // Appends a column, or replaces the one with the same property.
  void addColumn(ListColumn column);

  // Rows in display order.
  const std::vector<DataBrowserItemID>& items() const { return items_; }
  bool containsItem(DataBrowserItemID item) const;
  // The item's position in display order; none when it is not in the list.
  std::optional<std::size_t> rowOf(DataBrowserItemID item) const;
  // Appends rows. paramErr, and nothing added, for kDataBrowserNoItem or an item that is
  // there already (or given twice).
  OSStatus addItems(std::span<const DataBrowserItemID> items);
  // Removes rows, all of them when `items` is empty. errDataBrowserItemNotFound, and
  // nothing removed, when one is not in the list.
  OSStatus removeItems(std::span<const DataBrowserItemID> items);

  // The selected items in the order they were selected.
  const std::vector<DataBrowserItemID>& selection() const { return selection_; }
  bool isSelected(DataBrowserItemID item) const;
  // The earliest selected item still selected; kDataBrowserNoItem when none is.
  DataBrowserItemID anchor() const;
  // Changes the selection. errDataBrowserItemNotFound, and nothing changed, when an item
  // is not in the list.
  OSStatus setSelection(std::span<const DataBrowserItemID> items, DataBrowserSetOption how);

  // The text of a cell from the cell-text callback, and its status.
  // errDataBrowserNotConfigured without a callback, errDataBrowserItemNotFound for an
  // item not in the list.
  OSStatus cellText(DataBrowserItemID item, DataBrowserPropertyID property, std::string* text);

  // Tells the notification callback that a row was double-clicked.
  // errDataBrowserItemNotFound for an item not in the list.
  OSStatus doubleClick(DataBrowserItemID item);

  // Tells renderers that cell texts may have changed.
  void refresh() { notify(ControlChange::What::ListItems); }

 private:
  friend class Control;
  ListView() : Control(ControlKind::ListView) {}
  using Notice = std::pair<DataBrowserItemID, DataBrowserItemNotification>;
  // Sends notices to the callback once the list is consistent again.
  void tell(const std::vector<Notice>& notices);

  std::vector<ListColumn> columns_;
  std::vector<DataBrowserItemID> items_;
  // Each item's position in items_: finding a row costs the same in a list of 100,000.
  std::unordered_map<DataBrowserItemID, std::size_t> rows_;
  std::vector<DataBrowserItemID> selection_;
  std::unordered_set<DataBrowserItemID> selected_;  // the items of selection_
  CellTextCallback cellText_;
  NotificationCallback notification_;
};

}  // namespace varno::toolkit
