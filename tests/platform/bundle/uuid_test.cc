#include "platform/bundle/uuid.h"

#include <gtest/gtest.h>

#include "platform/bundle/plugin.h"

namespace varno::bundle {
namespace {

TEST(UUID, ParsesEitherCaseAndFormatsUpperCase) {
  std::optional<UUID> uuid = ParseUUID("bdb091f4-e57f-11d3-b5cc-0050e4603277");
  ASSERT_TRUE(uuid);
  EXPECT_EQ(uuid->bytes[0], 0xBD);
  EXPECT_EQ(uuid->bytes[4], 0xE5);
  EXPECT_EQ(uuid->bytes[15], 0x77);
  EXPECT_EQ(uuid->toString(), "BDB091F4-E57F-11D3-B5CC-0050E4603277");
  EXPECT_EQ(ParseUUID(uuid->toString()), uuid);
}

TEST(UUID, RefusesMalformedText) {
  for (const char* text : {
           "",
           "BDB091F4-E57F-11D3-B5CC-0050E460327",     // one digit short
           "BDB091F4-E57F-11D3-B5CC-0050E46032777",   // one digit long
           "BDB091F4E57F-11D3-B5CC-0050E4603277-",    // hyphen moved
           "BDB091F4-E57F-11D3-B5CC-0050E460327G",    // not a hex digit
           "BDB091F4-E57F-11D3-B5CC_0050E4603277",    // wrong separator
           "{DB091F4-E57F-11D3-B5CC-0050E460327}",    // braces
           " BDB091F4-E57F-11D3-B5CC-0050E460327",    // leading space
           "BDB091F4E57F11D3B5CC0050E4603277",        // no hyphens
       }) {
    EXPECT_FALSE(ParseUUID(text)) << text;
  }
}

TEST(UUID, EqualityLooksAtEveryByte) {
  UUID a = MakeUUID("00000000-0000-0000-0000-000000000001");
  UUID b = MakeUUID("00000000-0000-0000-0000-000000000002");
  UUID c = MakeUUID("10000000-0000-0000-0000-000000000001");
  EXPECT_NE(a, b);
  EXPECT_NE(a, c);
  EXPECT_EQ(a, *ParseUUID("00000000-0000-0000-0000-000000000001"));
  // The compile-time form reads bytes in the same order as the parser.
  UUID unknown{};
  unknown.bytes[8] = 0xC0;
  unknown.bytes[15] = 0x46;
  EXPECT_EQ(kIUnknownInterfaceID, unknown);
}

}  // namespace
}  // namespace varno::bundle
