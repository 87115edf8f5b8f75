// SPDX-License-Identifier: Apache-2.0
#include "fax/fax_recipient.h"

namespace varno::fax {

FaxRecipient::FaxRecipient(Text firstName, Text lastName, Text faxNumber)
    : firstName_(std::move(firstName)),
      lastName_(std::move(lastName)),
      faxNumber_(std::move(faxNumber)) {}

FaxRecipient::FaxRecipient(const FaxRecipient& other) { *this = other; }

FaxRecipient::FaxRecipient(const plist::Dictionary& ticket) { fromTicket(&ticket); }

FaxRecipient& FaxRecipient::operator=(const FaxRecipient& other) {
  firstName_ = other.firstName_;
  lastName_ = other.lastName_;
  faxNumber_ = other.faxNumber_;
  faxNumberLabel_ = other.faxNumberLabel_;
  organization_ = other.organization_;
  phoneNumber_ = other.phoneNumber_;
  emailAddress_ = other.emailAddress_;
  mailbox_ = other.mailbox_;
  uid_ = other.uid_;
  return *this;
}

plist::Dictionary FaxRecipient::toTicket() const {
  plist::Dictionary ticket;
  auto put = [&ticket](const char* key, const Text& field) {
    if (field) ticket.set(key, plist::Value(*field));
  };
  put(kFaxRecipientFirstNameProperty, firstName_);
  put(kFaxRecipientLastNameProperty, lastName_);
  put(kFaxRecipientFaxNumberProperty, faxNumber_);
  put(kFaxRecipientFaxNumberLabelProperty, faxNumberLabel_);
  put(kFaxRecipientOrganizationProperty, organization_);
  put(kFaxRecipientPhoneNumberProperty, phoneNumber_);
  put(kFaxRecipientEmailAddressProperty, emailAddress_);
  put(kFaxRecipientMailboxProperty, mailbox_);
  put(kFaxRecipientUIDProperty, uid_);
  return ticket;
}

void FaxRecipient::fromTicket(const plist::Dictionary* ticket) {
  if (!ticket) return;
  auto take = [ticket](const char* key, Text& field) { field = ticket->getString(key); };
  take(kFaxRecipientFirstNameProperty, firstName_);
  take(kFaxRecipientLastNameProperty, lastName_);
  take(kFaxRecipientFaxNumberProperty, faxNumber_);
  take(kFaxRecipientFaxNumberLabelProperty, faxNumberLabel_);
  take(kFaxRecipientOrganizationProperty, organization_);
  take(kFaxRecipientPhoneNumberProperty, phoneNumber_);
  take(kFaxRecipientEmailAddressProperty, emailAddress_);
  take(kFaxRecipientMailboxProperty, mailbox_);
  take(kFaxRecipientUIDProperty, uid_);
}

std::int32_t FaxRecipientRetain(FaxRecipient* recipient) {
  return recipient ? recipient->retain() : 0;
}

std::int32_t FaxRecipientRelease(FaxRecipient* recipient) {
  if (!recipient) return 0;
  const std::int32_t count = recipient->release();
  if (count == 0) delete recipient;
  return count;
}

FaxRecipientRef FaxRecipientRef::Adopt(FaxRecipient* recipient) {
  return FaxRecipientRef(recipient);
}

FaxRecipientRef FaxRecipientRef::Retain(FaxRecipient* recipient) {
  FaxRecipientRetain(recipient);
  return FaxRecipientRef(recipient);
}

FaxRecipientRef::FaxRecipientRef(const FaxRecipientRef& other) : recipient_(other.recipient_) {
  FaxRecipientRetain(recipient_);
}

FaxRecipientRef::FaxRecipientRef(FaxRecipientRef&& other) noexcept
    : recipient_(std::exchange(other.recipient_, nullptr)) {}

FaxRecipientRef& FaxRecipientRef::operator=(FaxRecipientRef other) noexcept {
  std::swap(recipient_, other.recipient_);
  return *this;
}

FaxRecipientRef::~FaxRecipientRef() { FaxRecipientRelease(recipient_); }

std::string DisplayNameFromRecipient(const FaxRecipient& recipient) {
  std::string name = recipient.firstName().value_or("");
  if (recipient.lastName()) {
    if (recipient.firstName()) name += ' ';
    name += *recipient.lastName();
  }
  return name;
}

}  // namespace varno::fax
