// SPDX-License-Identifier: Apache-2.0
// Property-list files: reading (XML or binary) and writing (XML or binary) with our own
// bounded, non-recursive readers and writers (formats.h).
//
// Every write goes to a temporary file in the target's folder and is renamed over the
// target, so a crash or a full disk never leaves a torn file behind; the last writer wins.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/plist/value.h"

namespace varno::plist {

// Larger files are refused before they are read: nothing this system stores comes near it.
inline constexpr std::size_t kMaxFileSize = 64u * 1024 * 1024;
// Deeper nesting is refused by every reader and writer.
inline constexpr int kMaxDepth = 512;

// Parses an XML or binary property list held in memory. On failure returns nullopt and,
// when `error` is given, says why. Refused: nesting deeper than kMaxDepth, more values
// than the budget allows, strings that are not UTF-8 or hold NUL, integers beyond signed
// 64 bits, dates outside the years 1 to 9999.
std::optional<Value> Parse(std::string_view bytes, std::string* error = nullptr);

// Renders a value as an XML property list (dates as whole seconds: the form has no
// fractions). Fails (nullopt) for values nested deeper than kMaxDepth, strings that are
// not UTF-8 or hold NUL, and dates outside the years 1 to 9999.
std::optional<std::string> ToXML(const Value& value, std::string* error = nullptr);

// Renders a value as a binary property list ("bplist00"): compact, and exact for every
// kind of value, which is why job options carry values in it. Fails as ToXML does.
std::optional<std::string> ToBinary(const Value& value, std::string* error = nullptr);

// Reads a whole property-list file. Missing, unreadable, oversized, truncated, non-plist
// and too-deeply nested files, and anything but a regular file (a FIFO is refused at once,
// never waited on), give nullopt with a message naming the file.
std::optional<Value> ReadFile(const std::filesystem::path& path, std::string* error = nullptr);

// Reads a file whose root must be a dictionary.
std::optional<Dictionary> ReadDictionaryFile(const std::filesystem::path& path,
                                             std::string* error = nullptr);

// Writes the value as an XML property list, replacing the file atomically. On failure the
// previous file is left as it was and false is returned.
bool WriteFile(const std::filesystem::path& path, const Value& value,
               std::string* error = nullptr);

// Replaces the file's contents atomically (temporary file in the same folder, fsync,
// rename). On failure the previous file is left as it was.
bool ReplaceFileContents(const std::filesystem::path& path, std::string_view bytes,
                         std::string* error = nullptr);
// As ReplaceFileContents, but the file gets exactly `mode` whoever wrote the old one (for
// files shared by all users). Returns 0 or the errno of the failure.
int ReplaceFileContentsWithMode(const std::filesystem::path& path, std::string_view bytes,
                                mode_t mode);

}  // namespace varno::plist
