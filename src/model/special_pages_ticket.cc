// SPDX-License-Identifier: Apache-2.0
#include "model/special_pages_ticket.h"

#include <memory>
#include <vector>

namespace varno::model {
namespace {

bool Wellformed(const Insert&) { return true; }
bool Wellformed(const ExceptionPage& page) { return page.endPage() >= page.startPage(); }

template <typename Page>
OSStatus ReadList(const print::Ticket& ticket, std::string_view key, SpecialPageList& list) {
  list.clear();
  plist::Array array;
  if (OSStatus status = ticket.getArray(key, array); status != noErr) return status;
  std::vector<std::unique_ptr<Page>> pages;
  std::vector<const SpecialPage*> view;
  pages.reserve(array.size());
  view.reserve(array.size());
  bool skipped = false;
  for (const plist::Value& element : array) {
    pages.push_back(std::make_unique<Page>(element.asDictionary()));
    // One damaged page must not cost the others: the list refuses a batch holding a range
    // that ends before it starts (one with no end page included), so it is left out here.
    if (!Wellformed(*pages.back())) {
      pages.pop_back();
      skipped = true;
      continue;
    }
    view.push_back(pages.back().get());
  }
  const OSStatus status = list.add(view);
  return status != noErr ? status : skipped ? paramErr : noErr;
}

}  // namespace

OSStatus WriteSpecialPageList(print::Ticket& ticket, std::string_view key,
                              const SpecialPageList& list) {
  std::optional<plist::Array> form = list.asTicket();
  if (!form) return ticket.releaseItem(key);
  return ticket.setValue(key, std::move(*form), kSpecialPagesTicketClient);
}

OSStatus WriteCover(print::Ticket& ticket, std::string_view key, const Cover* cover) {
  if (!cover) return ticket.releaseItem(key);
  return ticket.setValue(key, cover->asTicket(), kSpecialPagesTicketClient);
}

OSStatus ReadInsertList(const print::Ticket& ticket, InsertList& list) {
  return ReadList<Insert>(ticket, kInsertListKey, list);
}

OSStatus ReadExceptionList(const print::Ticket& ticket, ExceptionPageList& list) {
  return ReadList<ExceptionPage>(ticket, kExceptionListKey, list);
}

}  // namespace varno::model
