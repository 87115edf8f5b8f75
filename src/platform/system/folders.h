// SPDX-License-Identifier: Apache-2.0
// Where the product keeps its files: the user's preferences folder and the machine-wide
// application-support folder. Finding a folder never creates it; CreateFolder does.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace varno::sys {

// The user's preferences folder: $XDG_CONFIG_HOME/varno when XDG_CONFIG_HOME is an absolute
// path, else <home>/.config/varno with home from $HOME or the password database;
// nullopt when no home can be found.
std::optional<std::filesystem::path> UserPreferencesFolder();

// The machine-wide application-support folder: $VARNO_SUPPORT_DIR when set and non-empty,
// else /var/lib/varno.
std::optional<std::filesystem::path> ApplicationSupportFolder();

struct FolderResult {
  bool ok = false;
  std::string error;  // why it failed; empty when ok
};

// Creates folder and any missing parents; ok when it exists as a folder afterwards.
FolderResult CreateFolder(const std::filesystem::path& folder);

}  // namespace varno::sys
