// SPDX-License-Identifier: Apache-2.0
// Tickets and their file form.
//
// A ticket is written as a property-list dictionary:
//
//   {
//     "Items": {                                   in the ticket's own key order
//       "<key>": {
//         "Value":  <any property-list value>      exactly one of Value / Ticket
//         "Ticket": <the nested ticket, this same form>
//         "Client": "<client identifier>"          non-empty string
//         "Locked": <boolean>                      optional on reading, default false
//       }, ...
//     },
//     "PPD": { "<main keyword>": "<choice keyword>", ... }   left out when empty
//   }
//
// Reading is strict: any other key, kind or shape is an error that names the item, so a
// damaged or hand-edited file is reported instead of silently losing settings.
#include "platform/print/ticket.h"

#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/plist/file.h"
#include "platform/status_text.h"

namespace varno::print {

struct Ticket::Impl {
  using Entry = std::pair<std::string, Item>;
  std::vector<Entry> items;                              // in the ticket's order
  std::unordered_map<std::string, std::size_t> index;   // key -> position in items
  plist::Dictionary ppd;

  // The index keeps look-ups constant-time, so even a hostile file with a huge ticket
  // loads in linear time.
  Entry* find(std::string_view key) {
    auto it = index.find(std::string(key));
    return it == index.end() ? nullptr : &items[it->second];
  }
  const Entry* find(std::string_view key) const { return const_cast<Impl*>(this)->find(key); }

  // Replaces the item under key in place, or appends it.
  void put(std::string_view key, Item item) {
    if (Entry* entry = find(key)) {
      entry->second = std::move(item);
      return;
    }
    index.emplace(std::string(key), items.size());
    items.emplace_back(std::string(key), std::move(item));
  }

  void erase(std::string_view key) {
    auto it = index.find(std::string(key));
    if (it == index.end()) return;
    std::size_t position = it->second;
    index.erase(it);
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(position));
    for (auto& [k, p] : index)
      if (p > position) --p;
  }
};

Ticket::Ticket() : impl_(std::make_shared<Impl>()) {}

bool Ticket::contains(std::string_view key) const { return impl_->find(key) != nullptr; }

const Ticket::Item* Ticket::item(std::string_view key) const {
  const auto* entry = impl_->find(key);
  return entry ? &entry->second : nullptr;
}

std::size_t Ticket::size() const { return impl_->items.size(); }

std::vector<std::string> Ticket::keys() const {
  std::vector<std::string> keys;
  keys.reserve(impl_->items.size());
  for (const auto& entry : impl_->items) keys.push_back(entry.first);
  return keys;
}

namespace {

// The plain value under key, or the status that a read of it returns.
OSStatus PlainValue(const Ticket& ticket, std::string_view key, const plist::Value** out) {
  const Ticket::Item* item = ticket.item(key);
  if (!item) return kPMInvalidKey;
  if (item->nested) return kPMInvalidValue;
  *out = &item->value;
  return noErr;
}

}  // namespace

OSStatus Ticket::getValue(std::string_view key, plist::Value& out) const {
  const plist::Value* value = nullptr;
  if (OSStatus status = PlainValue(*this, key, &value)) return status;
  out = *value;
  return noErr;
}

OSStatus Ticket::getString(std::string_view key, std::string& out) const {
  const plist::Value* value = nullptr;
  if (OSStatus status = PlainValue(*this, key, &value)) return status;
  if (!value->asString()) return kPMInvalidValue;
  out = *value->asString();
  return noErr;
}

OSStatus Ticket::getBoolean(std::string_view key, bool& out) const {
  const plist::Value* value = nullptr;
  if (OSStatus status = PlainValue(*this, key, &value)) return status;
  if (!value->asBoolean()) return kPMInvalidValue;
  out = *value->asBoolean();
  return noErr;
}

OSStatus Ticket::getDictionary(std::string_view key, plist::Dictionary& out) const {
  const plist::Value* value = nullptr;
  if (OSStatus status = PlainValue(*this, key, &value)) return status;
  if (!value->asDictionary()) return kPMInvalidValue;
  out = *value->asDictionary();
  return noErr;
}

OSStatus Ticket::getArray(std::string_view key, plist::Array& out) const {
  const plist::Value* value = nullptr;
  if (OSStatus status = PlainValue(*this, key, &value)) return status;
  if (!value->asArray()) return kPMInvalidValue;
  out = *value->asArray();
  return noErr;
}

OSStatus Ticket::getRect(std::string_view key, Rect& out) const {
  const plist::Value* value = nullptr;
  if (OSStatus status = PlainValue(*this, key, &value)) return status;
  const plist::Array* array = value->asArray();
  if (!array || array->size() != 4) return kPMInvalidValue;
  double sides[4];
  for (std::size_t i = 0; i < 4; ++i) {
    std::optional<double> side = (*array)[i].toNumber<double>();
    if (!side) return kPMInvalidValue;
    sides[i] = *side;
  }
  out = Rect{sides[0], sides[1], sides[2], sides[3]};
  return noErr;
}

OSStatus Ticket::getTicket(std::string_view key, Ticket& out) const {
  const Item* found = item(key);
  if (!found) return kPMInvalidKey;
  if (!found->nested) return kPMInvalidValue;
  out = *found->nested;
  return noErr;
}

std::optional<std::string> Ticket::string(std::string_view key) const {
  std::string s;
  if (getString(key, s) != noErr) return std::nullopt;
  return s;
}

std::optional<bool> Ticket::boolean(std::string_view key) const {
  bool b = false;
  if (getBoolean(key, b) != noErr) return std::nullopt;
  return b;
}

std::optional<plist::Dictionary> Ticket::dictionary(std::string_view key) const {
  plist::Dictionary d;
  if (getDictionary(key, d) != noErr) return std::nullopt;
  return d;
}

namespace {

// Checks a write before anything changes; noErr when it may go ahead.
OSStatus CheckWrite(const Ticket& ticket, std::string_view key, std::string_view client) {
  if (key.empty() || client.empty()) return paramErr;
  const Ticket::Item* present = ticket.item(key);
  if (present && present->locked) return kPMItemIsLocked;
  return noErr;
}

}  // namespace

OSStatus Ticket::setValue(std::string_view key, plist::Value value, std::string_view client,
                          bool locked) {
  if (OSStatus status = CheckWrite(*this, key, client)) return status;
  impl_->put(key, Item{std::move(value), std::nullopt, std::string(client), locked});
  return noErr;
}

OSStatus Ticket::setRect(std::string_view key, const Rect& rect, std::string_view client,
                         bool locked) {
  return setValue(key, plist::Array{rect.top, rect.left, rect.bottom, rect.right}, client,
                  locked);
}

bool Ticket::reaches(const Impl* target) const {
  if (impl_.get() == target) return true;
  for (const auto& entry : impl_->items)
    if (entry.second.nested && entry.second.nested->reaches(target)) return true;
  return false;
}

OSStatus Ticket::setTicket(std::string_view key, const Ticket& nested, std::string_view client,
                           bool locked) {
  if (OSStatus status = CheckWrite(*this, key, client)) return status;
  // A cycle would make the ticket unwritable and never freed.
  if (nested.reaches(impl_.get())) return paramErr;
  impl_->put(key, Item{plist::Value(), nested, std::string(client), locked});
  return noErr;
}

OSStatus Ticket::releaseItem(std::string_view key) {
  const Impl::Entry* entry = impl_->find(key);
  if (!entry) return kPMInvalidKey;
  if (entry->second.locked) return kPMItemIsLocked;
  impl_->erase(key);
  return noErr;
}

plist::Dictionary Ticket::ppdDictionary() const { return impl_->ppd; }

Ticket Ticket::deepCopy() const {
  Ticket copy;
  for (const auto& [key, item] : impl_->items) {
    Item duplicate{item.value.deepCopy(), std::nullopt, item.client, item.locked};
    if (item.nested) duplicate.nested = item.nested->deepCopy();
    copy.impl_->put(key, std::move(duplicate));
  }
  copy.impl_->ppd = impl_->ppd.deepCopy();
  return copy;
}

bool operator==(const Ticket& a, const Ticket& b) {
  if (a.impl_ == b.impl_) return true;
  const auto& x = a.impl_->items;
  const auto& y = b.impl_->items;
  if (x.size() != y.size()) return false;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const Ticket::Item& p = x[i].second;
    const Ticket::Item& q = y[i].second;
    if (x[i].first != y[i].first || p.client != q.client || p.locked != q.locked) return false;
    if (p.nested.has_value() != q.nested.has_value()) return false;
    if (p.nested ? !(*p.nested == *q.nested) : !(p.value == q.value)) return false;
  }
  return a.impl_->ppd == b.impl_->ppd;
}

// ---- File form ----

namespace {

constexpr std::string_view kItemsKey = "Items";
constexpr std::string_view kPPDKey = "PPD";
constexpr std::string_view kValueKey = "Value";
constexpr std::string_view kTicketKey = "Ticket";
constexpr std::string_view kClientKey = "Client";
constexpr std::string_view kLockedKey = "Locked";

std::string Quoted(std::string_view s) { return "\"" + std::string(s) + "\""; }

// "integer" for diagnostics: what a value turned out to be.
std::string KindOf(const plist::Value& value) { return plist::KindName(value.kind()); }

// The items leading to a nested ticket, innermost last, as a chain on the stack. It is
// turned into text only when a message needs it, so a long key is not copied once per
// item of the ticket inside it.
struct Where {
  const Where* outer = nullptr;
  std::string_view key;
};

// "item "A": ticket: item "B": ticket: " for the chain ending at `where` (null: "").
std::string Prefix(const Where* where) {
  if (!where) return "";
  return Prefix(where->outer) + "item " + Quoted(where->key) + ": ticket: ";
}

// Builds a ticket from its form; `outer` names the items leading to it, so that errors in
// nested tickets name the whole path ("item "A": ticket: item "B": ...").
std::optional<Ticket> Parse(const plist::Dictionary& form, int depth, const Where* outer,
                            std::string& error) {
  if (depth > Ticket::kMaxNesting) {
    error = Prefix(outer) + "tickets are nested more than " + std::to_string(Ticket::kMaxNesting) +
            " levels deep";
    return std::nullopt;
  }
  auto where = [outer] { return Prefix(outer); };
  for (const auto& [key, value] : form) {
    if (key != kItemsKey && key != kPPDKey) {
      error = where() + "unknown key " + Quoted(key) + " (a ticket has only \"Items\" and \"PPD\")";
      return std::nullopt;
    }
  }
  const plist::Value* items = form.find(kItemsKey);
  if (!items) {
    error = where() + "no \"Items\" dictionary";
    return std::nullopt;
  }
  if (!items->asDictionary()) {
    error = where() + "\"Items\" must be a dictionary, not " + KindOf(*items);
    return std::nullopt;
  }

  Ticket ticket;
  for (const auto& [key, entry] : *items->asDictionary()) {
    const Where here{outer, key};
    auto at = [&, &key = key] { return where() + "item " + Quoted(key) + ": "; };
    if (key.empty()) {
      error = where() + "an item has an empty key";
      return std::nullopt;
    }
    const plist::Dictionary* fields = entry.asDictionary();
    if (!fields) {
      error = at() + "must be a dictionary, not " + KindOf(entry);
      return std::nullopt;
    }
    for (const auto& [field, unused] : *fields) {
      if (field != kValueKey && field != kTicketKey && field != kClientKey &&
          field != kLockedKey) {
        error = at() + "unknown key " + Quoted(field);
        return std::nullopt;
      }
    }
    const plist::Value* value = fields->find(kValueKey);
    const plist::Value* nested = fields->find(kTicketKey);
    const plist::Value* client = fields->find(kClientKey);
    const plist::Value* locked = fields->find(kLockedKey);
    if (value && nested) {
      error = at() + "has both \"Value\" and \"Ticket\"";
      return std::nullopt;
    }
    if (!value && !nested) {
      error = at() + "has neither \"Value\" nor \"Ticket\"";
      return std::nullopt;
    }
    if (!client) {
      error = at() + "has no \"Client\"";
      return std::nullopt;
    }
    if (!client->asString() || client->asString()->empty()) {
      error = at() + "\"Client\" must be a non-empty string, not " +
              (client->asString() ? std::string("an empty one") : KindOf(*client));
      return std::nullopt;
    }
    if (locked && !locked->asBoolean()) {
      error = at() + "\"Locked\" must be a boolean, not " + KindOf(*locked);
      return std::nullopt;
    }
    const bool isLocked = locked && *locked->asBoolean();

    OSStatus status;
    if (nested) {
      if (!nested->asDictionary()) {
        error = at() + "\"Ticket\" must be a dictionary, not " + KindOf(*nested);
        return std::nullopt;
      }
      std::optional<Ticket> inner = Parse(*nested->asDictionary(), depth + 1, &here, error);
      if (!inner) return std::nullopt;
      status = ticket.setTicket(key, *inner, *client->asString(), isLocked);
    } else {
      status = ticket.setValue(key, value->deepCopy(), *client->asString(), isLocked);
    }
    if (status != noErr) {  // unreachable for well-formed dictionaries; kept as a guard
      error = at() + "could not be stored: " + StatusMessage(status);
      return std::nullopt;
    }
  }

  if (const plist::Value* ppd = form.find(kPPDKey)) {
    if (!ppd->asDictionary()) {
      error = where() + "\"PPD\" must be a dictionary, not " + KindOf(*ppd);
      return std::nullopt;
    }
    plist::Dictionary choices = ticket.ppdDictionary();
    for (const auto& [keyword, choice] : *ppd->asDictionary()) {
      if (!choice.asString()) {
        error = where() + "PPD choice for " + Quoted(keyword) + " must be a string, not " +
                KindOf(choice);
        return std::nullopt;
      }
      choices.set(keyword, choice);
    }
  }
  return ticket;
}

}  // namespace

plist::Dictionary Ticket::toPropertyList() const {
  plist::Dictionary items;
  for (const auto& [key, item] : impl_->items) {
    plist::Dictionary fields;
    if (item.nested)
      fields.set(kTicketKey, item.nested->toPropertyList());
    else
      fields.set(kValueKey, item.value.deepCopy());
    fields.set(kClientKey, item.client);
    fields.set(kLockedKey, item.locked);
    items.set(key, std::move(fields));
  }
  plist::Dictionary form;
  form.set(kItemsKey, std::move(items));
  if (!impl_->ppd.empty()) form.set(kPPDKey, impl_->ppd.deepCopy());
  return form;
}

std::optional<Ticket> Ticket::fromPropertyList(const plist::Dictionary& form,
                                               std::string* error) {
  std::string message;
  std::optional<Ticket> ticket = Parse(form, 0, nullptr, message);
  if (!ticket && error) *error = "not a valid ticket: " + message;
  return ticket;
}

bool Ticket::save(const std::filesystem::path& path, std::string* error) const {
  plist::Dictionary form = toPropertyList();
  std::string message;
  // Never write a file that load() would refuse.
  if (!Parse(form, 0, nullptr, message)) {
    if (error) *error = "cannot save ticket to " + path.string() + ": " + message;
    return false;
  }
  return plist::WriteFile(path, form, error);
}

std::optional<Ticket> Ticket::load(const std::filesystem::path& path, std::string* error) {
  std::optional<plist::Dictionary> form = plist::ReadDictionaryFile(path, error);
  if (!form) return std::nullopt;
  std::string message;
  std::optional<Ticket> ticket = Parse(*form, 0, nullptr, message);
  if (!ticket && error) *error = path.string() + ": not a valid ticket: " + message;
  return ticket;
}

}  // namespace varno::print
