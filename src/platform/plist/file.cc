#include "platform/plist/file.h"

#include <fcntl.h>
#include <plist/plist.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace varno::plist {
namespace {

struct PlistFree {
  void operator()(plist_t node) const { plist_free(node); }
};
using PlistPtr = std::unique_ptr<void, PlistFree>;

struct MallocFree {
  void operator()(void* p) const { std::free(p); }
};

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

// Deepest nesting of <dict> and <array> in XML text, counted without parsing so that hostile
// input never reaches libplist's recursive code. "<dict/>" opens nothing.
int XMLNestingDepth(std::string_view xml) {
  int depth = 0, deepest = 0;
  for (std::size_t i = xml.find('<'); i != std::string_view::npos; i = xml.find('<', i + 1)) {
    std::string_view rest = xml.substr(i + 1);
    bool closing = !rest.empty() && rest.front() == '/';
    if (closing) rest.remove_prefix(1);
    std::size_t nameLength = 0;
    if (rest.starts_with("dict")) nameLength = 4;
    else if (rest.starts_with("array")) nameLength = 5;
    else continue;
    rest.remove_prefix(nameLength);
    if (rest.empty()) break;
    char next = rest.front();
    if (next == '/') continue;  // empty element
    if (next != '>' && next != ' ' && next != '\t' && next != '\n' && next != '\r') continue;
    if (closing) {
      --depth;
    } else {
      // "<dict >...": look for a self-closing end before counting it.
      std::size_t end = rest.find('>');
      if (end != std::string_view::npos && end > 0 && rest[end - 1] == '/') continue;
      deepest = std::max(deepest, ++depth);
    }
  }
  return deepest;
}

std::optional<Value> FromNode(plist_t node, int depth, std::string* error) {
  if (depth > kMaxDepth) {
    SetError(error, "nested deeper than " + std::to_string(kMaxDepth) + " levels");
    return std::nullopt;
  }
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      uint8_t b = 0;
      plist_get_bool_val(node, &b);
      return Value(b != 0);
    }
    case PLIST_UINT: {
      uint64_t u = 0;
      plist_get_uint_val(node, &u);
      // libplist keeps every integer as 64 unsigned bits; negative ones come back through the cast.
      return Value(static_cast<std::int64_t>(u));
    }
    case PLIST_REAL: {
      double d = 0;
      plist_get_real_val(node, &d);
      return Value(d);
    }
    case PLIST_STRING: {
      char* s = nullptr;
      plist_get_string_val(node, &s);
      std::unique_ptr<char, MallocFree> owned(s);
      return Value(std::string(s ? s : ""));
    }
    case PLIST_DATE: {
      int32_t sec = 0, usec = 0;
      plist_get_date_val(node, &sec, &usec);
      return Value(Date{static_cast<double>(sec) + static_cast<double>(usec) / 1e6});
    }
    case PLIST_DATA: {
      char* bytes = nullptr;
      uint64_t length = 0;
      plist_get_data_val(node, &bytes, &length);
      std::unique_ptr<char, MallocFree> owned(bytes);
      const auto* begin = reinterpret_cast<const std::uint8_t*>(bytes);
      return Value(bytes ? Data(begin, begin + length) : Data());
    }
    case PLIST_ARRAY: {
      Array array;
      uint32_t count = plist_array_get_size(node);
      for (uint32_t i = 0; i < count; ++i) {
        std::optional<Value> item = FromNode(plist_array_get_item(node, i), depth + 1, error);
        if (!item) return std::nullopt;
        array.append(std::move(*item));
      }
      return Value(std::move(array));
    }
    case PLIST_DICT: {
      Dictionary dictionary;
      plist_dict_iter it = nullptr;
      plist_dict_new_iter(node, &it);
      std::unique_ptr<void, MallocFree> ownedIter(it);
      for (;;) {
        char* key = nullptr;
        plist_t child = nullptr;
        plist_dict_next_item(node, it, &key, &child);
        std::unique_ptr<char, MallocFree> ownedKey(key);
        if (!child) break;
        std::optional<Value> item = FromNode(child, depth + 1, error);
        if (!item) return std::nullopt;
        dictionary.set(key ? key : "", std::move(*item));
      }
      return Value(std::move(dictionary));
    }
    default:
      SetError(error, "holds a value of a kind that is not supported (UID or key)");
      return std::nullopt;
  }
}

PlistPtr ToNode(const Value& value, int depth, std::string* error) {
  if (depth > kMaxDepth) {
    SetError(error, "value nested deeper than " + std::to_string(kMaxDepth) + " levels");
    return nullptr;
  }
  switch (value.kind()) {
    case Kind::String: return PlistPtr(plist_new_string(value.asString()->c_str()));
    case Kind::Integer:
      return PlistPtr(plist_new_uint(static_cast<uint64_t>(*value.asInteger())));
    case Kind::Real: return PlistPtr(plist_new_real(*value.asReal()));
    case Kind::Boolean: return PlistPtr(plist_new_bool(*value.asBoolean() ? 1 : 0));
    case Kind::Date: {
      double seconds = value.asDate()->seconds;
      double whole = std::floor(seconds);
      // The file form keeps whole seconds as a signed 32-bit count (1933 to 2069).
      if (!std::isfinite(seconds) || whole < -2147483648.0 || whole > 2147483647.0) {
        SetError(error, "date outside the range a property-list file can hold");
        return nullptr;
      }
      auto usec = static_cast<int32_t>(std::lround((seconds - whole) * 1e6));
      if (usec >= 1000000) usec = 999999;
      return PlistPtr(plist_new_date(static_cast<int32_t>(whole), usec));
    }
    case Kind::Data: {
      const Data& data = *value.asData();
      return PlistPtr(plist_new_data(reinterpret_cast<const char*>(data.data()), data.size()));
    }
    case Kind::Array: {
      PlistPtr node(plist_new_array());
      for (const Value& item : *value.asArray()) {
        PlistPtr child = ToNode(item, depth + 1, error);
        if (!child) return nullptr;
        plist_array_append_item(node.get(), child.release());
      }
      return node;
    }
    case Kind::Dictionary: {
      PlistPtr node(plist_new_dict());
      for (const auto& [key, item] : *value.asDictionary()) {
        PlistPtr child = ToNode(item, depth + 1, error);
        if (!child) return nullptr;
        plist_dict_set_item(node.get(), key.c_str(), child.release());
      }
      return node;
    }
  }
  return nullptr;
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
  bool binary = plist_is_binary(bytes.data(), static_cast<uint32_t>(bytes.size())) != 0;
  if (!binary && XMLNestingDepth(bytes) > kMaxDepth) {
    SetError(error, "is nested deeper than " + std::to_string(kMaxDepth) + " levels");
    return std::nullopt;
  }
  plist_t root = nullptr;
  if (binary)
    plist_from_bin(bytes.data(), static_cast<uint32_t>(bytes.size()), &root);
  else
    plist_from_xml(bytes.data(), static_cast<uint32_t>(bytes.size()), &root);
  PlistPtr owned(root);
  if (!root) {
    SetError(error, binary ? "is a damaged binary property list"
                           : "is not a well-formed XML property list (truncated or not XML)");
    return std::nullopt;
  }
  return FromNode(root, 0, error);
}

std::optional<std::string> ToXML(const Value& value, std::string* error) {
  PlistPtr root = ToNode(value, 0, error);
  if (!root) return std::nullopt;
  char* xml = nullptr;
  uint32_t length = 0;
  plist_to_xml(root.get(), &xml, &length);
  if (!xml) {
    SetError(error, "could not be rendered as XML");
    return std::nullopt;
  }
  std::string text(xml, length);
  plist_to_xml_free(xml);
  return text;
}

std::optional<std::string> ToBinary(const Value& value, std::string* error) {
  PlistPtr root = ToNode(value, 0, error);
  if (!root) return std::nullopt;
  char* bytes = nullptr;
  uint32_t length = 0;
  plist_to_bin(root.get(), &bytes, &length);
  if (!bytes) {
    SetError(error, "could not be rendered as a binary property list");
    return std::nullopt;
  }
  std::string data(bytes, length);
  plist_to_bin_free(bytes);
  return data;
}

std::optional<Value> ReadFile(const std::filesystem::path& path, std::string* error) {
  const std::string name = path.string();
  FileDescriptor fd(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
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
    SetError(error, name + ": is not a regular file");
    return std::nullopt;
  }
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
