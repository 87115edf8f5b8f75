// SPDX-License-Identifier: Apache-2.0
#include "platform/plist/file.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>

#include "support/temp_dir.h"

namespace varno::plist {
namespace {

using varno::testing::ReadAll;
using varno::testing::TempDir;

Dictionary EveryKind() {
  return Dictionary{
      {"String", "Grüße, 日本 & <tags>"},
      {"Empty", ""},
      {"Integer", -2147483648LL},
      {"Big", INT64_MAX},
      {"Small", INT64_MIN},
      {"Real", 0.1},
      {"Tiny", 1.0e-300},
      {"True", true},
      {"False", false},
      {"Date", Date{-978307200}},  // 1970-01-01
      {"Data", Data{0, 1, 2, 0xff, '<'}},
      {"EmptyData", Data{}},
      {"Array", Array{1, "two", Array{3.5, Dictionary{}}, Array{}}},
      {"Nested", Dictionary{{"Inner", Dictionary{{"Deep", Array{false}}}}}},
  };
}

TEST(PropertyListFiles, EveryKindRoundTripsThroughAFile) {
  TempDir dir;
  Dictionary original = EveryKind();
  std::string error;
  ASSERT_TRUE(WriteFile(dir / "all.plist", original, &error)) << error;
  std::optional<Dictionary> back = ReadDictionaryFile(dir / "all.plist", &error);
  ASSERT_TRUE(back) << error;
  EXPECT_EQ(*back, original);
  EXPECT_EQ(back->entries().back().first, "Nested") << "the file keeps the dictionary's order";
}

TEST(PropertyListFiles, DatesKeepWholeSecondsOnly) {
  std::optional<Value> back = Parse(ToXML(Value(Date{123456789.75})).value_or(""));
  EXPECT_EQ(back, Value(Date{123456789.0}));
  EXPECT_FALSE(ToXML(Value(Date{1e12}))) << "beyond what the file form holds";
}

TEST(DamagedFiles, EachGivesAClearErrorNamingTheFile) {
  TempDir dir;
  const std::string good = ToXML(EveryKind()).value();
  struct Case {
    const char* name;
    std::string contents;
    const char* says;
  } cases[] = {
      {"empty.plist", "", "is empty"},
      {"truncated.plist", good.substr(0, good.size() / 2), "not a well-formed"},
      {"html.plist", "<html><body>nope</body></html>", "not a well-formed"},
      {"binary-junk.plist", std::string("bplist00\x01\x02\x03", 11), "damaged binary"},
  };
  for (const Case& c : cases) {
    std::filesystem::path file = dir.write(c.name, c.contents);
    std::string error;
    EXPECT_FALSE(ReadFile(file, &error)) << c.name;
    EXPECT_NE(error.find(file.string()), std::string::npos) << error;
    EXPECT_NE(error.find(c.says), std::string::npos) << c.name << ": " << error;
  }
  std::string error;
  EXPECT_FALSE(ReadFile(dir / "missing.plist", &error));
  EXPECT_NE(error.find("No such file"), std::string::npos) << error;
  EXPECT_FALSE(ReadFile(dir.path(), &error));
  EXPECT_NE(error.find("not a regular file"), std::string::npos) << error;
  // A dictionary file whose root is another kind: refused as a dictionary, read as a value.
  ASSERT_TRUE(WriteFile(dir / "array.plist", Array{1, 2}));
  EXPECT_FALSE(ReadDictionaryFile(dir / "array.plist", &error));
  EXPECT_NE(error.find("root is array"), std::string::npos) << error;
  EXPECT_TRUE(ReadFile(dir / "array.plist"));
}

TEST(DamagedFiles, HugeFileIsRefusedWithoutReadingIt) {
  TempDir dir;
  std::filesystem::path file = dir.write("huge.plist", "<?xml");
  std::filesystem::resize_file(file, 100u * 1024 * 1024);  // sparse: costs no disk
  std::string error;
  EXPECT_FALSE(ReadFile(file, &error));
  EXPECT_NE(error.find("too large"), std::string::npos) << error;
}

int FileCount(const TempDir& dir) {
  int files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(dir.path())) ++files;
  return files;
}

TEST(AtomicWrites, ReplaceKeepsPermissionsAndLeavesNoTemporaryFiles) {
  TempDir dir;
  std::filesystem::path file = dir / "p.plist";
  const auto ownerOnly = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
  ASSERT_TRUE(WriteFile(file, Dictionary{{"A", 1}}));
  std::filesystem::permissions(file, ownerOnly);
  ASSERT_TRUE(WriteFile(file, Dictionary{{"A", 2}}));
  EXPECT_EQ(ReadDictionaryFile(file)->getNumber<int>("A"), 2);
  EXPECT_EQ(std::filesystem::status(file).permissions(), ownerOnly);
  EXPECT_EQ(FileCount(dir), 1);
}

TEST(AtomicWrites, FailedWriteIsReportedAndLeavesThePreviousFileIntact) {
  TempDir dir;
  std::filesystem::path file = dir / "store.plist";
  ASSERT_TRUE(WriteFile(file, Dictionary{{"Keep", "me"}}));
  const std::string before = ReadAll(file);

  // Cap the size of files this process may write, so the write fails part way through,
  // as it would on a full disk.
  struct rlimit old {};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
  auto oldHandler = signal(SIGXFSZ, SIG_IGN);
  struct rlimit small = old;
  small.rlim_cur = 4096;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  std::string error;
  bool written = WriteFile(file, Dictionary{{"Big", Data(64 * 1024, 7)}}, &error);
  setrlimit(RLIMIT_FSIZE, &old);
  signal(SIGXFSZ, oldHandler);

  EXPECT_FALSE(written);
  EXPECT_NE(error.find("write failed"), std::string::npos) << error;
  EXPECT_EQ(ReadAll(file), before);
  EXPECT_EQ(FileCount(dir), 1) << "the temporary file is removed";

  EXPECT_FALSE(WriteFile(dir / "no" / "such" / "folder.plist", Dictionary{}, &error));
  EXPECT_NE(error.find("cannot write in"), std::string::npos) << error;
}

}  // namespace
}  // namespace varno::plist
