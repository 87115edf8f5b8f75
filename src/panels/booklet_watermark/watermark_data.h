// SPDX-License-Identifier: Apache-2.0
// One watermark: the fixed-size record the panel, the editor and the drawing code share,
// and its dictionary form in the watermark store.
//
// The record is a plain value the caller owns. Its strings are fixed arrays of UTF-8 bytes,
// NUL-terminated, because the editor and the drawing code fill them in place; the glyph
// numbers live on the heap and are owned by the record (copying a record copies them).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/plist/value.h"

namespace varno::panels {

inline constexpr std::size_t kWatermarkTextSize = 512;
inline constexpr std::size_t kWatermarkFilePathSize = 8192;

struct WatermarkData {
  char text[kWatermarkTextSize] = {};      // also the name of a text watermark
  char fileName[kWatermarkTextSize] = {};  // also the name of a picture watermark
  char filePath[kWatermarkFilePathSize] = {};
  char fontName[kWatermarkTextSize] = {};  // PostScript name
  float xOffset = 0;
  float yOffset = 0;
  float fontColorRed = 0, fontColorGreen = 0, fontColorBlue = 0, fontColorAlpha = 0;
  float wellColorRed = 0, wellColorGreen = 0, wellColorBlue = 0, wellColorAlpha = 0;
  std::int32_t angle = 0;    // degrees
  std::int32_t density = 0;  // percent
  std::int32_t scale = 0;    // percent
  std::int32_t units = 0;    // 0 is the default; the editor gives the other codes meaning
  std::int32_t fontSize = 0; // points
  // Not stored: nonzero for a text watermark. The page extents are copied in by the panel
  // for the editor, which bounds positions by them.
  std::int32_t isTextWatermark = 0;
  double pageHeight = 0;
  double pageWidth = 0;
  double xPos = 0;  // points
  double yPos = 0;
  // Unset (nullopt) is different from an empty array: only a set array is stored.
  std::optional<std::vector<std::uint16_t>> glyphs;
  std::int32_t glyphCount = 0;
};

// Every field zero, the glyphs released.
void ClearWatermarkData(WatermarkData* record);

// The name the record is stored under: the text of a text watermark, else the file name.
std::string WatermarkName(const WatermarkData& record);

// Copies `text` into a field of `size` bytes: at most size - 1 bytes and a NUL. A cut never
// splits a UTF-8 sequence, so what is stored later is still valid text.
void CopyWatermarkString(char* field, std::size_t size, std::string_view text);
template <std::size_t N>
void CopyWatermarkString(char (&field)[N], std::string_view text) {
  CopyWatermarkString(field, N, text);
}

// The field's text up to its NUL (or its whole size when there is none).
template <std::size_t N>
std::string_view WatermarkString(const char (&field)[N]) {
  std::size_t length = 0;
  while (length < N && field[length] != '\0') ++length;
  return std::string_view(field, length);
}

// The record's dictionary in the store: every stored field under its key, with "glyphs" and
// "glyphCount" only when the glyphs are set.
plist::Dictionary CreateWatermarkDictionary(const WatermarkData& record);

// Copies each key present in `dictionary` (with a value of the right kind) into its field;
// the other fields keep their values. Present glyph data replaces the glyph array.
void ReadWatermarkDictionary(const plist::Dictionary& dictionary, WatermarkData* record);

}  // namespace varno::panels
