// SPDX-License-Identifier: Apache-2.0
#include "model/special_pages.h"

#include <array>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "model/covers_sync.h"
#include "model/special_page_lists.h"
#include "model/special_pages_ticket.h"
#include "vocabulary/setting_maps.h"

namespace varno::model {

using vocabulary::kUnsetValue;

namespace {

using plist::Array;
using plist::Dictionary;

const Dictionary kDefaultStock{{"Type", kUnsetValue}, {"Color", 1}};

Insert MakeInsert(std::int32_t after, std::int32_t quantity) {
  Insert insert;
  insert.setStartPage(after);
  insert.setQuantity(quantity);
  return insert;
}

// The lighten/darken value tells which range a surviving part came from.
ExceptionPage MakeRange(std::int32_t first, std::int32_t last, std::int32_t tag) {
  ExceptionPage page;
  page.setStartPage(first);
  page.setEndPage(last);
  page.setLightenDarken(tag);
  return page;
}

template <typename... Pages>
OSStatus Add(SpecialPageList& list, const Pages&... pages) {
  return list.add(std::vector<const SpecialPage*>{&pages...});
}

// Each range as {start, end, tag}.
using R = std::vector<std::array<std::int32_t, 3>>;
R Ranges(const ExceptionPageList& list) {
  R ranges;
  for (std::int32_t i = 0; i < list.count(); ++i) {
    const ExceptionPage* page = list.pageAtIndex(i);
    ranges.push_back({page->startPage(), page->endPage(), page->lightenDarken()});
  }
  return ranges;
}

TEST(SpecialPageTicketForm, EachPageKindWritesItsKeys) {
  Cover cover;
  cover.setStartPage(9);
  EXPECT_EQ(cover.asTicket(),
            (Dictionary{{"StartPage", 9}, {"Stock", kDefaultStock}, {"SidesImaged", 1}}));
  EXPECT_EQ(MakeInsert(3, 2).asTicket(),
            (Dictionary{{"StartPage", 3}, {"Stock", kDefaultStock}, {"Quantity", 2}}));
  // No image shift option, no plex, no lighten/darken: none of their keys.
  ExceptionPage range = MakeRange(4, 6, kUnsetValue);
  EXPECT_EQ(range.asTicket(),
            (Dictionary{{"StartPage", 4}, {"Stock", kDefaultStock}, {"EndPage", 6}}));

  range.setPlex(2);
  range.setLightenDarken(-3);
  range.imageShift().option = 1;
  range.imageShift().x1 = 100;
  const Dictionary form = range.asTicket();
  EXPECT_EQ(form, (Dictionary{{"StartPage", 4},
                              {"Stock", kDefaultStock},
                              {"EndPage", 6},
                              {"com.varno.print.ImageShiftOptionsPage",
                               Dictionary{{"Option", 1}, {"Inches", 1}, {"FullPrecision", true},
                                          {"X1", 2540}, {"Y1", 0}, {"X2", 0}, {"Y2", 0}}},
                              {"SidesImaged", 2},
                              {"LightenDarken", -3}}));
  const ExceptionPage back(&form);
  EXPECT_EQ(back.asTicket(), form);
  EXPECT_EQ(back.imageShift().x1, 100);
}

TEST(SpecialPageFromTicket, MissingKeysLeaveDefaults) {
  const Dictionary form{{"StartPage", 2}, {"HalftoneScreen", 5}};
  const ExceptionPage range(&form);
  EXPECT_EQ(range.endPage(), 0);
  EXPECT_EQ(range.halftoneScreen(), kUnsetValue);  // written, never read
  EXPECT_EQ(range.stock().color(), kUnsetValue);   // no "Stock": the null-dictionary stock
  EXPECT_EQ(Cover(nullptr).sidesImaged(), 1);
}

TEST(CoverEquality, SameSidesWhateverThePage) {
  Cover a, b;
  b.setStartPage(7);
  EXPECT_EQ(a, b);
  b.setSidesImaged(2);
  EXPECT_FALSE(a == b);
}

TEST(InsertOrder, SamePageKeepsTheOrderOfAdding) {
  InsertList list;
  ASSERT_EQ(Add(list, MakeInsert(5, 1), MakeInsert(2, 2)), noErr);
  ASSERT_EQ(Add(list, MakeInsert(5, 3)), noErr);
  std::vector<std::int32_t> quantities;
  for (std::int32_t i = 0; list.pageAtIndex(i); ++i)
    quantities.push_back(list.pageAtIndex(i)->quantity());
  EXPECT_EQ(quantities, (std::vector<std::int32_t>{2, 1, 3}));
}

TEST(InsertOrder, PromoteStopsAtTheHeadAndBeforePageZero) {
  InsertList list;
  Add(list, MakeInsert(0, 1), MakeInsert(3, 2), MakeInsert(5, 3));
  Insert *first = list.pageAtIndex(0), *second = list.pageAtIndex(1), *last = list.pageAtIndex(2);
  EXPECT_FALSE(list.canPromote(first));
  EXPECT_FALSE(list.canPromote(second));  // its predecessor goes before page 1
  EXPECT_FALSE(list.canDemote(last));
  // Only the neighbour's page is looked at: an insert before page 1 may move down.
  EXPECT_TRUE(list.canDemote(first));
  const Insert outsider = MakeInsert(4, 1);
  EXPECT_FALSE(list.canPromote(&outsider));

  ASSERT_TRUE(list.canPromote(last));
  list.promote(last);
  EXPECT_EQ(list.indexOfPage(last), 1);
  EXPECT_EQ(last->startPage(), 5);  // page numbers stay; only the order changes
  list.promote(last);               // refused now: its predecessor is at page 0
  EXPECT_EQ(list.indexOfPage(last), 1);
  list.demote(last);
  EXPECT_EQ(list.indexOfPage(last), 2);
  EXPECT_EQ(list.indexOfPage(second), 1);
}

// The newest range wins: it splits, trims or replaces older ones; later ranges append.
TEST(ExceptionMerge, NewestRangeWinsAndSplitsOrTrimsOlder) {
  ExceptionPageList list;
  Add(list, MakeRange(1, 10, 1));
  Add(list, MakeRange(4, 6, 2));
  EXPECT_EQ(Ranges(list), (R{{1, 3, 1}, {4, 6, 2}, {7, 10, 1}}));
  Add(list, MakeRange(1, 10, 3));
  EXPECT_EQ(Ranges(list), (R{{1, 10, 3}}));

  list.clear();
  Add(list, MakeRange(5, 8, 1), MakeRange(1, 6, 2), MakeRange(9, 12, 3), MakeRange(7, 7, 4));
  EXPECT_EQ(Ranges(list), (R{{1, 6, 2}, {7, 7, 4}, {8, 8, 1}, {9, 12, 3}}));
}

TEST(SpecialPageList, HoldsClonesRefusesWrongPagesAndUpdatesInPlace) {
  ExceptionPageList list;
  ExceptionPage mine = MakeRange(1, 4, 1);
  Add(list, mine);
  mine.setEndPage(9);
  EXPECT_EQ(list.pageAtIndex(0)->endPage(), 4);

  const ExceptionPageList copy(list);
  list.pageAtIndex(0)->setEndPage(2);
  EXPECT_EQ(copy.pageAtIndex(0)->endPage(), 4);

  // A backwards range or a page of another kind changes nothing.
  EXPECT_EQ(Add(list, MakeRange(8, 9, 2), MakeRange(6, 5, 3)), paramErr);
  EXPECT_EQ(Add(list, Cover()), paramErr);
  EXPECT_EQ(list.count(), 1);

  // Updating replaces the page, or puts it back when the new one is refused.
  list.clear();
  Add(list, MakeRange(1, 3, 1), MakeRange(5, 8, 2), MakeRange(10, 12, 3));
  const ExceptionPage* middle = list.pageAtIndex(1);

  const ExceptionPage backwards = MakeRange(9, 4, 4), wider = MakeRange(3, 10, 5);
  const SpecialPage *bad[] = {&backwards}, *good[] = {&wider};
  EXPECT_EQ(list.update(*middle, bad), paramErr);
  EXPECT_EQ(list.indexOfPage(middle), 1);
  EXPECT_EQ(list.update(*middle, good), noErr);
  EXPECT_EQ(Ranges(list), (R{{1, 2, 1}, {3, 10, 5}, {11, 12, 3}}));
  list.remove(list.pageAtIndex(0));
  EXPECT_EQ(Ranges(list), (R{{3, 10, 5}, {11, 12, 3}}));
}

TEST(SpecialPagesTicket, ListsAreWrittenAsArraysAndEmptyListsRemoved) {
  print::Ticket ticket;
  InsertList inserts;
  EXPECT_FALSE(inserts.asTicket());
  Add(inserts, MakeInsert(4, 1));
  ASSERT_EQ(WriteSpecialPageList(ticket, kInsertListKey, inserts), noErr);
  plist::Array stored;
  ASSERT_EQ(ticket.getArray(kInsertListKey, stored), noErr);
  EXPECT_EQ(stored, (Array{Dictionary{{"StartPage", 4}, {"Stock", kDefaultStock}, {"Quantity", 1}}}));

  inserts.clear();
  EXPECT_EQ(WriteSpecialPageList(ticket, kInsertListKey, inserts), noErr);
  EXPECT_FALSE(ticket.contains(kInsertListKey));
}

TEST(SpecialPagesTicket, ReadingMergesAndSortsWhatWasStored) {
  print::Ticket ticket;
  // Written by hand out of order and overlapping, with one element that is no dictionary.
  ticket.setValue(kExceptionListKey,
                  Array{MakeRange(1, 10, 1).asTicket(), MakeRange(4, 6, 2).asTicket()},
                  "com.varno.print");
  ticket.setValue(kInsertListKey, Array{MakeInsert(7, 1).asTicket(), "junk"}, "com.varno.print");
  ExceptionPageList ranges;
  Add(ranges, MakeRange(20, 30, 9));
  ASSERT_EQ(ReadExceptionList(ticket, ranges), noErr);
  EXPECT_EQ(Ranges(ranges), (R{{1, 3, 1}, {4, 6, 2}, {7, 10, 1}}));

  InsertList inserts;
  ASSERT_EQ(ReadInsertList(ticket, inserts), noErr);
  ASSERT_EQ(inserts.count(), 2);
  EXPECT_EQ(inserts.pageAtIndex(0)->startPage(), 0);  // the default page from "junk"
  EXPECT_EQ(inserts.pageAtIndex(1)->startPage(), 7);

  ticket.releaseItem(kInsertListKey);
  EXPECT_EQ(ReadInsertList(ticket, inserts), kPMInvalidKey);
  EXPECT_EQ(inserts.count(), 0);
}

TEST(SpecialPagesTicket, ADamagedRangeIsLeftOutAndTheOthersKept) {
  print::Ticket ticket;
  Dictionary noEnd = MakeRange(5, 8, 3).asTicket();
  noEnd.remove("EndPage");
  ticket.setValue(kExceptionListKey,
                  Array{MakeRange(1, 2, 1).asTicket(), noEnd, MakeRange(9, 7, 2).asTicket(),
                        MakeRange(10, 12, 2).asTicket()},
                  "com.varno.print");
  ExceptionPageList ranges;
  EXPECT_EQ(ReadExceptionList(ticket, ranges), paramErr);
  EXPECT_EQ(Ranges(ranges), (R{{1, 2, 1}, {10, 12, 2}}));
}

TEST(SyncCovers, WritesTraysAndDictionaries) {
  print::Ticket ticket;
  auto front = std::make_unique<Cover>(), back = std::make_unique<Cover>();
  front->stock().setSource(2);
  back->stock().setSource(100);
  EXPECT_EQ(SyncCovers(ticket, false, front, back), noErr);
  EXPECT_EQ(ticket.ppdDictionary(),
            (Dictionary{{"VNFrontCoverSheet", "Tray2"}, {"VNBackCoverSheet", "Bypass"}}));
  EXPECT_EQ(ticket.dictionary(kFrontCoverKey), front->asTicket());
  EXPECT_EQ(ticket.dictionary(kBackCoverKey), back->asTicket());

  // Under booklet layout the back cover's tray is not touched.
  ticket.setValue(kBookletLayoutKey, true, "V");
  std::unique_ptr<Cover> none;
  EXPECT_EQ(SyncCovers(ticket, false, none, none), noErr);
  EXPECT_EQ(ticket.ppdDictionary(),
            (Dictionary{{"VNFrontCoverSheet", "None"}, {"VNBackCoverSheet", "Bypass"}}));
  EXPECT_FALSE(ticket.contains(kFrontCoverKey));
  EXPECT_FALSE(ticket.contains(kBackCoverKey));
}

TEST(SyncCovers, ReadsCoversFromTheirTraysOnly) {
  print::Ticket ticket;
  ticket.ppdDictionary().set("VNFrontCoverSheet", "Tray3");
  ticket.ppdDictionary().set("VNBackCoverSheet", "None");
  auto front = std::make_unique<Cover>(), back = std::make_unique<Cover>();
  front->stock().setWeight(200);
  ASSERT_EQ(SyncCovers(ticket, true, front, back), noErr);
  ASSERT_TRUE(front);
  Cover expected;
  expected.stock().setSource(3);
  EXPECT_EQ(*front, expected);
  EXPECT_FALSE(back);

  ticket.setValue(kBookletLayoutKey, true, "V");
  ticket.ppdDictionary().set("VNBackCoverSheet", "Tray1");
  ASSERT_EQ(SyncCovers(ticket, true, front, back), noErr);
  ASSERT_TRUE(back);
  EXPECT_NE(back.get(), front.get());
  EXPECT_EQ(*back, *front);

  ticket.ppdDictionary().set("VNFrontCoverSheet", "None");
  ASSERT_EQ(SyncCovers(ticket, true, front, back), noErr);
  EXPECT_FALSE(front);
  EXPECT_FALSE(back);  // booklet: no front cover, no back cover, whatever its tray says
}

}  // namespace
}  // namespace varno::model
