#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "platform/print/test_support.h"
#include "platform/print/ticket.h"

namespace varno::print {
namespace {

constexpr const char* kClient = "com.varno.printingmanager";

std::vector<std::string> PPDKeys(const Ticket& t) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : t.ppdDictionary()) keys.push_back(key);
  return keys;
}

// Every kind of value, clients, locks, a nested ticket with its own PPD choices.
Ticket RichTicket() {
  Ticket t;
  t.setValue("com.varno.print.JobType",
             plist::Dictionary{{"JobType", 6}, {"SecurePrintPassword", "0042"}}, kClient);
  t.setValue("text", "Grüße, 東京 \"<&>\"", "V");
  t.setValue("wide", std::numeric_limits<std::int64_t>::min(), kClient, true);
  t.setValue("tenth", 0.1, kClient);
  t.setValue("flag", false, kClient, true);
  t.setValue("when", plist::Date{86400.0}, kClient);
  t.setValue("bytes", plist::Data{0, 1, 254, 255}, kClient);
  t.setValue("list", plist::Array{1, plist::Dictionary{{"z", 1}, {"a", 2}}}, kClient);
  t.setRect("rect", Rect{-18, -18.5, 824, 577.25}, kClient);
  Ticket paper;
  paper.setValue("size", "A4", "varno-print", true);
  paper.ppdDictionary().set("InputSlot", "Tray2");
  t.setTicket("com.apple.print.PaperInfoTicket", paper, "varno-print", true);
  for (const char* keyword : {"VNOColor", "PageSize", "Duplex"})
    t.ppdDictionary().set(keyword, std::string(keyword) + "Choice");
  return t;
}

TEST(TicketFile, SaveAndLoadRoundTripEverything) {
  testing::ScratchDir dir;
  const Ticket original = RichTicket();
  std::string error;
  ASSERT_TRUE(original.save(dir / "ticket.plist", &error)) << error;
  std::optional<Ticket> loaded = Ticket::load(dir / "ticket.plist", &error);
  ASSERT_TRUE(loaded) << error;
  EXPECT_EQ(*loaded, original);  // keys in order, values, clients, locks, nested, PPD
  EXPECT_EQ(PPDKeys(*loaded), PPDKeys(original));
  plist::Array list;
  ASSERT_EQ(loaded->getArray("list", list), noErr);
  ASSERT_TRUE(list.size() == 2 && list[1].asDictionary());
  EXPECT_EQ(list[1].asDictionary()->entries().front().first, "z");
}

TEST(TicketFile, PropertyListFormIsIndependentOfTheTicket) {
  Ticket t = RichTicket();
  plist::Dictionary form = t.toPropertyList();
  std::optional<Ticket> rebuilt = Ticket::fromPropertyList(form);
  ASSERT_TRUE(rebuilt);
  EXPECT_EQ(*rebuilt, t);
  form.getDictionary("Items")->getDictionary("com.varno.print.JobType")
      ->getDictionary("Value")->set("JobType", 1);
  form.getDictionary("PPD")->set("PageSize", "Changed");
  rebuilt->dictionary("com.varno.print.JobType")->set("JobType", 2);
  rebuilt->ppdDictionary().set("Duplex", "Changed");
  EXPECT_EQ(t, RichTicket());
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
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"<array/>", "the root is array"},
      {"<dict/>", "no \"Items\""},
      {"<dict><key>Items</key><array/></dict>", "\"Items\" must be a dictionary, not array"},
      {"<dict><key>Items</key><dict><key>k</key><string/></dict></dict>",
       "item \"k\": must be a dictionary, not string"},
      {Item("k", c), "item \"k\": has neither \"Value\" nor \"Ticket\""},
      {Item("k", v + "<key>Ticket</key><dict/>" + c), "has both"},
      {Item("k", v), "item \"k\": has no \"Client\""},
      {Item("k", v + "<key>Client</key><integer>1</integer>"), "\"Client\" must be a non-empty"},
      {Item("k", v + "<key>Client</key><string/>"), "\"Client\" must be a non-empty string"},
      {Item("k", v + c + "<key>Locked</key><string>yes</string>"), "\"Locked\" must be a boolean"},
      {Item("k", "<key>Vaule</key><true/>" + c), "item \"k\": unknown key \"Vaule\""},
      {Item("k", "<key>Ticket</key><integer>3</integer>" + c), "\"Ticket\" must be a dictionary"},
      {Item("outer", "<key>Ticket</key>" + Item("inner", v) + c),
       "item \"outer\": ticket: item \"inner\": has no \"Client\""},
      {"<dict><key>Items</key><dict/><key>PPD</key><dict><key>Duplex</key><true/></dict></dict>",
       "PPD choice for \"Duplex\" must be a string, not boolean"},
      {"<dict><key>Items</key><dict/><key>Extra</key><true/></dict>", "unknown key \"Extra\""},
      {"<dict><key>Items</key><dict>", ""},  // truncated
  };
  testing::ScratchDir dir;
  for (const auto& [body, message] : cases) {
    std::ofstream(dir / "bad.plist")
        << "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\">" << body
        << "</plist>";
    std::string error;
    EXPECT_FALSE(Ticket::load(dir / "bad.plist", &error)) << body;
    EXPECT_NE(error.find(message), std::string::npos) << error;
  }
  std::string error;
  EXPECT_FALSE(Ticket::load(dir / "absent.plist", &error));
  EXPECT_NE(error.find("absent.plist"), std::string::npos) << error;
}

TEST(TicketFile, SaveRefusesWhatLoadWouldRefuseAndKeepsTheOldFile) {
  testing::ScratchDir dir;
  Ticket good;
  good.setValue("k", 1, kClient);
  ASSERT_TRUE(good.save(dir / "t.plist"));
  Ticket badChoice;
  badChoice.ppdDictionary().set("Duplex", 1);
  Ticket tooDeep;
  Ticket level = tooDeep;
  for (int depth = 0; depth <= Ticket::kMaxNesting; ++depth) {
    Ticket inner;
    ASSERT_EQ(level.setTicket("inner", inner, kClient), noErr);
    level = inner;
  }
  for (const auto& [bad, message] : {std::pair{badChoice, "must be a string"},
                                     std::pair{tooDeep, "nested more than"}}) {
    std::string error;
    EXPECT_FALSE(Ticket::fromPropertyList(bad.toPropertyList()));
    EXPECT_FALSE(bad.save(dir / "t.plist", &error));
    EXPECT_NE(error.find(message), std::string::npos) << error;
  }
  std::optional<Ticket> kept = Ticket::load(dir / "t.plist");
  ASSERT_TRUE(kept);
  EXPECT_EQ(*kept, good);
}

}  // namespace
}  // namespace varno::print
