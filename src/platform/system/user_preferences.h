// SPDX-License-Identifier: Apache-2.0
// Per-user preference files: whole property-list dictionaries in the user's preferences
// folder, read, changed and rewritten by their callers (the last writer wins).
#pragma once

#include <optional>
#include <string_view>

#include "platform/plist/value.h"

namespace varno::sys {

// The dictionary in `fileName` of the preferences folder; an empty one when the file is
// missing or is no property-list dictionary. nullopt only when there is no preferences
// folder at all.
std::optional<plist::Dictionary> CopyUserPreferences(std::string_view fileName);

// Writes `dictionary` as an XML property list to `fileName` in the preferences folder,
// creating the folder when needed. False, with "WriteUserPreferences() failed (%d)\n" on
// standard error, when it cannot be written.
bool WriteUserPreferences(std::string_view fileName, const plist::Dictionary& dictionary);

}  // namespace varno::sys
