// SPDX-License-Identifier: Apache-2.0
// Two processes confirming entries in history combo boxes at once, under one history key
// and under two: every read of the shared file must see a whole file, each key's entries
// within the limit and newest first, and in the end no process may have undone another's.
//
// The preferences folder is on tmpfs when the machine has one, as for the watermark store:
// what is tested is the replacement between processes, not the disk flush.
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/bundle/test_bundle.h"
#include "platform/plist/file.h"
#include "support/temp_dir.h"
#include "ui/history_combo_box.h"

extern char** environ;

namespace varno::ui {
namespace {

constexpr int kRounds = 500;
constexpr std::size_t kLimit = 10;

pid_t Spawn(std::vector<std::string> args) {
  args.insert(args.begin(), VARNO_HISTORY_WORKER);
  std::vector<char*> argv;
  for (std::string& arg : args) argv.push_back(arg.data());
  argv.push_back(nullptr);
  pid_t pid = -1;
  return ::posix_spawn(&pid, argv[0], nullptr, nullptr, argv.data(), environ) == 0 ? pid : -1;
}

// An entry "TAG-N" as its writer and number.
std::pair<std::string, int> Entry(const std::string& text) {
  const std::size_t dash = text.rfind('-');
  EXPECT_NE(dash, std::string::npos) << text;
  if (dash == std::string::npos) return {text, -1};
  return {text.substr(0, dash), std::stoi(text.substr(dash + 1))};
}

// Each key holds at most the limit of entries, all strings, and each writer's entries
// newest first without a gap. Returns the entries by key.
std::map<std::string, std::vector<std::string>> ExpectWellFormed(const plist::Dictionary& root) {
  std::map<std::string, std::vector<std::string>> keys;
  for (const auto& [key, value] : root) {
    const plist::Array* entries = value.asArray();
    EXPECT_TRUE(entries) << key;
    if (!entries) continue;
    EXPECT_LE(entries->size(), kLimit) << key;
    std::map<std::string, int> last;  // writer -> its number seen last
    for (const plist::Value& entry : *entries) {
      const std::string* text = entry.asString();
      EXPECT_TRUE(text) << key;
      if (!text) continue;
      keys[key].push_back(*text);
      const auto [writer, number] = Entry(*text);
      // One after the other: a gap would be an entry that another save undid.
      if (auto seen = last.find(writer); seen != last.end()) {
        EXPECT_EQ(number, seen->second - 1) << key << ": " << *text << " after " << writer
                                            << "-" << seen->second;
      }
      last[writer] = number;
    }
  }
  return keys;
}

class HistoryStress : public ::testing::Test {
 protected:
  static std::optional<std::string> FastTemporaryFolder() {
    if (std::filesystem::is_directory("/dev/shm")) return "/dev/shm";
    const char* current = std::getenv("TMPDIR");
    return current ? std::optional<std::string>(current) : std::nullopt;
  }
  std::filesystem::path file() const { return folder / "varno" / kInputHistoryFileName; }

  // Runs the two writers to the end while this process reads the file; returns what the
  // file holds then.
  std::map<std::string, std::vector<std::string>> RunWriters(const char* keyA,
                                                             const char* keyB) {
    const std::string rounds = std::to_string(kRounds);
    pid_t writers[] = {Spawn({keyA, "A", rounds}), Spawn({keyB, "B", rounds})};
    // A failed assertion ends the test early; writers left running would outlive the folder.
    std::unique_ptr<pid_t[], void (*)(pid_t*)> stop(writers, [](pid_t* pids) {
      for (int i = 0; i < 2; ++i)
        if (pids[i] > 0) ::kill(pids[i], SIGKILL), ::waitpid(pids[i], nullptr, 0);
    });
    EXPECT_TRUE(writers[0] > 0 && writers[1] > 0);
    int reads = 0, running = 2, status = 0;
    while (running > 0 && !HasFailure()) {
      // Pausing leaves the two cores of a small machine to the writers.
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
      std::error_code missing;
      if (std::filesystem::exists(file(), missing)) {
        std::string error;
        std::optional<plist::Dictionary> seen = plist::ReadDictionaryFile(file(), &error);
        ++reads;
        EXPECT_TRUE(seen) << "read " << reads << ": " << error;
        if (seen) ExpectWellFormed(*seen);
      }
      for (pid_t& pid : writers) {
        if (pid > 0 && ::waitpid(pid, &status, WNOHANG) == pid) {
          EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
          pid = -1, --running;
        }
      }
    }
    EXPECT_GT(reads, 10);
    std::optional<plist::Dictionary> root = plist::ReadDictionaryFile(file());
    EXPECT_TRUE(root);
    return root ? ExpectWellFormed(*root) : std::map<std::string, std::vector<std::string>>();
  }

  testing::ScopedEnv tmp{{"TMPDIR", FastTemporaryFolder()}};
  testing::TempDir folder;
  testing::ScopedEnv env{{"XDG_CONFIG_HOME", folder.path().string()}};
};

std::vector<std::string> Newest(const char* tag) {
  std::vector<std::string> entries;
  for (int i = kRounds - 1; entries.size() < kLimit; --i)
    entries.push_back(std::string(tag) + "-" + std::to_string(i));
  return entries;
}

TEST_F(HistoryStress, TwoProcessesUnderTwoKeysKeepEachOthersEntries) {
  std::map<std::string, std::vector<std::string>> keys =
      RunWriters("savedJobNames", "mailboxNumbers");
  EXPECT_EQ(keys["savedJobNames"], Newest("A"));
  EXPECT_EQ(keys["mailboxNumbers"], Newest("B"));
}

TEST_F(HistoryStress, TwoProcessesUnderOneKeyKeepTheNewestEntries) {
  std::map<std::string, std::vector<std::string>> keys =
      RunWriters("savedJobNames", "savedJobNames");
  const std::vector<std::string>& entries = keys["savedJobNames"];
  ASSERT_EQ(entries.size(), kLimit);
  // The file holds the last ten confirmations of both: the last of all first, and of each
  // writer only its newest entries, none lost behind an older one.
  EXPECT_EQ(Entry(entries.front()).second, kRounds - 1);
  std::map<std::string, std::vector<int>> byWriter;
  for (const std::string& entry : entries)
    byWriter[Entry(entry).first].push_back(Entry(entry).second);
  for (const auto& [writer, numbers] : byWriter)
    for (std::size_t i = 0; i < numbers.size(); ++i)
      EXPECT_EQ(numbers[i], kRounds - 1 - static_cast<int>(i)) << writer;
}

}  // namespace
}  // namespace varno::ui
