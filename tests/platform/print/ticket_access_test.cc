// SPDX-License-Identifier: Apache-2.0
#include "platform/print/ticket_access.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>

namespace varno::print {
namespace {

constexpr CFIndex kMin = std::numeric_limits<CFIndex>::min();
constexpr CFIndex kMax = std::numeric_limits<CFIndex>::max();

TEST(SessionAccess, TicketsComeFromTheCurrentSessionOrOutputIsLeftAlone) {
  print::Session session;
  EXPECT_EQ(GetCurrentPrintSession(), nullptr);
  SetCurrentPrintSession(&session);
  print::Ticket ticket;
  ASSERT_EQ(GetTicketFromSession(GetCurrentPrintSession(), "PMPrintSettingsTicket", &ticket),
            noErr);
  EXPECT_TRUE(ticket.sameAs(session.printSettings()));
  SetCurrentPrintSession(nullptr);
  EXPECT_EQ(GetCurrentPrintSession(), nullptr);

  const print::Ticket before;
  ticket = before;
  EXPECT_EQ(GetTicketFromSession(&session, "PMNoSuchTicket", &ticket), kPMInvalidKey);
  EXPECT_TRUE(ticket.sameAs(before));
}

TEST(DictionaryNumbers, WriteTicketValueStoresCFIndexAndRefusesWiderValues) {
  plist::Dictionary d;
  EXPECT_TRUE(WriteTicketValue(d, "Quantity", kMin));
  EXPECT_TRUE(WriteTicketValue(d, "Max", kMax));
  EXPECT_EQ(d.getNumber<CFIndex>("Max"), kMax);
  for (long wide : {long{kMax} + 1, long{kMin} - 1}) {
    EXPECT_FALSE(WriteTicketValue(d, "Quantity", wide));
    EXPECT_FALSE(WriteTicketValue(d, "New", wide));
  }
  EXPECT_EQ(d.getNumber<CFIndex>("Quantity"), kMin);
  EXPECT_FALSE(d.contains("New"));
}

TEST(DictionaryNumbers, ReadsOnlyExactNumbersAndLeaveTheOutputUntouchedOtherwise) {
  plist::Dictionary d{{"whole", 3.0}, {"big", std::int64_t{1} << 40}, {"half", 1.5},
                      {"text", "12"}, {"flag", true}, {"neg", -1}, {"third", 1.0 / 3}};
  CFIndex value = 99;
  for (const char* key : {"big", "half", "text", "flag", "missing"})
    EXPECT_FALSE(GetCFIndexFromCFDictionary(&d, key, &value)) << key;
  EXPECT_EQ(value, 99);
  EXPECT_TRUE(GetCFIndexFromCFDictionary(&d, "whole", &value));
  EXPECT_EQ(value, 3);

  std::int8_t small = 1;
  std::uint32_t positive = 1;
  float narrow = 1;
  EXPECT_FALSE(CFDictionaryGetNumber(d, "big", &small));
  EXPECT_FALSE(CFDictionaryGetNumber(d, "neg", &positive));
  EXPECT_FALSE(CFDictionaryGetNumber(d, "third", &narrow));
  EXPECT_TRUE(small == 1 && positive == 1 && narrow == 1);
}

template <typename T>
class DictionaryNumberTypes : public ::testing::Test {};
using NumberTypes = ::testing::Types<std::int8_t, std::int64_t, std::uint32_t, double>;
TYPED_TEST_SUITE(DictionaryNumberTypes, NumberTypes);

TYPED_TEST(DictionaryNumberTypes, ExtremesRoundTripAndOtherKindsAreRefused) {
  using T = TypeParam;
  plist::Dictionary d{{"text", "1"}};
  for (T n : {std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max(), T(1)}) {
    CFDictionarySetNumber(d, "n", n);
    T read = 0;
    ASSERT_TRUE(CFDictionaryGetNumber(d, "n", &read));
    EXPECT_EQ(read, n);
  }
  T untouched = 5;
  EXPECT_FALSE(CFDictionaryGetNumber(d, "text", &untouched));
  EXPECT_FALSE(CFDictionaryGetNumber(d, "missing", &untouched));
  EXPECT_EQ(untouched, 5);
}

TEST(DictionaryStrings, SetCStringConvertsEachEncodingOrStoresNothing) {
  plist::Dictionary d{{"kept", "old"}};
  EXPECT_TRUE(CFDictionarySetCString(d, "utf8", "Zo\xC3\xAB", StringEncoding::UTF8));
  EXPECT_TRUE(CFDictionarySetCString(d, "latin1", "Zo\xEB", StringEncoding::ISOLatin1));
  EXPECT_TRUE(CFDictionarySetCString(d, "roman", "Zo\x91 \xA5", StringEncoding::MacRoman));
  EXPECT_EQ(d.getString("utf8"), "Zoë");
  EXPECT_EQ(d.getString("latin1"), "Zoë");
  EXPECT_EQ(d.getString("roman"), "Zoë •");
  EXPECT_FALSE(CFDictionarySetCString(d, "kept", "caf\xE9", StringEncoding::ASCII));
  EXPECT_FALSE(CFDictionarySetCString(d, "kept", "caf\xE9", StringEncoding::UTF8));
  EXPECT_EQ(d.getString("kept"), "old");
}

TEST(DictionaryContainers, GetDictionaryOrCreateCreatesOnceAndShares) {
  plist::Dictionary outer{{"number", 5}};
  std::optional<plist::Dictionary> first = CFDictionaryGetDictionaryOrCreate(outer, "inner");
  std::optional<plist::Dictionary> second = CFDictionaryGetDictionaryOrCreate(outer, "inner");
  ASSERT_TRUE(first && second);
  EXPECT_TRUE(first->sameAs(*second));
  first->set("Quantity", 2);
  EXPECT_EQ(outer.getDictionary("inner")->getNumber<int>("Quantity"), 2);
  EXPECT_EQ(CFDictionaryGetDictionaryOrCreate(outer, "number"), std::nullopt);
  EXPECT_EQ(outer.getNumber<int>("number"), 5) << "another kind is not clobbered";
}

}  // namespace
}  // namespace varno::print
