// SPDX-License-Identifier: Apache-2.0
#include "platform/system/user_preferences.h"

#include <cerrno>
#include <cstdio>

#include "platform/plist/file.h"
#include "platform/system/folders.h"

namespace varno::sys {

std::optional<plist::Dictionary> CopyUserPreferences(std::string_view fileName) {
  std::optional<std::filesystem::path> folder = UserPreferencesFolder();
  if (!folder) return std::nullopt;
  std::filesystem::path file = *folder / fileName;
  std::error_code ec;
  if (!std::filesystem::exists(file, ec)) return plist::Dictionary();
  std::string error;
  std::optional<plist::Dictionary> read = plist::ReadDictionaryFile(file, &error);
  // A damaged file is left for the user to look at; the caller starts afresh, and its
  // next write replaces the file.
  if (!read) return plist::Dictionary();
  return read;
}

bool WriteUserPreferences(std::string_view fileName, const plist::Dictionary& dictionary) {
  std::optional<std::filesystem::path> folder = UserPreferencesFolder();
  int code = -1;
  if (folder && CreateFolder(*folder).ok) {
    std::string error;
    if (plist::WriteFile(*folder / fileName, plist::Value(dictionary), &error)) return true;
    code = errno ? errno : -1;
  }
  std::fprintf(stderr, "WriteUserPreferences() failed (%d)\n", code);
  return false;
}

}  // namespace varno::sys
