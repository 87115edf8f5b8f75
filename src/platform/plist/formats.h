// SPDX-License-Identifier: Apache-2.0
// The two file forms, each read and written without recursion and within kMaxDepth.
// Internal to platform/plist: callers use Parse, ToXML and ToBinary in file.h.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/plist/value.h"

namespace varno::plist::formats {

// Reads an XML property list. On failure nullopt and *error says why.
std::optional<Value> ReadXML(std::string_view bytes, std::string* error);
// Reads a "bplist00" binary property list. On failure nullopt and *error says why.
std::optional<Value> ReadBinary(std::string_view bytes, std::string* error);

// Writes the XML form; fails for values nested deeper than kMaxDepth, strings that are not
// UTF-8 or hold NUL, and dates outside the years 1 to 9999.
std::optional<std::string> WriteXML(const Value& value, std::string* error);
// Writes the binary form; fails as WriteXML does.
std::optional<std::string> WriteBinary(const Value& value, std::string* error);

}  // namespace varno::plist::formats
