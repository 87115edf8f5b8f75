// SPDX-License-Identifier: Apache-2.0
// Several processes on one store: concurrent writers and writers killed at random points
// must never leave a file that other users cannot read.
//
// The store folder is on tmpfs when the machine has one: what is tested is the atomicity
// of replacing the file between processes, which tmpfs keeps, while the disk flush of each
// write (which only matters for power loss, which no test here can cause) would make a few
// thousand writes take half a minute.
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <random>
#include <thread>

#include "panels/booklet_watermark/watermark_store.h"
#include "panels/watermark_test_records.h"
#include "platform/bundle/test_bundle.h"
#include "platform/plist/file.h"
#include "support/temp_dir.h"

extern char** environ;

namespace varno::panels {
namespace {

using plist::Dictionary;
using testing::NumberedRecord;
using testing::RecordNumber;

pid_t Spawn(std::vector<std::string> args) {
  args.insert(args.begin(), VARNO_WATERMARK_WORKER);
  std::vector<char*> argv;
  for (std::string& arg : args) argv.push_back(arg.data());
  argv.push_back(nullptr);
  pid_t pid = -1;
  return ::posix_spawn(&pid, argv[0], nullptr, nullptr, argv.data(), environ) == 0 ? pid : -1;
}

// Every record in the store is one whole NumberedRecord, the list holds names, and the
// font data is one writer's whole buffer.
void ExpectOnlyWholeRecords(const Dictionary& root) {
  for (const auto& [key, value] : root) {
    if (key == kWatermarkListEntriesKey) {
      ASSERT_TRUE(value.asArray());
      for (const plist::Value& name : *value.asArray()) EXPECT_TRUE(name.asString());
    } else if (key.starts_with("VN-")) {
      const plist::Data* data = value.asData();
      ASSERT_TRUE(data && data->size() >= testing::kWriterFontBytes) << key;
      EXPECT_EQ(std::count(data->begin(), data->end(), data->front()), std::ssize(*data));
    } else {
      const Dictionary* record = value.asDictionary();
      std::optional<double> x = record ? record->getNumber<double>("xPos") : std::nullopt;
      ASSERT_TRUE(x) << key;
      EXPECT_EQ(*record, CreateWatermarkDictionary(NumberedRecord(key, RecordNumber(*x)))) << key;
    }
  }
}

class WatermarkStoreStress : public ::testing::Test {
 protected:
  std::filesystem::path store() const { return support / "Varno" / kWatermarkStoreFileName; }
  std::optional<Dictionary> root() const { return plist::ReadDictionaryFile(store()); }

  static std::optional<std::string> FastTemporaryFolder() {
    if (std::filesystem::is_directory("/dev/shm")) return "/dev/shm";
    const char* current = std::getenv("TMPDIR");
    return current ? std::optional<std::string>(current) : std::nullopt;
  }

  testing::ScopedEnv tmp{{"TMPDIR", FastTemporaryFolder()}};
  testing::TempDir support;
  testing::ScopedEnv env{{"VARNO_SUPPORT_DIR", support.path().string()}};
};

TEST_F(WatermarkStoreStress, TwoProcessesSavingAndRemovingLeaveOnlyWholeRecords) {
  saveWatermarkData(kWatermarkStoreFileName, NumberedRecord("seed", 0));
  pid_t writers[] = {Spawn({"churn", "A", "1000"}), Spawn({"churn", "B", "1000"})};
  // A failed assertion ends the test early; writers left running would outlive its folder.
  std::unique_ptr<pid_t[], void (*)(pid_t*)> stop(writers, [](pid_t* pids) {
    for (int i = 0; i < 2; ++i)
      if (pids[i] > 0) ::kill(pids[i], SIGKILL), ::waitpid(pids[i], nullptr, 0);
  });
  ASSERT_TRUE(writers[0] > 0 && writers[1] > 0);
  // Meanwhile this process reads: no read may see a torn or missing file.
  int reads = 0, running = 2, status = 0;
  while (running > 0) {
    // Pausing leaves the two cores of a small machine to the writers.
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    std::optional<Dictionary> seen = CopyXMLData(kWatermarkStoreFileName);
    ++reads;
    ASSERT_TRUE(seen) << "read " << reads;
    ExpectOnlyWholeRecords(*seen);
    for (pid_t& pid : writers) {
      if (pid > 0 && ::waitpid(pid, &status, WNOHANG) == pid) {
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        pid = -1, --running;
      }
    }
  }
  ASSERT_TRUE(root());
  ExpectOnlyWholeRecords(*root());
  EXPECT_GT(reads, 10);
}

TEST_F(WatermarkStoreStress, KillingAWriterAnywhereLeavesTheStoreWhole) {
  saveWatermarkData(kWatermarkStoreFileName, NumberedRecord("seed", 0));
  std::mt19937 random(2026);
  std::uniform_int_distribution<int> delayMicroseconds(0, 5000);
  for (int round = 0; round < 200; ++round) {
    struct stat before {}, now {};
    ASSERT_EQ(::stat(store().c_str(), &before), 0);
    // A forked writer starts in a millisecond where a new program takes tens; it runs the
    // same rounds as the worker program.
    pid_t writer = ::fork();
    if (writer == 0)
      for (int i = 0;; ++i) testing::WriterRound("K", i, true);
    ASSERT_GT(writer, 0);
    // Wait for the writer's first replacement, then kill it at a random later point of its
    // read-change-write cycle.
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (::stat(store().c_str(), &now) == 0 && now.st_ino == before.st_ino &&
           std::chrono::steady_clock::now() < deadline)
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    std::this_thread::sleep_for(std::chrono::microseconds(delayMicroseconds(random)));
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    ASSERT_NE(now.st_ino, before.st_ino) << "round " << round << ": the writer never wrote";

    std::optional<Dictionary> after = root();
    ASSERT_TRUE(after && after->contains("seed")) << "round " << round;
    ExpectOnlyWholeRecords(*after);
  }
}

}  // namespace
}  // namespace varno::panels
