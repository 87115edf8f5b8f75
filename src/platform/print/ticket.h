// Tickets: the ordered maps of job settings that travel with a print session.
//
// Each item holds a value (or a nested ticket), the client identifier of its writer and a
// lock flag. A Ticket is a shared handle like plist::Dictionary: copies name the same
// ticket, so what one panel writes the next one reads. The print-settings ticket also
// carries the PPD dictionary (PPD main keyword -> choice keyword).
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/plist/value.h"
#include "platform/status.h"

namespace varno::print {

class Ticket;

// A rectangle as the page-format ticket stores it: top, left, bottom, right in points.
struct Rect {
  double top = 0, left = 0, bottom = 0, right = 0;
  friend bool operator==(const Rect&, const Rect&) = default;
};

class Ticket {
 public:
  // One entry of a ticket.
  struct Item {
    plist::Value value;                  // meaningful when nested is empty
    std::shared_ptr<Ticket> nested;      // set when the item is a nested ticket
    std::string client;                  // who wrote it ("com.varno.printingmanager", "V", ...)
    bool locked = false;                 // a locked item refuses replacement and removal
  };

  // A new, empty ticket.
  Ticket();

  bool contains(std::string_view key) const;
  // The item under key, or null.
  const Item* item(std::string_view key) const;
  std::size_t size() const;
  // Keys in the order they were first written.
  std::vector<std::string> keys() const;

  // Reads. Each returns noErr and fills `out`, kPMInvalidKey when the key is missing
  // (out untouched), or kPMInvalidValue when the item holds another kind (out untouched).
  // Dictionaries and arrays come back as shared handles: changing them changes the ticket.
  OSStatus getValue(std::string_view key, plist::Value& out) const;
  OSStatus getString(std::string_view key, std::string& out) const;
  OSStatus getBoolean(std::string_view key, bool& out) const;
  OSStatus getDictionary(std::string_view key, plist::Dictionary& out) const;
  OSStatus getArray(std::string_view key, plist::Array& out) const;
  OSStatus getRect(std::string_view key, Rect& out) const;
  OSStatus getTicket(std::string_view key, Ticket& out) const;
  // Exact numeric read: kPMInvalidValue unless T holds the stored number without loss.
  template <typename T>
  OSStatus getNumber(std::string_view key, T& out) const;

  // Convenience reads for code that has a default at hand.
  std::optional<std::string> string(std::string_view key) const;
  std::optional<plist::Dictionary> dictionary(std::string_view key) const;
  template <typename T>
  std::optional<T> number(std::string_view key) const {
    T t{};
    if (getNumber(key, t) != noErr) return std::nullopt;
    return t;
  }

  // Writes replace the value of the key (keeping its position) and record the client.
  // kPMItemIsLocked when the present item is locked; paramErr for an empty key or client.
  OSStatus setValue(std::string_view key, plist::Value value, std::string_view client,
                    bool locked = false);
  OSStatus setRect(std::string_view key, const Rect& rect, std::string_view client,
                   bool locked = false);
  OSStatus setTicket(std::string_view key, const Ticket& nested, std::string_view client,
                     bool locked = false);
  // Removes the item: noErr, kPMInvalidKey when absent, kPMItemIsLocked when locked.
  OSStatus releaseItem(std::string_view key);

  // The PPD dictionary (main keyword -> choice keyword), made on first use. Shared.
  plist::Dictionary ppdDictionary() const;

  // Everything, PPD dictionary and nested tickets included, as a property list, and back.
  plist::Dictionary toPropertyList() const;
  static std::optional<Ticket> fromPropertyList(const plist::Dictionary& form,
                                                std::string* error = nullptr);

  // Ticket files are XML property lists of toPropertyList().
  bool save(const std::string& path, std::string* error = nullptr) const;
  static std::optional<Ticket> load(const std::string& path, std::string* error = nullptr);

  // Independent copy, nested tickets and containers included.
  Ticket deepCopy() const;
  bool sameAs(const Ticket& other) const { return impl_ == other.impl_; }
  friend bool operator==(const Ticket& a, const Ticket& b);

 private:
  struct Impl;
  std::shared_ptr<Impl> impl_;
};

template <typename T>
OSStatus Ticket::getNumber(std::string_view key, T& out) const {
  const Item* i = item(key);
  if (!i) return kPMInvalidKey;
  if (i->nested) return kPMInvalidValue;
  std::optional<T> n = i->value.toNumber<T>();
  if (!n) return kPMInvalidValue;
  out = *n;
  return noErr;
}

}  // namespace varno::print
