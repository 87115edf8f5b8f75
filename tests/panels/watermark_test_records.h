// SPDX-License-Identifier: Apache-2.0
// Records the store tests and their worker program both make: every field follows from the
// name and a number (kept in xPos), so a reader can tell a whole record from a mixed one.
#pragma once

#include <string>

#include "panels/booklet_watermark/watermark_store.h"

namespace varno::testing {

inline panels::WatermarkData NumberedRecord(const std::string& name, int n) {
  panels::WatermarkData record;
  record.isTextWatermark = 1;
  panels::CopyWatermarkString(record.text, name);
  panels::CopyWatermarkString(record.filePath, "/srv/" + name + std::string(60, 'p'));
  panels::CopyWatermarkString(record.fontName, "Font-" + name);
  record.xOffset = 0.5f * static_cast<float>(n);
  record.fontColorGreen = 0.25f;
  record.wellColorAlpha = 1.0f;
  record.angle = n % 360;
  record.density = n % 100;
  record.fontSize = 12 + n % 60;
  record.xPos = n + 0.125;
  record.yPos = -n;
  record.glyphs = std::vector<std::uint16_t>{static_cast<std::uint16_t>(n), 0xfffe, 7};
  record.glyphCount = 3;
  return record;
}

inline constexpr std::size_t kWriterFontBytes = 16000;

// The number a record of NumberedRecord was made with.
inline int RecordNumber(double xPos) { return static_cast<int>(xPos - 0.125); }

// One round of a writer process: save record i as TAG-<i mod 4>, every fourth round also
// list it (with font data when asked), then remove TAG-<(i+2) mod 4>. Names are reused so
// that the store stays small however many of its updates another writer's saves undo.
inline void WriterRound(const std::string& tag, int i, bool withFont) {
  using namespace panels;
  std::string name = tag + "-" + std::to_string(i % 4);
  saveWatermarkData(kWatermarkStoreFileName, NumberedRecord(name, i));
  if (i % 4 == 0) {
    std::optional<plist::Array> list;
    loadWatermarkList(kWatermarkStoreFileName, nullptr, &list);
    plist::Array names = list.value_or(plist::Array());
    if (names.size() > 16) names.clear();
    names.append(name);
    saveWatermarkList(kWatermarkStoreFileName, &names);
  }
  if (withFont)  // large enough that a kill often lands inside the write
    storeFontData(kWatermarkStoreFileName, SubsetFontKey(tag),
                  plist::Data(kWriterFontBytes + i % 1000, static_cast<std::uint8_t>(i)));
  removeWatermarkData(kWatermarkStoreFileName, tag + "-" + std::to_string((i + 2) % 4));
}

}  // namespace varno::testing
