#include "model/special_pages_ticket.h"

#include <memory>
#include <vector>

namespace varno::model {
namespace {

template <typename Page>
OSStatus ReadList(const print::Ticket& ticket, std::string_view key, SpecialPageList& list) {
  list.clear();
  plist::Array array;
  if (OSStatus status = ticket.getArray(key, array); status != noErr) return status;
  std::vector<std::unique_ptr<Page>> pages;
  std::vector<const SpecialPage*> view;
  pages.reserve(array.size());
  view.reserve(array.size());
  for (const plist::Value& element : array) {
    pages.push_back(std::make_unique<Page>(element.asDictionary()));
    view.push_back(pages.back().get());
  }
  return list.add(view);
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
