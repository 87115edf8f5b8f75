// SPDX-License-Identifier: Apache-2.0
#include "panels/special_pages/page_ranges.h"

#include <cctype>
#include <string>

#include "panels/special_pages/special_pages_ids.h"
#include "platform/toolkit/alerts.h"
#include "ui/panel_ui.h"

namespace varno::panels {

namespace {

enum class State { Start, Number, Dash, NumberDash };

struct Reader {
  bool asRanges;
  std::vector<PageRange>* out;
  std::int32_t first = 1;
  std::int32_t last = kLastPossiblePage;

  // A number on its own is the one page it names.
  OSStatus completePage() {
    last = first;
    return complete();
  }
  OSStatus complete() {
    if (first > last) return kInvalidRangeOrder;
    if (asRanges) {
      out->push_back({first, last - first + 1});
    } else {
      for (std::int32_t page = first; page <= last; ++page) out->push_back({page, 1});
    }
    first = 1;
    last = kLastPossiblePage;
    return noErr;
  }
};

OSStatus Read(const char* text, Reader& reader) {
  State state = State::Start;
  // The end of the text counts as one more comma.
  for (const char* at = text;; ++at) {
    const char c = *at;
    if (std::isdigit(static_cast<unsigned char>(c))) {
      std::int64_t number = 0;
      const char* digit = at;
      for (; std::isdigit(static_cast<unsigned char>(*digit)); ++digit) {
        number = number * 10 + (*digit - '0');
        if (number > kLastPossiblePage) return kPageNumberTooLong;
      }
      // "2 4": a number after a number closes the first as a page of its own.
      if (state == State::Number) {
        if (OSStatus status = reader.completePage(); status != noErr) return status;
        state = State::Start;
      }
      if (state == State::Start) {
        reader.first = static_cast<std::int32_t>(number);
        state = State::Number;
      } else {  // after a dash
        reader.last = static_cast<std::int32_t>(number);
        if (OSStatus status = reader.complete(); status != noErr) return status;
        state = State::Start;
      }
      at = digit - 1;
    } else if (c == '-') {
      if (state == State::Dash || state == State::NumberDash) return kInvalidPageRanges;
      state = state == State::Number ? State::NumberDash : State::Dash;
    } else if (c == ',' || c == '\0') {
      if (state == State::Dash) return kInvalidPageRanges;
      const OSStatus status = state == State::Number       ? reader.completePage()
                              : state == State::NumberDash ? reader.complete()
                                                           : noErr;
      if (status != noErr) return status;
      state = State::Start;
      if (c == '\0') return reader.out->empty() ? kInvalidPageRanges : noErr;
    }
  }
}

}  // namespace

OSStatus CreatePageRangesBySeparatingString(const char* text, bool asRanges,
                                            std::vector<PageRange>* ranges) {
  if (!text || !ranges) return paramErr;
  ranges->clear();
  Reader reader{asRanges, ranges};
  const OSStatus status = Read(text, reader);
  if (status != noErr) ranges->clear();
  return status;
}

void SpecialPagesUserNotification(OSStatus code, const bundle::BundleRef& bundle) {
  struct Alert {
    OSStatus code;
    const char* title;
    const char* message;
  };
  static constexpr Alert kAlerts[] = {
      {kPageNumberTooLong, "Page Number Limit Title", "Page Number Limit"},
      {kInvalidPageRanges, "Invalid Pages Title", "Invalid Page Ranges"},
      {kInvalidRangeOrder, "Invalid Ranges Title", "Invalid Range Order"},
      {kInvalidPageNumbers, "Invalid Page Numbers Title", "Invalid Page Numbers Message"},
      {kPageRangeConflict, "PageRangeConflictTitle", "PageRangeConflictMessage"},
  };
  if (!bundle) return;
  for (const Alert& alert : kAlerts) {
    if (alert.code != code) continue;
    auto text = [&](const char* key) { return bundle->localizedString(key, "Localizable", "STRING NOT FOUND"); };
    std::string message = text(alert.message);
    if (code == kPageNumberTooLong) message = ui::FormatNumbers(message, {ui::CountDigits(kLastPossiblePage)});
    toolkit::CFUserNotificationDisplayNotice(0, toolkit::kCFUserNotificationStopAlertLevel,
                                             text(alert.title), message);
    return;
  }
}

}  // namespace varno::panels
