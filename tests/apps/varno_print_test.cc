// SPDX-License-Identifier: Apache-2.0
// varno-print run as a user runs it: a separate process, its output and exit status.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
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
  // The set-ups remember what was typed in the user's preferences: the test's own, not theirs.
  const std::string config = (dir / "config").string();
  FILE* pipe = ::popen(("XDG_CONFIG_HOME='" + config + "' " + kProgram + " " + arguments + " 2>'" + err + "'").c_str(), "r");
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

// A special page list of the ticket in short, as the Special Pages pane wrote it: each
// page's start, "-END" for a range, "/N" its 2-sided value, "xN" a quantity above 1, "cN"
// its paper colour.
std::string SpecialPages(const print::Ticket& ticket, const char* key) {
  plist::Array pages;
  ticket.getArray(key, pages);
  std::string text;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const plist::Dictionary page = pages[i].asDictionary() ? *pages[i].asDictionary() : plist::Dictionary{};
    const int start = page.getNumber<int>("StartPage").value_or(-1);
    text += (text.empty() ? "" : " ") + std::to_string(start);
    if (const int end = page.getNumber<int>("EndPage").value_or(start); end != start) text += "-" + std::to_string(end);
    if (const std::optional<int> plex = page.getNumber<int>("SidesImaged")) text += "/" + std::to_string(*plex);
    if (const int quantity = page.getNumber<int>("Quantity").value_or(1); quantity != 1)
      text += "x" + std::to_string(quantity);
    const plist::Dictionary stock = page.getDictionary("Stock").value_or(plist::Dictionary{});
    if (const std::optional<int> color = stock.getNumber<int>("Color"); color && *color >= 0)
      text += "c" + std::to_string(*color);
  }
  return text;
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
const std::string kFolder = "--ppd '" VARNO_TEST_DATA_DIR "/ppd/Varno-BookletFolder.ppd'";

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
               {"--job-type hold", 2, "--job-type: no choice \"hold\"; the choices are: normal"},
               {"--paper-size custom", 2, "give a custom size with --custom-size"},
               {"--custom-size 21x", 2, "\"21x\" is not a size; give WIDTHxLENGTH[pt|mm|in]"},
               {"--custom-size 100x800", 1, "widths from 216 to 907 points"},
               {"--separators none:Tray2", 2, "no separators come from no tray"},
               {"--separators printed:Tray9", 2, "no choice \"Tray9\"; the choices are: Auto"},
               {"--covers front:A9", 2, "no choice \"A9\"; the choices are: Letter"},
               {"--covers both::sideways", 2, "no printed sides \"sideways\""},
               {"--passcode 1234", 2, "--passcode goes with --job-type secure, or with --job-type mailbox"},
               {"--job-type secure --passcode 12ab", 2, "--passcode: a secure print passcode is 1 to 12 digits"},
               {"--job-type delayed --print-at 25:00", 2, "--print-at takes a time of day as HH:MM"},
               {"--job-type mailbox --mailbox 1234", 2, "--mailbox: a folder number is up to 3 digits"},
               {"--job-type mailbox --mailbox 201", 1, "Invalid Folder Number: "},
               {"--staple multiple", 2, "no choice \"multiple\"; the choices are: none (\"No Staple\"), single"},
               {"--fold c", 2, "--fold: this printer has no folding unit installed"},
               {"--booklet fold", 2, "--booklet: this printer has no booklet maker installed"},
               {kFolder + " --booklet fold,outlines", 2, "outlines are drawn around imposed pages: add layout"},
               {kFolder + " --booklet fold,layout,gutter=300", 2, "the gutter is 0 to 216 points"},
               {kFolder + " --paper-type Transparency --fold c", 1, "--fold c: the printer cannot do this with"},
               {kFolder + " --staple dual --booklet fold", 1, "a stapled job is not folded or laid out as a booklet"},
               {"--offset sets,subset=5", 2, "only subsets and sets-and-subsets take subset=N"},
               {"--custom-finishing 'Tape-bind the left edge of each set'", 2, "has 35 characters; the printer takes at most 30"},
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

// The Paper/Output panel's options, each made in the dialog as a person makes it.
TEST(VarnoPrint, PaperOptionsAreMadeInThePaperOutputPanel) {
  TempDir dir;
  const std::string saved = (dir / "paper.plist").string();
  ProgramRun run = VarnoPrint("--paper-type Transparency --separators printed:Tray2 --summary "
                              "--save-ticket '" + saved + "'", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  EXPECT_EQ(run.out, "Paper:\n  - Clear\n  - Transparency\n  - Separators: Tray 2\n"
                     "Finishing:\n  - No Staple\n  - No Hole Punch\n");
  std::string error;
  std::optional<print::Ticket> ticket = print::Ticket::load(saved, &error);
  ASSERT_TRUE(ticket) << error;
  const plist::Dictionary stock = ticket->dictionary("com.varno.print.JobLevelStock").value_or(plist::Dictionary{});
  EXPECT_EQ(stock.getNumber<int>("Type"), 2);
  EXPECT_EQ(stock.getNumber<int>("Color"), 6);
  EXPECT_EQ(ticket->ppdDictionary().getString("VNSlipSheetPrint"), "Printed");
  EXPECT_EQ(ticket->ppdDictionary().getString("VNSlipSheetSource"), "Tray2");

  // A job type only a ticket carries goes through the dialog unchanged.
  for (int jobType : {4, 9}) {
    print::Ticket in;
    in.setValue("com.varno.print.JobType", plist::Dictionary{{"JobType", jobType}}, "test");
    const std::string path = (dir / "in.plist").string();
    ASSERT_TRUE(in.save(path, &error)) << error;
    run = VarnoPrint("--ticket '" + path + "'", dir);
    ASSERT_EQ(run.status, 0) << run.all;
    EXPECT_EQ(PrintedTicket(run)->dictionary("com.varno.print.JobType")->getNumber<int>("JobType"), jobType);
  }

  // 2-sided printing: the framework's and the maker's keys carry the PPD choice's value,
  // the same as a ticket naming that choice reads back as.
  run = VarnoPrint("--two-sided long", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  ticket = PrintedTicket(run);
  ASSERT_TRUE(ticket);
  EXPECT_EQ(ticket->ppdDictionary().getString("Duplex"), "DuplexNoTumble");
  const std::optional<int> framework = ticket->number<int>("com.apple.print.PrintSettings.PMDuplexing");
  EXPECT_EQ(ticket->number<int>("com.varno.print.FinishingDuplex"), framework);
  ProgramRun viaPPD = VarnoPrint("-o Duplex=DuplexNoTumble", dir);
  EXPECT_EQ(PrintedTicket(viaPPD)->number<int>("com.varno.print.FinishingDuplex"), framework);
  EXPECT_NE(framework, PrintedTicket(VarnoPrint("", dir))->number<int>("com.varno.print.FinishingDuplex"));

  std::string ppd = testing::ReadAll(VARNO_SAMPLE_PPD), simplex;
  for (std::size_t start = 0, end; start < ppd.size(); start = end + 1) {
    end = std::min(ppd.find('\n', start), ppd.size());
    const std::string line = ppd.substr(start, end - start);
    if (line.find("Duplex") == std::string::npos) simplex += line + "\n";
  }
  const std::string simplexPPD = dir.write("simplex.ppd", simplex).string();
  run = VarnoPrint("--ppd '" + simplexPPD + "' --two-sided long", dir);
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.all.find("--two-sided: this printer has no 2-sided printing"), std::string::npos) << run.all;

  run = VarnoPrint("--covers both:A4,Blue,:front --custom-size 210x297mm --save-ticket '" + saved + "'", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  EXPECT_EQ(run.all, run.out) << "nothing on standard error without -v";
  ticket = print::Ticket::load(saved, &error);
  ASSERT_TRUE(ticket) << error;
  for (const char* key : {"com.varno.print.SpecialPages.FrontCover", "com.varno.print.SpecialPages.BackCover"}) {
    const plist::Dictionary cover = ticket->dictionary(key).value_or(plist::Dictionary{});
    EXPECT_EQ(cover.getNumber<int>("SidesImaged"), 2) << key;
    const plist::Dictionary coverStock = cover.getDictionary("Stock").value_or(plist::Dictionary{});
    EXPECT_EQ(coverStock.getNumber<int>("Color"), 2) << key;  // Blue
  }
  EXPECT_EQ(ticket->ppdDictionary().getString("VNFrontCoverSheet"), "Auto");
  const plist::Dictionary custom = ticket->dictionary("com.varno.print.JobLevelStock").value_or(plist::Dictionary{});
  EXPECT_EQ(custom.getNumber<int>("Width"), 595);
  EXPECT_EQ(custom.getNumber<int>("Length"), 842);
}

// Finishing choices are made in the order given, as menu choices, so each one's rules
// decide what the earlier ones leave.
TEST(VarnoPrint, FinishingOptionsAreMenuChoicesInCommandLineOrder) {
  TempDir dir;
  const struct {
    std::string arguments;
    const char* staple;
    const char* punch;
    int options;
    const char* summary;
  } cases[] = {
      {"--punch 3 --staple multiple", "MultipleStaples", "None", 53,
       "Finishing:\n  - Multiple Staples\n  - No Hole Punch\n  - No Fold\n"},
      {"--staple multiple --punch 3", "None", "3HolePunch", 30,
       "Finishing:\n  - No Staple\n  - 3-Hole Punch\n  - No Fold\n"},
      {"--booklet fold-staple,layout", "None", "None", 24,
       "Finishing:\n  - Booklet Crease and Staple\n  - Booklet Layout\n"},
  };
  const std::string saved = (dir / "finishing.plist").string();
  for (const auto& c : cases) {
    ProgramRun run = VarnoPrint(kFolder + " " + c.arguments + " --summary --save-ticket '" + saved + "'", dir);
    ASSERT_EQ(run.status, 0) << run.all;
    EXPECT_NE(run.out.find(c.summary), std::string::npos) << run.out;
    std::string error;
    std::optional<print::Ticket> ticket = print::Ticket::load(saved, &error);
    ASSERT_TRUE(ticket) << error;
    EXPECT_EQ(ticket->ppdDictionary().getString("StapleLocation"), c.staple) << c.arguments;
    EXPECT_EQ(ticket->ppdDictionary().getString("VNPunch").value_or("None"), c.punch) << c.arguments;
    EXPECT_EQ(ticket->number<int>("com.varno.print.FinishingOptions"), c.options) << c.arguments;
  }
  std::string error;
  std::optional<print::Ticket> booklet = print::Ticket::load(saved, &error);
  ASSERT_TRUE(booklet) << error;
  EXPECT_EQ(booklet->boolean("com.varno.print.BookletLayout"), true);
  EXPECT_EQ(booklet->number<int>("com.varno.print.FinishingDuplex"), 3);
  EXPECT_EQ(booklet->number<int>("com.apple.print.PrintSettings.PMDuplexing"), 3);
  EXPECT_EQ(booklet->ppdDictionary().getString("VNFold"), "BiFoldStaple");

  ProgramRun run = VarnoPrint(kFolder + " --booklet fold,layout,outlines,gutter=36,creep=1.5,size=A4 "
                              "--offset subsets,subset=5 --custom-finishing 'Tape bind'", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  std::optional<print::Ticket> ticket = PrintedTicket(run);
  ASSERT_TRUE(ticket);
  EXPECT_EQ(ticket->number<int>("com.varno.print.Gutter"), 36);
  EXPECT_EQ(ticket->number<int>("com.varno.print.Creep"), 15);
  EXPECT_EQ(ticket->number<int>("com.varno.print.BookletDrawOutlines"), 2);
  EXPECT_EQ(ticket->dictionary("com.varno.print.JobLevelStock")->getNumber<int>("Size"), 4);  // A4
  EXPECT_EQ(ticket->number<int>("com.varno.print.FinishingOffset"), 4);
  EXPECT_EQ(ticket->number<int>("com.varno.print.FinishingOffsetPagesPerSubset"), 5);
  EXPECT_EQ(ticket->number<int>("com.varno.print.FinishingOptions"), 22);
  EXPECT_EQ(ticket->string("com.varno.print.FinishingCustom"), "Tape bind");
}

// The job type set-ups are filled in as a person would; their own checks decide.
TEST(VarnoPrint, JobTypeSetUpsAreFilledInAsAPersonWould) {
  TempDir dir;
  ProgramRun run = VarnoPrint("--job-type secure --passcode 0042", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  EXPECT_EQ(run.all, run.out) << "nothing on standard error";
  plist::Dictionary jobType = PrintedTicket(run)->dictionary("com.varno.print.JobType").value_or(plist::Dictionary{});
  EXPECT_EQ(jobType.getNumber<int>("JobType"), 6);
  EXPECT_EQ(jobType.getString("SecurePrintPassword"), "0042");

  // Without a passcode the set-up makes one up, and it is said once, on standard error.
  run = VarnoPrint("--job-type secure", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  const std::string made =
      PrintedTicket(run)->dictionary("com.varno.print.JobType")->getString("SecurePrintPassword").value_or("");
  ASSERT_EQ(made.size(), 4u);
  const std::string said = run.all.substr(run.out.size());
  EXPECT_NE(said.find(made), std::string::npos) << said;
  EXPECT_EQ(said.find(made), said.rfind(made)) << "said once";

  run = VarnoPrint("--job-type mailbox --mailbox 7 --job-name 'Board minutes' --passcode 2468", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  jobType = PrintedTicket(run)->dictionary("com.varno.print.JobType").value_or(plist::Dictionary{});
  EXPECT_EQ(jobType.getString("SavedJobLocation"), "7");
  EXPECT_EQ(jobType.getString("SavedJobName"), "Board minutes");
  EXPECT_EQ(jobType.getBoolean("UseJobName"), false);
  EXPECT_EQ(jobType.getString("SecurePrintPassword"), "2468");

  // A minute ago is tomorrow at that minute, in seconds since 1904 local time.
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const long long localNow = static_cast<long long>(now) + local.tm_gmtoff + 2082844800LL;
  const long long minuteAgo = localNow - 60 - (localNow - 60) % 60;
  char hhmm[8];
  std::snprintf(hhmm, sizeof hhmm, "%02lld:%02lld", minuteAgo % 86400 / 3600, minuteAgo % 3600 / 60);
  run = VarnoPrint(std::string("--job-type delayed --print-at ") + hhmm, dir);
  ASSERT_EQ(run.status, 0) << run.all;
  long long expected = localNow - localNow % 86400 + minuteAgo % 86400;
  if (expected < localNow) expected += 86400;
  EXPECT_EQ(PrintedTicket(run)->dictionary("com.varno.print.JobType")->getNumber<long long>("DelayedPrintTime"),
            expected);
}

// The Special Pages pane's options, made in its dialogs in command-line order as a person
// makes them; the dialogs' own alerts refuse what they cannot read.
TEST(VarnoPrint, SpecialPagesAreMadeInTheSpecialPagesPaneInOrder) {
  TempDir dir;
  const std::string saved = (dir / "special.plist").string();
  const struct {
    std::string arguments;
    int status;
    const char* inserts;
    const char* exceptions;
    const char* said;
  } cases[] = {
      {"--exception 1-10 --exception 4-6:long", 0, "", "1-3 4-6/2 7-10", ""},
      {"--insert 5,2,5", 0, "2 5 5", "", ""},
      {"--insert before-1:qty=3:,Blue, --exception '2, 4-5:short' --exception 5:one", 0, "0x3c2", "2/3 4/3 5/1", ""},
      {"--exception 0-3", 1, "", "", "--exception 0-3: Page numbers start at 1. Exception pages start at page 1."},
      {"--exception 5-3", 1, "", "", "--exception 5-3: Range in the wrong order. A range must start at its lower page"},
      {"--insert 3,,-", 1, "", "", "--insert 3,,-: No pages given. Type page numbers or ranges"},
      {"--insert 3:A9", 2, "", "", "--insert 3:A9: no paper size \"A9\" here; the choices are: Use Job Setting, Letter,"},
      {"--exception 3:short:,,SystemDefault", 2, "", "", "no paper type \"SystemDefault\" here; the choices are: Use Job Setting, Standard,"},
      {"--insert 3:qty=0", 2, "", "", "--insert: \"3:qty=0\" is not PAGES|before-1[:qty=N][:SIZE,COLOR,TYPE]; the quantity"},
      {"--exception 1-3a", 2, "", "", "takes digits, commas, dashes and blanks, not \"a\""},
      {"--delete-special-pages 1", 2, "", "", "there is no row 1; the list has 0 row(s)"},
      {kFolder + " --booklet fold,layout --insert 3", 1, "", "", "--insert 3: Inserts and exceptions cannot be added while"},
  };
  for (const auto& c : cases) {
    std::filesystem::remove(saved);
    ProgramRun run = VarnoPrint(c.arguments + " --save-ticket '" + saved + "'", dir);
    EXPECT_EQ(run.status, c.status) << c.arguments << "\n" << run.all;
    EXPECT_NE(run.all.find(c.said), std::string::npos) << run.all;
    if (c.status != 0) continue;
    std::string error;
    std::optional<print::Ticket> ticket = print::Ticket::load(saved, &error);
    ASSERT_TRUE(ticket) << error;
    EXPECT_EQ(SpecialPages(*ticket, "com.varno.print.SpecialPages.InsertList"), c.inserts) << c.arguments;
    EXPECT_EQ(SpecialPages(*ticket, "com.varno.print.SpecialPages.ExceptionList"), c.exceptions) << c.arguments;
  }
}

// The pane's list, covers from the Paper/Output panel included, as --list-special-pages
// prints it, and rows deleted by their place in it; the covers the pane keeps keep the
// paper and printed sides the Paper/Output panel gave them.
TEST(VarnoPrint, SpecialPagesAreListedAndDeletedByRow) {
  TempDir dir;
  const std::string made = "--covers both:,Blue,:front --exception 3-4:long --insert 3,7 --list-special-pages";
  ProgramRun run = VarnoPrint(made, dir);
  ASSERT_EQ(run.status, 0) << run.all;
  EXPECT_EQ(run.out,
            "Page(s)  Type       Attributes\n"
            "Front    Cover      Blank or Preprinted\n"
            "3-4      Exception  2-Sided (Long Edge)\n"
            "3        Insert     Quantity [1]\n"
            "7        Insert     Quantity [1]\n"
            "Back     Cover      Blank or Preprinted\n");

  const std::string saved = (dir / "deleted.plist").string();
  run = VarnoPrint(made + " --delete-special-pages 4,1 --save-ticket '" + saved + "'", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  EXPECT_EQ(run.out,
            "Page(s)  Type       Attributes\n"
            "3-4      Exception  2-Sided (Long Edge)\n"
            "3        Insert     Quantity [1]\n"
            "Back     Cover      Blank or Preprinted\n");
  std::string error;
  std::optional<print::Ticket> ticket = print::Ticket::load(saved, &error);
  ASSERT_TRUE(ticket) << error;
  EXPECT_EQ(SpecialPages(*ticket, "com.varno.print.SpecialPages.InsertList"), "3");
  EXPECT_FALSE(ticket->contains("com.varno.print.SpecialPages.FrontCover"));
  EXPECT_EQ(ticket->ppdDictionary().getString("VNFrontCoverSheet"), "None");
  const plist::Dictionary back = ticket->dictionary("com.varno.print.SpecialPages.BackCover").value_or(plist::Dictionary{});
  EXPECT_EQ(back.getNumber<int>("SidesImaged"), 2);
  EXPECT_EQ(back.getDictionary("Stock").value_or(plist::Dictionary{}).getNumber<int>("Color"), 2);

  run = VarnoPrint(made + " --delete-special-pages all", dir);
  ASSERT_EQ(run.status, 0) << run.all;
  EXPECT_EQ(run.out, "Page(s)  Type  Attributes\n");
}

}  // namespace
}  // namespace varno
