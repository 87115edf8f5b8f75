// SPDX-License-Identifier: Apache-2.0
#include "platform/system/posix_util.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <vector>

namespace varno::sys::detail {

std::optional<std::string> ReadSmallFile(const std::filesystem::path& file,
                                         std::size_t maxBytes) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  std::string contents;
  char buffer[4096];
  while (in.read(buffer, sizeof buffer) || in.gcount() > 0) {
    contents.append(buffer, static_cast<std::size_t>(in.gcount()));
    if (contents.size() > maxBytes) return std::nullopt;
  }
  if (in.bad()) return std::nullopt;
  return contents;
}

std::optional<UserRecord> LookUpUser(uid_t uid) {
  long suggested = sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buffer(suggested > 0 ? static_cast<std::size_t>(suggested) : 4096);
  // Entries from network directories can exceed the suggested size; grow on ERANGE.
  for (;;) {
    passwd entry{};
    passwd* found = nullptr;
    int rc = getpwuid_r(uid, &entry, buffer.data(), buffer.size(), &found);
    if (rc == ERANGE && buffer.size() < (1u << 20)) {
      buffer.resize(buffer.size() * 2);
      continue;
    }
    if (rc != 0 || found == nullptr) return std::nullopt;
    return UserRecord{found->pw_name ? found->pw_name : "",
                      found->pw_dir ? found->pw_dir : ""};
  }
}

}  // namespace varno::sys::detail
