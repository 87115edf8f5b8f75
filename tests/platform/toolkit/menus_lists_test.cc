// SPDX-License-Identifier: Apache-2.0
// Menus, list views, change notification and the state read-back that tests and renderers
// rely on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <span>

#include "platform/toolkit/automation.h"
#include "platform/toolkit/list_view.h"
#include "platform/toolkit/menu.h"
#include "toolkit_test_support.h"

namespace varno::testing {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> Texts(const Menu& menu) {
  std::vector<std::string> texts;
  for (MenuItemIndex i = 1; i <= menu.count(); ++i) texts.push_back(menu.item(i)->text);
  return texts;
}

TEST(Menus, InsertAfterAPositionDeleteAndFindItems) {
  MenuPtr menu = Menu::create();
  menu->appendItem("B");
  EXPECT_EQ(menu->insertItem(0, "A"), 1);
  EXPECT_EQ(menu->insertItem(2, "C", MakeOSType("Cmdc")), 3);
  EXPECT_EQ(menu->insertItem(40, "D"), 4);
  EXPECT_THAT(Texts(*menu), ElementsAre("A", "B", "C", "D"));

  menu->setItemRefCon(2, 6);
  EXPECT_EQ(menu->findRefCon(6), 2);
  EXPECT_EQ(menu->findCommand(MakeOSType("Cmdc")), 3);
  EXPECT_EQ(menu->findText("E"), 0);

  EXPECT_EQ(menu->deleteItem(1), noErr);
  EXPECT_EQ(menu->deleteItem(9), menuItemNotFoundErr);
  EXPECT_THAT(Texts(*menu), ElementsAre("B", "C", "D"));
}

TEST(Menus, SubmenusAreSharedAndCannotHoldTheirOwnParent) {
  MenuPtr outer = Menu::create();
  MenuPtr inner = Menu::create();
  outer->appendItem("More");
  inner->appendItem("Inside");
  EXPECT_EQ(outer->setItemSubmenu(1, inner), noErr);
  EXPECT_EQ(inner->setItemSubmenu(1, outer), paramErr);
  EXPECT_EQ(outer->setItemSubmenu(1, outer), paramErr);
  inner = MenuPtr();  // the item still holds it
  EXPECT_EQ(outer->item(1)->submenu->item(1)->text, "Inside");
}

// A list view whose rows are small records, as a panel's rows are its pages.
class ListViewTest : public ToolkitTest {
 protected:
  struct Row {
    std::string page, type;
  };
  ListViewTest() : list(*AsListView(&add(ControlKind::ListView, 1))) {
    list.addColumn({MakeOSType("PAGE"), "Page(s)", 80});
    list.addColumn({MakeOSType("TYPE"), "Type", 120});
    list.setCallbacks(
        [](ListView&, DataBrowserItemID item, DataBrowserPropertyID property, std::string* text) {
          const Row* row = reinterpret_cast<const Row*>(item);
          if (property == MakeOSType("PAGE")) *text = row->page;
          else if (property == MakeOSType("TYPE")) *text = row->type;
          else return errDataBrowserPropertyNotSupported;
          return noErr;
        },
        [this](ListView&, DataBrowserItemID item, DataBrowserItemNotification message) {
          notices.emplace_back(item, message);
        });
    for (const Row& row : rows) ids.push_back(reinterpret_cast<DataBrowserItemID>(&row));
    list.addItems(ids);
    notices.clear();
  }

  Row rows[3] = {{"Front", "Cover"}, {"3", "Insert"}, {"5-7", "Exception"}};
  std::vector<DataBrowserItemID> ids;
  ListView& list;
  std::vector<std::pair<DataBrowserItemID, DataBrowserItemNotification>> notices;
};

TEST_F(ListViewTest, SelectionKeepsTheOrderOfSelectingAndTheEarliestIsTheAnchor) {
  DataBrowserItemID third = ids[2], first = ids[0], second = ids[1];
  SelectListItems(list, std::vector{third});
  SelectListItems(list, std::vector{first}, kDataBrowserItemsAdd);
  SelectListItems(list, std::vector{second}, kDataBrowserItemsToggle);
  EXPECT_THAT(list.selection(), ElementsAre(third, first, second));
  EXPECT_EQ(list.anchor(), third);

  SelectListItems(list, std::vector{third}, kDataBrowserItemsRemove);
  EXPECT_THAT(list.selection(), ElementsAre(first, second));
  EXPECT_EQ(list.anchor(), first);
  EXPECT_EQ(list.removeItems(std::vector{first}), noErr);
  EXPECT_THAT(list.selection(), ElementsAre(second));

  DataBrowserItemID stranger = 1;
  EXPECT_EQ(SelectListItems(list, std::vector{stranger}), errDataBrowserItemNotFound);
  EXPECT_THAT(list.selection(), ElementsAre(second));
  EXPECT_EQ(list.addItems(std::vector{second}), paramErr);
  EXPECT_THAT(notices, ::testing::Contains(std::pair(first, kDataBrowserItemRemoved)));
  EXPECT_THAT(notices, ::testing::Contains(std::pair(third, kDataBrowserItemDeselected)));
}

TEST_F(ListViewTest, CellTextComesFromTheCallerWhoMayRefuseAProperty) {
  std::string text = "kept";
  EXPECT_EQ(list.cellText(ids[1], MakeOSType("ATTR"), &text),
            errDataBrowserPropertyNotSupported);
  EXPECT_EQ(text, "kept");
  EXPECT_EQ(list.cellText(1, MakeOSType("PAGE"), &text), errDataBrowserItemNotFound);

  SelectListItems(list, std::vector{ids[2], ids[0]});
  plist::Dictionary state = ReadControlState(list);
  plist::Array expectedRows{plist::Dictionary{{"PAGE", "Front"}, {"TYPE", "Cover"}},
                            plist::Dictionary{{"PAGE", "3"}, {"TYPE", "Insert"}},
                            plist::Dictionary{{"PAGE", "5-7"}, {"TYPE", "Exception"}}};
  EXPECT_EQ(state.getArray("Rows"), expectedRows);
  EXPECT_EQ(state.getArray("Selection"), (plist::Array{2, 0}));
}

TEST_F(ListViewTest, RemovedRowsCloseUpAndAreForgottenWhereverTheyWere) {
  Row more[3] = {{"9", "Insert"}, {"11", "Insert"}, {"Back", "Cover"}};
  std::vector<DataBrowserItemID> all = ids;
  for (const Row& row : more) all.push_back(reinterpret_cast<DataBrowserItemID>(&row));
  ASSERT_EQ(list.addItems(std::span(all).subspan(3)), noErr);
  SelectListItems(list, std::vector{all[4], all[1], all[5]});
  notices.clear();

  ASSERT_EQ(list.removeItems(std::vector{all[4], all[1]}), noErr);
  EXPECT_THAT(list.items(), ElementsAre(all[0], all[2], all[3], all[5]));
  for (std::size_t row = 0; row < list.items().size(); ++row) EXPECT_EQ(list.rowOf(list.items()[row]), row);
  EXPECT_FALSE(list.containsItem(all[4]));
  EXPECT_FALSE(list.isSelected(all[1]));
  EXPECT_THAT(list.selection(), ElementsAre(all[5]));
  EXPECT_THAT(notices, ElementsAre(std::pair(all[4], kDataBrowserItemRemoved),
                                   std::pair(all[1], kDataBrowserItemRemoved),
                                   std::pair(kDataBrowserNoItem, kDataBrowserSelectionSetChanged)));
  EXPECT_EQ(ReadControlState(list).getArray("Selection"), (plist::Array{3}));

  // A removed row comes back at the end, unselected; removing all forgets every row.
  ASSERT_EQ(list.addItems(std::vector{all[1]}), noErr);
  EXPECT_EQ(list.rowOf(all[1]), 4u);
  EXPECT_FALSE(list.isSelected(all[1]));
  ASSERT_EQ(list.removeItems({}), noErr);
  EXPECT_TRUE(list.items().empty());
  EXPECT_TRUE(list.selection().empty());
  EXPECT_FALSE(list.containsItem(all[0]) || list.isSelected(all[5]));
}

TEST_F(ListViewTest, EachWayOfSelectingKeepsTheOrderOfSelecting) {
  struct Case {
    std::vector<std::size_t> start;
    DataBrowserSetOption how;
    std::vector<std::size_t> items, expected;
  };
  const Case cases[] = {
      {{0, 1, 2}, kDataBrowserItemsToggle, {1, 1}, {0, 2, 1}},  // off, then on again at the end
      {{0, 1, 2}, kDataBrowserItemsRemove, {0, 2, 0}, {1}},
      {{2}, kDataBrowserItemsAdd, {0, 2, 0}, {2, 0}},
      {{0, 1}, kDataBrowserItemsAssign, {2, 2, 1}, {2, 1}},
  };
  auto itemsAt = [&](const std::vector<std::size_t>& rows) {
    std::vector<DataBrowserItemID> items;
    for (std::size_t row : rows) items.push_back(ids[row]);
    return items;
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.items));
    ASSERT_EQ(SelectListItems(list, itemsAt(c.start)), noErr);
    ASSERT_EQ(SelectListItems(list, itemsAt(c.items), c.how), noErr);
    EXPECT_EQ(list.selection(), itemsAt(c.expected));
    for (std::size_t row = 0; row < ids.size(); ++row)
      EXPECT_EQ(list.isSelected(ids[row]), std::ranges::count(c.expected, row) == 1) << row;
  }
}

using ChangeNotification = ToolkitTest;

TEST_F(ChangeNotification, EveryVisibleChangeOfControlsAndTheirMenusIsAnnounced) {
  Control& popup = add(ControlKind::PopupButton, 1);
  Control& field = add(ControlKind::EditText, 2);
  std::vector<std::pair<Control*, ControlChange::What>> heard;
  Subscription subscription =
      window->subscribe([&](const ControlChange& change) { heard.emplace_back(change.control, change.what); });

  using W = ControlChange::What;
  popup.menu()->appendItem("One");  // the menu changes the pop-up's range too
  field.setText("abc");
  field.setText("abc");
  field.setEnabled(false);
  field.setEnabled(false);
  popup.setBounds({1, 2, 3, 4});
  EXPECT_THAT(heard, ElementsAre(std::pair(&popup, W::Range), std::pair(&popup, W::Value),
                                 std::pair(&popup, W::Menu), std::pair(&field, W::Text),
                                 std::pair(&field, W::Text), std::pair(&field, W::Enabled),
                                 std::pair(&popup, W::Bounds)));

  heard.clear();
  subscription.reset();
  field.setVisible(false);
  EXPECT_TRUE(heard.empty());
}

TEST_F(ChangeNotification, ReadBackShowsStateButNeverASecret) {
  Control& field = add(ControlKind::EditText, 7, nullptr, "1234");
  field.setPassword(true);
  Control& popup = add(ControlKind::PopupButton, 8);
  popup.menu()->appendItem("Normal", MakeOSType("Jnrm"));
  SetFocus(field);

  plist::Dictionary state = ReadControlState(*window, true);
  plist::Array children = *state.getArray("Children");
  plist::Dictionary fieldState = *children[0].asDictionary();
  EXPECT_EQ(fieldState.getString("Text"), "\u2022\u2022\u2022\u2022");
  EXPECT_EQ(fieldState.getBoolean("Focused"), true);
  EXPECT_EQ(fieldState.getNumber<int>("ID"), 7);
  plist::Dictionary popupState = *children[1].asDictionary();
  EXPECT_EQ(popupState.getNumber<int>("Value"), 1);
  plist::Dictionary item = *(*popupState.getArray("Menu"))[0].asDictionary();
  EXPECT_EQ(item.getString("Command"), "Jnrm");
}

}  // namespace
}  // namespace varno::testing
