// SPDX-License-Identifier: Apache-2.0
#include "panels/booklet_watermark/watermark_data.h"

#include <algorithm>
#include <cstring>

namespace varno::panels {
namespace {

// Keys of the record's dictionary, in the record's field order.
constexpr const char* kTextKey = "textString";
constexpr const char* kFileNameKey = "filename";
constexpr const char* kFilePathKey = "filePath";
constexpr const char* kFontNameKey = "fontName";
constexpr const char* kGlyphsKey = "glyphs";
constexpr const char* kGlyphCountKey = "glyphCount";

struct FloatField {
  const char* key;
  float WatermarkData::*field;
};
constexpr FloatField kFloatFields[] = {
    {"xOffset", &WatermarkData::xOffset},
    {"yOffset", &WatermarkData::yOffset},
    {"fontColorRed", &WatermarkData::fontColorRed},
    {"fontColorGreen", &WatermarkData::fontColorGreen},
    {"fontColorBlue", &WatermarkData::fontColorBlue},
    {"fontColorAlpha", &WatermarkData::fontColorAlpha},
    {"wellColorRed", &WatermarkData::wellColorRed},
    {"wellColorGreen", &WatermarkData::wellColorGreen},
    {"wellColorBlue", &WatermarkData::wellColorBlue},
    {"wellColorAlpha", &WatermarkData::wellColorAlpha},
};

struct IntField {
  const char* key;
  std::int32_t WatermarkData::*field;
};
constexpr IntField kIntFields[] = {
    {"angle", &WatermarkData::angle},       {"density", &WatermarkData::density},
    {"scale", &WatermarkData::scale},       {"units", &WatermarkData::units},
    {"fontSize", &WatermarkData::fontSize},
};

struct DoubleField {
  const char* key;
  double WatermarkData::*field;
};
constexpr DoubleField kDoubleFields[] = {
    {"xPos", &WatermarkData::xPos},
    {"yPos", &WatermarkData::yPos},
};

// A real or integer as a double; other kinds give nullopt.
std::optional<double> NumberAsDouble(const plist::Value& value) {
  if (std::optional<double> real = value.asReal()) return real;
  if (std::optional<std::int64_t> integer = value.asInteger())
    return static_cast<double>(*integer);
  return std::nullopt;
}

template <std::size_t N>
void ReadString(const plist::Dictionary& dictionary, const char* key, char (&field)[N]) {
  if (const plist::Value* value = dictionary.find(key))
    if (const std::string* text = value->asString()) CopyWatermarkString(field, *text);
}

}  // namespace

void ClearWatermarkData(WatermarkData* record) {
  if (record) *record = WatermarkData{};
}

std::string WatermarkName(const WatermarkData& record) {
  return std::string(record.isTextWatermark ? WatermarkString(record.text)
                                            : WatermarkString(record.fileName));
}

void CopyWatermarkString(char* field, std::size_t size, std::string_view text) {
  if (!field || size == 0) return;
  std::size_t length = std::min(text.size(), size - 1);
  // Back off over continuation bytes so that the cut falls between characters.
  if (length < text.size()) {
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
  }
  std::memcpy(field, text.data(), length);
  field[length] = '\0';
}

plist::Dictionary CreateWatermarkDictionary(const WatermarkData& record) {
  plist::Dictionary dictionary;
  dictionary.set(kTextKey, WatermarkString(record.text));
  dictionary.set(kFileNameKey, WatermarkString(record.fileName));
  dictionary.set(kFilePathKey, WatermarkString(record.filePath));
  dictionary.set(kFontNameKey, WatermarkString(record.fontName));
  for (const FloatField& f : kFloatFields) dictionary.set(f.key, record.*f.field);
  for (const IntField& f : kIntFields) dictionary.set(f.key, record.*f.field);
  for (const DoubleField& f : kDoubleFields) dictionary.set(f.key, record.*f.field);
  if (record.glyphs) {
    // Raw 16-bit words in this machine's byte order, as the drawing code reads them back.
    // A count larger than the array is not trusted for reading past its end.
    std::size_t words = std::min<std::size_t>(record.glyphs->size(),
                                              static_cast<std::size_t>(
                                                  std::max<std::int32_t>(record.glyphCount, 0)));
    plist::Data bytes(words * sizeof(std::uint16_t));
    if (words) std::memcpy(bytes.data(), record.glyphs->data(), bytes.size());
    dictionary.set(kGlyphsKey, std::move(bytes));
    dictionary.set(kGlyphCountKey, record.glyphCount);
  }
  return dictionary;
}

void ReadWatermarkDictionary(const plist::Dictionary& dictionary, WatermarkData* record) {
  if (!record) return;
  ReadString(dictionary, kTextKey, record->text);
  ReadString(dictionary, kFileNameKey, record->fileName);
  ReadString(dictionary, kFilePathKey, record->filePath);
  ReadString(dictionary, kFontNameKey, record->fontName);
  for (const FloatField& f : kFloatFields)
    if (const plist::Value* value = dictionary.find(f.key))
      if (std::optional<double> number = NumberAsDouble(*value))
        record->*f.field = static_cast<float>(*number);
  for (const DoubleField& f : kDoubleFields)
    if (const plist::Value* value = dictionary.find(f.key))
      if (std::optional<double> number = NumberAsDouble(*value)) record->*f.field = *number;
  // Integers must fit exactly; a value that does not (1.5, 2^40) leaves the field alone.
  for (const IntField& f : kIntFields)
    if (std::optional<std::int32_t> number = dictionary.getNumber<std::int32_t>(f.key))
      record->*f.field = *number;
  if (std::optional<std::int32_t> count = dictionary.getNumber<std::int32_t>(kGlyphCountKey))
    record->glyphCount = *count;
  if (const plist::Value* value = dictionary.find(kGlyphsKey)) {
    if (const plist::Data* bytes = value->asData()) {
      std::vector<std::uint16_t> glyphs(bytes->size() / sizeof(std::uint16_t));
      if (!glyphs.empty()) std::memcpy(glyphs.data(), bytes->data(), glyphs.size() * 2);
      // The drawing code indexes the array by the count; a count beyond the data a file
      // holds must not send it past the end.
      if (record->glyphCount > static_cast<std::int32_t>(glyphs.size()))
        record->glyphCount = static_cast<std::int32_t>(glyphs.size());
      record->glyphs = std::move(glyphs);
    }
  }
}

}  // namespace varno::panels
