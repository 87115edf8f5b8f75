// SPDX-License-Identifier: Apache-2.0
// Tickets: the ordered maps of job settings that travel with a print session.
//
// Each item holds a value (or a nested ticket), the client identifier of its writer and a
// lock flag. A Ticket is a shared handle like plist::Dictionary: copies name the same
// ticket, so what one panel writes the next one reads. The print-settings ticket also
// carries the PPD dictionary (PPD main keyword -> choice keyword).
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/plist/value.h"
#include "platform/status.h"

namespace varno::print {

struct TicketItem;

// A rectangle as the page-format ticket stores it: top, left, bottom, right in points.
struct Rect {
  double top = 0, left = 0, bottom = 0, right = 0;
  friend bool operator==(const Rect&, const Rect&) = default;
};

class Ticket {
 public:
  using Item = TicketItem;

  // Nested tickets deeper than this are refused when read from a property list, so a
  // hostile file cannot exhaust the stack. Real tickets nest one level.
  static constexpr int kMaxNesting = 64;

  // A new, empty ticket.
  Ticket();

  // True when the ticket has an item under key.
  bool contains(std::string_view key) const;
  // The item under key, or null. The pointer lives until the next write to this ticket.
  const Item* item(std::string_view key) const;
  // Number of items.
  std::size_t size() const;
  // Keys in the order they were first written (replacing a value keeps its place).
  std::vector<std::string> keys() const;

  // Reads. Each returns noErr and fills `out`, kPMInvalidKey when the key is missing
  // (out untouched), or kPMInvalidValue when the item holds another kind (out untouched);
  // an item holding a nested ticket is "another kind" for every read but getTicket.
  // Dictionaries and arrays come back as shared handles: changing them changes the ticket.
  OSStatus getValue(std::string_view key, plist::Value& out) const;
  OSStatus getString(std::string_view key, std::string& out) const;
  OSStatus getBoolean(std::string_view key, bool& out) const;
  OSStatus getDictionary(std::string_view key, plist::Dictionary& out) const;
  OSStatus getArray(std::string_view key, plist::Array& out) const;
  // A rectangle is an array of four numbers: top, left, bottom, right.
  OSStatus getRect(std::string_view key, Rect& out) const;
  // `out` becomes a handle to the nested ticket itself, not a copy.
  OSStatus getTicket(std::string_view key, Ticket& out) const;
  // Exact numeric read: kPMInvalidValue unless T holds the stored number without loss
  // (2^40 and 1.5 do not read as int32_t; 3.0 does).
  template <typename T>
  OSStatus getNumber(std::string_view key, T& out) const;

  // Convenience reads for code that has a default at hand: nullopt where the status
  // reads above would fail.
  std::optional<std::string> string(std::string_view key) const;
  std::optional<bool> boolean(std::string_view key) const;
  std::optional<plist::Dictionary> dictionary(std::string_view key) const;
  template <typename T>
  std::optional<T> number(std::string_view key) const {
    T t{};
    if (getNumber(key, t) != noErr) return std::nullopt;
    return t;
  }

  // Writes replace the item under key (keeping its position) or append a new one, and
  // record the client and lock flag. They return noErr, kPMItemIsLocked when the present
  // item is locked (nothing changes), or paramErr for an empty key or client.
  OSStatus setValue(std::string_view key, plist::Value value, std::string_view client,
                    bool locked = false);
  // Stores the rectangle as an array of four reals: top, left, bottom, right.
  OSStatus setRect(std::string_view key, const Rect& rect, std::string_view client,
                   bool locked = false);
  // Stores a handle to `nested` (shared, not copied). A ticket that would end up inside
  // itself is refused with paramErr.
  OSStatus setTicket(std::string_view key, const Ticket& nested, std::string_view client,
                     bool locked = false);
  // Removes the item: noErr, kPMInvalidKey when absent, kPMItemIsLocked when locked.
  OSStatus releaseItem(std::string_view key);

  // The PPD dictionary (main keyword -> choice keyword as a string). Every ticket has
  // one, empty until written; the handle is shared, so writing to it changes the ticket.
  plist::Dictionary ppdDictionary() const;

  // The ticket as a property list (the form is described in ticket.cc), independent of
  // this ticket: changing one does not change the other.
  plist::Dictionary toPropertyList() const;
  // A new ticket from that form. Any malformed input gives nullopt and, when `error` is
  // given, a message naming the offending item.
  static std::optional<Ticket> fromPropertyList(const plist::Dictionary& form,
                                                std::string* error = nullptr);

  // Writes the ticket as an XML property list, replacing the file atomically. Refuses
  // (false, file untouched) a ticket that could not be loaded back, such as one whose
  // PPD dictionary holds a choice that is not a string.
  bool save(const std::filesystem::path& path, std::string* error = nullptr) const;
  // Reads a ticket file written by save(). nullopt and a message on any failure.
  static std::optional<Ticket> load(const std::filesystem::path& path,
                                    std::string* error = nullptr);

  // Independent copy, nested tickets, containers and PPD dictionary included.
  Ticket deepCopy() const;
  // True when both handles name the same ticket.
  bool sameAs(const Ticket& other) const { return impl_ == other.impl_; }
  // Equal when both hold the same keys in the same order with equal values (or equal
  // nested tickets), clients and locks, and equal PPD dictionaries.
  friend bool operator==(const Ticket& a, const Ticket& b);

 private:
  struct Impl;
  bool reaches(const Impl* target) const;
  std::shared_ptr<Impl> impl_;
};

// One entry of a ticket.
struct TicketItem {
  plist::Value value;             // meaningful when nested is empty
  std::optional<Ticket> nested;   // set when the item is a nested ticket
  std::string client;             // who wrote it (a reverse-DNS name, a short code, ...)
  bool locked = false;            // a locked item refuses replacement and removal
};

template <typename T>
OSStatus Ticket::getNumber(std::string_view key, T& out) const {
  const Item* i = item(key);
  if (!i) return kPMInvalidKey;
  if (i->nested) return kPMInvalidValue;
  std::optional<T> n = i->value.template toNumber<T>();
  if (!n) return kPMInvalidValue;
  out = *n;
  return noErr;
}

}  // namespace varno::print
