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
