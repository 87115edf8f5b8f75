// SPDX-License-Identifier: Apache-2.0
#include "platform/system/folders.h"

#include <unistd.h>

#include <cstdlib>
#include <system_error>

#include "platform/system/posix_util.h"

namespace varno::sys {
namespace {

// An environment variable holding an absolute path; relative values are ignored, as the
// base-directory convention asks, so a stray "." never scatters files into the cwd.
std::optional<std::filesystem::path> AbsolutePathFromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || value[0] != '/') return std::nullopt;
  return std::filesystem::path(value);
}

}  // namespace

std::optional<std::filesystem::path> UserPreferencesFolder() {
  if (std::optional<std::filesystem::path> config = AbsolutePathFromEnvironment("XDG_CONFIG_HOME"))
    return *config / "varno";
  std::optional<std::filesystem::path> home = AbsolutePathFromEnvironment("HOME");
  if (!home) {
    std::optional<detail::UserRecord> self = detail::LookUpUser(geteuid());
    if (!self || self->home.empty() || self->home.front() != '/') return std::nullopt;
    home = self->home;
  }
  return *home / ".config" / "varno";
}

std::optional<std::filesystem::path> ApplicationSupportFolder() {
  const char* overridden = std::getenv("VARNO_SUPPORT_DIR");
  if (overridden != nullptr && overridden[0] != '\0') return std::filesystem::path(overridden);
  return std::filesystem::path("/var/lib/varno");
}

FolderResult CreateFolder(const std::filesystem::path& folder) {
  if (folder.empty()) return {false, "cannot create a folder with an empty path"};
  std::error_code ec;
  // An existing folder is success; a file already at the path is an error here too.
  std::filesystem::create_directories(folder, ec);
  if (!ec) return {true, {}};
  return {false, "cannot create folder \"" + folder.string() + "\": " + ec.message()};
}

}  // namespace varno::sys
