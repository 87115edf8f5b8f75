// SPDX-License-Identifier: Apache-2.0
#include "platform/print/ticket_access.h"

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <limits>
#include <memory>
#include <string>

namespace varno::print {

namespace {

struct ConverterCloser {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

const char* ConverterName(StringEncoding encoding) {
  switch (encoding) {
    case StringEncoding::UTF8: return "UTF-8";
    case StringEncoding::ASCII: return "US-ASCII";
    case StringEncoding::ISOLatin1: return "ISO-8859-1";
    case StringEncoding::MacRoman: return "macintosh";
  }
  return nullptr;
}

// Converts `text` from `encoding` to UTF-8; nullopt when a byte sequence is not valid in
// the encoding (stop instead of substituting, so nothing garbled reaches a ticket).
std::optional<std::string> ToUTF8(std::string_view text, StringEncoding encoding) {
  const char* name = ConverterName(encoding);
  if (!name) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  Converter converter(ucnv_open(name, &status));
  if (U_FAILURE(status)) return std::nullopt;
  ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                      &status);
  if (U_FAILURE(status)) return std::nullopt;

  if (text.size() > static_cast<std::size_t>(std::numeric_limits<int32_t>::max()))
    return std::nullopt;
  const auto length = static_cast<int32_t>(text.size());
  int32_t needed = ucnv_toUChars(converter.get(), nullptr, 0, text.data(), length, &status);
  if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return std::nullopt;
  status = U_ZERO_ERROR;
  std::u16string utf16(static_cast<std::size_t>(needed), u'\0');
  ucnv_reset(converter.get());
  ucnv_toUChars(converter.get(), utf16.data(), needed, text.data(), length, &status);
  if (U_FAILURE(status)) return std::nullopt;

  status = U_ZERO_ERROR;
  int32_t bytes = 0;
  u_strToUTF8(nullptr, 0, &bytes, utf16.data(), needed, &status);
  if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return std::nullopt;
  status = U_ZERO_ERROR;
  std::string utf8(static_cast<std::size_t>(bytes), '\0');
  u_strToUTF8(utf8.data(), bytes, nullptr, utf16.data(), needed, &status);
  if (U_FAILURE(status)) return std::nullopt;
  return utf8;
}

}  // namespace

Session* GetCurrentPrintSession() { return CurrentSession(); }

void SetCurrentPrintSession(Session* session) { SetCurrentSession(session); }

OSStatus GetTicketFromSession(Session* session, std::string_view itemName,
                              Ticket* ticket) {
  if (!session || !ticket) return paramErr;
  return session->getDataItem(itemName, *ticket);
}

bool WriteTicketValue(plist::Dictionary& dictionary, std::string_view key, long value) {
  if (value < std::numeric_limits<CFIndex>::min() || value > std::numeric_limits<CFIndex>::max())
    return false;
  CFDictionarySetNumber(dictionary, key, static_cast<CFIndex>(value));
  return true;
}

bool GetCFIndexFromCFDictionary(const plist::Dictionary* dictionary, const char* key,
                                CFIndex* value) {
  if (!dictionary || !key) return false;
  return CFDictionaryGetNumber(*dictionary, key, value);
}

bool CFDictionarySetCString(plist::Dictionary& dictionary, std::string_view key,
                            const char* text, StringEncoding encoding) {
  if (!text) return false;
  std::optional<std::string> converted = ToUTF8(text, encoding);
  if (!converted) return false;
  dictionary.set(key, std::move(*converted));
  return true;
}

std::optional<plist::Dictionary> CFDictionaryGetDictionaryOrCreate(plist::Dictionary& dictionary,
                                                                   std::string_view key) {
  if (const plist::Value* present = dictionary.find(key)) {
    if (const plist::Dictionary* stored = present->asDictionary()) return *stored;
    return std::nullopt;
  }
  plist::Dictionary created;
  dictionary.set(key, created);
  return created;
}

}  // namespace varno::print
