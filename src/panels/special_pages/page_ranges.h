// SPDX-License-Identifier: Apache-2.0
// What the inserts and exceptions dialogs share with the Special Pages panel: reading the
// pages a person typed ("1,3,5-12") and the alerts that say what was wrong with them.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/bundle/bundle.h"
#include "platform/status.h"

namespace varno::panels {

// The highest page number that can be typed; longer numbers are refused.
inline constexpr std::int32_t kLastPossiblePage = 99999;

struct PageRange {
  std::int32_t firstPage = 0;
  std::int32_t count = 0;
  friend bool operator==(const PageRange&, const PageRange&) = default;
};

// Reads `text`: numbers, ranges "a-b", open ranges "-b" (from page 1) and "a-" (to the last
// possible page), separated by commas (blanks between two numbers also separate them);
// other characters are skipped. With `asRanges` one record per range, else one per page.
// Returns noErr with the records in `*ranges`, paramErr for a null text or result, or one
// of the codes of special_pages_ids.h: a number longer than five digits, nothing to read or
// two dashes in a row, a range that ends before it starts. On failure `*ranges` is empty.
// Page 0 passes here: whether it means anything is the caller's business.
OSStatus CreatePageRangesBySeparatingString(const char* text, bool asRanges,
                                            std::vector<PageRange>* ranges);

// Shows the single-button alert for a parser or dialog code (1000 to 1003, 1234); any other
// code shows nothing.
void SpecialPagesUserNotification(OSStatus code, const bundle::BundleRef& bundle);

}  // namespace varno::panels
