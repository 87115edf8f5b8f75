// SPDX-License-Identifier: Apache-2.0
#include "panels/booklet_watermark/watermark_store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "platform/plist/file.h"
#include "platform/system/folders.h"

namespace varno::panels {
namespace {

// Who may change the stores is decided by the folder alone, since every change replaces a
// file by a rename there: the installed folder lets the group lpadmin do it (setgid 2775,
// made by the package's tmpfiles.d entry); a folder this code has to make itself (no
// installed folder, or VARNO_SUPPORT_DIR) lets every local user do it. It never has the
// sticky bit, under which a user could not rename a new store over another user's file.
// Files are writable by owner and group only, so nobody outside them rewrites one in place.
constexpr mode_t kSharedFolderMode = 0777;
constexpr mode_t kSharedFileMode = 0664;
// Damaged copies are never overwritten; past this many the save is refused instead.
constexpr int kMaxDamagedCopies = 100;

enum class StoreState { Missing, Unreadable, Damaged, Good };

// What reading a store file found. `bytes` are kept only for a damaged file, so that a
// save can put them aside before replacing it.
struct StoreContents {
  StoreState state = StoreState::Missing;
  std::optional<plist::Dictionary> root;
  std::string bytes;
  int error = 0;  // errno of an unreadable file
};

// Closes a descriptor when it goes out of scope.
struct Descriptor {
  int fd;
  explicit Descriptor(int d) : fd(d) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd >= 0) ::close(fd);
  }
  // Closes now; false when the close reports a failed write.
  bool close() {
    int d = fd;
    fd = -1;
    return d < 0 || ::close(d) == 0;
  }
};

bool WriteAll(int fd, std::string_view bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    done += static_cast<std::size_t>(n);
  }
  return true;
}

StoreContents ReadStore(const std::filesystem::path& file) {
  StoreContents contents;
  // Non-blocking, so that a FIFO planted in the shared folder is refused below instead of
  // waiting for a writer forever.
  Descriptor fd(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (fd.fd < 0) {
    contents.state = errno == ENOENT ? StoreState::Missing : StoreState::Unreadable;
    contents.error = errno;
    return contents;
  }
  struct stat info {};
  if (::fstat(fd.fd, &info) != 0 || !S_ISREG(info.st_mode) ||
      static_cast<std::uint64_t>(info.st_size) > plist::kMaxFileSize) {
    // Not something a save may replace blindly, nor something to copy aside in memory.
    contents.state = StoreState::Unreadable;
    contents.error = S_ISREG(info.st_mode) ? EFBIG : EISDIR;
    std::fprintf(stderr, "CopyXMLData()::CFPropertyListCreateFromXMLData() error: %s\n",
                 S_ISREG(info.st_mode) ? "the file is too large" : "not a regular file");
    return contents;
  }
  ::fcntl(fd.fd, F_SETFL, ::fcntl(fd.fd, F_GETFL) & ~O_NONBLOCK);
  std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = ::read(fd.fd, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      contents.state = StoreState::Unreadable;
      contents.error = errno;
      return contents;
    }
    if (n == 0) break;
    done += static_cast<std::size_t>(n);
  }
  bytes.resize(done);

  std::string why;
  std::optional<plist::Value> value = plist::Parse(bytes, &why);
  if (value && !value->isDictionary())
    why = std::string("the root is ") + plist::KindName(value->kind()) + ", not a dictionary";
  if (!value || !value->isDictionary()) {
    std::fprintf(stderr, "CopyXMLData()::CFPropertyListCreateFromXMLData() error: %s\n",
                 why.c_str());
    contents.state = StoreState::Damaged;
    contents.bytes = std::move(bytes);
    return contents;
  }
  contents.state = StoreState::Good;
  contents.root = *value->asDictionary();
  return contents;
}

// Replaces the store file with `root`, atomically and readable and writable by all.
// Returns 0 or the errno of the failure; on failure the previous file is untouched.
int WriteStore(const std::filesystem::path& file, const plist::Dictionary& root) {
  std::optional<std::string> xml = plist::ToXML(plist::Value(root));
  if (!xml) return EINVAL;
  return plist::ReplaceFileContentsWithMode(file, *xml, kSharedFileMode);
}

// Writes the bytes of a damaged store to a new "<file>.damaged" (or ".damaged.N") file
// beside it. Existing copies are never overwritten, so a store damaged twice keeps both.
bool KeepDamagedCopy(const std::filesystem::path& file, std::string_view bytes) {
  for (int n = 0; n < kMaxDamagedCopies; ++n) {
    std::string name = file.string() + ".damaged";
    if (n > 0) name += "." + std::to_string(n);
    Descriptor fd(::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kSharedFileMode));
    if (fd.fd < 0 && errno == EEXIST) continue;
    if (fd.fd < 0) return false;
    bool written = ::fchmod(fd.fd, kSharedFileMode) == 0 && WriteAll(fd.fd, bytes) &&
                   ::fsync(fd.fd) == 0 && fd.close();
    if (!written) {
      ::unlink(name.c_str());
      return false;
    }
    std::fprintf(stderr, "The damaged store was kept as \"%s\".\n", name.c_str());
    return true;
  }
  return false;
}

// The dictionary a save starts from: the store's own, or a new one for a missing store or a
// damaged one (after putting the damaged bytes aside). nullopt, with the reason in *error,
// when the store exists but cannot be read or put aside: writing over it would lose it.
std::optional<plist::Dictionary> RootForSave(const std::filesystem::path& file,
                                             StoreContents& contents, int* error) {
  switch (contents.state) {
    case StoreState::Good: return contents.root;
    case StoreState::Missing: return plist::Dictionary();
    case StoreState::Damaged:
      // An empty file holds nothing worth keeping.
      if (contents.bytes.empty() || KeepDamagedCopy(file, contents.bytes))
        return plist::Dictionary();
      *error = errno ? errno : EIO;
      return std::nullopt;
    case StoreState::Unreadable: *error = contents.error; return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::filesystem::path> CopyPreferenceFileURL(std::string_view fileName) {
  // A store name is a plain file name; anything else could reach outside the folder.
  if (fileName.empty() || fileName.find('/') != std::string_view::npos || fileName == "." ||
      fileName == "..")
    return std::nullopt;
  std::optional<std::filesystem::path> support = sys::ApplicationSupportFolder();
  if (!support) return std::nullopt;
  std::filesystem::path folder = *support / kStoreFolderName;
  struct stat info {};
  if (::stat(folder.c_str(), &info) != 0) {
    if (!sys::CreateFolder(*support).ok) return std::nullopt;
    if (::mkdir(folder.c_str(), kSharedFolderMode) == 0) {
      // mkdir applies the umask; the folder must really be open to every user. An existing
      // folder keeps whatever mode the administrator gave it.
      ::chmod(folder.c_str(), kSharedFolderMode);
    } else if (errno != EEXIST) {
      return std::nullopt;
    }
    if (::stat(folder.c_str(), &info) != 0) return std::nullopt;
  }
  if (!S_ISDIR(info.st_mode)) return std::nullopt;
  return folder / fileName;
}

std::optional<plist::Dictionary> CopyXMLData(std::string_view fileName) {
  std::optional<std::filesystem::path> file = CopyPreferenceFileURL(fileName);
  if (!file) return std::nullopt;
  return ReadStore(*file).root;
}

bool loadWatermarkList(std::string_view fileName, toolkit::ListView* listView,
                       std::optional<plist::Array>* list) {
  if (fileName.empty() || !list) return false;
  std::optional<plist::Dictionary> root = CopyXMLData(fileName);
  *list = root ? root->getArray(kWatermarkListEntriesKey) : std::nullopt;
  if (!*list) return false;
  if (listView) {
    std::vector<toolkit::DataBrowserItemID> rows;
    for (std::size_t i = 0; i < (*list)->size(); ++i) rows.push_back(i + 1);
    listView->addItems(rows);
    listView->refresh();
  }
  return true;
}

void saveWatermarkList(std::string_view fileName, const plist::Array* names) {
  if (fileName.empty() || !names) return;
  std::optional<std::filesystem::path> file = CopyPreferenceFileURL(fileName);
  if (!file) return;
  StoreContents contents = ReadStore(*file);
  int error = 0;
  std::optional<plist::Dictionary> root = RootForSave(*file, contents, &error);
  if (!root) return;
  root->set(kWatermarkListEntriesKey, *names);
  WriteStore(*file, *root);
}

int loadWatermarkData(std::string_view fileName, std::string_view name, WatermarkData* record) {
  if (!record) return 0;
  if (std::optional<plist::Dictionary> root = CopyXMLData(fileName)) {
    if (std::optional<plist::Dictionary> stored = root->getDictionary(name)) {
      ReadWatermarkDictionary(*stored, record);
      return 1;
    }
  }
  ClearWatermarkData(record);
  return 0;
}

void saveWatermarkData(std::string_view fileName, const WatermarkData& record) {
  std::string name = WatermarkName(record);
  int error = 0;
  errno = 0;
  std::optional<std::filesystem::path> file = CopyPreferenceFileURL(fileName);
  if (!file) {
    error = errno ? errno : ENOENT;
  } else if (name == kWatermarkListEntriesKey) {
    // A record under the list's key would replace the list of every user.
    error = EINVAL;
  } else {
    StoreContents contents = ReadStore(*file);
    if (std::optional<plist::Dictionary> root = RootForSave(*file, contents, &error)) {
      root->set(name, CreateWatermarkDictionary(record));
      error = WriteStore(*file, *root);
    }
  }
  if (error != 0)
    std::fprintf(stderr, "saveWatermarkData: Error %ld writing data to file\n",
                 static_cast<long>(error));
}

void removeWatermarkData(std::string_view fileName, std::string_view name) {
  std::optional<std::filesystem::path> file = CopyPreferenceFileURL(fileName);
  if (!file) return;
  std::optional<plist::Dictionary> root = ReadStore(*file).root;
  if (!root) return;
  bool changed = root->remove(name);
  // The handle shares the root's array, so removing from it changes the root.
  if (std::optional<plist::Array> entries = root->getArray(kWatermarkListEntriesKey)) {
    for (std::size_t i = 0; i < entries->size(); ++i) {
      const std::string* entry = (*entries)[i].asString();
      if (entry && *entry == name) {
        entries->remove(i);
        changed = true;
        break;
      }
    }
  }
  if (changed) WriteStore(*file, *root);
}

void storeFontData(std::string_view fileName, std::string_view key, const plist::Data& data) {
  std::optional<std::filesystem::path> file = CopyPreferenceFileURL(fileName);
  if (!file) return;
  std::optional<plist::Dictionary> root = ReadStore(*file).root;
  if (!root) return;
  root->set(key, data);
  WriteStore(*file, *root);
}

void loadFontData(std::string_view fileName, std::string_view key, plist::Data* buffer) {
  if (!buffer) return;
  std::optional<plist::Dictionary> root = CopyXMLData(fileName);
  if (!root) return;
  if (std::optional<plist::Data> data = root->getData(key))
    buffer->insert(buffer->end(), data->begin(), data->end());
}

std::string SubsetFontKey(std::string_view fontName) {
  return "VN-" + std::string(fontName) + "-VN";
}

int CreateDefaultWatermarks(const bundle::Bundle* bundle) {
  struct Default {
    const char* key;
    double xPos, yPos;
  };
  static constexpr Default kDefaults[] = {
      {"DraftWatermark", 280.627441, 311.049927},
      {"ConfidentialWatermark", 201.350601, 231.773102},
      {"CopyWatermark", 276.36319, 306.785675},
  };
  WatermarkData record;
  record.isTextWatermark = 1;
  record.angle = 45;
  record.density = 25;
  record.scale = 100;
  CopyWatermarkString(record.fontName, "ArialMT");
  record.fontSize = 72;
  record.fontColorRed = 0.75f, record.fontColorGreen = 0.75f;
  record.fontColorBlue = 1.0f, record.fontColorAlpha = 1.0f;
  record.wellColorRed = 0.0f, record.wellColorGreen = 0.0f;
  record.wellColorBlue = 1.0f, record.wellColorAlpha = 1.0f;

  plist::Array names;
  for (const Default& d : kDefaults) {
    std::string text = bundle ? bundle::CopyLocalizedString(*bundle, d.key, "Localizable",
                                                            "STRING NOT FOUND")
                              : std::string("STRING NOT FOUND");
    CopyWatermarkString(record.text, text);
    // The list names the record as stored, which is the text cut to the field.
    names.append(WatermarkString(record.text));
    record.xPos = d.xPos;
    record.yPos = d.yPos;
    saveWatermarkData(kWatermarkStoreFileName, record);
  }
  saveWatermarkList(kWatermarkStoreFileName, &names);
  return 0;
}

}  // namespace varno::panels
