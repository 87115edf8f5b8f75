// SPDX-License-Identifier: Apache-2.0
#include "platform/plist/text.h"

#include <gtest/gtest.h>

namespace varno::plist {
namespace {

TEST(CaseInsensitiveText, FoldsFullUnicodeCase) {
  EXPECT_TRUE(EqualCaseInsensitive("Straße", "STRASSE"));
  EXPECT_TRUE(EqualCaseInsensitive("ΣΊΣΥΦΟΣ", "σίσυφος"));
  EXPECT_FALSE(EqualCaseInsensitive("Draft", "Drafts"));
  EXPECT_FALSE(EqualCaseInsensitive("é", "e"));
}

TEST(CaseInsensitiveText, OrdersLikeFoldedTextEvenWhenIllFormed) {
  EXPECT_LT(CompareCaseInsensitive("apple", "Banana"), 0);
  EXPECT_GT(CompareCaseInsensitive("banana", "APPLE"), 0);
  EXPECT_GT(CompareCaseInsensitive("a\xff", "a\xfe"), 0);  // ill-formed: byte by byte
}

TEST(CharacterCounts, CountCharactersNotBytes) {
  EXPECT_EQ(CharacterCount("Grüße"), 5u);
  EXPECT_EQ(CharacterCount("日本語"), 3u);
  EXPECT_EQ(CharacterCount("\xF0\x9F\x96\xA8"), 1u);  // one printer emoji, four bytes
  EXPECT_TRUE(IsValidUTF8("Grüße"));
  EXPECT_FALSE(IsValidUTF8("Gr\xC3"));
  EXPECT_FALSE(IsValidUTF8("\xC0\xAF"));  // overlong encodings are not UTF-8
}

}  // namespace
}  // namespace varno::plist
