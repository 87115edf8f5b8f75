// SPDX-License-Identifier: Apache-2.0
#include "model/image_shift.h"

#include <gtest/gtest.h>

#include "vocabulary/setting_maps.h"

namespace varno::model {

using vocabulary::kUnsetValue;

namespace {

using plist::Dictionary;

TEST(ImageShiftTicket, OnlyALoadedRecordWithAnOptionIsWritten) {
  _IS_Options options;
  options.option = 2;
  EXPECT_FALSE(ImageShiftCreateTicketFromOptions(options, 1));  // never initialised
  ImageShiftInitialize(nullptr, nullptr, &options);
  EXPECT_FALSE(ImageShiftCreateTicketFromOptions(options, 1));  // no option any more
}

// Inches are written in hundredths of a millimetre, millimetres times ten; both read back.
TEST(ImageShiftTicket, DistancesAreWrittenInFullPrecisionAndReadBack) {
  const struct {
    std::int32_t inches, x1, y1, x2, y2;
    Dictionary expected;
  } cases[] = {
      {1, 100, 50, -100, 0,
       {{"Option", 2}, {"Inches", 1}, {"FullPrecision", true},
        {"X1", 2540}, {"Y1", 1270}, {"X2", -2540}, {"Y2", 0}}},
      {0, 125, 0, -125, 3,
       {{"Option", 2}, {"Inches", 0}, {"FullPrecision", true},
        {"X1", 1250}, {"Y1", 0}, {"X2", -1250}, {"Y2", 30}}}};
  for (const auto& c : cases) {
    _IS_Options options;
    ImageShiftInitialize(nullptr, nullptr, &options);
    options.option = 2;
    options.inches = c.inches;
    options.x1 = c.x1, options.y1 = c.y1, options.x2 = c.x2, options.y2 = c.y2;
    std::optional<Dictionary> ticket = ImageShiftCreateTicketFromOptions(options, 1);
    ASSERT_EQ(ticket, c.expected);
    _IS_Options back;
    ImageShiftSetOptionsFromTicket(&back, *ticket);
    EXPECT_EQ(back.loaded, 1);
    EXPECT_EQ(ImageShiftCreateTicketFromOptions(back, 1), ticket);
  }
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
  // Without full precision the distances are already in the record's unit.
  ImageShiftSetOptionsFromTicket(&options, Dictionary{{"Inches", 7}, {"X1", 2540}});
  EXPECT_EQ(options.inches, 1);
  EXPECT_EQ(options.x1, 2540);
}

}  // namespace
}  // namespace varno::model
