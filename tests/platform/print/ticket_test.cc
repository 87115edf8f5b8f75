// SPDX-License-Identifier: Apache-2.0
#include "platform/print/ticket.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "platform/print/test_support.h"

namespace varno::print {
namespace {

constexpr const char* kClient = "com.varno.printingmanager";

TEST(TicketItems, KeepInsertionOrderAndReplacementKeepsPosition) {
  Ticket t;
  for (const char* key : {"b", "a", "c"}) ASSERT_EQ(t.setValue(key, 1, kClient), noErr);
  ASSERT_EQ(t.setValue("b", "replaced", "V"), noErr);
  EXPECT_EQ(t.string("b"), "replaced");
  ASSERT_EQ(t.releaseItem("a"), noErr);
  ASSERT_EQ(t.setValue("a", 4, kClient), noErr);
  EXPECT_EQ(t.keys(), (std::vector<std::string>{"b", "c", "a"}));
  EXPECT_EQ(t.releaseItem("missing"), kPMInvalidKey);
  EXPECT_EQ(t.setValue("", 1, kClient), paramErr);
  EXPECT_EQ(t.setValue("k", 1, ""), paramErr);
}

TEST(TicketItems, LockedItemRefusesReplacementAndRemoval) {
  Ticket t;
  ASSERT_EQ(t.setValue("k", 7, kClient, /*locked=*/true), noErr);
  EXPECT_EQ(t.setValue("k", 8, kClient), kPMItemIsLocked);
  EXPECT_EQ(t.setTicket("k", Ticket(), kClient), kPMItemIsLocked);
  EXPECT_EQ(t.releaseItem("k"), kPMItemIsLocked);
  EXPECT_EQ(t.number<int>("k"), 7);
}

TEST(TicketItems, HandlesShareTheTicketButDeepCopiesDoNot) {
  Ticket t, nested;
  ASSERT_EQ(t.setTicket("inner", nested, kClient), noErr);
  ASSERT_EQ(t.setValue("dict", plist::Dictionary{{"n", 1}}, kClient), noErr);
  Ticket copy = t.deepCopy();
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

TEST(TicketReads, MissingKeyWrongKindOrInexactNumberLeavesOutputUntouched) {
  Ticket t;
  ASSERT_EQ(t.setValue("text", "5", kClient), noErr);
  ASSERT_EQ(t.setTicket("nested", Ticket(), kClient), noErr);
  ASSERT_EQ(t.setValue("big", std::int64_t{1} << 40, kClient), noErr);
  ASSERT_EQ(t.setValue("half", 1.5, kClient), noErr);
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
  for (const char* key : {"text", "big", "half"})
    EXPECT_EQ(t.getNumber(key, n), kPMInvalidValue) << key;
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
  EXPECT_EQ(t.number<std::int64_t>("big"), std::int64_t{1} << 40);  // exact in a wider type
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
  ASSERT_EQ(t.setValue("ints", plist::Array{0, 0, 792, 612}, kClient), noErr);
  Rect r;
  ASSERT_EQ(t.getRect("ints", r), noErr);
  EXPECT_EQ(r, (Rect{0, 0, 792, 612}));
  for (const plist::Array& bad : {plist::Array{0, 0, 792}, plist::Array{0, 0, 792, "612"}}) {
    ASSERT_EQ(t.setValue("bad", bad, kClient), noErr);
    EXPECT_EQ(t.getRect("bad", r), kPMInvalidValue);
  }
  EXPECT_EQ(r, (Rect{0, 0, 792, 612}));
}

// The file round-trip tests rely on equality seeing every difference.
TEST(TicketEquality, ComparesOrderKindsClientsLocksAndPPD) {
  auto make = [](const char* client = kClient, bool locked = false) {
    Ticket t;
    t.setValue("a", 1, client, locked);
    t.setValue("b", 2, kClient);
    return t;
  };
  std::vector<Ticket> different{Ticket(), make("V"), make(kClient, true), make(), make()};
  different[0].setValue("b", 2, kClient);
  different[0].setValue("a", 1, kClient);
  different[3].setTicket("a", Ticket(), kClient);
  different[4].ppdDictionary().set("PageSize", "A4");
  EXPECT_EQ(make(), make());
  for (const Ticket& t : different) EXPECT_NE(t, make()) << ::testing::PrintToString(t);
}

std::vector<std::string> PPDKeys(const Ticket& t) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : t.ppdDictionary()) keys.push_back(key);
  return keys;
}

// Several kinds of value, clients, locks, a nested ticket with its own PPD choices.
Ticket RichTicket() {
  Ticket t;
  t.setValue("com.varno.print.JobType",
             plist::Dictionary{{"JobType", 6}, {"SecurePrintPassword", "0042"}}, kClient);
  t.setValue("text", "Grüße, 東京 \"<&>\"", "V");
  t.setValue("wide", std::numeric_limits<std::int64_t>::min(), kClient, true);
  t.setValue("bytes", plist::Data{0, 1, 254, 255}, kClient);
  t.setRect("rect", Rect{-18, -18.5, 824, 577.25}, kClient);
  Ticket paper;
  paper.setValue("size", "A4", "varno-print", true);
  paper.ppdDictionary().set("InputSlot", "Tray2");
  t.setTicket("com.apple.print.PaperInfoTicket", paper, "varno-print", true);
  for (const char* keyword : {"VNOColor", "PageSize", "Duplex"})
    t.ppdDictionary().set(keyword, std::string(keyword) + "Choice");
  return t;
}

TEST(TicketFile, SaveAndLoadRoundTripEverythingAndTheFormIsACopy) {
  varno::testing::TempDir dir;
  const Ticket original = RichTicket();
  std::string error;
  ASSERT_TRUE(original.save(dir / "ticket.plist", &error)) << error;
  std::optional<Ticket> loaded = Ticket::load(dir / "ticket.plist", &error);
  ASSERT_TRUE(loaded) << error;
  EXPECT_EQ(*loaded, original);  // keys in order, values, clients, locks, nested, PPD
  EXPECT_EQ(PPDKeys(*loaded), PPDKeys(original));

  plist::Dictionary form = loaded->toPropertyList();
  form.getDictionary("Items")->getDictionary("com.varno.print.JobType")
      ->getDictionary("Value")->set("JobType", 1);
  form.getDictionary("PPD")->set("PageSize", "Changed");
  EXPECT_EQ(*loaded, original);
}

// Pins the documented form: a file written by hand, or by an older build, still reads.
TEST(TicketFile, ReadsTheDocumentedForm) {
  std::string error;
  std::optional<Ticket> t = Ticket::load(VARNO_TEST_DATA_DIR "/print/sample-ticket.plist", &error);
  ASSERT_TRUE(t) << error;
  Ticket expected;
  expected.setValue("com.varno.print.JobType",
                    plist::Dictionary{{"JobType", 6}, {"SecurePrintPassword", "1234"}}, kClient);
  expected.setValue("com.varno.print.ClientInformation.UserName", "Zoë", "V");
  Ticket paper;
  paper.setRect("com.apple.print.PaperInfo.PMUnadjustedPaperRect", Rect{-18, -18, 824, 577},
                "varno-print", true);
  expected.setTicket("com.apple.print.PaperInfoTicket", paper, "varno-print", true);
  expected.ppdDictionary().set("PageSize", "A4");
  expected.ppdDictionary().set("VNOColor", "BW");
  EXPECT_EQ(*t, expected);
  EXPECT_EQ(PPDKeys(*t), PPDKeys(expected));
}

std::string Item(const std::string& key, const std::string& fields) {
  return "<dict><key>Items</key><dict><key>" + key + "</key><dict>" + fields +
         "</dict></dict></dict>";
}

TEST(TicketFile, MalformedFilesAreRefusedWithAMessageNamingTheFault) {
  const std::string v = "<key>Value</key><true/>", c = "<key>Client</key><string>V</string>";
  const std::pair<std::string, std::string> cases[] = {
      {"<array/>", "the root is array"},
      {"<dict/>", "no \"Items\""},
      {"<dict><key>Items</key><dict><key>k</key><string/></dict></dict>",
       "item \"k\": must be a dictionary, not string"},
      {Item("k", c), "item \"k\": has neither \"Value\" nor \"Ticket\""},
      {Item("k", v + "<key>Ticket</key><dict/>" + c), "has both"},
      {Item("k", v + "<key>Client</key><string/>"), "\"Client\" must be a non-empty string"},
      {Item("k", v + c + "<key>Locked</key><string>yes</string>"), "\"Locked\" must be a boolean"},
      {Item("k", "<key>Vaule</key><true/>" + c), "item \"k\": unknown key \"Vaule\""},
      {Item("outer", "<key>Ticket</key>" + Item("inner", v) + c),
       "item \"outer\": ticket: item \"inner\": has no \"Client\""},
      {"<dict><key>Items</key><dict/><key>PPD</key><dict><key>Duplex</key><true/></dict></dict>",
       "PPD choice for \"Duplex\" must be a string, not boolean"},
      {"<dict><key>Items</key><dict/><key>Extra</key><true/></dict>", "unknown key \"Extra\""},
      {"<dict><key>Items</key><dict>", ""},  // truncated
      {"", "absent.plist"},                   // no file at all
  };
  varno::testing::TempDir dir;
  for (const auto& [body, message] : cases) {
    const auto file = body.empty() ? dir / "absent.plist"
                                   : dir.write("bad.plist", "<plist version=\"1.0\">" + body +
                                                                "</plist>");
    std::string error;
    EXPECT_FALSE(Ticket::load(file, &error)) << body;
    EXPECT_NE(error.find(message), std::string::npos) << error;
  }
}

TEST(TicketFile, SaveRefusesWhatLoadWouldRefuseAndKeepsTheOldFile) {
  varno::testing::TempDir dir;
  Ticket good, badChoice, tooDeep;
  good.setValue("k", 1, kClient);
  ASSERT_TRUE(good.save(dir / "t.plist"));
  badChoice.ppdDictionary().set("Duplex", 1);
  Ticket level = tooDeep;
  for (int depth = 0; depth <= Ticket::kMaxNesting; ++depth) {
    Ticket inner;
    ASSERT_EQ(level.setTicket("inner", inner, kClient), noErr);
    level = inner;
  }
  for (const auto& [bad, message] : {std::pair{badChoice, "must be a string"},
                                     std::pair{tooDeep, "nested more than"}}) {
    std::string error;
    EXPECT_FALSE(bad.save(dir / "t.plist", &error));
    EXPECT_NE(error.find(message), std::string::npos) << error;
  }
  std::optional<Ticket> kept = Ticket::load(dir / "t.plist");
  ASSERT_TRUE(kept);
  EXPECT_EQ(*kept, good);
}

// A nested ticket of many items under a very long key loads in linear time, and a fault in
// its last item still names the whole path.
TEST(TicketFile, ManyNestedItemsUnderALongKeyLoadAndNameTheirFaults) {
  varno::testing::TempDir dir;
  const std::string key = "k." + std::string(200 * 1024, 'x');
  constexpr int kItems = 20000;
  auto file = [&](const std::string& last) {
    std::string xml = "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Items</key><dict><key>" +
                      key + "</key><dict><key>Client</key><string>c</string><key>Ticket</key>"
                      "<dict><key>Items</key><dict>";
    for (int i = 0; i < kItems; ++i)
      xml += "<key>i" + std::to_string(i) +
             "</key><dict><key>Value</key><true/><key>Client</key><string>c</string></dict>";
    return dir.write("t.plist", xml + last + "</dict></dict></dict></dict></dict></plist>");
  };
  std::string error;
  std::optional<Ticket> ticket = Ticket::load(file(""), &error);
  ASSERT_TRUE(ticket) << error.substr(0, 300);
  Ticket nested;
  ASSERT_EQ(ticket->getTicket(key, nested), noErr);
  EXPECT_EQ(nested.size(), static_cast<std::size_t>(kItems));
  EXPECT_EQ(nested.boolean("i" + std::to_string(kItems - 1)), true);

  EXPECT_FALSE(Ticket::load(file("<key>bad</key><dict><key>Value</key><true/></dict>"), &error));
  EXPECT_NE(error.find("item \"" + key + "\": ticket: item \"bad\": has no \"Client\""),
            std::string::npos)
      << error.substr(error.size() - 200);
}

}  // namespace
}  // namespace varno::print
