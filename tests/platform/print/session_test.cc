// SPDX-License-Identifier: Apache-2.0
#include "platform/print/session.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "platform/print/test_support.h"

namespace varno::print {
namespace {

constexpr const char* kClient = "com.varno.printingmanager";

void Choose(Session& session, const Printer& printer) {
  if (printer.kind == Printer::Kind::PPDFile) session.setPrinterPPD(printer.ppdPath);
  if (printer.kind == Printer::Kind::Queue) session.setPrinterQueue(printer.queue, printer.server);
}

TEST(SessionItems, HoldThreeTicketHandlesUnderTheirNames) {
  Session session;
  EXPECT_EQ(session.dataItemNames(),
            (std::vector<std::string>{"PMPrintSettingsTicket", "PMPageFormatTicket",
                                      "PMPrinterInfoTicket"}));
  Ticket settings;
  ASSERT_EQ(session.getDataItem("PMPrintSettingsTicket", settings), noErr);
  settings.setValue("k", 1, kClient);
  EXPECT_TRUE(session.printSettings().contains("k"));
  Ticket replacement;
  session.setDataItem("PMPageFormatTicket", replacement);
  session.setDataItem("Extra", Ticket());
  EXPECT_TRUE(session.pageFormat().sameAs(replacement));
  EXPECT_EQ(session.dataItemNames().back(), "Extra");
}

TEST(SessionFile, SavesAndLoadsEveryKindOfPrinterAndEveryTicket) {
  for (const Printer& printer :
       {Printer{}, Printer{Printer::Kind::PPDFile, "/opt/ppd/Varno AT-120.ppd", {}, {}},
        Printer{Printer::Kind::Queue, {}, "office", {}},
        Printer{Printer::Kind::Queue, {}, "office", "print.example.com:8631"}}) {
    SCOPED_TRACE(::testing::PrintToString(printer));
    Session session;
    Choose(session, printer);
    session.printSettings().setValue("com.varno.print.JobType",
                                     plist::Dictionary{{"JobType", 5}}, kClient);
    session.printSettings().ppdDictionary().set("VNOColor", "BW");
    Ticket paper;
    paper.setRect("rect", Rect{0, 0, 842, 595}, "varno-print", true);
    session.pageFormat().setTicket("com.apple.print.PaperInfoTicket", paper, "V", true);
    session.setDataItem("Extra", Ticket());

    varno::testing::TempDir dir;
    std::string error;
    ASSERT_TRUE(session.save(dir / "session.plist", &error)) << error;
    std::unique_ptr<Session> loaded = Session::load(dir / "session.plist", &error);
    ASSERT_TRUE(loaded) << error;
    EXPECT_EQ(loaded->printer(), printer);
    EXPECT_EQ(loaded->dataItemNames(), session.dataItemNames());
    for (const std::string& name : session.dataItemNames()) {
      Ticket a, b;
      ASSERT_EQ(session.getDataItem(name, a), noErr);
      ASSERT_EQ(loaded->getDataItem(name, b), noErr);
      EXPECT_EQ(a, b) << name;
    }
  }
}

TEST(SessionFile, MalformedSessionsAreRefusedWithAMessage) {
  using D = plist::Dictionary;
  const std::pair<D, std::string> cases[] = {
      {D{}, "no \"DataItems\""},
      {D{{"DataItems", D{}}, {"Printers", 1}}, "unknown key \"Printers\""},
      {D{{"DataItems", D{{"PMPageFormatTicket", D{}}}}},
       "data item \"PMPageFormatTicket\": not a valid ticket: no \"Items\""},
      {D{{"DataItems", D{}}, {"Printer", D{{"PPD", "/a.ppd"}, {"Queue", "q"}}}},
       "exactly one of"},
      {D{{"DataItems", D{}}, {"Printer", D{{"Queue", 7}}}}, "\"Queue\" must be a non-empty"},
  };
  for (const auto& [form, message] : cases) {
    std::string error;
    EXPECT_FALSE(Session::fromPropertyList(form, &error)) << message;
    EXPECT_NE(error.find(message), std::string::npos) << error;
  }
  std::unique_ptr<Session> bare = Session::fromPropertyList(D{{"DataItems", D{}}});
  ASSERT_TRUE(bare) << "standard tickets missing from a file stay empty";
  EXPECT_EQ(bare->dataItemNames().size(), 3u);
}

// A loopback TCP port that nothing listens on: bound once to learn a free number, then closed.
std::string ClosedLoopbackServer() {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
  socklen_t length = sizeof address;
  bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  close(fd);
  return "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
}

TEST(SessionPrinter, PPDPathIsGivenOrRefusedWithTheReason) {
  varno::testing::TempDir dir;
  const std::string ppd = dir.write("varno.ppd", "*PPD-Adobe: \"4.3\"\n").string();
  const std::string unreachable = ClosedLoopbackServer();
  const std::pair<Printer, std::string> cases[] = {
      {Printer{}, "no printer is chosen"},
      {Printer{Printer::Kind::PPDFile, ppd, {}, {}}, ""},
      {Printer{Printer::Kind::PPDFile, (dir / "gone.ppd").string(), {}, {}},
       "gone.ppd\" does not exist"},
      {Printer{Printer::Kind::PPDFile, dir.path().string(), {}, {}}, "is not a regular file"},
      {Printer{Printer::Kind::Queue, {}, "../etc/passwd", {}}, "is not a CUPS queue name"},
      {Printer{Printer::Kind::Queue, {}, "office", "[::1"}, "malformed scheduler address"},
      {Printer{Printer::Kind::Queue, {}, "office", unreachable},
       "cannot reach the scheduler at \"" + unreachable + "\" to fetch the PPD of queue \"office"},
  };
  for (const auto& [printer, message] : cases) {
    Session session;
    Choose(session, printer);
    std::string error;
    std::optional<std::filesystem::path> path = session.ppdPath(&error);
    if (message.empty()) {
      EXPECT_EQ(path, ppd);
    } else {
      EXPECT_FALSE(path) << message;
      EXPECT_NE(error.find(message), std::string::npos) << error;
    }
  }
}

// Many data items load in linear time (a quadratic load of this file takes seconds).
TEST(SessionFile, ManyDataItemsLoadInOrder) {
  varno::testing::TempDir dir;
  constexpr int kItems = 40000;
  std::string xml = "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>DataItems</key><dict>";
  for (int i = 0; i < kItems; ++i)
    xml += "<key>item" + std::to_string(i) + "</key><dict><key>Items</key><dict/></dict>";
  xml += "<key>item7</key><dict><key>Items</key><dict><key>k</key><dict><key>Value</key>"
         "<integer>7</integer><key>Client</key><string>c</string></dict></dict></dict>";
  xml += "</dict></dict></plist>";
  std::string error;
  std::unique_ptr<Session> session = Session::load(dir.write("s.plist", xml), &error);
  ASSERT_TRUE(session) << error;
  const std::vector<std::string> names = session->dataItemNames();
  ASSERT_EQ(names.size(), kItems + 3u);
  EXPECT_EQ(names[3], "item0");
  EXPECT_EQ(names.back(), "item" + std::to_string(kItems - 1));
  Ticket ticket;
  ASSERT_EQ(session->getDataItem("item7", ticket), noErr);
  EXPECT_EQ(ticket.number<int>("k"), 7) << "a repeated name replaces the item in place";
}

}  // namespace
}  // namespace varno::print
