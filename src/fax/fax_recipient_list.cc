// SPDX-License-Identifier: Apache-2.0
#include "fax/fax_recipient_list.h"

#include <algorithm>

namespace varno::fax {

using print::CFIndex;

FaxRecipientList::FaxRecipientList(const FaxRecipientList& other) { *this = other; }

FaxRecipientList& FaxRecipientList::operator=(const FaxRecipientList& other) {
  if (this == &other) return *this;
  std::vector<FaxRecipientRef> copies;
  copies.reserve(other.entries_.size());
  for (const FaxRecipientRef& entry : other.entries_)
    copies.push_back(FaxRecipientRef::Adopt(new FaxRecipient(*entry)));
  entries_ = std::move(copies);
  return *this;
}

FaxRecipientList::FaxRecipientList(const plist::Array& ticket) { fromTicket(ticket); }

FaxRecipient* FaxRecipientList::recipientAtIndex(CFIndex index) const {
  if (index < 0 || index >= count()) return nullptr;
  return entries_[static_cast<std::size_t>(index)].get();
}

bool FaxRecipientList::insertAtIndex(FaxRecipient* recipient, CFIndex index) {
  if (!recipient || index < 0 || index > count()) return false;
  entries_.insert(entries_.begin() + index, FaxRecipientRef::Retain(recipient));
  return true;
}

bool FaxRecipientList::append(FaxRecipient* recipient) {
  if (!recipient) return false;
  entries_.push_back(FaxRecipientRef::Retain(recipient));
  return true;
}

void FaxRecipientList::removeAtIndex(CFIndex index) {
  if (index < 0 || index >= count()) return;
  entries_.erase(entries_.begin() + index);
}

void FaxRecipientList::removeAll() { entries_.clear(); }

void FaxRecipientList::remove(const FaxRecipient* recipient) {
  std::erase_if(entries_,
                [recipient](const FaxRecipientRef& entry) { return entry.get() == recipient; });
}

bool FaxRecipientList::containsRecipient(const FaxRecipient& recipient) const {
  // std::optional's == is exactly the rule: both absent, or both present and equal.
  return std::any_of(entries_.begin(), entries_.end(), [&recipient](const FaxRecipientRef& e) {
    return e->firstName() == recipient.firstName() && e->lastName() == recipient.lastName() &&
           e->faxNumber() == recipient.faxNumber();
  });
}

plist::Array FaxRecipientList::toTicket() const {
  plist::Array ticket;
  for (const FaxRecipientRef& entry : entries_) ticket.append(plist::Value(entry->toTicket()));
  return ticket;
}

void FaxRecipientList::fromTicket(const plist::Array& ticket) {
  removeAll();
  for (const plist::Value& element : ticket) {
    // A stray element is dropped rather than turned into a recipient with nothing to dial.
    const plist::Dictionary* dictionary = element.asDictionary();
    if (dictionary)
      entries_.push_back(FaxRecipientRef::Adopt(new FaxRecipient(*dictionary)));
  }
}

}  // namespace varno::fax
