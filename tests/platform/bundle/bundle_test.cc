#include "platform/bundle/bundle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temp_dir.h"
#include "test_bundle.h"

namespace varno::bundle {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using varno::testing::kTestBundle;
using varno::testing::kTestBundleFolder;
using varno::testing::kTestBundleID;
using varno::testing::ScopedEnv;
using varno::testing::ScopedLocale;
using varno::testing::TempDir;

// An Info.plist dictionary with the given entries, as XML.
std::string InfoPlist(const std::string& entries) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries +
         "</dict></plist>\n";
}

std::string StringEntry(const std::string& key, const std::string& value) {
  return "<key>" + key + "</key><string>" + value + "</string>";
}

class BundleTest : public ::testing::Test {
 protected:
  ScopedEnv searchPath_{kBundlePathVariable, kTestBundleFolder.string()};
  ScopedLocale locale_{"C"};
};

// ---- Finding and opening ----

TEST_F(BundleTest, FindsBundleByIdentifierOnTheSearchPath) {
  std::string error;
  BundleRef bundle = Bundle::FindByIdentifier(kTestBundleID, &error);
  ASSERT_TRUE(bundle) << error;
  EXPECT_EQ(bundle->path(), std::filesystem::canonical(kTestBundle));
  EXPECT_EQ(bundle->identifier(), kTestBundleID);
}

TEST_F(BundleTest, UnknownIdentifierIsNotFoundAndTheErrorSaysWhereItLooked) {
  std::string error;
  EXPECT_FALSE(Bundle::FindByIdentifier("com.varno.test.nosuchbundle", &error));
  EXPECT_THAT(error, HasSubstr("com.varno.test.nosuchbundle"));
  EXPECT_THAT(error, HasSubstr(kTestBundleFolder.string()));
}

TEST_F(BundleTest, SearchPathPutsTheOverrideFirstAndSkipsEmptyEntries) {
  ScopedEnv path(kBundlePathVariable, "/first::/second:");
  std::vector<std::filesystem::path> search = BundleSearchPath();
  ASSERT_EQ(search.size(), 4u);  // the two overrides, the install folder, the build tree
  EXPECT_EQ(search[0], "/first");
  EXPECT_EQ(search[1], "/second");
}

TEST_F(BundleTest, ABundleOpenInTheProcessIsFoundByIdentifierOffTheSearchPath) {
  TempDir dir;
  dir.write("Temp.plugin/Contents/Info.plist",
            InfoPlist(StringEntry("CFBundleIdentifier", "com.varno.test.temporary")));
  {
    BundleRef open = Bundle::Open(dir / "Temp.plugin");
    ASSERT_TRUE(open);
    EXPECT_EQ(Bundle::FindByIdentifier("com.varno.test.temporary"), open);
    // Opening the same folder again while it is held gives the same bundle.
    EXPECT_EQ(Bundle::Open(dir.path() / "." / "Temp.plugin"), open);
  }
  EXPECT_FALSE(Bundle::FindByIdentifier("com.varno.test.temporary"));
}

TEST_F(BundleTest, OpenRefusesFoldersThatAreNoBundles) {
  TempDir dir;
  std::string error;
  EXPECT_FALSE(Bundle::Open(dir / "Missing.plugin", &error));
  EXPECT_THAT(error, HasSubstr("Missing.plugin"));

  dir.write("Empty.plugin/Contents/Resources/readme.txt", "no Info.plist here");
  EXPECT_FALSE(Bundle::Open(dir / "Empty.plugin", &error));
  EXPECT_THAT(error, HasSubstr("not a bundle"));

  dir.write("Array.plugin/Contents/Info.plist",
            "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>");
  EXPECT_FALSE(Bundle::Open(dir / "Array.plugin", &error));
}

// ---- Info.plist ----

TEST_F(BundleTest, InfoPlistFieldsAreRead) {
  BundleRef bundle = Bundle::Open(kTestBundle);
  ASSERT_TRUE(bundle);
  EXPECT_EQ(bundle->developmentRegion(), "en");
  EXPECT_EQ(bundle->executablePath(), bundle->path() / "Contents" / "Linux" / "TestPDE");
  ASSERT_TRUE(bundle->infoValue("CFBundleHelpBookName"));
  EXPECT_EQ(*bundle->infoValue("CFBundleHelpBookName")->asString(), "TestPDE Help");
  EXPECT_TRUE(bundle->infoDictionary().getDictionary("CFPlugInFactories"));
  EXPECT_FALSE(bundle->infoValue("NoSuchKey"));
  EXPECT_THAT(bundle->localizations(), ElementsAre("de", "en"));
}

TEST_F(BundleTest, MissingInfoFieldsHaveDefaults) {
  TempDir dir;
  dir.write("Bare.plugin/Contents/Info.plist", InfoPlist(""));
  BundleRef bundle = Bundle::Open(dir / "Bare.plugin");
  ASSERT_TRUE(bundle);
  EXPECT_EQ(bundle->identifier(), "");
  EXPECT_EQ(bundle->developmentRegion(), "en");
  EXPECT_TRUE(bundle->executablePath().empty());
  EXPECT_TRUE(bundle->localizations().empty());
}

// ---- Resources ----

TEST_F(BundleTest, ResourcesComeFromTheLocalizedFolderFirstThenTheSharedOne) {
  BundleRef bundle = Bundle::Open(kTestBundle);
  ASSERT_TRUE(bundle);
  std::filesystem::path resources = bundle->resourcesPath();

  EXPECT_EQ(bundle->resourcePath("Note", "txt"), resources / "en.lproj" / "Note.txt");
  EXPECT_EQ(bundle->resourcePath("Shared", "txt"), resources / "Shared.txt");
  EXPECT_EQ(bundle->resourcePath("Shared", ".txt"), resources / "Shared.txt");
  EXPECT_EQ(bundle->resourcePath("Shared.txt"), resources / "Shared.txt");
  EXPECT_EQ(bundle->resourcePath("Marker", "txt", "Pictures"),
            resources / "Pictures" / "Marker.txt");
  EXPECT_FALSE(bundle->resourcePath("Marker", "txt"));
  EXPECT_FALSE(bundle->resourcePath("Nothing", "txt"));
  EXPECT_FALSE(bundle->resourcePath(""));

  {
    ScopedLocale german("de_DE.UTF-8");
    EXPECT_EQ(bundle->resourcePath("Note", "txt"), resources / "de.lproj" / "Note.txt");
    EXPECT_EQ(bundle->resourcePath("Shared", "txt"), resources / "Shared.txt");
  }
  EXPECT_EQ(bundle->resourcePathForLocalization("Note", "txt", "", "de"),
            resources / "de.lproj" / "Note.txt");
  EXPECT_EQ(bundle->resourcePathForLocalization("Shared", "txt", "", "fr"),
            resources / "Shared.txt");
  EXPECT_FALSE(bundle->resourcePathForLocalization("Note", "txt", "", "fr"));
}

// ---- Languages and localized strings ----

struct LocaleCase {
  std::optional<std::string> lcAll, lcMessages, lang, language;
  std::vector<std::string> expected;
};

TEST(PreferredLanguages, FollowTheLocaleEnvironmentAsGettextDoes) {
  using std::nullopt;
  const LocaleCase cases[] = {
      {nullopt, nullopt, nullopt, nullopt, {}},
      {nullopt, nullopt, "de_DE.UTF-8", nullopt, {"de_DE"}},
      {nullopt, nullopt, "de", nullopt, {"de"}},
      {"C", nullopt, "de_DE.UTF-8", nullopt, {}},                 // LC_ALL wins
      {"", "fr_FR@euro", "de_DE.UTF-8", nullopt, {"fr_FR"}},      // empty counts as unset
      {nullopt, nullopt, "de_DE.UTF-8", "fr:de:", {"fr", "de"}},  // LANGUAGE list first
      {nullopt, nullopt, "C.UTF-8", "de", {}},                    // ignored under C
      {nullopt, nullopt, "POSIX", nullopt, {}},
  };
  for (const LocaleCase& c : cases) {
    varno::testing::ScopedLocale locale(c.lcAll, c.lcMessages, c.lang, c.language);
    EXPECT_EQ(PreferredLanguages(), c.expected)
        << "LC_ALL=" << c.lcAll.value_or("-") << " LC_MESSAGES=" << c.lcMessages.value_or("-")
        << " LANG=" << c.lang.value_or("-") << " LANGUAGE=" << c.language.value_or("-");
  }
}

TEST_F(BundleTest, StringsComeFromThePreferredLanguageThenTheDevelopmentRegion) {
  BundleRef bundle = Bundle::Open(kTestBundle);
  ASSERT_TRUE(bundle);
  auto text = [&](const char* key) {
    return CopyLocalizedString(*bundle, key, "Localizable", "STRING NOT FOUND");
  };

  EXPECT_EQ(text("Panel Title"), "Test Options");  // C locale: the development region
  {
    ScopedLocale german("de_DE.UTF-8");
    EXPECT_EQ(text("Panel Title"), "Testoptionen");
    EXPECT_EQ(text("Only In English"), "English only");
  }
  {
    ScopedLocale austrian("de_AT");  // no de_AT.lproj: the bare language serves
    EXPECT_EQ(text("Greeting"), "Guten Morgen");
  }
  {
    ScopedLocale french(std::nullopt, std::nullopt, "fr_FR.UTF-8", "fr:de");
    EXPECT_EQ(text("Greeting"), "Guten Morgen");
  }
  {
    ScopedLocale french("fr_FR.UTF-8");
    EXPECT_EQ(text("Greeting"), "Good morning");
  }
  EXPECT_EQ(bundle->localizedStringForLocalization("Greeting", "Localizable", "x", "de"),
            "Guten Morgen");
  EXPECT_EQ(bundle->localizedStringForLocalization("Only In English", "Localizable", "x", "de"),
            "English only");
  EXPECT_EQ(bundle->localizedStringForLocalization("Greeting", "Localizable", "x", "fr"),
            "Good morning");
}

TEST_F(BundleTest, MissingKeysTablesAndNonStringValuesGiveTheDefault) {
  BundleRef bundle = Bundle::Open(kTestBundle);
  ASSERT_TRUE(bundle);
  EXPECT_EQ(CopyLocalizedString(*bundle, "No Such Key", "Localizable", "STRING NOT FOUND"),
            "STRING NOT FOUND");
  EXPECT_EQ(CopyLocalizedString(*bundle, "Not A String", "Localizable", "STRING NOT FOUND"),
            "STRING NOT FOUND");
  EXPECT_EQ(CopyLocalizedString(*bundle, "Greeting", "NoSuchTable", "fallback"), "fallback");
}

TEST_F(BundleTest, ADamagedStringTableReadsAsMissing) {
  TempDir dir;
  dir.write("Broken.plugin/Contents/Info.plist", InfoPlist(""));
  dir.write("Broken.plugin/Contents/Resources/en.lproj/Localizable.plist", "<plist><dict><key>");
  BundleRef bundle = Bundle::Open(dir / "Broken.plugin");
  ASSERT_TRUE(bundle);
  EXPECT_EQ(CopyLocalizedString(*bundle, "Greeting", "Localizable", "STRING NOT FOUND"),
            "STRING NOT FOUND");
}

TEST_F(BundleTest, StringTablesAreReadOncePerOpenBundle) {
  TempDir dir;
  auto writeTable = [&](const char* greeting) {
    dir.write("Cached.plugin/Contents/Resources/en.lproj/Localizable.plist",
              InfoPlist(StringEntry("Greeting", greeting)));
  };
  dir.write("Cached.plugin/Contents/Info.plist", InfoPlist(""));
  writeTable("Hello");
  {
    BundleRef bundle = Bundle::Open(dir / "Cached.plugin");
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->localizedString("Greeting", "Localizable", "-"), "Hello");
    writeTable("Changed");
    EXPECT_EQ(bundle->localizedString("Greeting", "Localizable", "-"), "Hello");
  }
  BundleRef reopened = Bundle::Open(dir / "Cached.plugin");
  ASSERT_TRUE(reopened);
  EXPECT_EQ(reopened->localizedString("Greeting", "Localizable", "-"), "Changed");
}

// ---- Loading and functions ----

TEST_F(BundleTest, LibraryIsLoadedOnFirstLookupAndAbsentFunctionsAreNull) {
  BundleRef bundle = Bundle::Open(kTestBundle);
  ASSERT_TRUE(bundle);
  EXPECT_FALSE(bundle->isLoaded());
  std::string error;
  EXPECT_TRUE(bundle->functionPointer("TestPDEFactory", &error)) << error;
  EXPECT_TRUE(bundle->isLoaded());

  EXPECT_FALSE(bundle->functionPointer("TestPDENoSuchFunction", &error));
  EXPECT_THAT(error, HasSubstr("TestPDENoSuchFunction"));
}

TEST_F(BundleTest, ALibraryThatCannotBeLoadedFailsEveryLookupWithTheSameReason) {
  TempDir dir;
  dir.write("NoExec.plugin/Contents/Info.plist", InfoPlist(""));
  dir.write("Garbage.plugin/Contents/Info.plist",
            InfoPlist(StringEntry("CFBundleExecutable", "Garbage")));
  dir.write("Garbage.plugin/Contents/Linux/Garbage", "this is not a shared library");

  BundleRef noExec = Bundle::Open(dir / "NoExec.plugin");
  ASSERT_TRUE(noExec);
  std::string error;
  EXPECT_FALSE(noExec->load(&error));
  EXPECT_THAT(error, HasSubstr("CFBundleExecutable"));

  BundleRef garbage = Bundle::Open(dir / "Garbage.plugin");
  ASSERT_TRUE(garbage);
  EXPECT_FALSE(garbage->functionPointer("Anything", &error));
  EXPECT_THAT(error, HasSubstr("cannot load"));
  std::string again;
  EXPECT_FALSE(garbage->load(&again));
  EXPECT_EQ(again, error);
  EXPECT_FALSE(garbage->isLoaded());
}

TEST_F(BundleTest, PrivateBundlesAreFoundByNameOrIdentifierAndLoaded) {
  BundleRef bundle = Bundle::Open(kTestBundle);
  ASSERT_TRUE(bundle);
  std::string error;
  BundleRef helper = bundle->privateBundle("Helper", &error);
  ASSERT_TRUE(helper) << error;
  EXPECT_EQ(helper->identifier(), "com.varno.test.pde.helper");
  EXPECT_EQ(bundle->privateBundle("Helper.plugin"), helper);
  EXPECT_EQ(bundle->privateBundle("com.varno.test.pde.helper"), helper);

  auto answer = helper->function<int (*)()>("TestHelperAnswer", &error);
  ASSERT_TRUE(answer) << error;
  EXPECT_EQ(answer(), 42);

  EXPECT_FALSE(bundle->privateBundle("Nobody", &error));
  EXPECT_THAT(error, HasSubstr("Nobody"));
}

}  // namespace
}  // namespace varno::bundle
