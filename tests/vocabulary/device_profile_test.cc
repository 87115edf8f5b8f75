// SPDX-License-Identifier: Apache-2.0
// The device feature database over the bundle's own "Device Profile.plist".
#include "vocabulary/device_profile.h"

#include <gtest/gtest.h>

#include "support/bundle_folder.h"
#include "support/temp_dir.h"
#include "vocabulary/plugin_bundle.h"

namespace varno::vocabulary {
namespace {

const std::filesystem::path kBuiltBundle = VARNO_BUILT_PLUGIN;

// Names of the features in an array of feature dictionaries, found back in the profile.
std::vector<std::string> Names(const plist::Array& features, std::vector<std::string> all) {
  std::vector<std::string> names;
  for (const plist::Value& f : features)
    for (const std::string& name : all)
      if (VNPGetFeature(name) && f.asDictionary()->sameAs(*VNPGetFeature(name))) names.push_back(name);
  return names;
}

class DeviceProfile : public ::testing::Test {
 protected:
  void SetUp() override {
    gBundle = bundle::Bundle::Open(kBuiltBundle);
    ASSERT_TRUE(gBundle);
  }
  void TearDown() override {
    VNPFinalize();
    gBundle = nullptr;
  }
};

TEST_F(DeviceProfile, FeaturesAreFoundByNameAndByPropertyInTheProfilesOrder) {
  VNPInitialize();
  ASSERT_TRUE(VNPGetFeature("Duplex"));
  EXPECT_FALSE(VNPGetFeature("Laminate"));
  std::vector<std::string> all{"StapleLocation", "Punch", "Fold", "OutputBin", "FaxRecipients"};
  EXPECT_EQ(Names(VNPGetFeaturesWithProperty("RequiresOption"), all),
            (std::vector<std::string>{"StapleLocation", "Punch", "Fold", "FaxRecipients"}));
  plist::Value finisher("VNFinisher");
  EXPECT_EQ(Names(VNPGetFeaturesWithPropertyAndValue("RequiresOption", &finisher), all),
            (std::vector<std::string>{"StapleLocation", "Fold"}));
  EXPECT_EQ(VNPGetFeaturesWithPropertyAndValue("RequiresOption", nullptr).size(), 4u);

  const plist::Dictionary* fold = VNPGetFeature("Fold");
  EXPECT_EQ(*VNPGetFeatureProperty(fold, "PPDKeyword"), plist::Value("VNFold"));
  EXPECT_EQ(VNPGetFeatureProperty(fold, "Colour"), nullptr);
  EXPECT_TRUE(VNPGetFeatureSyntax(fold, "Keyword"));
  EXPECT_FALSE(VNPGetFeatureSyntax(fold, "Number"));
  plist::Array booklet = VNPGetKeywordsWithPropertyAndValue(fold, "BookletOnly", true);
  ASSERT_EQ(booklet.size(), 2u);
  EXPECT_TRUE(booklet[0].asDictionary()->sameAs(
      *VNPGetFeatureSyntax(fold, "Keyword")->getDictionary("BiFold")));
}

TEST_F(DeviceProfile, DefaultsComeFromTheMarkedKeywordThenTheNameThenTheNumber) {
  VNPInitialize();
  std::string kind;
  plist::Value value;
  ASSERT_TRUE(VNPGetFeatureDefaultValue(VNPGetFeature("Duplex"), &kind, &value));
  EXPECT_EQ(kind, "Keyword");
  EXPECT_EQ(value, plist::Value("None"));
  ASSERT_TRUE(VNPGetFeatureDefaultValue(VNPGetFeature("BannerSheet"), &kind, &value));
  EXPECT_EQ(kind, "Name");  // no keyword is marked
  EXPECT_EQ(value, plist::Value("False"));
  ASSERT_TRUE(VNPGetFeatureDefaultValue(VNPGetFeature("Copies"), &kind, &value));
  EXPECT_EQ(kind, "Number");
  EXPECT_EQ(value, plist::Value(1));

  kind = "kept";
  EXPECT_FALSE(VNPGetFeatureDefaultValue(VNPGetFeature("SecurePrintPasscode"), &kind, &value));
  EXPECT_FALSE(VNPGetFeatureDefaultValue(nullptr, &kind, &value));
  EXPECT_EQ(kind, "kept");
}

TEST_F(DeviceProfile, WithoutAProfileEveryQueryAnswersNothing) {
  VNPInitialize();
  VNPInitialize();
  VNPFinalize();  // one release undoes both loads
  EXPECT_FALSE(VNPGetFeature("Duplex"));
  EXPECT_TRUE(VNPGetFeaturesWithProperty("RequiresOption").empty());

  testing::TempDir dir;
  gBundle = testing::MakeBundle(dir, {});  // a bundle without a profile
  ASSERT_TRUE(gBundle);
  VNPInitialize();
  EXPECT_FALSE(VNPGetFeature("Duplex"));
  EXPECT_TRUE(VNPGetFeaturesWithPropertyAndValue("Category", nullptr).empty());
  EXPECT_TRUE(VNPGetKeywordsWithPropertyAndValue(nullptr, "Holes", 2).empty());
  EXPECT_FALSE(CreatePropertiesFromXMLFile(dir / "missing.plist"));
  auto read = CreatePropertiesFromXMLFile(kBuiltBundle / "Contents/Info.plist");
  ASSERT_TRUE(read);
  EXPECT_TRUE(read->asDictionary());
}

}  // namespace
}  // namespace varno::vocabulary
