// varno-print run as a user runs it: a separate process, its output and exit status.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

#include "platform/plist/file.h"
#include "platform/print/session.h"
#include "support/temp_dir.h"

namespace varno {
namespace {

using testing::TempDir;

const std::string kProgram = VARNO_BUILD_DIR "/bin/varno-print";

struct ProgramRun {
  int status = -1;
  std::string out;  // standard output
  std::string all;  // standard output followed by standard error
};

// Runs varno-print with `arguments`, capturing both streams.
ProgramRun VarnoPrint(const std::string& arguments, const TempDir& dir) {
  ProgramRun run;
  std::string err = (dir / "stderr.txt").string();
  FILE* pipe = ::popen((kProgram + " " + arguments + " 2>'" + err + "'").c_str(), "r");
  if (!pipe) return run;
  char buffer[4096];
  for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) run.out.append(buffer, n);
  int status = ::pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  run.all = run.out + testing::ReadAll(err);
  return run;
}

TEST(VarnoPrint, DefaultRunPrintsTheSamplePrintersTicket) {
  TempDir dir;
  ProgramRun run = VarnoPrint("", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  std::string error;
  std::optional<plist::Value> ticket = plist::Parse(run.out, &error);
  ASSERT_TRUE(ticket && ticket->isDictionary()) << error << run.out;
  std::optional<plist::Dictionary> ppd = ticket->asDictionary()->getDictionary("PPD");
  ASSERT_TRUE(ppd);
  EXPECT_EQ(ppd->getString("PageSize"), "Letter");
  EXPECT_EQ(ppd->getString("VNOColor"), "Color");
  EXPECT_FALSE(ppd->contains("PageRegion"));
  EXPECT_NE(run.all.find("com.varno.print.pde.varnofeatures"), std::string::npos) << run.all;
}

TEST(VarnoPrint, SavedSessionIsReusedAndItsChoicesWin) {
  TempDir dir;
  std::string saved = (dir / "job.session").string();
  ASSERT_EQ(VarnoPrint("--save '" + saved + "'", dir).status, 0);

  std::string error;
  std::unique_ptr<print::Session> session = print::Session::load(saved, &error);
  ASSERT_TRUE(session) << error;
  session->printSettings().ppdDictionary().set("VNOColor", "BW");
  ASSERT_TRUE(session->save(saved, &error)) << error;

  ProgramRun run = VarnoPrint("--session '" + saved + "'", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  std::optional<plist::Value> ticket = plist::Parse(run.out);
  ASSERT_TRUE(ticket && ticket->isDictionary());
  EXPECT_EQ(ticket->asDictionary()->getDictionary("PPD")->getString("VNOColor"), "BW");
}

// The ticket varno-print printed, parsed; null (after a test failure) when it is none.
std::optional<print::Ticket> PrintedTicket(const ProgramRun& run) {
  std::string error;
  std::optional<plist::Value> value = plist::Parse(run.out, &error);
  EXPECT_TRUE(value && value->isDictionary()) << error << run.all;
  if (!value || !value->isDictionary()) return std::nullopt;
  std::optional<print::Ticket> ticket = print::Ticket::fromPropertyList(*value->asDictionary(), &error);
  EXPECT_TRUE(ticket) << error;
  return ticket;
}

TEST(VarnoPrint, SettingOptionsAreChosenInTheDialogAndTheTicketRoundTrips) {
  TempDir dir;
  const std::string options =
      "--image-quality HighQuality --toner-saver on --mirror-image on --feed-edge ShortEdge";
  ProgramRun run = VarnoPrint(options, dir);
  ASSERT_EQ(run.status, 0) << run.all;
  std::optional<print::Ticket> ticket = PrintedTicket(run);
  ASSERT_TRUE(ticket);
  const plist::Dictionary ppd = ticket->ppdDictionary();
  EXPECT_EQ(ppd.getString("VNOutputMode"), "HighQuality");
  EXPECT_EQ(ppd.getString("VNEconomode"), "Draft");
  EXPECT_EQ(ppd.getString("VNFeedEdge"), "ShortEdge");
  EXPECT_EQ(ticket->number<std::int32_t>("com.varno.print.ImageResolution"), 5);
  std::optional<plist::Dictionary> invert = ticket->dictionary("com.varno.print.InvertImageOptions");
  ASSERT_TRUE(invert);
  EXPECT_EQ(invert->getNumber<std::int64_t>("MirrorImage"), 1);
  EXPECT_EQ(invert->getNumber<std::int64_t>("NegativeImage"), 0);
  EXPECT_EQ(ticket->string("com.varno.print.ControllerInformation.ControllerFamily"), "Green");

  const std::string saved = (dir / "job.plist").string();
  ASSERT_EQ(VarnoPrint(options + " --save-ticket '" + saved + "'", dir).status, 0);
  ProgramRun again = VarnoPrint("--ticket '" + saved + "'", dir);
  ASSERT_EQ(again.status, 0) << again.all;
  EXPECT_EQ(again.out, run.out) << "the saved ticket reproduces itself";

  // Clearing the toner saver cannot take "Draft" out of a ticket; the user is told.
  ProgramRun cleared = VarnoPrint("--ticket '" + saved + "' --toner-saver off", dir);
  ASSERT_EQ(cleared.status, 0) << cleared.all;
  EXPECT_EQ(PrintedTicket(cleared)->ppdDictionary().getString("VNEconomode"), "Draft");
  EXPECT_NE(cleared.all.find("leaves that in place"), std::string::npos) << cleared.all;
}

TEST(VarnoPrint, ChoicesAreNamedByKeywordOrTextInAnyCase) {
  TempDir dir;
  ProgramRun run = VarnoPrint(
      "--image-quality 'high speed' --banner-sheet ON --request-offset endofset "
      "--negative-image On --list",
      dir);
  ASSERT_EQ(run.status, 0) << run.all;
  for (const char* line : {"--image-quality  (Image quality)\n    current: HighSpeed\n",
                           "--banner-sheet  (Banner sheet)\n    current: True\n",
                           "--request-offset  (Request offset)\n    current: EndOfSet\n",
                           "--negative-image  (Negative image)\n    current: on\n",
                           "--feed-edge  (Bypass tray feed edge)\n    current: LongEdge\n"})
    EXPECT_NE(run.out.find(line), std::string::npos) << line << run.out;
  EXPECT_NE(run.out.find("choices: LongEdge (\"Long Edge\"), ShortEdge (\"Short Edge\")"),
            std::string::npos) << run.out;

  ProgramRun unknown = VarnoPrint("--feed-edge Diagonal", dir);
  EXPECT_EQ(unknown.status, 2);
  EXPECT_NE(unknown.all.find("--feed-edge: no choice \"Diagonal\"; the choices are: LongEdge"),
            std::string::npos) << unknown.all;
  EXPECT_TRUE(unknown.out.empty());
  EXPECT_EQ(VarnoPrint("--toner-saver maybe", dir).status, 2);
  EXPECT_EQ(VarnoPrint("--mirror-image", dir).status, 2) << "a setting needs its value";
}

TEST(VarnoPrint, BadInputGivesAClearErrorAndStatus) {
  TempDir dir;
  ProgramRun unknown = VarnoPrint("--frobnicate", dir);
  EXPECT_EQ(unknown.status, 2);
  EXPECT_NE(unknown.all.find("unknown argument '--frobnicate'"), std::string::npos);

  EXPECT_EQ(VarnoPrint("--ppd", dir).status, 2);
  EXPECT_EQ(VarnoPrint("--ppd a.ppd --queue q", dir).status, 2);

  ProgramRun missing = VarnoPrint("--ppd '" + (dir / "none.ppd").string() + "'", dir);
  EXPECT_EQ(missing.status, 1);
  EXPECT_NE(missing.all.find("none.ppd"), std::string::npos) << missing.all;

  std::filesystem::path junk = dir.write("junk.ppd", "*PPD-Adobe: \"4.3\"\nthis is no PPD\n");
  ProgramRun malformed = VarnoPrint("--ppd '" + junk.string() + "'", dir);
  EXPECT_EQ(malformed.status, 1);
  EXPECT_NE(malformed.all.find("junk.ppd"), std::string::npos) << malformed.all;

  std::filesystem::path damaged = dir.write("damaged.session", "<plist><dict><key>");
  ProgramRun session = VarnoPrint("--session '" + damaged.string() + "'", dir);
  EXPECT_EQ(session.status, 1);
  EXPECT_NE(session.all.find("damaged.session"), std::string::npos) << session.all;
  EXPECT_TRUE(session.out.empty()) << "no ticket is printed after an error";
}

TEST(VarnoPrint, BrokenPlugInBundleIsReported) {
  TempDir dir;
  // A bundle with the plug-in's identifier but no library, found first on the search path.
  std::filesystem::copy_file(VARNO_BUILD_DIR "/VarnoFeatures.plugin/Contents/Info.plist",
                             dir.write("plugins/VarnoFeatures.plugin/Contents/Info.plist", ""),
                             std::filesystem::copy_options::overwrite_existing);
  ProgramRun run = VarnoPrint("--bundle-path '" + (dir / "plugins").string() + "'", dir);
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.all.find("VarnoFeatures"), std::string::npos) << run.all;
  EXPECT_TRUE(run.out.empty());
}

}  // namespace
}  // namespace varno
