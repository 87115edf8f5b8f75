// SPDX-License-Identifier: Apache-2.0
// The Special Pages panel driven as a person uses it: its list, its buttons and their
// enabling, deleting and undoing, moving inserts, and what reaches the ticket.
#include <gtest/gtest.h>

#include "model/special_page_lists.h"
#include "panels/special_pages/page_ranges.h"
#include "model/special_pages_ticket.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"
#include "special_pages_fixture.h"

namespace varno::testing {
namespace {

using namespace panels;

model::Insert InsertAfter(std::int32_t page, std::int32_t quantity = 1) {
  model::Insert insert;
  insert.setStartPage(page);
  insert.setQuantity(quantity);
  return insert;
}

model::ExceptionPage Exception(std::int32_t first, std::int32_t last, std::int32_t plex = vocabulary::kUnsetValue) {
  model::ExceptionPage page;
  page.setStartPage(first);
  page.setEndPage(last);
  page.setPlex(plex);
  return page;
}

// Puts inserts and exceptions into the ticket, as an earlier dialog left them.
auto WithPages(std::vector<model::Insert> inserts, std::vector<model::ExceptionPage> exceptions) {
  return [=](print::Ticket& ticket) {
    model::InsertList insertList;
    model::ExceptionPageList exceptionList;
    for (const model::Insert& insert : inserts) {
      const model::SpecialPage* page = &insert;
      insertList.add({&page, 1});
    }
    for (const model::ExceptionPage& exception : exceptions) {
      const model::SpecialPage* page = &exception;
      exceptionList.add({&page, 1});
    }
    model::WriteSpecialPageList(ticket, model::kInsertListKey, insertList);
    model::WriteSpecialPageList(ticket, model::kExceptionListKey, exceptionList);
  };
}

using SpecialPagesPanel = SpecialPagesPane;

TEST_F(SpecialPagesPanel, ListsPagesInPageOrderWithExceptionsBeforeInsertsOnTheirFirstPage) {
  OpenPane([](print::Ticket& ticket) {
    WithPages({InsertAfter(3, 2), InsertAfter(0)}, {Exception(3, 4, 2), Exception(7, 7)})(ticket);
    vocabulary::PPDSetCurrentChoice(&ticket, "VNFrontCoverSheet", "Auto");
    vocabulary::PPDSetCurrentChoice(&ticket, "VNBackCoverSheet", "Auto");
  });
  EXPECT_EQ(Rows(), (std::vector<std::string>{"Front|Cover|Blank or Preprinted",
                                              "Before Page 1|Insert|Quantity [1]; White",
                                              "3-4|Exception|2-Sided (Long Edge); White",
                                              "3|Insert|Quantity [2]; White", "7|Exception|White",
                                              "Back|Cover|Blank or Preprinted"}));
  EXPECT_FALSE(Enabled(kEditSpecialPageButtonID));
  EXPECT_TRUE(Enabled(kDeleteAllSpecialPagesButtonID));
  EXPECT_FALSE(Enabled(kUndoSpecialPagesButtonID));
}

TEST_F(SpecialPagesPanel, AddingInsertsAndExceptionsIsOffUnderNUpOrBookletLayoutAfterEverySyncAndOpen) {
  OpenPane();
  struct Case {
    bool nUp, booklet;
  };
  for (const Case& layout : {Case{true, false}, Case{false, true}, Case{false, false}}) {
    print::Ticket ticket = session_->printSettings();
    ticket.setValue("com.apple.print.PrintSettings.PMLayoutNUp", layout.nUp, "com.apple.print");
    ticket.setValue("com.varno.print.BookletLayout", layout.booklet, "com.varno.print");
    const bool off = layout.nUp || layout.booklet;
    for (int round = 0; round < 2; ++round) {
      // First after the pane reads the ticket, then after it is shown again.
      if (round == 0) {
        ASSERT_EQ(Sync(true), noErr);
      } else {
        ASSERT_EQ(table_->Close(context_), noErr);
        ASSERT_EQ(table_->Open(context_), noErr);
      }
      EXPECT_EQ(Enabled(kAddInsertsButtonID), !off) << layout.nUp << layout.booklet << round;
      EXPECT_EQ(Enabled(kAddExceptionsButtonID), !off);
      EXPECT_TRUE(Enabled(kAddCoversButtonID));
      EXPECT_EQ(Find(kSpecialPagesNoteID)->isShown(), off);
    }
  }
}

TEST_F(SpecialPagesPanel, DeletingAsksFirstAndUndoBringsBackOneStep) {
  OpenPane(WithPages({InsertAfter(2), InsertAfter(5)}, {Exception(3, 4)}));
  const std::vector<std::string> before = Rows();
  ASSERT_EQ(before.size(), 3u);

  // "No" deletes nothing, yet the undo step is taken.
  Select({0});
  EXPECT_TRUE(Enabled(kEditSpecialPageButtonID));
  toolkit::HeadlessAlerts().answerNextAlert(toolkit::kAlertStdAlertOKButton);
  Press(kDeleteSpecialPagesButtonID);
  EXPECT_EQ(Rows(), before);
  EXPECT_TRUE(Enabled(kUndoSpecialPagesButtonID));

  Select({0, 2});
  toolkit::HeadlessAlerts().answerNextAlert(toolkit::kAlertStdAlertOtherButton);
  Press(kDeleteSpecialPagesButtonID);
  EXPECT_EQ(Rows(), std::vector<std::string>{before[1]});
  ASSERT_EQ(toolkit::HeadlessAlerts().alerts().size(), 2u);
  EXPECT_EQ(toolkit::HeadlessAlerts().alerts().back().alert.otherText, "Yes");

  toolkit::HeadlessAlerts().answerNextAlert(toolkit::kAlertStdAlertOtherButton);
  Press(kDeleteAllSpecialPagesButtonID);
  EXPECT_TRUE(Rows().empty());
  EXPECT_FALSE(Enabled(kDeleteAllSpecialPagesButtonID));

  Press(kUndoSpecialPagesButtonID);
  EXPECT_EQ(Rows(), std::vector<std::string>{before[1]});
  EXPECT_FALSE(Enabled(kUndoSpecialPagesButtonID)) << "one level only";

  // What the pane shows is what reaches the ticket; an emptied list takes its key away.
  ASSERT_EQ(Sync(false), noErr);
  model::InsertList inserts;
  EXPECT_NE(model::ReadInsertList(session_->printSettings(), inserts), noErr);
  model::ExceptionPageList exceptions;
  EXPECT_EQ(model::ReadExceptionList(session_->printSettings(), exceptions), noErr);
  EXPECT_EQ(exceptions.count(), 1);
}

TEST_F(SpecialPagesPanel, MovingFollowsTheLastSelectedRowAndKeepsInsertsBeforePage1AtTheHead) {
  OpenPane(WithPages({InsertAfter(0), InsertAfter(4, 1), InsertAfter(4, 2)}, {}));
  ASSERT_EQ(Rows().size(), 3u);
  struct Case {
    std::initializer_list<std::size_t> selection;
    bool up, down;
  };
  for (const Case& c : {Case{{0}, false, true}, Case{{1}, false, true}, Case{{2}, true, false},
                        Case{{2, 1}, false, true}, Case{{1, 2}, true, false}}) {
    Select(c.selection);
    EXPECT_EQ(Enabled(kMoveUpButtonID), c.up) << Rows()[*c.selection.begin()];
    EXPECT_EQ(Enabled(kMoveDownButtonID), c.down);
  }
  Select({2});
  Press(kMoveUpButtonID);
  EXPECT_EQ(Rows()[1], "4|Insert|Quantity [2]; White");
  EXPECT_TRUE(Enabled(kMoveDownButtonID)) << "the moved insert stays selected";
  Press(kUndoSpecialPagesButtonID);
  EXPECT_EQ(Rows()[1], "4|Insert|Quantity [1]; White");
}

TEST(PageRanges, ReadsWhatPeopleTypeAndRefusesWhatCannotBeMeant) {
  struct Case {
    const char* text;
    bool asRanges;
    OSStatus status;
    std::vector<PageRange> ranges;
  };
  const Case cases[] = {
      {"1,3-5", true, noErr, {{1, 1}, {3, 3}}},
      {"1,3-5", false, noErr, {{1, 1}, {3, 1}, {4, 1}, {5, 1}}},
      {"2 4", true, noErr, {{2, 1}, {4, 1}}},
      {"-3", true, noErr, {{1, 3}}},
      {"7-", true, noErr, {{7, 99993}}},
      {" 0 , 12 - 14x,", true, noErr, {{0, 1}, {12, 3}}},
      {"99999", true, noErr, {{99999, 1}}},
      {"5-3", true, kInvalidRangeOrder, {}},
      {"1,5-3", false, kInvalidRangeOrder, {}},
      {"1--2", true, kInvalidPageRanges, {}},
      {"-,4", true, kInvalidPageRanges, {}},
      {"", true, kInvalidPageRanges, {}},
      {",", true, kInvalidPageRanges, {}},
      {"100000", true, kPageNumberTooLong, {}},
      {"2,123456", true, kPageNumberTooLong, {}},
      {"000004", true, noErr, {{4, 1}}},
  };
  for (const Case& c : cases) {
    std::vector<PageRange> ranges{{9, 9}};
    EXPECT_EQ(CreatePageRangesBySeparatingString(c.text, c.asRanges, &ranges), c.status) << c.text;
    EXPECT_EQ(ranges, c.ranges) << c.text;
  }
  std::vector<PageRange> ranges;
  EXPECT_EQ(CreatePageRangesBySeparatingString(nullptr, true, &ranges), paramErr);
  EXPECT_EQ(CreatePageRangesBySeparatingString("1", true, nullptr), paramErr);
}

}  // namespace
}  // namespace varno::testing
