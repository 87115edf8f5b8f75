// SPDX-License-Identifier: Apache-2.0
#include "platform/bundle/bundle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/bundle/plugin.h"
#include "support/temp_dir.h"
#include "test_bundle.h"

namespace varno::bundle {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using varno::testing::kTestBundle;
using varno::testing::kTestBundleFolder;
using varno::testing::ScopedEnv;
using varno::testing::ScopedLocale;
using varno::testing::TempDir;

// An Info.plist (or string table) dictionary with the given entries, as XML.
std::string Dict(const std::string& entries = "") {
  return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + entries + "</dict></plist>";
}
std::string Entry(const std::string& key, const std::string& value) {
  return "<key>" + key + "</key><string>" + value + "</string>";
}

class BundleTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(bundle_); }
  ScopedEnv searchPath_{{kBundlePathVariable, kTestBundleFolder.string()}};
  ScopedLocale locale_{"C"};
  BundleRef bundle_ = Bundle::Open(kTestBundle);
  std::string text(const char* key) {
    return CopyLocalizedString(*bundle_, key, "Localizable", "STRING NOT FOUND");
  }
};

TEST_F(BundleTest, IsFoundByIdentifierOnTheSearchPath) {
  std::string error;
  bundle_.reset();  // not open in the process: found on disk
  BundleRef found = Bundle::FindByIdentifier(varno::testing::kTestBundleID, &error);
  ASSERT_TRUE(found) << error;
  EXPECT_EQ(found->path(), std::filesystem::canonical(kTestBundle));

  EXPECT_FALSE(Bundle::FindByIdentifier("com.varno.test.nosuchbundle", &error));
  EXPECT_THAT(error, HasSubstr("com.varno.test.nosuchbundle"));
  EXPECT_THAT(error, HasSubstr(kTestBundleFolder.string()));

  ScopedEnv path{{kBundlePathVariable, "/first::/second:"}};
  std::vector<std::filesystem::path> search = BundleSearchPath();
  ASSERT_EQ(search.size(), 3u);  // the two overrides, then the install folder
  EXPECT_EQ(search[0], "/first");
  EXPECT_EQ(search[1], "/second");
  EXPECT_EQ(search[2], InstalledBundleFolder()) << "no build-tree folder is compiled in";
  EXPECT_TRUE(std::filesystem::exists(*InstalledBundleFolder() / "libvarno-platform.so"))
      << "bundles are installed beside the platform library";
}

TEST_F(BundleTest, ABundleOpenInTheProcessIsFoundByIdentifierOffTheSearchPath) {
  TempDir dir;
  dir.write("Temp.plugin/Contents/Info.plist",
            Dict(Entry("CFBundleIdentifier", "com.varno.test.temporary")));
  {
    BundleRef open = Bundle::Open(dir / "Temp.plugin");
    ASSERT_TRUE(open);
    EXPECT_EQ(Bundle::FindByIdentifier("com.varno.test.temporary"), open);
    EXPECT_EQ(Bundle::Open(dir.path() / "." / "Temp.plugin"), open);  // the same while held
  }
  EXPECT_FALSE(Bundle::FindByIdentifier("com.varno.test.temporary"));
}

TEST_F(BundleTest, OpenRefusesFoldersThatAreNoBundles) {
  TempDir dir;
  dir.write("Empty.plugin/Contents/Resources/readme.txt", "no Info.plist here");
  dir.write("Array.plugin/Contents/Info.plist", "<plist version=\"1.0\"><array/></plist>");
  for (const char* name : {"Missing.plugin", "Empty.plugin", "Array.plugin"}) {
    std::string error;
    EXPECT_FALSE(Bundle::Open(dir / name, &error)) << name;
    EXPECT_THAT(error, HasSubstr(name));
  }
}

TEST_F(BundleTest, ResourcesComeFromTheLocalizedFolderFirstThenTheSharedOne) {
  EXPECT_THAT(bundle_->localizations(), ElementsAre("de", "en"));
  const std::filesystem::path resources = bundle_->resourcesPath();
  EXPECT_EQ(bundle_->resourcePath("Note", "txt"), resources / "en.lproj" / "Note.txt");
  EXPECT_EQ(bundle_->resourcePath("Shared", ".txt"), resources / "Shared.txt");
  EXPECT_EQ(bundle_->resourcePath("Marker", "txt", "Pictures"),
            resources / "Pictures" / "Marker.txt");
  EXPECT_FALSE(bundle_->resourcePath("Marker", "txt"));
  ScopedLocale german("de_DE.UTF-8");
  EXPECT_EQ(bundle_->resourcePath("Note", "txt"), resources / "de.lproj" / "Note.txt");
}

TEST(PreferredLanguages, FollowTheLocaleEnvironmentAsGettextDoes) {
  using std::nullopt;
  struct Case {
    std::optional<std::string> lcAll, lcMessages, lang, language;
    std::vector<std::string> expected;
  };
  const Case cases[] = {
      {"C", nullopt, "de_DE.UTF-8", nullopt, {}},                 // LC_ALL wins
      {"", "fr_FR@euro", "de_DE.UTF-8", nullopt, {"fr_FR"}},      // empty counts as unset
      {nullopt, nullopt, "de_DE.UTF-8", "fr:de:", {"fr", "de"}},  // LANGUAGE list first
      {nullopt, nullopt, "C.UTF-8", "de", {}},                    // ignored under C
  };
  for (const Case& c : cases) {
    ScopedEnv locale{{"LC_ALL", c.lcAll}, {"LC_MESSAGES", c.lcMessages}, {"LANG", c.lang},
                     {"LANGUAGE", c.language}};
    EXPECT_EQ(PreferredLanguages(), c.expected) << "case " << &c - cases;
  }
}

TEST_F(BundleTest, StringsComeFromThePreferredLanguageThenTheDevelopmentRegion) {
  EXPECT_EQ(text("Panel Title"), "Test Options");  // C locale: the development region
  const std::pair<std::string, const char*> greetings[] = {
      {"de_AT", "Guten Morgen"},  // no de_AT.lproj: the bare language serves
      {"fr_FR.UTF-8", "Good morning"},
  };
  for (const auto& [lang, greeting] : greetings) {
    ScopedLocale locale(lang);
    EXPECT_EQ(text("Greeting"), greeting) << lang;
    EXPECT_EQ(text("Only In English"), "English only") << lang;
  }
}

TEST_F(BundleTest, MissingKeysTablesAndNonStringValuesGiveTheCallersDefault) {
  EXPECT_EQ(text("No Such Key"), "STRING NOT FOUND");
  EXPECT_EQ(text("Not A String"), "STRING NOT FOUND");
  EXPECT_EQ(CopyLocalizedString(*bundle_, "Greeting", "NoSuchTable", "fallback"), "fallback");

  TempDir dir;
  dir.write("Broken.plugin/Contents/Info.plist", Dict());
  dir.write("Broken.plugin/Contents/Resources/en.lproj/Localizable.plist", "<plist><dict><key>");
  BundleRef broken = Bundle::Open(dir / "Broken.plugin");
  ASSERT_TRUE(broken);
  EXPECT_EQ(broken->localizedString("Greeting", "Localizable", "-"), "-");
}

TEST_F(BundleTest, LibraryLoadsOnFirstLookupOrFailsEveryLookupWithTheSameReason) {
  EXPECT_FALSE(bundle_->isLoaded());
  std::string error;
  EXPECT_TRUE(bundle_->functionPointer("TestPDEFactory", &error)) << error;
  EXPECT_TRUE(bundle_->isLoaded());
  EXPECT_FALSE(bundle_->functionPointer("TestPDENoSuchFunction", &error));
  EXPECT_THAT(error, HasSubstr("TestPDENoSuchFunction"));

  TempDir dir;
  dir.write("Garbage.plugin/Contents/Info.plist", Dict(Entry("CFBundleExecutable", "Garbage")));
  dir.write("Garbage.plugin/Contents/Linux/Garbage", "this is not a shared library");
  BundleRef garbage = Bundle::Open(dir / "Garbage.plugin");
  ASSERT_TRUE(garbage);
  EXPECT_FALSE(garbage->functionPointer("Anything", &error));
  EXPECT_THAT(error, HasSubstr("cannot load"));
  std::string again;
  EXPECT_FALSE(garbage->load(&again));
  EXPECT_EQ(again, error);
}

TEST_F(BundleTest, PrivateBundlesAreFoundByNameOrIdentifierAndLoaded) {
  std::string error;
  BundleRef helper = bundle_->privateBundle("Helper", &error);
  ASSERT_TRUE(helper) << error;
  EXPECT_EQ(helper->identifier(), "com.varno.test.pde.helper");
  EXPECT_EQ(bundle_->privateBundle("com.varno.test.pde.helper"), helper);
  auto answer = helper->function<int (*)()>("TestHelperAnswer", &error);
  ASSERT_TRUE(answer) << error;
  EXPECT_EQ(answer(), 42);
  EXPECT_FALSE(bundle_->privateBundle("Nobody", &error));
  EXPECT_THAT(error, HasSubstr("Nobody"));
}

TEST(UUID, ParsesEitherCaseAndRefusesMalformedText) {
  std::optional<UUID> uuid = ParseUUID("bdb091f4-e57f-11d3-b5cc-0050e4603277");
  ASSERT_TRUE(uuid);
  EXPECT_EQ(uuid->bytes[0], 0xBD);
  EXPECT_EQ(uuid->toString(), "BDB091F4-E57F-11D3-B5CC-0050E4603277");
  for (const char* text : {"BDB091F4-E57F-11D3-B5CC-0050E460327",     // one digit short
                           "BDB091F4E57F-11D3-B5CC-0050E4603277-",    // hyphen moved
                           "BDB091F4-E57F-11D3-B5CC-0050E460327G"}) {  // not a hex digit
    EXPECT_FALSE(ParseUUID(text)) << text;
  }
}

TEST(PlugInInstanceCount, CountsPerFactoryAndNeverDropsBelowZero) {
  const UUID a = MakeUUID("11111111-2222-3333-4444-555555555555");
  const UUID b = MakeUUID("11111111-2222-3333-4444-555555555556");
  for (const UUID* factory : {&a, &a, &b}) CFPlugInAddInstanceForFactory(*factory);
  for (int i = 0; i < 3; ++i) CFPlugInRemoveInstanceForFactory(a);
  EXPECT_EQ(InstanceCountForFactory(b), 1);
  CFPlugInAddInstanceForFactory(a);
  EXPECT_EQ(InstanceCountForFactory(a), 1) << "the count stopped at zero";
}

}  // namespace
}  // namespace varno::bundle
