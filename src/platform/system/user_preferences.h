// SPDX-License-Identifier: Apache-2.0
// Per-user preference files: whole property-list dictionaries in the user's preferences
// folder, read, changed and rewritten by their callers (the last writer wins), or changed
// in place by UpdateUserPreferences when several processes share one file.
#pragma once

#include <functional>
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

// Rereads `fileName` (missing or damaged: an empty dictionary), lets `change` edit it and
// writes it back, all under an exclusive lock on ".<fileName>.lock" beside it, so that
// processes updating different keys of one file at once never undo each other's changes.
// The lock is waited for up to kPreferencesLockWaitMilliseconds; after that (a process
// hung while holding it) the update goes ahead unlocked, as the write is atomic anyway.
// False, as for WriteUserPreferences, when the file cannot be written.
inline constexpr int kPreferencesLockWaitMilliseconds = 2000;
bool UpdateUserPreferences(std::string_view fileName,
                           const std::function<void(plist::Dictionary&)>& change);

}  // namespace varno::sys
