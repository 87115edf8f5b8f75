// SPDX-License-Identifier: Apache-2.0
// Hostile files, as fuzzing found them, given to varno-print and to the stores and
// preference files: each is refused (or, if well formed, used) in time, with one clear
// line, and never crashes or hangs. Every case runs in a child process with a time limit,
// so a crash or a hang fails its case instead of the whole program.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "panels/booklet_watermark/fax_image_store.h"
#include "panels/booklet_watermark/watermark_store.h"
#include "platform/system/user_preferences.h"
#include "support/temp_dir.h"

namespace varno {
namespace {

using testing::TempDir;

const std::string kProgram = VARNO_BUILD_DIR "/bin/varno-print";
const std::filesystem::path kRegressions = VARNO_FUZZ_REGRESSIONS;
constexpr int kTimeLimitSeconds = 30;

// How a child process ended.
struct Ending {
  bool timedOut = false;
  int signal = 0;     // the signal that ended it, or 0
  int exitCode = -1;  // when it exited
  std::string err;    // its standard error
};

// Runs `body` in a child process whose standard error goes to `errFile` and standard output
// nowhere; kills it after `seconds`. The child's exit code is what `body` returns.
Ending RunChild(const std::function<int()>& body, const std::filesystem::path& errFile,
                int seconds = kTimeLimitSeconds) {
  Ending ending;
  const pid_t pid = ::fork();
  if (pid == 0) {
    int null = ::open("/dev/null", O_WRONLY);
    int err = ::open(errFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ::dup2(null, STDOUT_FILENO);
    ::dup2(err, STDERR_FILENO);
    ::_exit(body());
  }
  if (pid < 0) return ending;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  int status = 0;
  while (::waitpid(pid, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > deadline) {
      ::kill(pid, SIGKILL);
      ::waitpid(pid, &status, 0);
      ending.timedOut = true;
      break;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  if (!ending.timedOut) {
    if (WIFSIGNALED(status)) ending.signal = WTERMSIG(status);
    if (WIFEXITED(status)) ending.exitCode = WEXITSTATUS(status);
  }
  ending.err = testing::ReadAll(errFile);
  return ending;
}

// Runs varno-print with `option` and `file`.
Ending VarnoPrint(const std::string& option, const std::filesystem::path& file, const TempDir& dir) {
  return RunChild(
      [&] {
        ::execl(kProgram.c_str(), kProgram.c_str(), option.c_str(), file.c_str(), nullptr);
        return 127;
      },
      dir / "stderr.txt");
}

// A readable account of how the child ended, for failure messages.
std::string Describe(const Ending& e) {
  if (e.timedOut) return "still running after " + std::to_string(kTimeLimitSeconds) + " s";
  if (e.signal) return std::string("killed by signal ") + ::strsignal(e.signal) + "; stderr: " + e.err;
  return "exit " + std::to_string(e.exitCode) + "; stderr: " + e.err;
}

// Refused: exit 1 and exactly one line on standard error, naming the file.
void ExpectRefused(const Ending& e, const std::filesystem::path& file) {
  EXPECT_EQ(e.exitCode, 1) << Describe(e);
  EXPECT_EQ(std::count(e.err.begin(), e.err.end(), '\n'), 1) << e.err;
  EXPECT_NE(e.err.find(file.string()), std::string::npos) << "the message does not name the file: " << e.err;
}

enum class Expect { Refused, Used, Either };

struct Case {
  Expect asTicket;
  Expect asSession;
  bool isDictionary;  // a property-list dictionary: preferences read it, not an empty one
};

// What each regression input is; a new file in fuzz/regressions/ must be added here.
const std::map<std::string, Case> kCases = {
    {"interface-bounds-int32-overflow-ubsan.plist", {Expect::Refused, Expect::Refused, true}},
    {"plist-invalid-utf8-binary-damaged.plist", {Expect::Refused, Expect::Refused, false}},
    {"plist-invalid-utf8-binary-truncated.plist", {Expect::Refused, Expect::Refused, false}},
    {"plist-nul-in-string-abort.plist", {Expect::Refused, Expect::Refused, false}},
    {"plist-binary-date-just-before-a-second-xml-round-trip.bplist", {Expect::Refused, Expect::Refused, true}},
    {"ppd-duplicate-option-readppddefaults-endless-loop.ppd", {Expect::Refused, Expect::Refused, false}},
    {"ppd-duplicate-custompagesize-libcups-leak.ppd", {Expect::Refused, Expect::Refused, false}},
    {"ticket-binary-date-2100-becomes-1932.bplist", {Expect::Used, Expect::Refused, true}},
    {"ticket-key-ending-in-part-suffix-lost-in-job-options.plist", {Expect::Used, Expect::Refused, true}},
    // Latin-1 bytes in a UTF-8 file: refusing the file and reading it are both fair.
    {"ticket-latin1-strings-job-options-truncated.plist", {Expect::Either, Expect::Refused, true}},
    {"ticket-ppd-keyword-with-dot-breaks-job-option-decoding.plist", {Expect::Used, Expect::Refused, true}},
    {"ticket-xml-date-2100.plist", {Expect::Used, Expect::Refused, true}},
    {"watermark-store-nul-abort.plist", {Expect::Refused, Expect::Refused, false}},
    // Made at test time by the generators in fuzz/regressions/.
    {"deep.bplist", {Expect::Refused, Expect::Refused, false}},
    {"deep-comment.plist", {Expect::Refused, Expect::Refused, false}},
    {"session-items.plist", {Expect::Refused, Expect::Used, true}},
};

// The regression inputs and the generated ones, by name.
std::map<std::string, std::filesystem::path> HostileFiles(const TempDir& dir) {
  std::map<std::string, std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(kRegressions))
    if (entry.path().extension() != ".py") files[entry.path().filename()] = entry.path();
  const auto generate = [&](const std::string& script, const std::string& args, const std::string& name) {
    const std::filesystem::path out = dir / name;
    const std::string command = "python3 '" + (kRegressions / script).string() + "' " + args + " '" +
                                out.string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    files[name] = out;
  };
  generate("mkdeep_bplist.py", "100000", "deep.bplist");
  generate("mkxmlcomment.py", "250000", "deep-comment.plist");
  generate("mkquadratic.py", "session-items 80000", "session-items.plist");
  return files;
}

// The generated files are large and slow to make: once per program.
class HostileInput : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    generated = new TempDir;
    shared = new std::map<std::string, std::filesystem::path>(HostileFiles(*generated));
  }
  static void TearDownTestSuite() {
    delete shared;
    delete generated;
  }
  static inline TempDir* generated = nullptr;
  static inline std::map<std::string, std::filesystem::path>* shared = nullptr;
  TempDir dir;
  const std::map<std::string, std::filesystem::path>& files = *shared;
};

TEST_F(HostileInput, EveryRegressionInputIsClassified) {
  for (const auto& [name, path] : files) EXPECT_TRUE(kCases.contains(name)) << name << " is not in kCases";
  EXPECT_GE(files.size(), kCases.size());
}

TEST_F(HostileInput, TicketAndSessionFilesAreRefusedWithOneLineOrUsed) {
  for (const auto& [name, file] : files) {
    auto found = kCases.find(name);
    if (found == kCases.end()) continue;
    for (const auto& [option, expect] : {std::pair{"--ticket", found->second.asTicket},
                                         std::pair{"--session", found->second.asSession}}) {
      SCOPED_TRACE(std::string(option) + " " + name);
      const Ending e = VarnoPrint(option, file, dir);
      if (e.timedOut || e.signal) {
        ADD_FAILURE() << Describe(e);
        continue;
      }
      if (expect == Expect::Refused || (expect == Expect::Either && e.exitCode != 0))
        ExpectRefused(e, file);
      else
        EXPECT_EQ(e.exitCode, 0) << Describe(e);
    }
  }
}

// Stores and preferences live below `dir`, as the environment names them.
int ReadStoresAndPreferences(const TempDir& dir, const std::filesystem::path& input, bool isDictionary) {
  ::setenv("VARNO_SUPPORT_DIR", (dir / "support").c_str(), 1);
  ::setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
  std::filesystem::create_directories(dir / "config" / "varno");
  for (const char* name : {panels::kWatermarkStoreFileName, panels::kFaxImageStoreFileName}) {
    std::optional<std::filesystem::path> path = panels::CopyPreferenceFileURL(name);
    if (!path) return 10;
    std::filesystem::copy_file(input, *path, std::filesystem::copy_options::overwrite_existing);
  }
  std::filesystem::copy_file(input, dir / "config" / "varno" / "hostile.plist",
                             std::filesystem::copy_options::overwrite_existing);
  std::optional<plist::Array> list;
  if (panels::loadWatermarkList(panels::kWatermarkStoreFileName, nullptr, &list)) return 11;
  if (panels::LoadFaxCoverImageList()) return 12;
  std::optional<plist::Dictionary> preferences = sys::CopyUserPreferences("hostile.plist");
  if (!preferences) return 13;
  if (!isDictionary && !preferences->empty()) return 14;
  return 0;
}

TEST_F(HostileInput, StoresAndPreferenceFilesReportFailureWithoutCrashing) {
  for (const auto& [name, file] : files) {
    auto found = kCases.find(name);
    if (found == kCases.end()) continue;
    SCOPED_TRACE(name);
    TempDir home;
    const Ending e = RunChild([&] { return ReadStoresAndPreferences(home, file, found->second.isDictionary); },
                              dir / "stderr.txt");
    EXPECT_EQ(e.exitCode, 0) << Describe(e) << " (10: no store path, 11: a watermark list, "
                                               "12: a fax image list, 13: no preferences, "
                                               "14: preferences from a non-dictionary)";
  }
}

TEST_F(HostileInput, AFifoIsRefusedAtOnceAsTicketSessionAndStore) {
  const std::filesystem::path fifo = dir / "fifo.plist";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  for (const char* option : {"--ticket", "--session"}) {
    SCOPED_TRACE(option);
    const Ending e = VarnoPrint(option, fifo, dir);
    ASSERT_FALSE(e.timedOut || e.signal) << Describe(e);
    ExpectRefused(e, fifo);
  }
  TempDir home;
  const Ending e = RunChild(
      [&] {
        ::setenv("VARNO_SUPPORT_DIR", home.path().c_str(), 1);
        std::optional<std::filesystem::path> path = panels::CopyPreferenceFileURL(panels::kWatermarkStoreFileName);
        if (!path || ::mkfifo(path->c_str(), 0600) != 0) return 10;
        std::optional<plist::Array> list;
        return panels::loadWatermarkList(panels::kWatermarkStoreFileName, nullptr, &list) ? 11 : 0;
      },
      dir / "stderr.txt", 10);
  EXPECT_EQ(e.exitCode, 0) << Describe(e);
}

TEST_F(HostileInput, ThePPDFindingFinishesInTime) {
  const Ending e = VarnoPrint("--ppd", files.at("ppd-duplicate-option-readppddefaults-endless-loop.ppd"), dir);
  EXPECT_FALSE(e.timedOut || e.signal) << Describe(e);
  EXPECT_TRUE(e.exitCode == 0 || e.exitCode == 1) << Describe(e);
}

}  // namespace
}  // namespace varno
