// SPDX-License-Identifier: Apache-2.0
#include "platform/plist/codec.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace varno::plist::codec {

bool Budget::take(std::size_t payload, std::string* error) {
  ++values;
  bytes += payload;
  if (values > kMaxValues) {
    if (error) *error = "has more than " + std::to_string(kMaxValues) + " values";
    return false;
  }
  if (bytes > kMaxPayloadBytes) {
    if (error)
      *error = "holds more than " + std::to_string(kMaxPayloadBytes / (1024 * 1024)) +
               " MiB of strings and data";
    return false;
  }
  return true;
}

std::size_t FindInvalidUTF8(std::string_view text) {
  const auto* s = reinterpret_cast<const unsigned char*>(text.data());
  const std::size_t n = text.size();
  std::size_t i = 0;
  while (i < n) {
    unsigned char c = s[i];
    if (c < 0x80) {
      ++i;
      continue;
    }
    std::size_t length;
    unsigned char low = 0x80, high = 0xBF;  // allowed range of the second byte
    if (c >= 0xC2 && c <= 0xDF) {
      length = 2;
    } else if (c >= 0xE0 && c <= 0xEF) {
      length = 3;
      if (c == 0xE0) low = 0xA0;   // no overlong forms
      if (c == 0xED) high = 0x9F;  // no surrogates
    } else if (c >= 0xF0 && c <= 0xF4) {
      length = 4;
      if (c == 0xF0) low = 0x90;
      if (c == 0xF4) high = 0x8F;  // nothing above U+10FFFF
    } else {
      return i;
    }
    if (i + 1 >= n || s[i + 1] < low || s[i + 1] > high) return i;
    for (std::size_t k = 2; k < length; ++k)
      if (i + k >= n || (s[i + k] & 0xC0) != 0x80) return i;
    i += length;
  }
  return std::string_view::npos;
}

std::string InvalidUTF8Message(unsigned char byte, std::size_t offset) {
  char hex[8];
  std::snprintf(hex, sizeof hex, "0x%02X", byte);
  return std::string("holds a string that is not valid UTF-8 (byte ") + hex + " at offset " +
         std::to_string(offset) + ")";
}

std::string CheckStringForWriting(std::string_view text) {
  std::size_t bad = FindInvalidUTF8(text);
  if (bad != std::string_view::npos)
    return InvalidUTF8Message(static_cast<unsigned char>(text[bad]), bad);
  if (text.find('\0') != std::string_view::npos) return "holds a string with a NUL character";
  return {};
}

void AppendUTF8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (c >> 18));
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

namespace {

// Days since 1970-01-01 of a proleptic Gregorian date (Howard Hinnant's algorithm).
std::int64_t DaysFromCivil(std::int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const auto yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

// The inverse of DaysFromCivil.
void CivilFromDays(std::int64_t z, int* year, unsigned* month, unsigned* day) {
  z += 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const auto doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  *day = doy - (153 * mp + 2) / 5 + 1;
  *month = mp < 10 ? mp + 3 : mp - 9;
  *year = static_cast<int>(static_cast<std::int64_t>(yoe) + era * 400 + (*month <= 2));
}

constexpr std::int64_t kEpochDays = 11323;  // 2001-01-01 counted from 1970-01-01

bool IsLeap(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

int DaysInMonth(int y, int m) {
  static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && IsLeap(y) ? 29 : days[m - 1];
}

}  // namespace

std::int64_t SecondsFromCivil(int year, int month, int day, int hour, int minute, int second) {
  std::int64_t days = DaysFromCivil(year, static_cast<unsigned>(month),
                                    static_cast<unsigned>(day)) - kEpochDays;
  return days * 86400 + hour * 3600 + minute * 60 + second;
}

bool DateInRange(double seconds) {
  static const double first = static_cast<double>(SecondsFromCivil(1, 1, 1, 0, 0, 0));
  static const double end = static_cast<double>(SecondsFromCivil(10000, 1, 1, 0, 0, 0));
  return std::isfinite(seconds) && seconds >= first && seconds < end;
}

std::string FormatDate(double seconds) {
  const auto whole = static_cast<std::int64_t>(std::floor(seconds));
  std::int64_t days = whole / 86400, rest = whole % 86400;
  if (rest < 0) {
    rest += 86400;
    --days;
  }
  int year;
  unsigned month, day;
  CivilFromDays(days + kEpochDays, &year, &month, &day);
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", year, month, day,
                static_cast<int>(rest / 3600), static_cast<int>(rest / 60 % 60),
                static_cast<int>(rest % 60));
  return text;
}

std::optional<Date> ParseDate(std::string_view t) {
  // YYYY-MM-DDTHH:MM:SSZ
  if (t.size() != 20 || t[4] != '-' || t[7] != '-' || t[10] != 'T' || t[13] != ':' ||
      t[16] != ':' || t[19] != 'Z')
    return std::nullopt;
  auto field = [&](std::size_t at, std::size_t length, int* out) {
    int v = 0;
    for (std::size_t i = at; i < at + length; ++i) {
      if (t[i] < '0' || t[i] > '9') return false;
      v = v * 10 + (t[i] - '0');
    }
    *out = v;
    return true;
  };
  int y, mo, d, h, mi, s;
  if (!field(0, 4, &y) || !field(5, 2, &mo) || !field(8, 2, &d) || !field(11, 2, &h) ||
      !field(14, 2, &mi) || !field(17, 2, &s))
    return std::nullopt;
  if (y < 1 || mo < 1 || mo > 12 || d < 1 || d > DaysInMonth(y, mo) || h > 23 || mi > 59 ||
      s > 59)
    return std::nullopt;
  return Date{static_cast<double>(SecondsFromCivil(y, mo, d, h, mi, s))};
}

std::string EncodeBase64(const Data& data) {
  static const char alphabet[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  out.reserve((data.size() + 2) / 3 * 4);
  std::size_t i = 0;
  for (; i + 2 < data.size(); i += 3) {
    std::uint32_t v = (data[i] << 16) | (data[i + 1] << 8) | data[i + 2];
    out += alphabet[v >> 18];
    out += alphabet[(v >> 12) & 63];
    out += alphabet[(v >> 6) & 63];
    out += alphabet[v & 63];
  }
  if (i < data.size()) {
    std::uint32_t v = data[i] << 16;
    if (i + 1 < data.size()) v |= data[i + 1] << 8;
    out += alphabet[v >> 18];
    out += alphabet[(v >> 12) & 63];
    out += i + 1 < data.size() ? alphabet[(v >> 6) & 63] : '=';
    out += '=';
  }
  return out;
}

std::optional<Data> DecodeBase64(std::string_view text) {
  Data out;
  out.reserve(text.size() / 4 * 3);
  std::uint32_t bits = 0;
  int count = 0;
  bool padding = false;
  for (char c : text) {
    int v;
    if (c >= 'A' && c <= 'Z') v = c - 'A';
    else if (c >= 'a' && c <= 'z') v = c - 'a' + 26;
    else if (c >= '0' && c <= '9') v = c - '0' + 52;
    else if (c == '+') v = 62;
    else if (c == '/') v = 63;
    else if (c == ' ' || c == '\t' || c == '\n' || c == '\r') continue;
    else if (c == '=') {
      padding = true;
      continue;
    } else {
      return std::nullopt;
    }
    if (padding) return std::nullopt;  // nothing may follow the padding
    bits = (bits << 6) | static_cast<std::uint32_t>(v);
    if (++count == 4) {
      out.push_back(static_cast<std::uint8_t>(bits >> 16));
      out.push_back(static_cast<std::uint8_t>(bits >> 8));
      out.push_back(static_cast<std::uint8_t>(bits));
      bits = 0;
      count = 0;
    }
  }
  if (count == 1) return std::nullopt;
  if (count == 2) out.push_back(static_cast<std::uint8_t>(bits >> 4));
  if (count == 3) {
    out.push_back(static_cast<std::uint8_t>(bits >> 10));
    out.push_back(static_cast<std::uint8_t>(bits >> 2));
  }
  return out;
}

std::string FormatReal(double d) {
  if (std::isnan(d)) return "nan";
  if (std::isinf(d)) return d > 0 ? "+infinity" : "-infinity";
  char text[40];
  auto result = std::to_chars(text, text + sizeof text, d);
  return std::string(text, result.ptr);
}

}  // namespace varno::plist::codec
