// SPDX-License-Identifier: Apache-2.0
// varno-print run as a user runs it: a separate process, its output and exit status.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <memory>
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

TEST(VarnoPrint, DefaultRunPrintsTheSamplePrintersTicketAndSavedSessionsAreReused) {
  TempDir dir;
  ProgramRun run = VarnoPrint("", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  std::optional<print::Ticket> ticket = PrintedTicket(run);
  ASSERT_TRUE(ticket);
  EXPECT_EQ(ticket->ppdDictionary().getString("VNOColor"), "Color");
  EXPECT_FALSE(ticket->ppdDictionary().contains("PageRegion"));

  std::string saved = (dir / "job.session").string(), error;
  ASSERT_EQ(VarnoPrint("--save '" + saved + "'", dir).status, 0);
  std::unique_ptr<print::Session> session = print::Session::load(saved, &error);
  ASSERT_TRUE(session) << error;
  session->printSettings().ppdDictionary().set("VNOColor", "BW");
  ASSERT_TRUE(session->save(saved, &error)) << error;
  run = VarnoPrint("--session '" + saved + "'", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  EXPECT_EQ(PrintedTicket(run)->ppdDictionary().getString("VNOColor"), "BW");
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
                           "--negative-image  (Negative image)\n    current: on\n"})
    EXPECT_NE(run.out.find(line), std::string::npos) << line << run.out;
  EXPECT_NE(run.out.find("choices: LongEdge (\"Long Edge\"), ShortEdge (\"Short Edge\")"),
            std::string::npos) << run.out;

  ProgramRun unknown = VarnoPrint("--feed-edge Diagonal", dir);
  EXPECT_EQ(unknown.status, 2);
  EXPECT_NE(unknown.all.find("--feed-edge: no choice \"Diagonal\"; the choices are: LongEdge"),
            std::string::npos) << unknown.all;
  EXPECT_TRUE(unknown.out.empty());
}

// The habits of lp users: -o KEY=VALUE for PPD choices that the panels then read,
// --name=value, -v for the informational lines that are otherwise left out, --version.
TEST(VarnoPrint, TakesTheCommandLineAsLpUsersWriteIt) {
  TempDir dir;
  ProgramRun run = VarnoPrint("-o VNOutputMode=HighQuality -o duplex=duplextumble", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  EXPECT_EQ(run.all, run.out) << "nothing on standard error without -v";
  std::optional<print::Ticket> ticket = PrintedTicket(run);
  ASSERT_TRUE(ticket);
  EXPECT_EQ(ticket->ppdDictionary().getString("VNOutputMode"), "HighQuality");
  EXPECT_EQ(ticket->ppdDictionary().getString("Duplex"), "DuplexTumble");
  EXPECT_EQ(ticket->number<std::int32_t>("com.varno.print.ImageResolution"), 5)
      << "the Image Options panel read the choice";

  const std::string spaced = VarnoPrint("--image-quality HighQuality", dir).out;
  ProgramRun joined = VarnoPrint("--image-quality=HighQuality -v", dir);
  EXPECT_EQ(joined.out, spaced);
  EXPECT_NE(joined.all.find("printer Varno AT120A"), std::string::npos) << joined.all;
  ProgramRun version = VarnoPrint("--version", dir);
  EXPECT_EQ(version.status, 0);
  EXPECT_TRUE(version.out.starts_with("varno-print ")) << version.out;
}

// Usage errors exit 2; a file or plug-in that cannot be used exits 1, naming it.
TEST(VarnoPrint, BadInputGivesAClearErrorAndStatus) {
  TempDir dir;
  const std::string junk = dir.write("junk.ppd", "*PPD-Adobe: \"4.3\"\nthis is no PPD\n").string();
  const std::string damaged = dir.write("damaged.session", "<plist><dict><key>").string();
  // A bundle with the plug-in's identifier but no library, found first on the search path.
  std::filesystem::copy_file(VARNO_BUILT_PLUGIN "/Contents/Info.plist",
                             dir.write("plugins/VarnoFeatures.plugin/Contents/Info.plist", ""),
                             std::filesystem::copy_options::overwrite_existing);
  const struct {
    std::string arguments;
    int status;
    std::string named;
  } cases[] = {{"--frobnicate", 2, "unknown option '--frobnicate'\nTry 'varno-print --help'"},
               {"--ppd", 2, "--ppd needs a value"},
               {"--list=yes", 2, "--list takes no value"},
               {"--ppd a.ppd --queue q", 2, ""},
               {"-o Duplex", 2, "-o takes KEY=VALUE"},
               {"-o Nonexistent=1", 2, "no option \"Nonexistent\"; its options are: Duplex,"},
               {"-o Duplex=Sideways", 2, "the choices are: None, DuplexNoTumble, DuplexTumble"},
               {"--ppd '" VARNO_TEST_DATA_DIR "/ppd/Other-Maker.ppd'", 1, "is not a Varno PPD"},
               {"--summary", 1, "no panel of this plug-in gives a summary"},
               {"--ppd '" + (dir / "none.ppd").string() + "'", 1, "none.ppd"},
               {"--ppd '" + junk + "'", 1, "junk.ppd"},
               {"--session '" + damaged + "'", 1, "damaged.session"},
               {"--bundle-path '" + (dir / "plugins").string() + "'", 1, "VarnoFeatures"}};
  for (const auto& c : cases) {
    ProgramRun run = VarnoPrint(c.arguments, dir);
    EXPECT_EQ(run.status, c.status) << c.arguments;
    EXPECT_NE(run.all.find(c.named), std::string::npos) << run.all;
    EXPECT_TRUE(run.out.empty()) << "no ticket is printed after an error";
  }
}

}  // namespace
}  // namespace varno
