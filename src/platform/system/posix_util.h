// SPDX-License-Identifier: Apache-2.0
// Helpers shared by the system sources; not part of the public interface.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>

namespace varno::sys::detail {

// The whole contents of a small text file (up to maxBytes); nullopt when it cannot be read
// or is larger. Works for /proc files, which report a size of zero.
std::optional<std::string> ReadSmallFile(const std::filesystem::path& file,
                                         std::size_t maxBytes = 1 << 20);

struct UserRecord {
  std::string name;
  std::string home;
};

// The password-database record of uid; nullopt when there is none.
std::optional<UserRecord> LookUpUser(uid_t uid);

}  // namespace varno::sys::detail
