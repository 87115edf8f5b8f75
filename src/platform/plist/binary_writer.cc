// SPDX-License-Identifier: Apache-2.0
// Writer for binary property lists ("bplist00"), exact for every kind: integers as signed
// 8 bytes when negative, reals and dates as float64, non-ASCII strings as UTF-16BE.
// Objects are numbered breadth-first, so a container's children have consecutive numbers
// and no recursion is needed.
#include <cstring>
#include <vector>

#include "platform/plist/codec.h"
#include "platform/plist/file.h"
#include "platform/plist/formats.h"

namespace varno::plist::formats {
namespace {

// One object of the file: a value, or a dictionary key.
struct Object {
  const Value* value;      // null for a key
  const std::string* key;  // set for a key
  int depth;
  std::uint64_t firstChild;  // containers: number of the first key or element
};

// Bytes needed for an unsigned number (1, 2, 4 or 8).
std::size_t SizeFor(std::uint64_t n) {
  if (n <= 0xFF) return 1;
  if (n <= 0xFFFF) return 2;
  if (n <= 0xFFFFFFFF) return 4;
  return 8;
}

void AppendBE(std::string& out, std::uint64_t v, std::size_t size) {
  for (std::size_t i = size; i-- > 0;) out += static_cast<char>((v >> (8 * i)) & 0xFF);
}

void AppendInteger(std::string& out, std::int64_t v) {
  if (v < 0) {
    out += '\x13';
    AppendBE(out, static_cast<std::uint64_t>(v), 8);
    return;
  }
  const std::size_t size = SizeFor(static_cast<std::uint64_t>(v));
  out += static_cast<char>(0x10 | (size == 1 ? 0 : size == 2 ? 1 : size == 4 ? 2 : 3));
  AppendBE(out, static_cast<std::uint64_t>(v), size);
}

// A marker with its count in the low nibble, or 0xF and an integer after it.
void AppendMarker(std::string& out, unsigned type, std::uint64_t count) {
  if (count < 15) {
    out += static_cast<char>((type << 4) | count);
    return;
  }
  out += static_cast<char>((type << 4) | 0xF);
  AppendInteger(out, static_cast<std::int64_t>(count));
}

void AppendDouble(std::string& out, unsigned char marker, double d) {
  std::uint64_t bits;
  std::memcpy(&bits, &d, sizeof bits);
  out += static_cast<char>(marker);
  AppendBE(out, bits, 8);
}

// ASCII as it is, anything else as UTF-16BE (the text is known to be valid UTF-8).
void AppendString(std::string& out, std::string_view s) {
  bool ascii = true;
  for (char c : s) ascii = ascii && static_cast<unsigned char>(c) < 0x80;
  if (ascii) {
    AppendMarker(out, 0x5, s.size());
    out.append(s);
    return;
  }
  std::vector<std::uint16_t> units;
  const auto* p = reinterpret_cast<const unsigned char*>(s.data());
  for (std::size_t i = 0; i < s.size();) {
    char32_t c;
    if (p[i] < 0x80) {
      c = p[i];
      i += 1;
    } else if (p[i] < 0xE0) {
      c = ((p[i] & 0x1F) << 6) | (p[i + 1] & 0x3F);
      i += 2;
    } else if (p[i] < 0xF0) {
      c = ((p[i] & 0x0F) << 12) | ((p[i + 1] & 0x3F) << 6) | (p[i + 2] & 0x3F);
      i += 3;
    } else {
      c = ((p[i] & 0x07) << 18) | ((p[i + 1] & 0x3F) << 12) | ((p[i + 2] & 0x3F) << 6) |
          (p[i + 3] & 0x3F);
      i += 4;
    }
    if (c >= 0x10000) {
      c -= 0x10000;
      units.push_back(static_cast<std::uint16_t>(0xD800 + (c >> 10)));
      units.push_back(static_cast<std::uint16_t>(0xDC00 + (c & 0x3FF)));
    } else {
      units.push_back(static_cast<std::uint16_t>(c));
    }
  }
  AppendMarker(out, 0x6, units.size());
  for (std::uint16_t u : units) AppendBE(out, u, 2);
}

bool Fail(std::string* error, std::string message) {
  if (error) *error = std::move(message);
  return false;
}

// Numbers every object breadth-first; fails on depth and on strings or dates that the
// file could not hold faithfully.
bool Collect(const Value& root, std::vector<Object>* objects, std::string* error) {
  objects->push_back({&root, nullptr, 0, 0});
  for (std::size_t i = 0; i < objects->size(); ++i) {
    Object o = (*objects)[i];
    if (o.depth > kMaxDepth)
      return Fail(error, "value nested deeper than " + std::to_string(kMaxDepth) + " levels");
    if (o.key || (o.value && o.value->isString())) {
      std::string why = codec::CheckStringForWriting(o.key ? *o.key : *o.value->asString());
      if (!why.empty()) return Fail(error, std::move(why));
      continue;
    }
    (*objects)[i].firstChild = objects->size();
    if (const Array* array = o.value->asArray()) {
      for (const Value& item : *array) objects->push_back({&item, nullptr, o.depth + 1, 0});
    } else if (const Dictionary* dict = o.value->asDictionary()) {
      for (const auto& entry : *dict) objects->push_back({nullptr, &entry.first, o.depth + 1, 0});
      for (const auto& entry : *dict) objects->push_back({&entry.second, nullptr, o.depth + 1, 0});
    } else if (const Date* date = o.value->asDate(); date && !codec::DateInRange(date->seconds)) {
      return Fail(error, codec::kDateRangeMessage);
    }
  }
  return true;
}

}  // namespace

std::optional<std::string> WriteBinary(const Value& value, std::string* error) {
  std::vector<Object> objects;
  if (!Collect(value, &objects, error)) return std::nullopt;
  const std::size_t refSize = SizeFor(objects.size());
  std::string out = "bplist00";
  std::vector<std::uint64_t> offsets;
  offsets.reserve(objects.size());
  for (const Object& o : objects) {
    offsets.push_back(out.size());
    if (o.key) {
      AppendString(out, *o.key);
      continue;
    }
    const Value& v = *o.value;
    switch (v.kind()) {
      case Kind::String: AppendString(out, *v.asString()); break;
      case Kind::Integer: AppendInteger(out, *v.asInteger()); break;
      case Kind::Real: AppendDouble(out, 0x23, *v.asReal()); break;
      case Kind::Boolean: out += *v.asBoolean() ? '\x09' : '\x08'; break;
      case Kind::Date: AppendDouble(out, 0x33, v.asDate()->seconds); break;
      case Kind::Data: {
        const Data& data = *v.asData();
        AppendMarker(out, 0x4, data.size());
        out.append(reinterpret_cast<const char*>(data.data()), data.size());
        break;
      }
      case Kind::Array: {
        const std::size_t n = v.asArray()->size();
        AppendMarker(out, 0xA, n);
        for (std::size_t k = 0; k < n; ++k) AppendBE(out, o.firstChild + k, refSize);
        break;
      }
      case Kind::Dictionary: {
        const std::size_t n = v.asDictionary()->size();
        AppendMarker(out, 0xD, n);
        for (std::size_t k = 0; k < 2 * n; ++k) AppendBE(out, o.firstChild + k, refSize);
        break;
      }
    }
  }
  const std::uint64_t tableOffset = out.size();
  const std::size_t offsetSize = SizeFor(tableOffset);
  for (std::uint64_t offset : offsets) AppendBE(out, offset, offsetSize);
  out.append(6, '\0');
  out += static_cast<char>(offsetSize);
  out += static_cast<char>(refSize);
  AppendBE(out, objects.size(), 8);
  AppendBE(out, 0, 8);  // the root is object 0
  AppendBE(out, tableOffset, 8);
  return out;
}

}  // namespace varno::plist::formats
