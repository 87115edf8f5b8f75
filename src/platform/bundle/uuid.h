// SPDX-License-Identifier: Apache-2.0
// UUIDs as the plug-in model uses them: sixteen bytes that name plug-in types, factories
// and interfaces. The value is passed by value across the plug-in boundary, so it is a
// plain 16-byte struct with no padding and no virtual anything.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace varno::bundle {

struct UUID {
  std::array<std::uint8_t, 16> bytes{};

  // The canonical upper-case form, "BDB091F4-E57F-11D3-B5CC-0050E4603277".
  std::string toString() const;

  friend bool operator==(const UUID&, const UUID&) = default;
  friend auto operator<=>(const UUID&, const UUID&) = default;
};

static_assert(sizeof(UUID) == 16);
static_assert(std::is_trivially_copyable_v<UUID> && std::is_standard_layout_v<UUID>);

namespace detail {

constexpr int HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// Not constexpr on purpose: reaching it while evaluating MakeUUID at compile time makes a
// malformed literal a compile error.
void MalformedUUIDLiteral();

}  // namespace detail

// Parses "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX" (36 characters, hex digits of either case,
// hyphens at 8, 13, 18 and 23). Returns nullopt for anything else: no braces, no
// surrounding spaces, no missing hyphens.
constexpr std::optional<UUID> ParseUUID(std::string_view text) {
  if (text.size() != 36) return std::nullopt;
  UUID uuid;
  std::size_t byte = 0;
  for (std::size_t i = 0; i < text.size();) {
    if (i == 8 || i == 13 || i == 18 || i == 23) {
      if (text[i] != '-') return std::nullopt;
      ++i;
      continue;
    }
    int high = detail::HexDigitValue(text[i]);
    int low = detail::HexDigitValue(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    uuid.bytes[byte++] = static_cast<std::uint8_t>(high * 16 + low);
    i += 2;
  }
  return uuid;
}

// A UUID from a literal known at compile time; a malformed literal does not compile.
consteval UUID MakeUUID(std::string_view text) {
  std::optional<UUID> uuid = ParseUUID(text);
  if (!uuid) detail::MalformedUUIDLiteral();
  return *uuid;
}

}  // namespace varno::bundle
