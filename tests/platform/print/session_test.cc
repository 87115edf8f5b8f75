#include "platform/print/session.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "platform/print/test_support.h"

namespace varno::print {
namespace {

constexpr const char* kClient = "com.varno.printingmanager";

// A loopback TCP port that nothing listens on: bound once to learn a free number, then closed.
int ClosedLoopbackPort() {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  close(fd);
  return ntohs(address.sin_port);
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
  EXPECT_FALSE(session.pageFormat().sameAs(session.printerInfo()));

  EXPECT_EQ(session.getDataItem("NoSuchItem", settings), kPMInvalidKey);
  EXPECT_TRUE(settings.contains("k")) << "output untouched";
  Ticket replacement;
  session.setDataItem("PMPageFormatTicket", replacement);
  session.setDataItem("Extra", Ticket());
  EXPECT_TRUE(session.pageFormat().sameAs(replacement));
  EXPECT_EQ(session.dataItemNames()[1], "PMPageFormatTicket");
  EXPECT_EQ(session.dataItemNames().back(), "Extra");
}

class SessionFileRoundTrip : public ::testing::TestWithParam<Printer> {};

TEST_P(SessionFileRoundTrip, SavesAndLoadsPrinterAndTickets) {
  Session session;
  const Printer& printer = GetParam();
  if (printer.kind == Printer::Kind::PPDFile) session.setPrinterPPD(printer.ppdPath);
  if (printer.kind == Printer::Kind::Queue) session.setPrinterQueue(printer.queue, printer.server);
  session.printSettings().setValue("com.varno.print.JobType", plist::Dictionary{{"JobType", 5}},
                                   kClient);
  session.printSettings().ppdDictionary().set("VNOColor", "BW");
  Ticket paper;
  paper.setRect("rect", Rect{0, 0, 842, 595}, "varno-print", true);
  session.pageFormat().setTicket("com.apple.print.PaperInfoTicket", paper, "V", true);
  session.setDataItem("Extra", Ticket());

  testing::ScratchDir dir;
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

const char* const kPrinterNames[] = {"NoPrinter", "PPDFile", "QueueOnDefaultServer",
                                     "QueueOnServer"};

INSTANTIATE_TEST_SUITE_P(
    Printers, SessionFileRoundTrip,
    ::testing::Values(Printer{},
                      Printer{Printer::Kind::PPDFile, "/opt/ppd/Varno AT-120.ppd", {}, {}},
                      Printer{Printer::Kind::Queue, {}, "office", {}},
                      Printer{Printer::Kind::Queue, {}, "office", "print.example.com:8631"}),
    [](const auto& info) { return std::string(kPrinterNames[info.index]); });

TEST(SessionFile, MalformedSessionsAreRefusedWithAMessage) {
  using D = plist::Dictionary;
  const std::vector<std::pair<D, std::string>> cases = {
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

TEST(SessionPrinter, PPDFilePrinterGivesItsPathOrSaysWhyNot) {
  testing::ScratchDir dir;
  Session session;
  std::string error;
  EXPECT_FALSE(session.ppdPath(&error));
  EXPECT_EQ(error, "no printer is chosen");
  std::ofstream(dir / "varno.ppd") << "*PPD-Adobe: \"4.3\"\n";
  session.setPrinterPPD((dir / "varno.ppd").string());
  EXPECT_EQ(session.ppdPath(), dir / "varno.ppd");
  session.setPrinterPPD((dir / "gone.ppd").string());
  EXPECT_FALSE(session.ppdPath(&error));
  EXPECT_NE(error.find("gone.ppd\" does not exist"), std::string::npos) << error;
  session.setPrinterPPD(dir.path().string());
  EXPECT_FALSE(session.ppdPath(&error));
  EXPECT_NE(error.find("is not a regular file"), std::string::npos) << error;
}

TEST(SessionPrinter, QueueOnUnreachableSchedulerFailsWithAMessage) {
  const std::string server = "127.0.0.1:" + std::to_string(ClosedLoopbackPort());
  Session session;
  session.setPrinterQueue("office", server);
  std::string error;
  EXPECT_FALSE(session.ppdPath(&error));
  EXPECT_NE(error.find("cannot reach the scheduler at \"" + server + "\""), std::string::npos)
      << error;
  EXPECT_NE(error.find("\"office\""), std::string::npos) << error;
}

TEST(SessionPrinter, UnusableQueueNamesAndAddressesAreRefusedBeforeConnecting) {
  const std::vector<std::vector<std::string>> cases = {
      {"../etc/passwd", "", "is not a CUPS queue name"},
      {"office", "localhost:70000", "malformed port"},
      {"office", "[::1", "malformed scheduler address"},
  };
  for (const auto& c : cases) {
    Session session;
    session.setPrinterQueue(c[0], c[1]);
    std::string error;
    EXPECT_FALSE(session.ppdPath(&error)) << c[2];
    EXPECT_NE(error.find(c[2]), std::string::npos) << error;
  }
}

}  // namespace
}  // namespace varno::print
