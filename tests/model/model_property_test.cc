// SPDX-License-Identifier: Apache-2.0
// Randomised checks against simple models of the expected result, with fixed seeds so
// that a failure can be replayed.
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/special_page_lists.h"
#include "model/stock.h"
#include "vocabulary/setting_maps.h"

namespace varno::model {

using vocabulary::kUnsetValue;

namespace {

constexpr int kPages = 40;

TEST(ExceptionMergeProperty, ListStaysSortedDisjointAndNewestWins) {
  std::mt19937 random(20261123);
  std::uniform_int_distribution<int> page(1, kPages);
  std::uniform_int_distribution<int> batch(1, 3);
  for (int round = 0; round < 300; ++round) {
    ExceptionPageList list;
    // owner[p]: tag of the newest range covering page p, 0 when none does.
    std::vector<int> owner(kPages + 1, 0);
    int tag = 0;
    for (int step = 0; step < 12; ++step) {
      std::vector<ExceptionPage> ranges(static_cast<std::size_t>(batch(random)));
      std::vector<const SpecialPage*> view;
      for (ExceptionPage& range : ranges) {
        int first = page(random), last = page(random);
        if (first > last) std::swap(first, last);
        range.setStartPage(first);
        range.setEndPage(last);
        range.setLightenDarken(++tag);
        for (int p = first; p <= last; ++p) owner[static_cast<std::size_t>(p)] = tag;
        view.push_back(&range);
      }
      ASSERT_EQ(list.add(view), noErr);

      std::vector<int> seen(kPages + 1, 0);
      for (std::int32_t i = 0; i < list.count(); ++i) {
        const ExceptionPage* range = list.pageAtIndex(i);
        ASSERT_TRUE(range->startPage() <= range->endPage() &&
                    (i == 0 || list.pageAtIndex(i - 1)->endPage() < range->startPage()))
            << "round " << round << ": not sorted and disjoint at " << i;
        for (int p = range->startPage(); p <= range->endPage(); ++p)
          seen[static_cast<std::size_t>(p)] = range->lightenDarken();
      }
      ASSERT_EQ(seen, owner) << "round " << round << ", step " << step;
    }
  }
}

std::string RandomText(std::mt19937& random) {
  static const std::vector<std::string> texts = {"", "", "Gloss", "gloss", "Straße", "Card 200"};
  return texts[std::uniform_int_distribution<std::size_t>(0, texts.size() - 1)(random)];
}

TEST(StockRoundTripProperty, TicketFormRebuildsAnEqualStock) {
  std::mt19937 random(7);
  std::uniform_int_distribution<std::int32_t> small(-3, 120);
  auto maybe = [&](std::int32_t value) { return random() % 3 == 0 ? kUnsetValue : value; };
  for (int i = 0; i < 400; ++i) {
    Stock stock;
    stock.setSize(maybe(small(random)));
    if (random() % 2) stock.setWidth(maybe(small(random)));
    if (random() % 2) stock.setLength(maybe(small(random)));
    stock.setType(maybe(static_cast<std::int32_t>(random() % 8)));
    // The round trip holds for stocks that keep the ticket form's own rules.
    stock.setColor(static_cast<std::int32_t>(random() % 10));
    if (stock.type() == 2) stock.setColor(6);
    if (stock.type() == 4 || stock.type() == 6) stock.setModulus(maybe(small(random)));
    stock.setSidesCoated(maybe(small(random)));
    if (stock.sidesCoated() != kUnsetValue) stock.setCoatingType(small(random));
    for (auto set : {&Stock::setPunched, &Stock::setWeight, &Stock::setFinish, &Stock::setGrain, &Stock::setSource})
      (stock.*set)(maybe(small(random)));
    stock.setCustomNameOnly(random() % 2);
    for (auto set : {&Stock::setCustomType, &Stock::setCustomColor, &Stock::setDescription,
                     &Stock::setCustomName, &Stock::setComment})
      (stock.*set)(RandomText(random));

    const plist::Dictionary form = stock.asTicket();
    const Stock back(&form);
    ASSERT_EQ(back, stock) << "stock " << i;
    ASSERT_EQ(back.asTicket(), form) << "stock " << i;
    ASSERT_EQ(form.contains("CustomNameOnly"), stock.customNameOnly() != 0);
  }
}

}  // namespace
}  // namespace varno::model
