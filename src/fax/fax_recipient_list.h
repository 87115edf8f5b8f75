// SPDX-License-Identifier: Apache-2.0
// The recipients of a LAN fax job, in the order the user listed them, and their ticket
// form: an array of recipient dictionaries under "com.varno.print.FaxRecipientList".
#pragma once

#include <cstddef>
#include <vector>

#include "fax/fax_recipient.h"
#include "platform/plist/value.h"
#include "platform/print/ticket_access.h"

namespace varno::fax {

inline constexpr const char* kFaxRecipientListKey = "com.varno.print.FaxRecipientList";

// Holds one reference to each entry: an entry's recipient is retained when it goes in and
// released when it comes out or the list goes. The same recipient may be listed twice.
class FaxRecipientList {
 public:
  FaxRecipientList() = default;
  // Deep: each entry becomes a new recipient with the same fields, so editing the copy's
  // recipients leaves this list's alone.
  FaxRecipientList(const FaxRecipientList& other);
  FaxRecipientList& operator=(const FaxRecipientList& other);
  FaxRecipientList(FaxRecipientList&&) noexcept = default;
  FaxRecipientList& operator=(FaxRecipientList&&) noexcept = default;
  explicit FaxRecipientList(const plist::Array& ticket);
  ~FaxRecipientList() = default;

  print::CFIndex count() const { return static_cast<print::CFIndex>(entries_.size()); }
  // The entry at `index`, or null out of range. The list keeps its reference.
  FaxRecipient* recipientAtIndex(print::CFIndex index) const;
  // Inserts before `index` (0 ... count); false, and nothing done, for a null recipient or
  // an index out of range.
  bool insertAtIndex(FaxRecipient* recipient, print::CFIndex index);
  // False for a null recipient.
  bool append(FaxRecipient* recipient);
  // Out of range: nothing happens.
  void removeAtIndex(print::CFIndex index);
  void removeAll();
  // Removes every entry that is this very object (not merely an equal one).
  void remove(const FaxRecipient* recipient);

  // True when an entry has the same first name, last name and fax number: both absent,
  // or both present and equal byte for byte (case counts, since fax numbers and names are
  // matched as typed). Other fields do not count.
  bool containsRecipient(const FaxRecipient& recipient) const;

  // A new array of the entries' ticket dictionaries, in list order.
  plist::Array toTicket() const;
  // Empties the list, then appends a new recipient for each dictionary of `ticket`;
  // elements that are not dictionaries are skipped.
  void fromTicket(const plist::Array& ticket);

 private:
  std::vector<FaxRecipientRef> entries_;
};

}  // namespace varno::fax
