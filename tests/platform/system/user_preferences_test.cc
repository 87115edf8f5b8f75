// SPDX-License-Identifier: Apache-2.0
#include "platform/system/user_preferences.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>

#include "platform/bundle/test_bundle.h"
#include "support/temp_dir.h"

namespace varno::sys {
namespace {

using testing::ScopedEnv;
using testing::TempDir;

TEST(UserPreferences, MissingOrDamagedFilesReadAsEmptyAndWritesRoundTrip) {
  TempDir home;
  ScopedEnv env{{"XDG_CONFIG_HOME", home.path().string()}};
  std::optional<plist::Dictionary> prefs = CopyUserPreferences("com.varno.print.jobnotes.plist");
  ASSERT_TRUE(prefs);
  EXPECT_TRUE(prefs->empty());

  prefs->set("useLoginNameAsSenderName", 1);
  ASSERT_TRUE(WriteUserPreferences("com.varno.print.jobnotes.plist", *prefs));
  EXPECT_EQ(CopyUserPreferences("com.varno.print.jobnotes.plist"), prefs);

  auto damaged = home.write("varno/com.varno.print.inputhistory.plist", "<plist><dict><key>");
  prefs = CopyUserPreferences("com.varno.print.inputhistory.plist");
  ASSERT_TRUE(prefs);
  EXPECT_TRUE(prefs->empty());
  EXPECT_EQ(testing::ReadAll(damaged), "<plist><dict><key>");  // left for the user
}

TEST(UserPreferences, AFailedWriteSaysSoOnStandardError) {
  TempDir home;
  home.write("blocked", "a file where the folder should be");
  ScopedEnv env{{"XDG_CONFIG_HOME", (home / "blocked").string()}};
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(WriteUserPreferences("com.varno.print.jobnotes.plist", plist::Dictionary()));
  EXPECT_NE(::testing::internal::GetCapturedStderr().find("WriteUserPreferences() failed ("),
            std::string::npos);
}

TEST(UserPreferences, AnUpdateRereadsTheFileAndALockHeldTooLongDelaysItButNeverBlocksIt) {
  TempDir home;
  ScopedEnv env{{"XDG_CONFIG_HOME", home.path().string()}};
  const char* file = "com.varno.print.inputhistory.plist";
  ASSERT_TRUE(WriteUserPreferences(file, plist::Dictionary{{"theirs", 1}}));
  ASSERT_TRUE(UpdateUserPreferences(file, [](plist::Dictionary& d) { d.set("mine", 2); }));
  EXPECT_EQ(CopyUserPreferences(file), (plist::Dictionary{{"theirs", 1}, {"mine", 2}}));

  // A process that took the lock and hung.
  const std::string lock = (home / "varno" / ("." + std::string(file) + ".lock")).string();
  const int held = ::open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_GE(held, 0);
  ASSERT_EQ(::flock(held, LOCK_EX | LOCK_NB), 0);
  const auto start = std::chrono::steady_clock::now();
  ::testing::internal::CaptureStderr();
  EXPECT_TRUE(UpdateUserPreferences(file, [](plist::Dictionary& d) { d.set("mine", 3); }));
  EXPECT_NE(::testing::internal::GetCapturedStderr().find("stays locked"), std::string::npos);
  EXPECT_GE(std::chrono::steady_clock::now() - start,
            std::chrono::milliseconds(kPreferencesLockWaitMilliseconds));
  ::close(held);
  EXPECT_EQ(CopyUserPreferences(file)->getNumber<int>("mine"), 3);
}

}  // namespace
}  // namespace varno::sys
