// SPDX-License-Identifier: Apache-2.0
#include "platform/system/user_preferences.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

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

namespace {

// An exclusive lock on a file of its own, released when it goes. The lock file is never
// replaced, unlike the preference file, whose renames would leave a lock on a dead inode.
class PreferencesLock {
 public:
  explicit PreferencesLock(const std::filesystem::path& lockFile)
      : fd_(::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {
    if (fd_ < 0) return;
    const auto deadline = std::chrono::steady_clock::now() +
                          std::chrono::milliseconds(kPreferencesLockWaitMilliseconds);
    while (::flock(fd_, LOCK_EX | LOCK_NB) != 0) {
      if (errno != EWOULDBLOCK && errno != EINTR) break;
      if (std::chrono::steady_clock::now() >= deadline) {
        std::fprintf(stderr, "UpdateUserPreferences(): \"%s\" stays locked; writing anyway.\n",
                     lockFile.c_str());
        break;
      }
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
  }
  PreferencesLock(const PreferencesLock&) = delete;
  PreferencesLock& operator=(const PreferencesLock&) = delete;
  ~PreferencesLock() {
    if (fd_ >= 0) ::close(fd_);  // closing releases the lock
  }

 private:
  int fd_;
};

}  // namespace

bool UpdateUserPreferences(std::string_view fileName,
                           const std::function<void(plist::Dictionary&)>& change) {
  std::optional<std::filesystem::path> folder = UserPreferencesFolder();
  if (!folder || !CreateFolder(*folder).ok) {
    std::fprintf(stderr, "WriteUserPreferences() failed (%d)\n", -1);
    return false;
  }
  PreferencesLock lock(*folder / ("." + std::string(fileName) + ".lock"));
  plist::Dictionary dictionary = CopyUserPreferences(fileName).value_or(plist::Dictionary());
  change(dictionary);
  return WriteUserPreferences(fileName, dictionary);
}

}  // namespace varno::sys
