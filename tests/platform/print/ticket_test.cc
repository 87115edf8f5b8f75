#include "platform/print/ticket.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "platform/print/test_support.h"

namespace varno::print {
namespace {

constexpr const char* kClient = "com.varno.printingmanager";

TEST(TicketItems, KeepInsertionOrderAndReplacementKeepsPosition) {
  Ticket t;
  for (const char* key : {"b", "a", "c"}) ASSERT_EQ(t.setValue(key, 1, kClient), noErr);
  ASSERT_EQ(t.setValue("b", "replaced", "V"), noErr);
  EXPECT_EQ(t.keys(), (std::vector<std::string>{"b", "a", "c"}));
  EXPECT_EQ(t.string("b"), "replaced");
  EXPECT_EQ(t.item("b")->client, "V");
  ASSERT_EQ(t.releaseItem("a"), noErr);
  ASSERT_EQ(t.setValue("a", 4, kClient), noErr);
  EXPECT_EQ(t.keys(), (std::vector<std::string>{"b", "c", "a"}));
  EXPECT_EQ(t.releaseItem("missing"), kPMInvalidKey);
  EXPECT_EQ(t.setValue("", 1, kClient), paramErr);
  EXPECT_EQ(t.setValue("k", 1, ""), paramErr);
  EXPECT_EQ(t.size(), 3u);
}

TEST(TicketItems, LockedItemRefusesReplacementAndRemoval) {
  Ticket t;
  ASSERT_EQ(t.setValue("k", 7, kClient, /*locked=*/true), noErr);
  EXPECT_EQ(t.setValue("k", 8, kClient), kPMItemIsLocked);
  EXPECT_EQ(t.setRect("k", Rect{}, kClient), kPMItemIsLocked);
  EXPECT_EQ(t.setTicket("k", Ticket(), kClient), kPMItemIsLocked);
  EXPECT_EQ(t.releaseItem("k"), kPMItemIsLocked);
  ASSERT_TRUE(t.contains("k"));
  EXPECT_EQ(t.number<int>("k"), 7);
  EXPECT_TRUE(t.item("k")->locked);
}

TEST(TicketItems, HandlesShareTheTicketButDeepCopiesDoNot) {
  Ticket t;
  Ticket nested;
  ASSERT_EQ(t.setTicket("inner", nested, kClient), noErr);
  ASSERT_EQ(t.setValue("dict", plist::Dictionary{{"n", 1}}, kClient), noErr);
  Ticket copy = t.deepCopy();
  EXPECT_EQ(copy, t);

  Ticket(t).setValue("x", 1, kClient);
  nested.setValue("y", 2, kClient);
  t.dictionary("dict")->set("n", 2);
  t.ppdDictionary().set("PageSize", "A4");

  EXPECT_TRUE(t.contains("x"));
  EXPECT_EQ(t.dictionary("dict")->getNumber<int>("n"), 2);
  EXPECT_EQ(t.size(), 3u) << "PPD choices are not items";
  Ticket read;
  ASSERT_EQ(t.getTicket("inner", read), noErr);
  EXPECT_TRUE(read.sameAs(nested));

  EXPECT_FALSE(copy.contains("x"));
  ASSERT_EQ(copy.getTicket("inner", read), noErr);
  EXPECT_FALSE(read.contains("y"));
  EXPECT_EQ(copy.dictionary("dict")->getNumber<int>("n"), 1);
  EXPECT_TRUE(copy.ppdDictionary().empty());
}

TEST(TicketReads, MissingKeyOrWrongKindLeavesOutputUntouched) {
  Ticket t;
  ASSERT_EQ(t.setValue("text", "5", kClient), noErr);
  ASSERT_EQ(t.setTicket("nested", Ticket(), kClient), noErr);
  std::string s = "keep";
  bool b = true;
  int n = 42;
  plist::Value v = 1;
  plist::Dictionary d{{"keep", 1}};
  plist::Array a{1};
  Rect r{1, 2, 3, 4};
  Ticket out;
  for (const auto& [key, expected] : {std::pair{"missing", kPMInvalidKey},
                                      std::pair{"nested", kPMInvalidValue}}) {
    EXPECT_EQ(t.getValue(key, v), expected) << key;
    EXPECT_EQ(t.getString(key, s), expected) << key;
    EXPECT_EQ(t.getBoolean(key, b), expected) << key;
    EXPECT_EQ(t.getNumber(key, n), expected) << key;
    EXPECT_EQ(t.getDictionary(key, d), expected) << key;
    EXPECT_EQ(t.getArray(key, a), expected) << key;
    EXPECT_EQ(t.getRect(key, r), expected) << key;
  }
  EXPECT_EQ(t.getNumber("text", n), kPMInvalidValue);
  EXPECT_EQ(t.getBoolean("text", b), kPMInvalidValue);
  EXPECT_EQ(t.getTicket("text", out), kPMInvalidValue);
  EXPECT_EQ(t.getTicket("missing", out), kPMInvalidKey);
  EXPECT_EQ(s, "keep");
  EXPECT_TRUE(b);
  EXPECT_EQ(n, 42);
  EXPECT_EQ(v, plist::Value(1));
  EXPECT_TRUE(d.contains("keep"));
  EXPECT_EQ(a.size(), 1u);
  EXPECT_EQ(r, (Rect{1, 2, 3, 4}));
  EXPECT_EQ(out.size(), 0u);
}

TEST(TicketReads, NumbersReadOnlyWhenExact) {
  Ticket t;
  ASSERT_EQ(t.setValue("big", std::int64_t{1} << 40, kClient), noErr);
  ASSERT_EQ(t.setValue("half", 1.5, kClient), noErr);
  ASSERT_EQ(t.setValue("whole", 3.0, kClient), noErr);
  std::int32_t n = -1;
  EXPECT_EQ(t.getNumber("big", n), kPMInvalidValue);
  EXPECT_EQ(t.getNumber("half", n), kPMInvalidValue);
  EXPECT_EQ(n, -1);
  EXPECT_EQ(t.number<std::int64_t>("big"), std::int64_t{1} << 40);
  EXPECT_EQ(t.number<int>("whole"), 3);
  EXPECT_EQ(t.number<double>("half"), 1.5);
}

TEST(TicketNested, TicketCannotEndUpInsideItself) {
  Ticket a, b, c;
  EXPECT_EQ(a.setTicket("self", a, kClient), paramErr);
  ASSERT_EQ(a.setTicket("b", b, kClient), noErr);
  ASSERT_EQ(b.setTicket("c", c, kClient), noErr);
  EXPECT_EQ(c.setTicket("a", a, kClient), paramErr);
  EXPECT_FALSE(c.contains("a"));
  EXPECT_EQ(c.setTicket("copy-of-b", b.deepCopy(), kClient), noErr) << "a copy is no cycle";
}

TEST(TicketRect, StoresFourRealsAndReadsOnlyWellFormedArrays) {
  Ticket t;
  ASSERT_EQ(t.setRect("paper", Rect{-18, -18, 824, 577.5}, kClient), noErr);
  EXPECT_EQ(t.item("paper")->value, plist::Value(plist::Array{-18.0, -18.0, 824.0, 577.5}));
  Rect r;
  ASSERT_EQ(t.getRect("paper", r), noErr);
  EXPECT_EQ(r, (Rect{-18, -18, 824, 577.5}));
  ASSERT_EQ(t.setValue("ints", plist::Array{0, 0, 792, 612}, kClient), noErr);
  ASSERT_EQ(t.getRect("ints", r), noErr);
  EXPECT_EQ(r, (Rect{0, 0, 792, 612}));
  for (const plist::Array& bad : {plist::Array{0, 0, 792}, plist::Array{0, 0, 792, 612, 1},
                                  plist::Array{0, 0, 792, "612"}}) {
    ASSERT_EQ(t.setValue("bad", bad, kClient), noErr);
    EXPECT_EQ(t.getRect("bad", r), kPMInvalidValue);
  }
  EXPECT_EQ(r, (Rect{0, 0, 792, 612}));
}

TEST(TicketEquality, ComparesOrderKindsClientsLocksAndPPD) {
  auto make = [] {
    Ticket t;
    t.setValue("a", 1, kClient);
    t.setValue("b", 2, kClient);
    return t;
  };
  EXPECT_EQ(make(), make());
  std::vector<Ticket> different{Ticket(), make(), make(), make(), make()};
  different[0].setValue("b", 2, kClient);
  different[0].setValue("a", 1, kClient);
  different[1].setValue("a", 1, "V");
  different[2].setValue("a", 1, kClient, true);
  different[3].setTicket("a", Ticket(), kClient);
  different[4].ppdDictionary().set("PageSize", "A4");
  for (const Ticket& t : different) {
    EXPECT_NE(t, make());
    EXPECT_NE(make(), t);
  }
}

}  // namespace
}  // namespace varno::print
