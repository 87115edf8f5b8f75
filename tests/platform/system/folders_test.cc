#include "platform/system/folders.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

namespace varno::sys {
namespace {

// Sets or unsets an environment variable for one test and puts the old value back.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    value ? setenv(name, value, 1) : unsetenv(name);
  }
  ~ScopedEnv() { old_ ? setenv(name_, old_->c_str(), 1) : unsetenv(name_); }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

using std::filesystem::path;

TEST(UserPreferencesFolder, XdgConfigHomeThenHomeThenPasswordDatabase) {
  ScopedEnv home("HOME", "/home/ann");
  {
    ScopedEnv xdg("XDG_CONFIG_HOME", "/srv/cfg");
    EXPECT_EQ(UserPreferencesFolder(), path("/srv/cfg/varno"));
  }
  for (const char* ignored : {"", "relative/cfg", static_cast<const char*>(nullptr)}) {
    ScopedEnv xdg("XDG_CONFIG_HOME", ignored);
    EXPECT_EQ(UserPreferencesFolder(), path("/home/ann/.config/varno"));
  }
  ScopedEnv xdg("XDG_CONFIG_HOME", nullptr);
  ScopedEnv noHome("HOME", nullptr);
  EXPECT_EQ(UserPreferencesFolder(), path(getpwuid(geteuid())->pw_dir) / ".config/varno");
}

TEST(ApplicationSupportFolder, DefaultUnlessOverridden) {
  for (const char* unset : {static_cast<const char*>(nullptr), ""}) {
    ScopedEnv support("VARNO_SUPPORT_DIR", unset);
    EXPECT_EQ(ApplicationSupportFolder(), path("/var/lib/varno"));
  }
  ScopedEnv support("VARNO_SUPPORT_DIR", "/tmp/varno-support");
  EXPECT_EQ(ApplicationSupportFolder(), path("/tmp/varno-support"));
}

class CreateFolderTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "varno-folders-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    root_ = pattern;
  }
  void TearDown() override { std::filesystem::remove_all(root_); }
  path root_;
};

TEST_F(CreateFolderTest, CreatesParentsAndAcceptsAnExistingFolder) {
  path folder = root_ / "a" / "b" / "varno";
  FolderResult first = CreateFolder(folder);
  EXPECT_TRUE(first.ok) << first.error;
  EXPECT_TRUE(first.error.empty());
  EXPECT_TRUE(std::filesystem::is_directory(folder));
  EXPECT_TRUE(CreateFolder(folder).ok);
}

TEST_F(CreateFolderTest, FileInTheWayFailsWithAMessage) {
  path blocker = root_ / "blocker";
  std::ofstream(blocker) << "not a folder";
  for (const path& target : {blocker, blocker / "varno", path()}) {
    FolderResult result = CreateFolder(target);
    EXPECT_FALSE(result.ok) << target;
    EXPECT_NE(result.error.find("cannot create"), std::string::npos) << result.error;
  }
  EXPECT_TRUE(std::filesystem::is_regular_file(blocker));
}

}  // namespace
}  // namespace varno::sys
