// SPDX-License-Identifier: Apache-2.0
// Property-list values: the data model of tickets, sessions, string tables and stores.
//
// Arrays and dictionaries are shared handles: copying one shares the container, the way
// a retained reference does, so a dictionary fetched from a ticket and changed changes the
// ticket. mutableCopy() makes a new top-level container whose elements are still shared;
// deepCopy() shares nothing. A default-constructed Array or Dictionary is a new empty one,
// never a null handle.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace varno::plist {

class Value;

// An absolute time as seconds since 2001-01-01 00:00:00 UTC, the property-list epoch.
struct Date {
  double seconds = 0;
  friend bool operator==(const Date&, const Date&) = default;
};

using Data = std::vector<std::uint8_t>;

enum class Kind { String, Integer, Real, Boolean, Date, Data, Array, Dictionary };

// Name of a kind for diagnostics ("string", "integer", ...).
const char* KindName(Kind kind);

class Array {
 public:
  Array();
  Array(std::initializer_list<Value> values);

  std::size_t size() const;
  bool empty() const { return size() == 0; }
  const Value& operator[](std::size_t index) const;
  Value& operator[](std::size_t index);
  // Null when the index is out of range.
  const Value* at(std::size_t index) const;

  void append(Value value);
  void insert(std::size_t index, Value value);  // index clamped to size()
  void remove(std::size_t index);               // out of range: nothing happens
  void clear();

  std::vector<Value>::const_iterator begin() const;
  std::vector<Value>::const_iterator end() const;

  // A new array holding the same (shared) elements.
  Array mutableCopy() const;
  // A new array with every nested container copied too.
  Array deepCopy() const;
  // True when both handles name the same container.
  bool sameAs(const Array& other) const { return items_ == other.items_; }

  friend bool operator==(const Array& a, const Array& b);

 private:
  std::shared_ptr<std::vector<Value>> items_;
};

class Dictionary {
 public:
  using Entry = std::pair<std::string, Value>;

  Dictionary();
  Dictionary(std::initializer_list<Entry> entries);

  std::size_t size() const;
  bool empty() const { return size() == 0; }
  bool contains(std::string_view key) const;
  // The value under key, or null. The pointer lives until the key is removed or replaced.
  const Value* find(std::string_view key) const;
  Value* find(std::string_view key);

  // Replaces the value of an existing key in place (its position is kept), else appends.
  void set(std::string_view key, Value value);
  // Removes the key; false when it was not there.
  bool remove(std::string_view key);
  void clear();

  // Typed reads: nullopt when the key is missing or holds another kind.
  std::optional<std::string> getString(std::string_view key) const;
  std::optional<bool> getBoolean(std::string_view key) const;
  std::optional<Array> getArray(std::string_view key) const;
  std::optional<Dictionary> getDictionary(std::string_view key) const;
  std::optional<Data> getData(std::string_view key) const;
  std::optional<Date> getDate(std::string_view key) const;
  // Exact numeric read: nullopt unless the value is a number that T holds without loss.
  template <typename T>
  std::optional<T> getNumber(std::string_view key) const;

  // Entries in insertion order.
  const std::vector<Entry>& entries() const;
  std::vector<Entry>::const_iterator begin() const { return entries().begin(); }
  std::vector<Entry>::const_iterator end() const { return entries().end(); }

  Dictionary mutableCopy() const;
  Dictionary deepCopy() const;
  bool sameAs(const Dictionary& other) const { return impl_ == other.impl_; }

  // Equal when both hold equal values under the same keys; order does not matter.
  friend bool operator==(const Dictionary& a, const Dictionary& b);

 private:
  struct Impl;
  std::shared_ptr<Impl> impl_;
};

class Value {
 public:
  using Storage =
      std::variant<std::string, std::int64_t, double, bool, Date, Data, Array, Dictionary>;

  // An empty string. Every Value holds one of the eight kinds; there is no null value.
  Value() : storage_(std::string()) {}
  Value(std::string s) : storage_(std::move(s)) {}
  Value(std::string_view s) : storage_(std::string(s)) {}
  Value(const char* s) : storage_(std::string(s)) {}
  Value(double d) : storage_(d) {}
  Value(float d) : storage_(static_cast<double>(d)) {}
  Value(bool b) : storage_(b) {}
  Value(Date d) : storage_(d) {}
  Value(Data d) : storage_(std::move(d)) {}
  Value(Array a) : storage_(std::move(a)) {}
  Value(Dictionary d) : storage_(std::move(d)) {}
  // Every integer type is stored as signed 64 bits, the range property lists hold.
  template <typename I,
            std::enable_if_t<std::is_integral_v<I> && !std::is_same_v<I, bool>, int> = 0>
  Value(I i) : storage_(static_cast<std::int64_t>(i)) {}

  Kind kind() const { return static_cast<Kind>(storage_.index()); }
  bool isString() const { return kind() == Kind::String; }
  bool isNumber() const { return kind() == Kind::Integer || kind() == Kind::Real; }
  bool isBoolean() const { return kind() == Kind::Boolean; }
  bool isArray() const { return kind() == Kind::Array; }
  bool isDictionary() const { return kind() == Kind::Dictionary; }

  // Null when the value is of another kind.
  const std::string* asString() const { return std::get_if<std::string>(&storage_); }
  const bool* asBoolean() const { return std::get_if<bool>(&storage_); }
  const Date* asDate() const { return std::get_if<Date>(&storage_); }
  const Data* asData() const { return std::get_if<Data>(&storage_); }
  const Array* asArray() const { return std::get_if<Array>(&storage_); }
  Array* asArray() { return std::get_if<Array>(&storage_); }
  const Dictionary* asDictionary() const { return std::get_if<Dictionary>(&storage_); }
  Dictionary* asDictionary() { return std::get_if<Dictionary>(&storage_); }
  // The stored integer, when the value is an integer (not a real).
  std::optional<std::int64_t> asInteger() const;
  // The stored real, when the value is a real (not an integer).
  std::optional<double> asReal() const;

  // Exact conversion of a number to T: an integer that T holds, or a real that T holds
  // without loss (1.0 reads as int 1; 1.5 and 2^40 do not read as int32_t). Strings,
  // booleans and other kinds never convert.
  template <typename T>
  std::optional<T> toNumber() const;

  const Storage& storage() const { return storage_; }

  // Copies nested containers too.
  Value deepCopy() const;

  friend bool operator==(const Value& a, const Value& b);

 private:
  Storage storage_;
};

namespace detail {
std::optional<std::int64_t> ExactInteger(const Value& v, std::int64_t min, std::uint64_t max);
std::optional<double> ExactDouble(const Value& v);
}  // namespace detail

template <typename T>
std::optional<T> Value::toNumber() const {
  static_assert(std::is_arithmetic_v<T> && !std::is_same_v<T, bool>);
  if constexpr (std::is_floating_point_v<T>) {
    std::optional<double> d = detail::ExactDouble(*this);
    if (!d) return std::nullopt;
    T t = static_cast<T>(*d);
    if (static_cast<double>(t) != *d) return std::nullopt;
    return t;
  } else {
    std::optional<std::int64_t> i = detail::ExactInteger(
        *this, static_cast<std::int64_t>(std::numeric_limits<T>::min()),
        static_cast<std::uint64_t>(std::numeric_limits<T>::max()));
    if (!i) return std::nullopt;
    return static_cast<T>(*i);
  }
}

template <typename T>
std::optional<T> Dictionary::getNumber(std::string_view key) const {
  const Value* v = find(key);
  if (!v) return std::nullopt;
  return v->toNumber<T>();
}

}  // namespace varno::plist
