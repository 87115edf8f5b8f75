// SPDX-License-Identifier: Apache-2.0
// The watermark store: one XML property-list file in the machine-wide support folder,
// shared by every user of the machine, holding the watermark list, one record per
// watermark and converted font data. The same routines, given another file name, keep the
// fax cover images (fax_image_store.h).
//
// Every call reads the whole file, changes it and replaces it whole; nothing is cached, so
// two dialogs working on the same store at once simply see the last writer win. Replacing
// is atomic (temporary file, fsync, rename), so no reader ever sees half a file and a
// writer killed halfway leaves the previous file in place.
//
// Failures are quiet for the user: reads fall back to "nothing there", and the few
// diagnostics go to standard error. A file that is no property list is reported and, when
// a save replaces it, first kept beside it as "<name>.damaged" (".damaged.1", ... when that
// exists) so that nobody's watermarks vanish without a trace.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

#include "panels/booklet_watermark/watermark_data.h"
#include "platform/bundle/bundle.h"
#include "platform/plist/value.h"
#include "platform/toolkit/list_view.h"

namespace varno::panels {

inline constexpr const char* kWatermarkStoreFileName = "com.varno.printing.watermarks.plist";
inline constexpr const char* kWatermarkListEntriesKey = "WatermarkListEntries";
// Font subsets are stored under this format with the font's PostScript name.
inline constexpr const char* kSubsetFontKeyFormat = "VN-%@-VN";
// The sub-folder of the support folder that holds the store files.
inline constexpr const char* kStoreFolderName = "Varno";

// The path of the store file `fileName` in <support folder>/Varno/. The sub-folder is created
// when missing, open to every local user (the files in it are shared by all of them).
// nullopt when the file name is empty or the folder can neither be found nor created.
std::optional<std::filesystem::path> CopyPreferenceFileURL(std::string_view fileName);

// The store's root dictionary, which the caller may change freely; nullopt when the file is
// missing or unreadable, or is no property-list dictionary (that last case is reported on
// standard error with the parser's reason).
std::optional<plist::Dictionary> CopyXMLData(std::string_view fileName);

// True when the store holds a "WatermarkListEntries" array. `*list` gets that array (a new
// handle the caller owns), or nullopt when there is none. With a list view, one row per name
// is added in order, with item IDs 1, 2, ... (the list index plus one), and the view is
// refreshed. False at once, `*list` untouched, without a file name or `list`.
bool loadWatermarkList(std::string_view fileName, toolkit::ListView* listView,
                       std::optional<plist::Array>* list);

// Sets "WatermarkListEntries" to `names` in the store, creating the store when needed.
// Nothing happens without a file name or `names`.
void saveWatermarkList(std::string_view fileName, const plist::Array* names);

// Fills `record` from the store's record named `name` and returns 1. Keys absent from the
// stored record leave their fields as they were. When there is no such record (or no store)
// the whole record is cleared, glyphs included, and 0 is returned.
int loadWatermarkData(std::string_view fileName, std::string_view name, WatermarkData* record);

// Stores `record` under its name (WatermarkName), replacing any record of that name, and
// creates the store when needed. The list is not changed: callers add the name with
// saveWatermarkList. A failed write is reported as "saveWatermarkData: Error %ld writing
// data to file\n" with the system's error number.
void saveWatermarkData(std::string_view fileName, const WatermarkData& record);

// Removes the record `name` and the first list entry that equals it exactly (case matters).
// Nothing happens when the store cannot be read.
void removeWatermarkData(std::string_view fileName, std::string_view name);

// Stores font data under `key`. Only into an existing store: it never creates the file.
void storeFontData(std::string_view fileName, std::string_view key, const plist::Data& data);

// Appends the font data stored under `key` to `*buffer`; nothing when the store, the key or
// the buffer is missing.
void loadFontData(std::string_view fileName, std::string_view key, plist::Data* buffer);

// The key of the font subset of the font with PostScript name `fontName` ("VN-<name>-VN").
std::string SubsetFontKey(std::string_view fontName);

// Writes the three default text watermarks ("DraftWatermark", "ConfidentialWatermark",
// "CopyWatermark", localized from the bundle's "Localizable" table) and a list naming them,
// into the watermark store. Returns 0.
int CreateDefaultWatermarks(const bundle::Bundle* bundle);

}  // namespace varno::panels
