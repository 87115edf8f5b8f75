// SPDX-License-Identifier: Apache-2.0
// The page text a person types into the inserts and exceptions dialogs: whatever it holds,
// reading it either never fails badly, and the two readings agree.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "panels/special_pages/page_ranges.h"
#include "panels/special_pages/special_pages_ids.h"
#include "support.h"

using namespace varno;
using panels::PageRange;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::vector<PageRange> ranges;
  const OSStatus status = panels::CreatePageRangesBySeparatingString(text.c_str(), true, &ranges);
  fuzz::Check(status == noErr || status == panels::kPageNumberTooLong || status == panels::kInvalidPageRanges ||
                  status == panels::kInvalidRangeOrder,
              "an unknown status " + std::to_string(status));
  fuzz::Check(status == noErr ? !ranges.empty() : ranges.empty(), "records beside a failure, or none on success");
  std::int64_t pages = 0;
  for (const PageRange& range : ranges) {
    fuzz::Check(range.firstPage >= 0 && range.count >= 1 &&
                    range.firstPage + range.count - 1 <= panels::kLastPossiblePage,
                "a range outside the page numbers");
    pages += range.count;
  }
  // One record a page, the same pages in the same order. Open ranges ("5-") make about
  // 100,000 pages each, so long texts that fail late are left out along with big ones.
  if (pages > 200000 || (status != noErr && size > 40)) return 0;
  std::vector<PageRange> each;
  fuzz::Check(panels::CreatePageRangesBySeparatingString(text.c_str(), false, &each) == status,
              "pages and ranges read the text differently");
  std::size_t at = 0;
  for (const PageRange& range : ranges)
    for (std::int32_t page = range.firstPage; page < range.firstPage + range.count; ++page, ++at)
      fuzz::Check(at < each.size() && each[at] == PageRange{page, 1}, "a page of a range is missing");
  fuzz::Check(at == each.size(), "more pages than the ranges hold");
  return 0;
}
