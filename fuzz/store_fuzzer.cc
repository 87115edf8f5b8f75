// SPDX-License-Identifier: Apache-2.0
// The watermark store and the fax cover image store: the input is the store file in the
// support folder, and every load must cope with it.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include "panels/booklet_watermark/fax_image_store.h"
#include "panels/booklet_watermark/watermark_store.h"
#include "support.h"

using namespace varno;
using namespace varno::panels;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  ::setenv("VARNO_SUPPORT_DIR", fuzz::ScratchDir().c_str(), 1);
  return 0;
}

// Loads every record the list of store `fileName` names, and a font.
static void LoadEverything(const char* fileName, std::optional<plist::Array> list) {
  if (!list) return;
  for (const plist::Value& name : *list) {
    WatermarkData record;
    if (const std::string* text = name.asString()) loadWatermarkData(fileName, *text, &record);
  }
  plist::Data font;
  loadFontData(fileName, SubsetFontKey("Helvetica"), &font);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes = fuzz::AsText(data, size);
  for (const char* fileName : {kWatermarkStoreFileName, kFaxImageStoreFileName}) {
    std::optional<std::filesystem::path> path = CopyPreferenceFileURL(fileName);
    fuzz::Check(path.has_value(), "no store path in the scratch support folder");
    fuzz::WriteBytes(*path, bytes);
  }
  std::optional<plist::Array> list;
  loadWatermarkList(kWatermarkStoreFileName, nullptr, &list);
  LoadEverything(kWatermarkStoreFileName, list);
  LoadEverything(kFaxImageStoreFileName, LoadFaxCoverImageList());
  if (std::optional<plist::Array> images = LoadFaxCoverImageList())
    for (const plist::Value& name : *images) {
      WatermarkData image;
      if (const std::string* text = name.asString()) LoadFaxCoverImage(*text, &image);
    }
  return 0;
}
