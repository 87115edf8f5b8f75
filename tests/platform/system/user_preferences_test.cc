// SPDX-License-Identifier: Apache-2.0
#include "platform/system/user_preferences.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace varno::sys
