// SPDX-License-Identifier: Apache-2.0
// The fax cover image store: the cover-sheet set-up keeps its images as watermark records
// (a picture record: file name and path, position, scale) in a store file of its own,
// through the same routines as the watermark store.
#pragma once

#include <optional>
#include <string_view>

#include "panels/booklet_watermark/watermark_data.h"
#include "platform/plist/value.h"

namespace varno::panels {

inline constexpr const char* kFaxImageStoreFileName = "com.varno.printing.faximage.plist";

// The image names in the store's list; nullopt when it has none.
std::optional<plist::Array> LoadFaxCoverImageList();
// Stores `image` under its name and appends the name to the list unless it is there.
void SaveFaxCoverImage(const WatermarkData& image);
// 1 and the record when an image of that name is stored; else 0 and a cleared record.
int LoadFaxCoverImage(std::string_view name, WatermarkData* image);
// Removes the image and its first list entry.
void RemoveFaxCoverImage(std::string_view name);

}  // namespace varno::panels
