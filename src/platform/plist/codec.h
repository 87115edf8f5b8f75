// SPDX-License-Identifier: Apache-2.0
// Pieces shared by the XML and binary readers and writers: UTF-8 checks, date fields,
// base64, and the budget that bounds what one input may make us allocate.
// Internal to platform/plist.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/plist/value.h"

namespace varno::plist::codec {

// At most this many values (keys included) come out of one input. A 1,000-watermark store
// holds about 20,000; the cap bounds memory however small each value is in the file.
inline constexpr std::size_t kMaxValues = 1'000'000;
// At most this many bytes of string and data contents come out of one input. Only the
// binary form can ask for more than it holds (an object referenced many times).
inline constexpr std::size_t kMaxPayloadBytes = 128u * 1024 * 1024;

// Counts what a reader materialises; the first excess sets a message.
struct Budget {
  std::size_t values = 0;
  std::size_t bytes = 0;
  // Counts one value of `payload` bytes; false (with *error set) once over either limit.
  bool take(std::size_t payload, std::string* error);
};

// Offset of the first byte that is not part of well-formed UTF-8, or npos.
std::size_t FindInvalidUTF8(std::string_view text);

// "holds a string that is not valid UTF-8 (byte 0xFC at offset 1234)".
std::string InvalidUTF8Message(unsigned char byte, std::size_t offset);

// Checks a string a writer is about to store: UTF-8 and free of NUL. Empty when fine,
// else what is wrong.
std::string CheckStringForWriting(std::string_view text);

// Appends the UTF-8 form of a Unicode scalar value.
void AppendUTF8(std::string& out, char32_t code);

// Seconds since 2001-01-01T00:00:00Z of a civil UTC time; fields are not checked.
std::int64_t SecondsFromCivil(int year, int month, int day, int hour, int minute, int second);

// True when the date lies in the years 0001 to 9999, the range both file forms hold here.
bool DateInRange(double seconds);
inline constexpr const char* kDateRangeMessage = "holds a date outside the years 1 to 9999";

// "YYYY-MM-DDTHH:MM:SSZ" of the whole second at or before `seconds` (which must be in range).
std::string FormatDate(double seconds);
// Parses "YYYY-MM-DDTHH:MM:SSZ" (years 0001 to 9999); nullopt when malformed.
std::optional<Date> ParseDate(std::string_view text);

// Base64 without line breaks.
std::string EncodeBase64(const Data& data);
// Decodes base64, skipping whitespace; nullopt on any other stray character.
std::optional<Data> DecodeBase64(std::string_view text);

// Shortest text of a real that reads back to the same double; "nan", "+infinity", "-infinity".
std::string FormatReal(double d);

}  // namespace varno::plist::codec
