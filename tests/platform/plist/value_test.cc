// SPDX-License-Identifier: Apache-2.0
#include "platform/plist/value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace varno::plist {
namespace {

std::vector<std::string> Keys(const Dictionary& d) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : d) keys.push_back(key);
  return keys;
}

TEST(SharedContainers, MutableCopyIsNewAtTheTopOnlyAndDeepCopySharesNothing) {
  Dictionary inner{{"A", 1}};
  Array list{inner};
  Dictionary outer{{"Inner", inner}, {"Name", "x"}, {"List", list}};
  Dictionary copy = outer.mutableCopy();
  copy.set("Name", "y");
  copy.set("Extra", true);
  EXPECT_EQ(outer.getString("Name"), "x");
  EXPECT_FALSE(outer.contains("Extra"));
  copy.getDictionary("Inner")->set("B", 2);
  EXPECT_TRUE(inner.contains("B")) << "elements of a mutable copy are shared (handles)";

  Dictionary deep = outer.deepCopy();
  (*deep.getArray("List"))[0].asDictionary()->set("A", 9);  // a dictionary inside an array
  EXPECT_EQ(inner.getNumber<int>("A"), 1);
}

TEST(DictionaryOrder, KeepsInsertionOrderThroughReplaceAndRemove) {
  Dictionary d;
  for (const char* key : {"c", "a", "d", "b"}) d.set(key, key);
  d.set("a", 5);  // replacing keeps the position
  EXPECT_EQ(Keys(d), (std::vector<std::string>{"c", "a", "d", "b"}));
  EXPECT_TRUE(d.remove("a"));
  EXPECT_FALSE(d.remove("a"));
  EXPECT_EQ(d.getString("b"), "b");  // lookups after a removal still find moved entries
  d.set("a", 1);
  EXPECT_EQ(Keys(d), (std::vector<std::string>{"c", "d", "b", "a"}));
}

TEST(DictionaryOrder, EqualityIgnoresOrderButNotContent) {
  Dictionary a{{"x", 1}, {"y", "two"}};
  Dictionary b{{"y", "two"}, {"x", 1}};
  EXPECT_EQ(a, b);
  b.set("x", 1.0);  // a real is not an integer
  EXPECT_NE(a, b);
}

TEST(TypedReads, WrongKindOrMissingKeyGivesNothing) {
  Dictionary d{{"s", "text"}, {"n", 3}, {"b", true}, {"a", Array{}}, {"d", Dictionary{}},
               {"t", Date{10}}, {"x", Data{1, 2}}};
  EXPECT_EQ(d.getString("n"), std::nullopt);
  EXPECT_EQ(d.getBoolean("s"), std::nullopt);
  EXPECT_FALSE(d.getArray("d").has_value());
  EXPECT_FALSE(d.getDictionary("a").has_value());
  EXPECT_EQ(d.getNumber<int>("b"), std::nullopt) << "a boolean is not a number";
  EXPECT_EQ(d.getNumber<int>("missing"), std::nullopt);
  EXPECT_EQ(d.getDate("t"), Date{10});
  EXPECT_EQ(d.getData("x"), (Data{1, 2}));
  // Literals take the kind they look like: text is not a boolean, 5u not a real.
  EXPECT_TRUE(Value("Green").isString());
  EXPECT_EQ(Value(5u).kind(), Kind::Integer);
}

TEST(ExactNumbers, ReadsOnlyWhatTheTargetTypeHoldsExactly) {
  EXPECT_EQ(Value(std::int64_t{1} << 40).toNumber<std::int32_t>(), std::nullopt);
  EXPECT_EQ(Value(1.5).toNumber<std::int32_t>(), std::nullopt);
  EXPECT_EQ(Value("12").toNumber<std::int32_t>(), std::nullopt);
  EXPECT_EQ(Value(2147483648LL).toNumber<std::int32_t>(), std::nullopt);
  EXPECT_EQ(Value(-2147483649LL).toNumber<std::int32_t>(), std::nullopt);
  EXPECT_EQ(Value(-2147483648LL).toNumber<std::int32_t>(), INT32_MIN);
  EXPECT_EQ(Value(2147483647LL).toNumber<std::int32_t>(), INT32_MAX);
  EXPECT_EQ(Value(7.0).toNumber<std::int32_t>(), 7) << "an integral real converts exactly";
  EXPECT_EQ(Value(std::nan("")).toNumber<std::int32_t>(), std::nullopt);
  EXPECT_EQ(Value(1e300).toNumber<std::int64_t>(), std::nullopt);
  // Unsigned and narrow types.
  EXPECT_EQ(Value(-1).toNumber<std::uint8_t>(), std::nullopt);
  EXPECT_EQ(Value(256).toNumber<std::uint8_t>(), std::nullopt);
  EXPECT_EQ(Value(255).toNumber<std::uint8_t>(), 255);
  EXPECT_EQ(Value(-32768).toNumber<std::int16_t>(), -32768);
  EXPECT_EQ(Value(INT64_MAX).toNumber<std::uint64_t>(), static_cast<std::uint64_t>(INT64_MAX));
  // Floating reads only when exact.
  EXPECT_EQ(Value(3).toNumber<double>(), 3.0);
  EXPECT_EQ(Value((std::int64_t{1} << 53) + 1).toNumber<double>(), std::nullopt);
  EXPECT_EQ(Value(0.1).toNumber<double>(), 0.1);
  EXPECT_EQ(Value(0.1).toNumber<float>(), std::nullopt) << "0.1 has no exact float";
  EXPECT_EQ(Value(0.5).toNumber<float>(), 0.5f);
}

TEST(ArrayEdits, InsertRemoveAndBounds) {
  Array a{1, 2};
  a.insert(0, "first");
  a.insert(99, "last");  // clamped to the end
  a.remove(99);          // ignored
  a.remove(1);
  EXPECT_EQ(a, (Array{"first", 2, "last"}));
  EXPECT_EQ(a.at(3), nullptr);
}

}  // namespace
}  // namespace varno::plist
