#include "model/image_shift.h"

#include <gtest/gtest.h>

#include "vocabulary/setting_maps.h"

namespace varno::model {
namespace {

using plist::Dictionary;

_IS_Options Shift(std::int32_t inches, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                  std::int32_t y2) {
  _IS_Options options;
  ImageShiftInitialize(nullptr, nullptr, &options);
  options.option = 2;
  options.inches = inches;
  options.x1 = x1;
  options.y1 = y1;
  options.x2 = x2;
  options.y2 = y2;
  return options;
}

TEST(ImageShiftTicket, OnlyALoadedRecordWithAnOptionIsWritten) {
  _IS_Options options;
  options.option = 2;
  EXPECT_FALSE(ImageShiftCreateTicketFromOptions(options, 1));  // never initialised
  ImageShiftInitialize(nullptr, nullptr, &options);
  EXPECT_EQ(options.inches, 1);
  EXPECT_FALSE(ImageShiftCreateTicketFromOptions(options, 1));  // no option any more
}

TEST(ImageShiftTicket, InchesAreWrittenInHundredthsOfMillimetreAndReadBack) {
  std::optional<Dictionary> ticket =
      ImageShiftCreateTicketFromOptions(Shift(1, 100, 50, -100, 0), 1);
  ASSERT_TRUE(ticket);
  EXPECT_EQ(*ticket, (Dictionary{{"Option", 2}, {"Inches", 1}, {"FullPrecision", true},
                                 {"X1", 2540}, {"Y1", 1270}, {"X2", -2540}, {"Y2", 0}}));
  _IS_Options back;
  ImageShiftSetOptionsFromTicket(&back, *ticket);
  EXPECT_EQ(back.loaded, 1);
  EXPECT_EQ(back.option, 2);
  EXPECT_EQ(back.x1, 100);
  EXPECT_EQ(back.y1, 50);
  EXPECT_EQ(back.x2, -100);
}

TEST(ImageShiftTicket, MillimetresAreWrittenTimesTen) {
  std::optional<Dictionary> ticket = ImageShiftCreateTicketFromOptions(Shift(0, 125, 0, -125, 3), 1);
  ASSERT_TRUE(ticket);
  EXPECT_EQ(*ticket, (Dictionary{{"Option", 2}, {"Inches", 0}, {"FullPrecision", true},
                                 {"X1", 1250}, {"Y1", 0}, {"X2", -1250}, {"Y2", 30}}));
  _IS_Options back;
  ImageShiftSetOptionsFromTicket(&back, *ticket);
  EXPECT_EQ(back.inches, 0);
  EXPECT_EQ(back.x2, -125);
  EXPECT_EQ(back.y2, 3);
}

TEST(ImageShiftTicket, ReadingTruncatesAndFillsDefaults) {
  _IS_Options options;
  ImageShiftSetOptionsFromTicket(&options, Dictionary{{"FullPrecision", true}, {"X1", 25}});
  EXPECT_EQ(options.option, kUnsetValue);
  EXPECT_EQ(options.inches, 1);
  EXPECT_EQ(options.x1, 0);  // 0.98 of a hundredth of an inch
  ImageShiftSetOptionsFromTicket(
      &options, Dictionary{{"Inches", 0}, {"FullPrecision", true}, {"X1", -1259}, {"Y2", 9}});
  EXPECT_EQ(options.x1, -125);
  EXPECT_EQ(options.y2, 0);
  EXPECT_EQ(options.y1, 0);
  // Without full precision the distances are already in the record's unit.
  ImageShiftSetOptionsFromTicket(&options, Dictionary{{"Inches", 7}, {"X1", 2540}});
  EXPECT_EQ(options.inches, 1);
  EXPECT_EQ(options.x1, 2540);
}

}  // namespace
}  // namespace varno::model
