// SPDX-License-Identifier: Apache-2.0
// The inserts and exceptions dialogs of the Special Pages panel, opened from the panel's
// buttons in the built plug-in and driven as a person would.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/toolkit/application.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/window.h"
#include "ui/stock_menus.h"
#include "vocabulary/setting_maps.h"
#include "special_pages_fixture.h"

namespace varno::testing {
namespace {

using namespace panels;
using Rows_ = std::vector<std::string>;

toolkit::ControlID Id(std::int32_t id) { return {kSpecialPagesSignature, id}; }
toolkit::AutomationScript& script() { return toolkit::Application::shared().script(); }

constexpr std::int32_t kBlue = 2;  // MediaColor
constexpr std::int32_t kLongEdge = 2;

class SpecialPagesDialogs : public SpecialPagesPane {
 protected:
  // Queues choosing a colour from the stock menu's "Other Color" submenu.
  static void chooseColor(std::int32_t stockButton, std::int32_t color) {
    script().add("colour", [=](toolkit::Window& window) {
      toolkit::Control* button = window.findByID(Id(stockButton));
      for (toolkit::MenuItemIndex i = 1; i <= button->menu()->count(); ++i) {
        const toolkit::MenuItem* item = button->menu()->item(i);
        if (item->command == ui::kStockColorCommand && item->submenu)
          return toolkit::ChooseSubmenuItem(*button, i, item->submenu->findRefCon(static_cast<toolkit::URefCon>(color)));
      }
      return menuItemNotFoundErr;
    });
  }
  // Queues a look at the open dialog; `seen` gets what `look` returns.
  static void peek(std::string* seen, std::function<std::string(toolkit::Window&)> look) {
    script().add("peek", [=](toolkit::Window& window) {
      *seen = look(window);
      return noErr;
    });
  }
  static std::string Text(toolkit::Window& window, std::int32_t id) { return window.findByID(Id(id))->text(); }
  // Queues emptying a field and typing `text` into it.
  static void retype(std::int32_t field, const std::string& text) {
    script().add("empty", [=](toolkit::Window& window) {
      window.findByID(Id(field))->setText({});
      return noErr;
    });
    script().typeText(Id(field), text);
  }
  // Runs the dialog of `button` on the steps queued, which must all have been taken.
  void run(std::int32_t button) {
    ASSERT_EQ(Press(button), noErr);
    EXPECT_EQ(script().pending(), 0u);
    EXPECT_TRUE(script().failures().empty()) << script().failures().front();
    script().clear();
  }
  void addException(const std::string& pages, std::int32_t plex = vocabulary::kUnsetValue) {
    script().typeText(Id(kExceptionPagesFieldID), pages);
    if (plex != vocabulary::kUnsetValue) script().chooseMenuItemByRefCon(Id(kExceptionPlexPopupID), plex);
    script().sendCommand(toolkit::kHICommandOK);
    run(kAddExceptionsButtonID);
  }
  std::vector<std::string> alertTitles() {
    std::vector<std::string> titles;
    for (const auto& notice : toolkit::HeadlessAlerts().notices()) titles.push_back(notice.header);
    return titles;
  }
};

TEST_F(SpecialPagesDialogs, InsertsGoAfterEachTypedPageWithTheirQuantityAndStock) {
  struct Case {
    const char* pages;
    std::int32_t option;
    const char* quantity;
    int arrowClicks;  // up arrow after typing
    bool blue;
    Rows_ rows;
  } cases[] = {
      {"2,5", kInsertAfterPage, "3", 0, true, {"2|Insert|Quantity [3]; Blue", "5|Insert|Quantity [3]; Blue"}},
      {"5,2,5", kInsertAfterPage, "", 0, false, {"2|Insert|Quantity [1]", "5|Insert|Quantity [1]", "5|Insert|Quantity [1]"}},
      {"7", kInsertBeforePage1, "12", 2, false, {"Before Page 1|Insert|Quantity [14]"}},
      {"0", kInsertAfterPage, "", 0, false, {"Before Page 1|Insert|Quantity [1]"}},
      {"3", kInsertAfterPage, "0", 0, false, {}},  // OK is dimmed: nothing added
  };
  OpenPane();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.pages);
    script().typeText(Id(kInsertPagesFieldID), c.pages);
    script().chooseMenuItemByRefCon(Id(kInsertOptionPopupID), static_cast<toolkit::URefCon>(c.option));
    if (*c.quantity) retype(kInsertQuantityFieldID, c.quantity);
    for (int i = 0; i < c.arrowClicks; ++i) script().click(Id(kInsertQuantitySpinID), toolkit::kControlUpButtonPart);
    if (c.blue) chooseColor(kInsertStockButtonID, kBlue);
    std::string pagesField;
    peek(&pagesField, [](toolkit::Window& w) {
      toolkit::Control* field = w.findByID(Id(kInsertPagesFieldID));
      return field->text() + (field->isEnabled() ? "" : " dimmed") + " qty " + Text(w, kInsertQuantityFieldID);
    });
    script().sendCommand(toolkit::kHICommandOK);
    run(kAddInsertsButtonID);
    EXPECT_EQ(Rows(), c.rows);
    const std::string quantity = std::to_string(*c.quantity ? std::stoi(c.quantity) + c.arrowClicks : 1);
    EXPECT_EQ(pagesField, c.option == kInsertBeforePage1 ? " dimmed qty " + quantity : c.pages + std::string(" qty ") + quantity);
    // Undo takes the list back to where the case began.
    EXPECT_EQ(Enabled(kUndoSpecialPagesButtonID), !c.rows.empty());
    if (!c.rows.empty()) {
      ASSERT_EQ(Press(kUndoSpecialPagesButtonID), noErr);
    }
    EXPECT_TRUE(Rows().empty());
  }
}

TEST_F(SpecialPagesDialogs, EditingAnInsertReplacesItByTheTypedPages) {
  OpenPane();
  script().typeText(Id(kInsertPagesFieldID), "3");
  script().sendCommand(toolkit::kHICommandOK);
  run(kAddInsertsButtonID);
  Select({0});
  std::string shown;
  peek(&shown, [](toolkit::Window& w) { return w.text() + ": " + Text(w, kInsertPagesFieldID); });
  retype(kInsertPagesFieldID, "4,6");
  script().sendCommand(toolkit::kHICommandOK);
  run(kEditSpecialPageButtonID);
  EXPECT_EQ(shown, "Edit Insert: 3");
  EXPECT_EQ(Rows(), (Rows_{"4|Insert|Quantity [1]", "6|Insert|Quantity [1]"}));
}

TEST_F(SpecialPagesDialogs, RefusedPagesAlertKeepTheTextAndChangeNothing) {
  struct Case {
    std::int32_t button, field;
    const char* pages;
    const char* alert;
  } cases[] = {
      {kAddExceptionsButtonID, kExceptionPagesFieldID, "0-3", "Page numbers start at 1"},
      {kAddExceptionsButtonID, kExceptionPagesFieldID, "5-3", "Range in the wrong order"},
      {kAddExceptionsButtonID, kExceptionPagesFieldID, "2,100000", "Page number too large"},
      {kAddInsertsButtonID, kInsertPagesFieldID, "4,5-3", "Range in the wrong order"},
  };
  OpenPane();
  addException("3");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.pages);
    toolkit::HeadlessAlerts().clear();
    script().typeText(Id(c.field), c.pages);
    script().sendCommand(toolkit::kHICommandOK);
    std::string kept;
    peek(&kept, [&](toolkit::Window& w) { return Text(w, c.field); });
    script().sendCommand(toolkit::kHICommandCancel);
    run(c.button);
    EXPECT_EQ(kept, c.pages);
    EXPECT_EQ(alertTitles(), (std::vector<std::string>{c.alert}));
    EXPECT_EQ(Rows(), (Rows_{"3|Exception|"}));
  }
  // No refusal took the undo step: undo still takes back the first exception.
  ASSERT_EQ(Press(kUndoSpecialPagesButtonID), noErr);
  EXPECT_TRUE(Rows().empty());
}

TEST_F(SpecialPagesDialogs, NewExceptionsWinWhereTheyMeetOlderOnes) {
  OpenPane();
  addException("1-10");
  addException("4-6", kLongEdge);
  EXPECT_EQ(Rows(), (Rows_{"1-3|Exception|", "4-6|Exception|2-Sided (Long Edge)", "7-10|Exception|"}));

  // Editing shows the range and its 2-sided printing, and replaces the range.
  Select({1});
  std::string shown;
  peek(&shown, [](toolkit::Window& w) {
    return w.text() + ": " + Text(w, kExceptionPagesFieldID) + " " +
           w.findByID(Id(kExceptionPlexPopupID))->menu()->item(w.findByID(Id(kExceptionPlexPopupID))->value())->text;
  });
  retype(kExceptionPagesFieldID, "5");
  script().sendCommand(toolkit::kHICommandOK);
  run(kEditSpecialPageButtonID);
  EXPECT_EQ(shown, "Edit Exception: 4-6 Long Edge");
  EXPECT_EQ(Rows(), (Rows_{"1-3|Exception|", "5|Exception|2-Sided (Long Edge)", "7-10|Exception|"}));
}

TEST_F(SpecialPagesDialogs, EditingAnExceptionRemovesItBeforeMergingTheNewRange) {
  OpenPane();
  addException("5-9");
  Select({0});
  retype(kExceptionPagesFieldID, "7-8");
  script().sendCommand(toolkit::kHICommandOK);
  run(kEditSpecialPageButtonID);
  EXPECT_EQ(Rows(), (Rows_{"7-8|Exception|"}));
}

TEST_F(SpecialPagesDialogs, CancelChangesNothingAndOKCanBeUndone) {
  OpenPane();
  addException("3");
  script().typeText(Id(kExceptionPagesFieldID), "1-9");
  script().sendCommand(toolkit::kHICommandCancel);
  run(kAddExceptionsButtonID);
  script().typeText(Id(kInsertPagesFieldID), "4");
  script().sendCommand(toolkit::kHICommandCancel);
  run(kAddInsertsButtonID);
  EXPECT_EQ(Rows(), (Rows_{"3|Exception|"}));

  script().typeText(Id(kInsertPagesFieldID), "4");
  script().sendCommand(toolkit::kHICommandOK);
  run(kAddInsertsButtonID);
  EXPECT_EQ(Rows(), (Rows_{"3|Exception|", "4|Insert|Quantity [1]"}));
  ASSERT_TRUE(Enabled(kUndoSpecialPagesButtonID));
  ASSERT_EQ(Press(kUndoSpecialPagesButtonID), noErr);
  EXPECT_EQ(Rows(), (Rows_{"3|Exception|"}));
}

TEST_F(SpecialPagesDialogs, DefaultsAndHelp) {
  OpenPane();
  script().typeText(Id(kExceptionPagesFieldID), "2-4");
  script().chooseMenuItemByRefCon(Id(kExceptionPlexPopupID), kLongEdge);
  chooseColor(kExceptionStockButtonID, kBlue);
  script().sendCommand(toolkit::kHICommandRevert);
  std::string afterDefaults;
  peek(&afterDefaults, [](toolkit::Window& w) {
    return Text(w, kExceptionPagesFieldID) + "|" + Text(w, kExceptionStockSummaryID) + "|" +
           std::to_string(w.defaultButton()->isEnabled());
  });
  script().sendCommand(kSpecialPagesHelpCommand);
  script().sendCommand(toolkit::kHICommandCancel);
  run(kAddExceptionsButtonID);
  EXPECT_EQ(afterDefaults, "|Use Job Setting|0");
  ASSERT_EQ(toolkit::HeadlessAlerts().helpRequests().size(), 1u);
  EXPECT_EQ(toolkit::HeadlessAlerts().helpRequests()[0].page, "Special_Pages/Add_Exceptions/m_add_exceptions_page.htm");
}

}  // namespace
}  // namespace varno::testing
