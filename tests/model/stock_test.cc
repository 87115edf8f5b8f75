#include "model/stock.h"

#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "vocabulary/setting_maps.h"

namespace varno::model {
namespace {

using plist::Dictionary;
using plist::Value;

TEST(StockTicketForm, DefaultStockHoldsExactlyTypeAndColor) {
  EXPECT_EQ(Stock().asTicket(), (Dictionary{{"Type", kUnsetValue}, {"Color", 1}}));
  // Read from nothing, the stock has no colour and writes none back.
  EXPECT_EQ(Stock(nullptr).asTicket(), (Dictionary{{"Type", kUnsetValue}}));
  EXPECT_EQ(Stock(Dictionary()).asTicket(), (Dictionary{{"Type", kUnsetValue}}));
}

TEST(StockTicketForm, EveryFieldUnderItsStoredKey) {
  Stock stock;
  stock.setWidth(850);
  stock.setLength(1100);
  stock.setType(6);
  stock.setCustomType("Heavy");
  stock.setColor(3);
  stock.setCustomColor("Sand");
  stock.setModulus(5);
  stock.setPunched(2);
  stock.setWeight(90);
  stock.setDescription("Letterhead");
  stock.setSidesCoated(2);
  stock.setCoatingType(4);
  stock.setFinish(7);
  stock.setGrain(1);
  stock.setCustomName("Board");
  stock.setCustomNameOnly(1);
  stock.setComment("left tray");
  stock.setSource(100);
  const Dictionary expected{
      {"Size", 75},          {"Width", 850},          {"Length", 1100},
      {"Type", 6},           {"CustomType", "Heavy"}, {"Modulus", 5},
      {"Color", 3},          {"CustomColor", "Sand"}, {"Weight", 90},
      {"Punched", 2},        {"Description", "Letterhead"},
      {"SidesCoated", 2},    {"kCoatingType", 4},     {"Finish", 7},
      {"kGrain", 1},         {"CustomName", "Board"}, {"CustomNameOnly", true},
      {"CustomComment", "left tray"},                 {"Source", 100}};
  EXPECT_EQ(stock.asTicket(), expected);
  EXPECT_EQ(Stock(expected), stock);

  // A coating type alone is never written.
  stock.setSidesCoated(kUnsetValue);
  EXPECT_FALSE(stock.asTicket().contains("kCoatingType"));
}

TEST(StockFromTicket, WidthAndLengthOnlyForCustomSize) {
  const Stock custom(Dictionary{{"Size", 75}, {"Width", 850}, {"Length", 1100}});
  EXPECT_EQ(custom.size(), 75);
  EXPECT_EQ(custom.width(), 850);
  EXPECT_EQ(custom.length(), 1100);

  const Stock letter(Dictionary{{"Size", 1}, {"Width", 850}, {"Length", 1100}});
  EXPECT_EQ(letter.size(), 1);
  EXPECT_EQ(letter.width(), kUnsetValue);
  EXPECT_EQ(letter.length(), kUnsetValue);

  // An unreadable size reads neither size nor the custom dimensions.
  const Stock unreadable(Dictionary{{"Size", 75.5}, {"Width", 850}});
  EXPECT_EQ(unreadable.size(), kUnsetValue);
  EXPECT_EQ(unreadable.width(), kUnsetValue);
}

TEST(StockFromTicket, ConditionalKeysFollowTheirGuards) {
  EXPECT_EQ(Stock(Dictionary{{"Type", 4}, {"Modulus", 5}}).modulus(), 5);
  EXPECT_EQ(Stock(Dictionary{{"Type", 6}, {"Modulus", 5}}).modulus(), 5);
  EXPECT_EQ(Stock(Dictionary{{"Type", 24}, {"Modulus", 5}}).modulus(), kUnsetValue);
  EXPECT_EQ(Stock(Dictionary{{"Modulus", 5}}).modulus(), kUnsetValue);

  EXPECT_EQ(Stock(Dictionary{{"kCoatingType", 3}}).coatingType(), 1);
  EXPECT_EQ(Stock(Dictionary{{"SidesCoated", 2}, {"kCoatingType", 3}}).coatingType(), 3);
  // Spelled without the "k", the key is not ours.
  EXPECT_EQ(Stock(Dictionary{{"SidesCoated", 2}, {"CoatingType", 3}}).coatingType(), 1);
  EXPECT_EQ(Stock(Dictionary{{"Grain", 3}}).grain(), kUnsetValue);
}

TEST(StockFromTicket, UnreadableValuesKeepTheirDefaults) {
  const Stock stock(Dictionary{{"Weight", std::int64_t{1} << 40},
                               {"Color", "blue"},
                               {"CustomName", 7},
                               {"CustomNameOnly", 1},
                               {"Source", 2}});
  EXPECT_EQ(stock.weight(), kUnsetValue);
  EXPECT_EQ(stock.color(), kUnsetValue);
  EXPECT_EQ(stock.customName(), "");
  EXPECT_EQ(stock.customNameOnly(), 0);
  EXPECT_EQ(stock.source(), 2);
}

TEST(StockRules, CustomSizeAndTransparency) {
  Stock stock;
  stock.setSize(1);
  stock.setWidth(600);
  EXPECT_EQ(stock.size(), 75);
  stock.setLength(900);
  stock.setSize(1);
  EXPECT_EQ(stock.width(), kUnsetValue);
  EXPECT_EQ(stock.length(), kUnsetValue);
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
  Stock a;
  a.setCustomType("Heavy Gloss");
  a.setComment("Straße");
  Stock b = a;
  b.setCustomType("HEAVY gloss");
  b.setComment("STRASSE");
  EXPECT_EQ(a, b);
  b.setDescription("x");
  EXPECT_FALSE(a == b);

  // Every field takes part, coatingType even while sidesCoated is unset.
  const std::vector<std::function<void(Stock&)>> changes = {
      [](Stock& s) { s.setSize(3); },          [](Stock& s) { s.setWidth(1); },
      [](Stock& s) { s.setLength(1); },        [](Stock& s) { s.setType(5); },
      [](Stock& s) { s.setColor(4); },         [](Stock& s) { s.setModulus(2); },
      [](Stock& s) { s.setPunched(1); },       [](Stock& s) { s.setWeight(80); },
      [](Stock& s) { s.setSidesCoated(1); },   [](Stock& s) { s.setCoatingType(2); },
      [](Stock& s) { s.setFinish(1); },        [](Stock& s) { s.setGrain(1); },
      [](Stock& s) { s.setCustomNameOnly(1); }, [](Stock& s) { s.setSource(2); },
      [](Stock& s) { s.setCustomColor("c"); }, [](Stock& s) { s.setCustomName("n"); }};
  for (std::size_t i = 0; i < changes.size(); ++i) {
    Stock changed = a;
    changes[i](changed);
    EXPECT_FALSE(changed == a) << "change " << i;
  }
}

}  // namespace
}  // namespace varno::model
