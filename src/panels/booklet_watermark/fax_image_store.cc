// SPDX-License-Identifier: Apache-2.0
#include "panels/booklet_watermark/fax_image_store.h"

#include "panels/booklet_watermark/watermark_store.h"

namespace varno::panels {

std::optional<plist::Array> LoadFaxCoverImageList() {
  std::optional<plist::Array> list;
  loadWatermarkList(kFaxImageStoreFileName, nullptr, &list);
  return list;
}

void SaveFaxCoverImage(const WatermarkData& image) {
  saveWatermarkData(kFaxImageStoreFileName, image);
  // Saving an image again changes its record but keeps its one list entry.
  std::string name = WatermarkName(image);
  plist::Array list = LoadFaxCoverImageList().value_or(plist::Array());
  for (const plist::Value& entry : list)
    if (const std::string* text = entry.asString(); text && *text == name) return;
  list.append(name);
  saveWatermarkList(kFaxImageStoreFileName, &list);
}

int LoadFaxCoverImage(std::string_view name, WatermarkData* image) {
  return loadWatermarkData(kFaxImageStoreFileName, name, image);
}

void RemoveFaxCoverImage(std::string_view name) {
  removeWatermarkData(kFaxImageStoreFileName, name);
}

}  // namespace varno::panels
