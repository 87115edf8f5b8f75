// SPDX-License-Identifier: Apache-2.0
// One fax recipient of a LAN fax job and its ticket form, a dictionary of the recipient's
// strings under the keys below. Recipients are shared by reference counting: lists, the
// set-up dialog and the dialing-length check each hold references to the same object, and
// an edit made through one is seen by all of them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "platform/plist/value.h"

namespace varno::fax {

inline constexpr const char* kFaxRecipientFirstNameProperty = "FirstName";
inline constexpr const char* kFaxRecipientLastNameProperty = "LastName";
inline constexpr const char* kFaxRecipientFaxNumberProperty = "FaxNumber";
inline constexpr const char* kFaxRecipientFaxNumberLabelProperty = "FaxNumberLabel";
inline constexpr const char* kFaxRecipientOrganizationProperty = "Organization";
inline constexpr const char* kFaxRecipientPhoneNumberProperty = "PhoneNumber";
inline constexpr const char* kFaxRecipientEmailAddressProperty = "EmailAddress";
inline constexpr const char* kFaxRecipientMailboxProperty = "Mailbox";
inline constexpr const char* kFaxRecipientUIDProperty = "UID";

class FaxRecipient {
 public:
  using Text = std::optional<std::string>;

  // Every field absent; the count is 1, the reference of whoever made the recipient.
  FaxRecipient() = default;
  FaxRecipient(Text firstName, Text lastName, Text faxNumber);
  // The other's fields with a count of its own (1): a copy is a new recipient.
  FaxRecipient(const FaxRecipient& other);
  // Fields from a ticket dictionary, as fromTicket.
  explicit FaxRecipient(const plist::Dictionary& ticket);
  // Copies the fields only; the count belongs to this object's holders and stays.
  FaxRecipient& operator=(const FaxRecipient& other);
  ~FaxRecipient() = default;

  const Text& firstName() const { return firstName_; }
  void setFirstName(Text value) { firstName_ = std::move(value); }
  const Text& lastName() const { return lastName_; }
  void setLastName(Text value) { lastName_ = std::move(value); }
  const Text& faxNumber() const { return faxNumber_; }
  void setFaxNumber(Text value) { faxNumber_ = std::move(value); }
  const Text& faxNumberLabel() const { return faxNumberLabel_; }
  void setFaxNumberLabel(Text value) { faxNumberLabel_ = std::move(value); }
  const Text& organization() const { return organization_; }
  void setOrganization(Text value) { organization_ = std::move(value); }
  const Text& phoneNumber() const { return phoneNumber_; }
  void setPhoneNumber(Text value) { phoneNumber_ = std::move(value); }
  const Text& emailAddress() const { return emailAddress_; }
  void setEmailAddress(Text value) { emailAddress_ = std::move(value); }
  const Text& mailbox() const { return mailbox_; }
  void setMailbox(Text value) { mailbox_ = std::move(value); }
  const Text& uid() const { return uid_; }
  void setUID(Text value) { uid_ = std::move(value); }

  // Add or take one reference and return the new count. Neither deletes: only
  // FaxRecipientRelease does, so a recipient on the stack can be counted safely.
  std::int32_t retain() { return ++referenceCount_; }
  std::int32_t release() { return --referenceCount_; }
  std::int32_t referenceCount() const { return referenceCount_; }

  // A new dictionary of the fields that are present.
  plist::Dictionary toTicket() const;
  // Every one of the nine fields takes the dictionary's string under its key, so a key
  // that is missing (or holds no string) clears the field: the dictionary is the whole
  // recipient, not a change to it. A null dictionary changes nothing.
  void fromTicket(const plist::Dictionary* ticket);

 private:
  Text firstName_;
  Text lastName_;
  Text faxNumber_;
  Text faxNumberLabel_;
  Text organization_;
  Text phoneNumber_;
  Text emailAddress_;
  Text mailbox_;
  Text uid_;
  std::int32_t referenceCount_ = 1;
};

// Adds a reference; returns the new count, or 0 for a null recipient.
std::int32_t FaxRecipientRetain(FaxRecipient* recipient);
// Takes a reference and deletes the recipient (made with new) when none is left. Returns
// the new count, or 0 for a null recipient.
std::int32_t FaxRecipientRelease(FaxRecipient* recipient);

// One counted reference to a recipient made with new: the handle releases it when it goes,
// and copying the handle retains the recipient again.
class FaxRecipientRef {
 public:
  FaxRecipientRef() = default;
  // Takes over the reference the caller holds (the one `new` gave it, say).
  static FaxRecipientRef Adopt(FaxRecipient* recipient);
  // Takes a reference of its own.
  static FaxRecipientRef Retain(FaxRecipient* recipient);

  FaxRecipientRef(const FaxRecipientRef& other);
  FaxRecipientRef(FaxRecipientRef&& other) noexcept;
  FaxRecipientRef& operator=(FaxRecipientRef other) noexcept;
  ~FaxRecipientRef();

  FaxRecipient* get() const { return recipient_; }
  FaxRecipient* operator->() const { return recipient_; }
  FaxRecipient& operator*() const { return *recipient_; }
  explicit operator bool() const { return recipient_ != nullptr; }

 private:
  explicit FaxRecipientRef(FaxRecipient* recipient) : recipient_(recipient) {}
  FaxRecipient* recipient_ = nullptr;
};

// The first and last name, those present, joined by a blank.
std::string DisplayNameFromRecipient(const FaxRecipient& recipient);

}  // namespace varno::fax
