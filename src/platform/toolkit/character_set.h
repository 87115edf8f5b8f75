// SPDX-License-Identifier: Apache-2.0
// The characters (Unicode code points) a text field accepts. A plain value: the fields that
// enforce it and the records that check text against it share one definition.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string_view>

#include "platform/toolkit/control.h"

namespace varno::toolkit {

// A set of characters (Unicode code points) that a field accepts.
class CharacterSet {
 public:
  CharacterSet() = default;
  // Every character of a UTF-8 text.
  explicit CharacterSet(std::string_view characters) { addCharacters(characters); }
  // The characters first..last, both included.
  static CharacterSet Range(char32_t first, char32_t last);

  void addCharacters(std::string_view characters);
  void addRange(char32_t first, char32_t last);
  bool contains(char32_t c) const { return points_.contains(c); }
  // True when every character of the UTF-8 text is in the set.
  bool containsAll(std::string_view characters) const;
  std::size_t size() const { return points_.size(); }

  // The set as property bytes (four little-endian bytes per code point, ascending) and
  // back; fromBytes gives nullopt for bytes that are no whole number of code points.
  Control::Bytes toBytes() const;
  static std::optional<CharacterSet> fromBytes(const Control::Bytes& bytes);

  friend bool operator==(const CharacterSet&, const CharacterSet&) = default;

 private:
  std::set<char32_t> points_;
};

}  // namespace varno::toolkit
