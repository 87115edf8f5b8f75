// SPDX-License-Identifier: Apache-2.0
#include "platform/plist/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/plist/formats.h"

namespace varno::plist {
namespace {

// Closes a descriptor when it goes out of scope.
class FileDescriptor {
 public:
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { reset(); }
  int get() const { return fd_; }
  // Closes now and reports whether the close itself succeeded (it can fail on NFS or a full disk).
  bool reset() {
    int fd = fd_;
    fd_ = -1;
    return fd < 0 || ::close(fd) == 0;
  }

 private:
  int fd_;
};

void SetError(std::string* error, std::string message) {
  if (error) *error = std::move(message);
}

std::string SystemError(int err) { return std::strerror(err); }

// What kind of file system object a mode names, for messages.
std::string FileTypeName(mode_t mode) {
  if (S_ISDIR(mode)) return "a folder";
  if (S_ISFIFO(mode)) return "a FIFO";
  if (S_ISSOCK(mode)) return "a socket";
  if (S_ISCHR(mode)) return "a character device";
  if (S_ISBLK(mode)) return "a block device";
  return "not a plain file";
}

}  // namespace

std::optional<Value> Parse(std::string_view bytes, std::string* error) {
  if (bytes.empty()) {
    SetError(error, "is empty");
    return std::nullopt;
  }
  if (bytes.size() > kMaxFileSize) {
    SetError(error, "is too large (" + std::to_string(bytes.size()) + " bytes; the limit is " +
                        std::to_string(kMaxFileSize) + ")");
    return std::nullopt;
  }
  std::string scratch;
  std::string* why = error ? error : &scratch;
  if (bytes.starts_with("bplist")) {
    if (!bytes.starts_with("bplist00")) {
      SetError(error, "is a binary property list of a version this system does not read");
      return std::nullopt;
    }
    return formats::ReadBinary(bytes, why);
  }
  return formats::ReadXML(bytes, why);
}

std::optional<std::string> ToXML(const Value& value, std::string* error) {
  std::string scratch;
  return formats::WriteXML(value, error ? error : &scratch);
}

std::optional<std::string> ToBinary(const Value& value, std::string* error) {
  std::string scratch;
  return formats::WriteBinary(value, error ? error : &scratch);
}

std::optional<Value> ReadFile(const std::filesystem::path& path, std::string* error) {
  const std::string name = path.string();
  // Non-blocking, so that a FIFO or a device is refused below instead of waiting forever
  // for a writer; for a regular file the flag changes nothing.
  FileDescriptor fd(::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (fd.get() < 0) {
    SetError(error, name + ": " + SystemError(errno));
    return std::nullopt;
  }
  struct stat info {};
  if (::fstat(fd.get(), &info) != 0) {
    SetError(error, name + ": " + SystemError(errno));
    return std::nullopt;
  }
  if (!S_ISREG(info.st_mode)) {
    SetError(error, name + ": is not a regular file (" + FileTypeName(info.st_mode) +
                        "); give the path of a property-list file");
    return std::nullopt;
  }
  // A regular file: plain blocking reads from here on.
  ::fcntl(fd.get(), F_SETFL, ::fcntl(fd.get(), F_GETFL) & ~O_NONBLOCK);
  if (static_cast<std::uint64_t>(info.st_size) > kMaxFileSize) {
    SetError(error, name + ": is too large (" + std::to_string(info.st_size) +
                        " bytes; the limit is " + std::to_string(kMaxFileSize) + ")");
    return std::nullopt;
  }
  std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = ::read(fd.get(), bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      SetError(error, name + ": " + SystemError(errno));
      return std::nullopt;
    }
    if (n == 0) break;  // shrank while we read it
    done += static_cast<std::size_t>(n);
  }
  bytes.resize(done);
  std::string why;
  std::optional<Value> value = Parse(bytes, &why);
  if (!value) SetError(error, name + ": " + why);
  return value;
}

std::optional<Dictionary> ReadDictionaryFile(const std::filesystem::path& path,
                                             std::string* error) {
  std::optional<Value> value = ReadFile(path, error);
  if (!value) return std::nullopt;
  if (!value->isDictionary()) {
    SetError(error, path.string() + ": the root is " + KindName(value->kind()) +
                        ", not a dictionary");
    return std::nullopt;
  }
  return *value->asDictionary();
}

bool WriteFile(const std::filesystem::path& path, const Value& value, std::string* error) {
  std::string why;
  std::optional<std::string> xml = ToXML(value, &why);
  if (!xml) {
    SetError(error, path.string() + ": " + why);
    return false;
  }
  return ReplaceFileContents(path, *xml, error);
}

namespace {

// Which step of a replacement failed, for the message.
enum class ReplaceStep { Create, Permissions, Write, Rename };

// Writes `bytes` to a temporary file beside `path` with exactly `mode` (set on the
// descriptor before anything is in it, never through the path), flushes it, renames it
// over `path` and flushes the folder, so after a crash the folder names the old file or
// the new one. 0 or the errno of the failing step; the old file is untouched then.
int ReplaceFile(const std::filesystem::path& path, std::string_view bytes, mode_t mode,
                ReplaceStep* step) {
  std::filesystem::path folder = path.parent_path();
  if (folder.empty()) folder = ".";
  std::string temp = (folder / ("." + path.filename().string() + ".XXXXXX")).string();
  *step = ReplaceStep::Create;
  FileDescriptor fd(::mkstemp(temp.data()));
  if (fd.get() < 0) return errno;
  auto fail = [&](ReplaceStep failed, int err) {
    fd.reset();
    ::unlink(temp.c_str());
    *step = failed;
    return err ? err : EIO;
  };
  if (::fchmod(fd.get(), mode) != 0) return fail(ReplaceStep::Permissions, errno);
  std::size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = ::write(fd.get(), bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return fail(ReplaceStep::Write, errno);
    done += static_cast<std::size_t>(n);
  }
  if (::fsync(fd.get()) != 0) return fail(ReplaceStep::Write, errno);
  if (!fd.reset()) return fail(ReplaceStep::Write, errno);
  if (::rename(temp.c_str(), path.c_str()) != 0) return fail(ReplaceStep::Rename, errno);
  FileDescriptor dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (dir.get() >= 0) ::fsync(dir.get());
  return 0;
}

}  // namespace

bool ReplaceFileContents(const std::filesystem::path& path, std::string_view bytes,
                         std::string* error) {
  const std::string name = path.string();
  // A replaced file keeps its permissions; a new one gets the usual 0644 less the umask.
  struct stat old {};
  mode_t mode = 0644;
  if (::stat(name.c_str(), &old) == 0) {
    mode = old.st_mode & 07777;
  } else {
    mode_t mask = ::umask(0);
    ::umask(mask);
    mode &= ~mask;
  }
  ReplaceStep step;
  const int err = ReplaceFile(path, bytes, mode, &step);
  if (err == 0) return true;
  std::filesystem::path folder = path.parent_path();
  if (folder.empty()) folder = ".";
  switch (step) {
    case ReplaceStep::Create:
      SetError(error, name + ": cannot write in " + folder.string() + ": " + SystemError(err));
      break;
    case ReplaceStep::Permissions:
      SetError(error, name + ": cannot set permissions: " + SystemError(err));
      break;
    case ReplaceStep::Write:
      SetError(error, name + ": write failed: " + SystemError(err));
      break;
    case ReplaceStep::Rename:
      SetError(error, name + ": cannot replace the file: " + SystemError(err));
      break;
  }
  return false;
}

int ReplaceFileContentsWithMode(const std::filesystem::path& path, std::string_view bytes,
                                mode_t mode) {
  ReplaceStep step;
  return ReplaceFile(path, bytes, mode, &step);
}

}  // namespace varno::plist
