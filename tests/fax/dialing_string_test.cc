// SPDX-License-Identifier: Apache-2.0
// Dialing strings and the per-recipient dialing limit.
#include <gtest/gtest.h>

#include <string>

#include "fax/dialing_string.h"

namespace varno::fax {
namespace {

TEST(DialingString, KeepsOnlyUpperCaseDialingCharactersInOrder) {
  EXPECT_EQ(CopyDialingStringFromFaxNumber("+1 (555) 123-4567"), "15551234567");
  EXPECT_EQ(CopyDialingStringFromFaxNumber("9,,s555"), "9,,555");
  EXPECT_EQ(CopyDialingStringFromFaxNumber("9,,S555"), "9,,S555");
  EXPECT_EQ(CopyDialingStringFromFaxNumber("abcd ABCD"), "ABCD");
  EXPECT_EQ(CopyDialingStringFromFaxNumber(kFaxDialingCharacters), kFaxDialingCharacters);
  // Multi-byte characters (full-width digit one, e acute) are never dialled.
  EXPECT_EQ(CopyDialingStringFromFaxNumber("\xEF\xBC\x91" "1\xC3\xA9" "2"), "12");
}

class DialingLimit : public testing::Test {
 protected:
  FaxRecipient* Add(std::optional<std::string> number) {
    auto* recipient = new FaxRecipient("R", std::to_string(list_.count()), std::move(number));
    list_.append(recipient);
    FaxRecipientRelease(recipient);  // the list holds it now
    return recipient;
  }
  FaxRecipientList list_;
};

TEST_F(DialingLimit, FiftyCharactersWithPrefixAndCardAreAcceptedFiftyOneAreNot) {
  Add(std::string(30, '5'));
  FaxRecipient* tooLong = Add(std::string(31, '5'));
  // Punctuation is not dialled, so it does not count.
  Add("(" + std::string(10, '1') + ") " + std::string(20, '2') + "-");

  const std::vector<FaxRecipientRef> found = FindMaxCharacters(list_, 4, 16);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].get(), tooLong);
  EXPECT_TRUE(FindMaxCharacters(list_, 0, 19).empty());
}

TEST_F(DialingLimit, ReportsInListOrderAndCountsAMissingNumberAsNone) {
  FaxRecipient* noNumber = Add(std::nullopt);
  Add("1");
  FaxRecipient* longer = Add("12");
  EXPECT_TRUE(FindMaxCharacters(list_, 48, 0).empty());

  const std::vector<FaxRecipientRef> found = FindMaxCharacters(list_, 49, 0);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].get(), longer);

  const std::vector<FaxRecipientRef> all = FindMaxCharacters(list_, 40, 11);
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0].get(), noNumber);
  EXPECT_EQ(all[2].get(), longer);
  EXPECT_EQ(noNumber->referenceCount(), 2) << "the list's and the result's";
}

}  // namespace
}  // namespace varno::fax
