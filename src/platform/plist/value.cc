// SPDX-License-Identifier: Apache-2.0
#include "platform/plist/value.h"

#include <cmath>
#include <unordered_map>

namespace varno::plist {

const char* KindName(Kind kind) {
  switch (kind) {
    case Kind::String: return "string";
    case Kind::Integer: return "integer";
    case Kind::Real: return "real";
    case Kind::Boolean: return "boolean";
    case Kind::Date: return "date";
    case Kind::Data: return "data";
    case Kind::Array: return "array";
    case Kind::Dictionary: return "dictionary";
  }
  return "unknown";
}

// ---- Array ----

Array::Array() : items_(std::make_shared<std::vector<Value>>()) {}

Array::Array(std::initializer_list<Value> values)
    : items_(std::make_shared<std::vector<Value>>(values)) {}

std::size_t Array::size() const { return items_->size(); }
const Value& Array::operator[](std::size_t index) const { return (*items_)[index]; }
Value& Array::operator[](std::size_t index) { return (*items_)[index]; }

const Value* Array::at(std::size_t index) const {
  return index < items_->size() ? &(*items_)[index] : nullptr;
}

void Array::append(Value value) { items_->push_back(std::move(value)); }

void Array::insert(std::size_t index, Value value) {
  if (index > items_->size()) index = items_->size();
  items_->insert(items_->begin() + static_cast<std::ptrdiff_t>(index), std::move(value));
}

void Array::remove(std::size_t index) {
  if (index < items_->size()) items_->erase(items_->begin() + static_cast<std::ptrdiff_t>(index));
}

void Array::clear() { items_->clear(); }
std::vector<Value>::const_iterator Array::begin() const { return items_->begin(); }
std::vector<Value>::const_iterator Array::end() const { return items_->end(); }

Array Array::mutableCopy() const {
  Array copy;
  *copy.items_ = *items_;
  return copy;
}

Array Array::deepCopy() const {
  Array copy;
  copy.items_->reserve(items_->size());
  for (const Value& v : *items_) copy.items_->push_back(v.deepCopy());
  return copy;
}

bool operator==(const Array& a, const Array& b) {
  return a.items_ == b.items_ || *a.items_ == *b.items_;
}

// ---- Dictionary ----

// Entries in insertion order, with an index from key to position so that large
// dictionaries (string tables, stores) stay fast to build and search.
struct Dictionary::Impl {
  std::vector<Entry> entries;
  std::unordered_map<std::string, std::size_t> index;

  std::size_t* position(std::string_view key) {
    auto it = index.find(std::string(key));
    return it == index.end() ? nullptr : &it->second;
  }
};

Dictionary::Dictionary() : impl_(std::make_shared<Impl>()) {}

Dictionary::Dictionary(std::initializer_list<Entry> entries) : Dictionary() {
  for (const Entry& e : entries) set(e.first, e.second);
}

std::size_t Dictionary::size() const { return impl_->entries.size(); }
bool Dictionary::contains(std::string_view key) const { return impl_->position(key) != nullptr; }

const Value* Dictionary::find(std::string_view key) const {
  std::size_t* pos = impl_->position(key);
  return pos ? &impl_->entries[*pos].second : nullptr;
}

Value* Dictionary::find(std::string_view key) {
  std::size_t* pos = impl_->position(key);
  return pos ? &impl_->entries[*pos].second : nullptr;
}

void Dictionary::set(std::string_view key, Value value) {
  if (std::size_t* pos = impl_->position(key)) {
    impl_->entries[*pos].second = std::move(value);
    return;
  }
  impl_->index.emplace(std::string(key), impl_->entries.size());
  impl_->entries.emplace_back(std::string(key), std::move(value));
}

bool Dictionary::remove(std::string_view key) {
  auto it = impl_->index.find(std::string(key));
  if (it == impl_->index.end()) return false;
  std::size_t removed = it->second;
  impl_->index.erase(it);
  impl_->entries.erase(impl_->entries.begin() + static_cast<std::ptrdiff_t>(removed));
  for (auto& [k, pos] : impl_->index)
    if (pos > removed) --pos;
  return true;
}

void Dictionary::clear() {
  impl_->entries.clear();
  impl_->index.clear();
}

namespace {

// The value under key when it is of the kind `as` picks out, else nothing.
template <typename T>
std::optional<T> GetAs(const Dictionary& d, std::string_view key,
                       const T* (Value::*as)() const) {
  const Value* v = d.find(key);
  if (!v) return std::nullopt;
  const T* typed = (v->*as)();
  if (!typed) return std::nullopt;
  return *typed;
}

}  // namespace

std::optional<std::string> Dictionary::getString(std::string_view key) const {
  return GetAs(*this, key, &Value::asString);
}
std::optional<bool> Dictionary::getBoolean(std::string_view key) const {
  return GetAs(*this, key, &Value::asBoolean);
}
std::optional<Array> Dictionary::getArray(std::string_view key) const {
  return GetAs<Array>(*this, key, &Value::asArray);
}
std::optional<Dictionary> Dictionary::getDictionary(std::string_view key) const {
  return GetAs<Dictionary>(*this, key, &Value::asDictionary);
}
std::optional<Data> Dictionary::getData(std::string_view key) const {
  return GetAs(*this, key, &Value::asData);
}
std::optional<Date> Dictionary::getDate(std::string_view key) const {
  return GetAs(*this, key, &Value::asDate);
}

const std::vector<Dictionary::Entry>& Dictionary::entries() const { return impl_->entries; }

Dictionary Dictionary::mutableCopy() const {
  Dictionary copy;
  *copy.impl_ = *impl_;
  return copy;
}

Dictionary Dictionary::deepCopy() const {
  Dictionary copy;
  for (const Entry& e : impl_->entries) copy.set(e.first, e.second.deepCopy());
  return copy;
}

bool operator==(const Dictionary& a, const Dictionary& b) {
  if (a.impl_ == b.impl_) return true;
  if (a.size() != b.size()) return false;
  for (const auto& [key, value] : a.entries()) {
    const Value* other = b.find(key);
    if (!other || !(*other == value)) return false;
  }
  return true;
}

// ---- Value ----

std::optional<std::int64_t> Value::asInteger() const {
  if (const auto* i = std::get_if<std::int64_t>(&storage_)) return *i;
  return std::nullopt;
}

std::optional<double> Value::asReal() const {
  if (const auto* d = std::get_if<double>(&storage_)) return *d;
  return std::nullopt;
}

Value Value::deepCopy() const {
  if (const Array* a = asArray()) return a->deepCopy();
  if (const Dictionary* d = asDictionary()) return d->deepCopy();
  return *this;
}

bool operator==(const Value& a, const Value& b) {
  if (a.kind() != b.kind()) return false;
  if (a.kind() == Kind::Real) {
    // NaN is stored and read back as NaN; treat it as equal to itself so round trips compare.
    double x = *a.asReal(), y = *b.asReal();
    return x == y || (std::isnan(x) && std::isnan(y));
  }
  return a.storage_ == b.storage_;
}

namespace detail {

std::optional<std::int64_t> ExactInteger(const Value& v, std::int64_t min, std::uint64_t max) {
  if (std::optional<std::int64_t> i = v.asInteger()) {
    if (*i < min) return std::nullopt;
    if (*i > 0 && static_cast<std::uint64_t>(*i) > max) return std::nullopt;
    return *i;
  }
  if (std::optional<double> d = v.asReal()) {
    // 2^63 is the first double outside int64; anything not integral is refused.
    if (!std::isfinite(*d) || std::trunc(*d) != *d) return std::nullopt;
    if (*d < -9223372036854775808.0 || *d >= 9223372036854775808.0) return std::nullopt;
    std::int64_t i = static_cast<std::int64_t>(*d);
    if (i < min) return std::nullopt;
    if (i > 0 && static_cast<std::uint64_t>(i) > max) return std::nullopt;
    return i;
  }
  return std::nullopt;
}

std::optional<double> ExactDouble(const Value& v) {
  if (std::optional<double> d = v.asReal()) return *d;
  if (std::optional<std::int64_t> i = v.asInteger()) {
    double d = static_cast<double>(*i);
    // Integers beyond 2^53 may not survive the trip; only exact ones pass.
    if (d >= 9223372036854775808.0 || static_cast<std::int64_t>(d) != *i) return std::nullopt;
    return d;
  }
  return std::nullopt;
}

}  // namespace detail
}  // namespace varno::plist
