// SPDX-License-Identifier: Apache-2.0
// The colour options record: setter ranges and its ticket dictionary.
#include <gtest/gtest.h>

#include "panels/image_options/full_color_options.h"

namespace varno::panels {

using vocabulary::kUnsetValue;

namespace {

using plist::Array;
using plist::Dictionary;
using plist::Value;

TEST(ColorOptionsSetters, RefuseOutOfRangeAndKeepTheOldValue) {
  using F = FullColorOptions;
  const std::pair<OSStatus (F::*)(std::int32_t), std::int32_t (F::*)() const> fields[] = {
      {&F::setLightness, &F::lightness}, {&F::setContrast, &F::contrast},
      {&F::setSaturation, &F::saturation}};
  for (const auto& [set, get] : fields) {
    F options;
    for (std::int32_t value : {-100, 100, kUnsetValue, 7}) EXPECT_EQ((options.*set)(value), noErr);
    for (std::int32_t value : {101, -101}) EXPECT_EQ((options.*set)(value), paramErr);
    EXPECT_EQ((options.*get)(), 7);
  }

  FullColorOptions options;
  ASSERT_EQ(options.setColorCast(1, 2, 3), noErr);
  EXPECT_EQ(options.setColorCast(10, 20, 101), paramErr);
  EXPECT_EQ(options.colorCast().cyanRed, 1) << "all three or none";

  EXPECT_EQ(options.setTrappingAdjustment(0, 21), paramErr);
  EXPECT_EQ(options.setTrappingAdjustment(20, kUnsetValue), noErr);
}

TEST(ColorOptionsSetters, DestinationNameMustFitWhenNamed) {
  FullColorOptions options;
  EXPECT_EQ(options.setDestinationProfile(2, std::string(256, 'p')), paramErr);
  EXPECT_EQ(options.setDestinationProfile(2, std::nullopt), paramErr);

  std::string accented;
  for (int i = 0; i < 255; ++i) accented += "\xC3\xA9";  // 255 characters, 510 bytes
  EXPECT_EQ(options.setDestinationProfile(2, accented), noErr);
  EXPECT_EQ(options.asTicket(), (Dictionary{{"DestinationProfile", accented}}));

  EXPECT_EQ(options.setDestinationProfile(1, std::string(300, 'p')), noErr);
  EXPECT_EQ(options.asTicket(), (Dictionary{{"DestinationProfile", 1}}));
}

TEST(ColorOptionsTicket, WritesOnlyCompleteAndMeaningfulEntries) {
  FullColorOptions options;
  EXPECT_TRUE(options.asTicket().empty());
  options.setColorCast(10, -20, kUnsetValue);
  options.setTrapping(0);
  options.setTrappingAdjustment(3, 7);
  options.setRGBImagesProfile(5, std::nullopt);
  EXPECT_EQ(options.asTicket(), (Dictionary{{"FCTrapping", 0}}));

  // The first direction given is the slow one.
  options.setTrapping(1);
  EXPECT_EQ(options.asTicket(), (Dictionary{{"FCTrapping", 1},
                                            {"FCTrappingSlowDirection", 3},
                                            {"FCTrappingFastDirection", 7}}));
}

TEST(ColorOptionsTicket, FullRecordHasEveryKeyInItsForm) {
  const Array curve{Value(0.0), Value(0.5), Value(1.0)};
  FullColorOptions options;
  options.setLightness(5);
  options.setContrast(-6);
  options.setSaturation(7);
  options.setColorCast(1, 2, 3);
  options.setBlackOverprint(1);
  options.setTRC(Value(curve));
  options.setRGBImagesProfile(5, "sRGB Profile");
  options.setRGBTextAndGraphicsProfile(4, "ignored unless named");
  options.setCMYKImagesProfile(3, "Coated");
  options.setCMYKTextAndGraphicsProfile(1, std::nullopt);
  options.setGrayImagesProfile("Gray 2.2");
  options.setDestinationProfile(0, std::nullopt);
  options.setImageObjectRendering(2);
  options.setTextObjectRendering(0);
  options.setGraphicObjectRendering(-3);

  const Dictionary expected{
      {"FCLightness", 5}, {"FCContrast", -6}, {"FCSaturation", 7},
      {"FCColorCast", Dictionary{{"FCCyanRed", 1}, {"FCMagentaGreen", 2}, {"FCYellowBlue", 3}}},
      {"FCBlackOverprint", 1}, {"FCTRC", curve},
      {"RGBImagesProfile", "sRGB Profile"}, {"RGBTextAndGraphicsProfile", 4},
      {"CMYKImagesProfile", "Coated"}, {"CMYKTextAndGraphicsProfile", 1},
      {"GrayImagesProfile", "Gray 2.2"}, {"DestinationProfile", 0},
      {"ImageRendering", 2}, {"TextRendering", 0}, {"GraphicRendering", -3}};
  EXPECT_EQ(options.asTicket(), expected);
  EXPECT_EQ(FullColorOptions(expected).asTicket(), expected);
}

TEST(ColorOptionsTicket, ReadingKeepsFieldsOfMissingOrRefusedKeys) {
  FullColorOptions options;
  options.setLightness(40);
  options.setSaturation(-40);
  options.setGrayTextAndGraphicsProfile("Dot Gain 20%");
  options.setCMYKImagesProfile(3, "Coated");

  options.fromTicket(Dictionary{{"FCLightness", 300},
                                {"FCContrast", 12},
                                {"FCColorCast", Dictionary{{"FCCyanRed", 1}, {"FCYellowBlue", 3}}},
                                {"FCTrapping", 1},
                                {"FCTrappingFastDirection", 9},
                                {"RGBImagesProfile", "Wide Gamut"},
                                {"CMYKImagesProfile", 2},
                                {"GrayImagesProfile", 4},
                                {"DestinationProfile", std::string(256, 'p')}});
  EXPECT_EQ(options.asTicket(), (Dictionary{{"FCLightness", 40},
                                            {"FCContrast", 12},
                                            {"FCSaturation", -40},
                                            {"FCTrapping", 1},
                                            {"FCTrappingFastDirection", 9},
                                            {"RGBImagesProfile", "Wide Gamut"},
                                            {"CMYKImagesProfile", 2},
                                            {"GrayTextAndGraphicsProfile", "Dot Gain 20%"}}));
  EXPECT_EQ(options.cmykImagesProfile().name, "Coated") << "a kind alone keeps the name";
}

}  // namespace
}  // namespace varno::panels
