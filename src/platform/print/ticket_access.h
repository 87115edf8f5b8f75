// SPDX-License-Identifier: Apache-2.0
// Ticket and session access: the small set of functions through which the dialog host, the
// panels and the records below them reach the current print session, its tickets and plain
// property-list dictionaries.
//
// Readers never report errors in text: they return false (or a status) and leave their
// output untouched when a key is missing or holds another kind, which is how every panel
// falls back to its defaults.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

#include "platform/plist/value.h"
#include "platform/print/session.h"
#include "platform/print/ticket.h"
#include "platform/status.h"

namespace varno::print {

// Integers in records are signed 32 bits whatever the machine's word size, so that
// tickets written on one machine read the same on every other.
using CFIndex = std::int32_t;

// Encodings that C strings handed to CFDictionarySetCString may be in.
enum class StringEncoding { UTF8, ASCII, ISOLatin1, MacRoman };

// Process-wide state: the session of the dialog now running, set by the host's
// Initialize and cleared (null) by its Terminate. It is CurrentSession(), kept in
// the shared platform library so that the plug-in and its host agree on it; not owned
// here and not locked: every caller runs on the dialog's main thread.
//
// Returns the current session, or null outside Initialize ... Terminate.
Session* GetCurrentPrintSession();
// Makes `session` (may be null) the current session; the caller keeps ownership.
void SetCurrentPrintSession(Session* session);

// Reads session data item `itemName` into `ticket` (a handle to the session's ticket).
// Returns noErr; paramErr for a null session or ticket; kPMInvalidKey when the item is
// absent, with `ticket` left as it was.
OSStatus GetTicketFromSession(Session* session, std::string_view itemName,
                              Ticket* ticket);

// Stores `value` as a CFIndex number under `key`, replacing any value. A value outside
// the CFIndex range is not stored (false, dictionary unchanged): written as is, no reader
// could take it back and every reader would silently use its default instead.
bool WriteTicketValue(plist::Dictionary& dictionary, std::string_view key, long value);

// True when dictionary and key are non-null, the key is present and its number converts
// exactly to a CFIndex; only then is `*value` written.
bool GetCFIndexFromCFDictionary(const plist::Dictionary* dictionary, const char* key,
                                CFIndex* value);

// Stores `value` as a number under `key`, replacing any value; T plays the part of the
// number type. Unsigned 64-bit types are refused at compile time: property-list integers
// are signed 64 bits and their upper half would wrap.
template <typename T>
void CFDictionarySetNumber(plist::Dictionary& dictionary, std::string_view key, T value) {
  static_assert(std::is_arithmetic_v<T> && !std::is_same_v<T, bool>, "numbers only");
  static_assert(!std::is_same_v<T, long double>, "long double does not round-trip");
  static_assert(!(std::is_unsigned_v<T> && sizeof(T) >= sizeof(std::int64_t)),
                "unsigned 64-bit values do not fit a property-list integer");
  dictionary.set(key, plist::Value(value));
}

// True when the key is present, holds a number and that number converts to T exactly
// (2^40 and 1.5 are not int32_t values); `*value` is written only then.
template <typename T>
bool CFDictionaryGetNumber(const plist::Dictionary& dictionary, std::string_view key,
                           T* value) {
  if (!value) return false;
  std::optional<T> number = dictionary.getNumber<T>(key);
  if (!number) return false;
  *value = *number;
  return true;
}

// Stores the C string `text`, converted from `encoding` to Unicode, under `key`. A null
// text or bytes that are not valid in the encoding store nothing and return false.
bool CFDictionarySetCString(plist::Dictionary& dictionary, std::string_view key,
                            const char* text, StringEncoding encoding);

// Returns a handle to the dictionary under `key`, first storing a new empty one there when
// the key is absent. The handle shares the stored dictionary: changes through it change
// `dictionary`. A key that holds another kind is not replaced: the result is nullopt.
std::optional<plist::Dictionary> CFDictionaryGetDictionaryOrCreate(plist::Dictionary& dictionary,
                                                                   std::string_view key);

// Releases an owning handle (std::optional, std::unique_ptr, std::shared_ptr) and leaves
// it empty. A null pointer or an empty handle is left alone.
template <typename Handle>
  requires requires(Handle& handle) { handle.reset(); }
void CFReleaseAndNULL(Handle* handle) {
  if (handle) handle->reset();
}

}  // namespace varno::print
