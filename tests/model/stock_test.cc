// SPDX-License-Identifier: Apache-2.0
#include "model/stock.h"

#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "vocabulary/setting_maps.h"

namespace varno::model {

using vocabulary::kUnsetValue;

namespace {

using plist::Dictionary;

// One change per field, each away from the default; together they give kEveryField.
const std::vector<std::function<void(Stock&)>> kFieldChanges = {
    [](Stock& s) { s.setSize(75); },           [](Stock& s) { s.setWidth(850); },
    [](Stock& s) { s.setLength(1100); },       [](Stock& s) { s.setType(6); },
    [](Stock& s) { s.setCustomType("Heavy"); }, [](Stock& s) { s.setColor(3); },
    [](Stock& s) { s.setCustomColor("Sand"); }, [](Stock& s) { s.setModulus(5); },
    [](Stock& s) { s.setPunched(2); },         [](Stock& s) { s.setWeight(90); },
    [](Stock& s) { s.setDescription("Letterhead"); },
    [](Stock& s) { s.setSidesCoated(2); },     [](Stock& s) { s.setCoatingType(4); },
    [](Stock& s) { s.setFinish(7); },          [](Stock& s) { s.setGrain(1); },
    [](Stock& s) { s.setCustomName("Board"); }, [](Stock& s) { s.setCustomNameOnly(1); },
    [](Stock& s) { s.setComment("left tray"); }, [](Stock& s) { s.setSource(100); }};
const Dictionary kEveryField{
    {"Size", 75},          {"Width", 850},          {"Length", 1100},
    {"Type", 6},           {"CustomType", "Heavy"}, {"Modulus", 5},
    {"Color", 3},          {"CustomColor", "Sand"}, {"Weight", 90},
    {"Punched", 2},        {"Description", "Letterhead"},
    {"SidesCoated", 2},    {"kCoatingType", 4},     {"Finish", 7},
    {"kGrain", 1},         {"CustomName", "Board"}, {"CustomNameOnly", true},
    {"CustomComment", "left tray"},                 {"Source", 100}};

TEST(StockTicketForm, DefaultStockHoldsExactlyTypeAndColor) {
  EXPECT_EQ(Stock().asTicket(), (Dictionary{{"Type", kUnsetValue}, {"Color", 1}}));
  // Read from nothing, the stock has no colour and writes none back.
  EXPECT_EQ(Stock(nullptr).asTicket(), (Dictionary{{"Type", kUnsetValue}}));
  EXPECT_EQ(Stock(Dictionary()).asTicket(), (Dictionary{{"Type", kUnsetValue}}));
}

TEST(StockTicketForm, EveryFieldUnderItsStoredKey) {
  Stock stock;
  for (const auto& change : kFieldChanges) change(stock);
  EXPECT_EQ(stock.asTicket(), kEveryField);
  EXPECT_EQ(Stock(kEveryField), stock);

  // A coating type alone is never written.
  stock.setSidesCoated(kUnsetValue);
  EXPECT_FALSE(stock.asTicket().contains("kCoatingType"));
}

TEST(StockFromTicket, GuardedKeysAndUnreadableValuesKeepTheDefaults) {
  using Field = std::int32_t (Stock::*)() const;
  const struct {
    Dictionary ticket;
    Field field;
    std::int32_t expected;
  } cases[] = {
      // Width and length only for the custom size; an unreadable size reads neither.
      {{{"Size", 1}, {"Width", 850}}, &Stock::width, kUnsetValue},
      {{{"Size", 75.5}, {"Width", 850}}, &Stock::width, kUnsetValue},
      {{{"Type", 4}, {"Modulus", 5}}, &Stock::modulus, 5},
      {{{"Type", 24}, {"Modulus", 5}}, &Stock::modulus, kUnsetValue},
      {{{"kCoatingType", 3}}, &Stock::coatingType, 1},
      {{{"SidesCoated", 2}, {"kCoatingType", 3}}, &Stock::coatingType, 3},
      {{{"SidesCoated", 2}, {"CoatingType", 3}}, &Stock::coatingType, 1},  // not our key
      {{{"Grain", 3}}, &Stock::grain, kUnsetValue},
      {{{"Weight", std::int64_t{1} << 40}}, &Stock::weight, kUnsetValue},
      {{{"Color", "blue"}}, &Stock::color, kUnsetValue}};
  for (std::size_t i = 0; i < std::size(cases); ++i)
    EXPECT_EQ((Stock(cases[i].ticket).*cases[i].field)(), cases[i].expected) << "case " << i;
  EXPECT_EQ(Stock(Dictionary{{"CustomNameOnly", 1}}).customNameOnly(), 0);
}

TEST(StockRules, CustomSizeAndTransparency) {
  Stock stock;
  stock.setSize(1);
  stock.setWidth(600);
  EXPECT_EQ(stock.size(), 75);
  stock.setSize(1);
  EXPECT_EQ(stock.width(), kUnsetValue);
  stock.setWidth(kUnsetValue);
  EXPECT_EQ(stock.size(), 1);

  stock.setType(2);
  EXPECT_EQ(stock.color(), 6);

  // Assignment re-applies the rule even after the source's colour was changed.
  stock.setColor(3);
  Stock copy;
  copy = stock;
  EXPECT_EQ(copy.color(), 6);
  EXPECT_FALSE(copy == stock);
  stock.setType(1);
  copy = stock;
  EXPECT_EQ(copy, stock);
}

TEST(StockEquality, CaseInsensitiveOnStringsExactOnEverythingElse) {
  Stock a, b;
  a.setCustomType("Heavy Gloss");
  a.setComment("Straße");
  b.setCustomType("HEAVY gloss");
  b.setComment("STRASSE");
  EXPECT_EQ(a, b);

  // Every field takes part, coatingType even while sidesCoated is unset.
  for (std::size_t i = 0; i < kFieldChanges.size(); ++i) {
    Stock changed = a;
    kFieldChanges[i](changed);
    EXPECT_FALSE(changed == a) << "change " << i;
  }
}

}  // namespace
}  // namespace varno::model
