// SPDX-License-Identifier: Apache-2.0
#include "platform/bundle/bundle.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "platform/plist/file.h"


namespace fs = std::filesystem;

namespace varno::bundle {
namespace {

// Every bundle open in the process, by canonical folder. Weak references, so the table
// never keeps a bundle (and its library) alive; dead entries are pruned as bundles open.
struct OpenBundles {
  std::mutex mutex;
  std::map<fs::path, std::weak_ptr<Bundle>> byPath;
};

OpenBundles& Registry() {
  static OpenBundles registry;
  return registry;
}

std::vector<std::string> SplitColons(std::string_view text) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    std::size_t colon = text.find(':');
    std::string_view part = text.substr(0, colon);
    if (!part.empty()) parts.emplace_back(part);
    if (colon == std::string_view::npos) break;
    text.remove_prefix(colon + 1);
  }
  return parts;
}

// "de_DE.UTF-8@euro" -> "de_DE".
std::string StripCodesetAndModifier(std::string_view locale) {
  return std::string(locale.substr(0, locale.find_first_of(".@")));
}

bool IsPortableLocale(std::string_view locale) {
  std::string name = StripCodesetAndModifier(locale);
  return name.empty() || name == "C" || name == "POSIX";
}

std::string JoinPaths(const std::vector<fs::path>& paths) {
  std::string joined;
  for (const fs::path& p : paths) {
    if (!joined.empty()) joined += ':';
    joined += p.string();
  }
  return joined;
}

// The child folders of `dir` that look like bundles, in name order.
std::vector<fs::path> BundleFoldersIn(const fs::path& dir) {
  std::vector<fs::path> folders;
  std::error_code ec;
  for (const fs::directory_entry& entry : fs::directory_iterator(dir, ec)) {
    std::error_code statError;
    if (entry.is_directory(statError) &&
        fs::is_regular_file(entry.path() / "Contents" / "Info.plist", statError)) {
      folders.push_back(entry.path());
    }
  }
  std::sort(folders.begin(), folders.end());
  return folders;
}

std::optional<std::string> IdentifierOfFolder(const fs::path& dir) {
  std::optional<plist::Dictionary> info =
      plist::ReadDictionaryFile(dir / "Contents" / "Info.plist");
  if (!info) return std::nullopt;
  return info->getString("CFBundleIdentifier");
}

void SetError(std::string* error, std::string text) {
  if (error) *error = std::move(text);
}

}  // namespace

std::vector<fs::path> BundleSearchPath() {
  std::vector<fs::path> path;
  if (const char* extra = std::getenv(kBundlePathVariable)) {
    for (std::string& folder : SplitColons(extra)) path.emplace_back(std::move(folder));
  }
  if (std::optional<fs::path> installed = InstalledBundleFolder()) path.push_back(*installed);
  return path;
}

std::optional<fs::path> InstalledBundleFolder() {
  // The bundles are installed beside this library, wherever the package put both, so no
  // path is compiled in and an installed tree can be moved whole.
  Dl_info info{};
  if (::dladdr(reinterpret_cast<void*>(&InstalledBundleFolder), &info) == 0 || !info.dli_fname)
    return std::nullopt;
  std::error_code ec;
  fs::path library = fs::canonical(info.dli_fname, ec);
  if (ec) return std::nullopt;
  return library.parent_path();
}

std::vector<std::string> PreferredLanguages() {
  std::string_view locale;
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value && *value) {
      locale = value;
      break;
    }
  }
  // gettext ignores LANGUAGE under the C locale, and so do we: "C" means untranslated.
  if (IsPortableLocale(locale)) return {};

  std::vector<std::string> languages;
  if (const char* list = std::getenv("LANGUAGE")) {
    for (const std::string& entry : SplitColons(list)) {
      if (IsPortableLocale(entry)) continue;
      std::string language = StripCodesetAndModifier(entry);
      if (std::find(languages.begin(), languages.end(), language) == languages.end()) {
        languages.push_back(language);
      }
    }
  }
  if (languages.empty()) languages.push_back(StripCodesetAndModifier(locale));
  return languages;
}

void Bundle::LibraryCloser::operator()(void* handle) const {
  if (handle) dlclose(handle);
}

Bundle::Bundle(fs::path path, plist::Dictionary info)
    : path_(std::move(path)), info_(std::move(info)) {
  std::error_code ec;
  for (const fs::directory_entry& entry : fs::directory_iterator(resourcesPath(), ec)) {
    std::error_code statError;
    if (entry.path().extension() == ".lproj" && entry.is_directory(statError)) {
      localizations_.push_back(entry.path().stem().string());
    }
  }
  std::sort(localizations_.begin(), localizations_.end());
}

Bundle::~Bundle() = default;

BundleRef Bundle::Open(const fs::path& dir, std::string* error) {
  std::error_code ec;
  fs::path canonical = fs::canonical(dir, ec);
  if (ec || !fs::is_directory(canonical, ec)) {
    SetError(error, "no bundle folder at \"" + dir.string() + "\"");
    return nullptr;
  }

  OpenBundles& registry = Registry();
  std::lock_guard lock(registry.mutex);
  std::erase_if(registry.byPath, [](const auto& entry) { return entry.second.expired(); });
  if (auto found = registry.byPath.find(canonical); found != registry.byPath.end()) {
    if (BundleRef open = found->second.lock()) return open;
  }

  std::string readError;
  std::optional<plist::Dictionary> info =
      plist::ReadDictionaryFile(canonical / "Contents" / "Info.plist", &readError);
  if (!info) {
    SetError(error, "\"" + dir.string() + "\" is not a bundle: " + readError);
    return nullptr;
  }
  BundleRef bundle(new Bundle(canonical, std::move(*info)));
  registry.byPath[canonical] = bundle;
  return bundle;
}

BundleRef Bundle::FindByIdentifier(std::string_view identifier, std::string* error) {
  {
    OpenBundles& registry = Registry();
    std::lock_guard lock(registry.mutex);
    for (const auto& [path, weak] : registry.byPath) {
      BundleRef open = weak.lock();
      if (open && open->identifier() == identifier) return open;
    }
  }
  std::vector<fs::path> searchPath = BundleSearchPath();
  for (const fs::path& folder : searchPath) {
    for (const fs::path& candidate : BundleFoldersIn(folder)) {
      if (IdentifierOfFolder(candidate) == identifier) return Open(candidate, error);
    }
  }
  SetError(error, "no bundle with identifier \"" + std::string(identifier) + "\" in " +
                      JoinPaths(searchPath));
  return nullptr;
}

fs::path Bundle::executablePath() const {
  std::optional<std::string> name = info_.getString("CFBundleExecutable");
  if (!name || name->empty()) return {};
  return contentsPath() / "Linux" / *name;
}

std::string Bundle::identifier() const {
  return info_.getString("CFBundleIdentifier").value_or(std::string());
}

std::string Bundle::developmentRegion() const {
  std::optional<std::string> region = info_.getString("CFBundleDevelopmentRegion");
  return region && !region->empty() ? *region : std::string("en");
}

std::vector<std::string> Bundle::localizationSearchOrder() const {
  std::vector<std::string> order;
  auto add = [&](const std::string& name) {
    if (std::binary_search(localizations_.begin(), localizations_.end(), name) &&
        std::find(order.begin(), order.end(), name) == order.end()) {
      order.push_back(name);
    }
  };
  for (const std::string& language : PreferredLanguages()) {
    // Folders are named either "pt_BR" or "pt-BR"; accept both, then the bare language.
    std::string underscored = language, hyphenated = language;
    std::replace(underscored.begin(), underscored.end(), '-', '_');
    std::replace(hyphenated.begin(), hyphenated.end(), '_', '-');
    add(language);
    add(underscored);
    add(hyphenated);
    add(language.substr(0, language.find_first_of("_-")));
  }
  add(developmentRegion());
  return order;
}

namespace {

std::string ResourceFileName(std::string_view name, std::string_view type) {
  if (!type.empty() && type.front() == '.') type.remove_prefix(1);
  std::string file(name);
  if (!type.empty()) {
    file += '.';
    file += type;
  }
  return file;
}

std::optional<fs::path> ExistingResource(const fs::path& folder, std::string_view subfolder,
                                         const std::string& file) {
  fs::path candidate = subfolder.empty() ? folder / file : folder / subfolder / file;
  std::error_code ec;
  if (fs::exists(candidate, ec)) return candidate;
  return std::nullopt;
}

}  // namespace

std::optional<fs::path> Bundle::resourcePath(std::string_view name, std::string_view type,
                                             std::string_view subfolder) const {
  if (name.empty()) return std::nullopt;
  std::string file = ResourceFileName(name, type);
  for (const std::string& localization : localizationSearchOrder()) {
    if (auto found =
            ExistingResource(resourcesPath() / (localization + ".lproj"), subfolder, file)) {
      return found;
    }
  }
  return ExistingResource(resourcesPath(), subfolder, file);
}

std::optional<fs::path> Bundle::resourcePathForLocalization(std::string_view name,
                                                            std::string_view type,
                                                            std::string_view subfolder,
                                                            std::string_view localization) const {
  if (name.empty()) return std::nullopt;
  std::string file = ResourceFileName(name, type);
  if (!localization.empty()) {
    std::string folder = std::string(localization) + ".lproj";
    if (auto found = ExistingResource(resourcesPath() / folder, subfolder, file)) return found;
  }
  return ExistingResource(resourcesPath(), subfolder, file);
}

const Bundle::Table& Bundle::tableLocked(const std::string& localization,
                                         std::string_view name) const {
  auto key = std::make_pair(localization, std::string(name));
  if (auto cached = tables_.find(key); cached != tables_.end()) return cached->second;

  fs::path file = resourcesPath() / (localization + ".lproj") / (key.second + ".plist");
  Table table;
  std::error_code ec;
  if (fs::exists(file, ec)) {
    std::string readError;
    table = plist::ReadDictionaryFile(file, &readError);
    // A damaged table is reported once (the result is cached) and reads as missing.
    if (!table) std::fprintf(stderr, "string table unreadable: %s\n", readError.c_str());
  }
  return tables_.emplace(std::move(key), std::move(table)).first->second;
}

std::string Bundle::stringLocked(std::string_view key, std::string_view table,
                                 std::string_view defaultValue,
                                 const std::vector<std::string>& localizations) const {
  for (const std::string& localization : localizations) {
    const Table& strings = tableLocked(localization, table);
    if (!strings) continue;
    if (std::optional<std::string> text = strings->getString(key)) return *text;
  }
  return std::string(defaultValue);
}

std::string Bundle::localizedString(std::string_view key, std::string_view table,
                                    std::string_view defaultValue) const {
  std::vector<std::string> order = localizationSearchOrder();
  std::lock_guard lock(mutex_);
  return stringLocked(key, table, defaultValue, order);
}

std::string Bundle::localizedStringForLocalization(std::string_view key,
                                                   std::string_view table,
                                                   std::string_view defaultValue,
                                                   std::string_view localization) const {
  std::vector<std::string> order;
  if (std::binary_search(localizations_.begin(), localizations_.end(), localization)) {
    order.emplace_back(localization);
  }
  std::string region = developmentRegion();
  if (order.empty() || order.front() != region) order.push_back(region);
  std::lock_guard lock(mutex_);
  return stringLocked(key, table, defaultValue, order);
}

bool Bundle::load(std::string* error) const {
  std::lock_guard lock(mutex_);
  if (library_) return true;
  if (!loadAttempted_) {
    loadAttempted_ = true;
    fs::path executable = executablePath();
    if (executable.empty()) {
      loadError_ = "bundle \"" + path_.string() + "\" names no CFBundleExecutable";
    } else if (void* handle = dlopen(executable.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)) {
      // A loaded plug-in stays mapped for the life of the process, as plug-ins of a
      // printing framework do: handlers, presenters and exit-time destructors it gave to
      // the shared toolkit may still be called after the last reference to its bundle goes.
      library_.reset(handle);
      return true;
    } else {
      const char* why = dlerror();
      loadError_ = "cannot load \"" + executable.string() + "\": " + (why ? why : "unknown");
    }
  }
  SetError(error, loadError_);
  return false;
}

bool Bundle::isLoaded() const {
  std::lock_guard lock(mutex_);
  return library_ != nullptr;
}

void* Bundle::functionPointer(std::string_view name, std::string* error) const {
  if (!load(error)) return nullptr;
  std::lock_guard lock(mutex_);
  void* address = dlsym(library_.get(), std::string(name).c_str());
  if (!address) {
    SetError(error, "\"" + std::string(name) + "\" is not exported by \"" +
                        executablePath().string() + "\"");
  }
  return address;
}

BundleRef Bundle::privateBundle(std::string_view nameOrIdentifier, std::string* error) const {
  std::vector<fs::path> folders = BundleFoldersIn(privatePlugInsPath());
  for (const fs::path& folder : folders) {
    if (folder.filename() == nameOrIdentifier || folder.stem() == nameOrIdentifier) {
      return Open(folder, error);
    }
  }
  for (const fs::path& folder : folders) {
    if (IdentifierOfFolder(folder) == nameOrIdentifier) return Open(folder, error);
  }
  SetError(error, "no private bundle \"" + std::string(nameOrIdentifier) + "\" in \"" +
                      privatePlugInsPath().string() + "\"");
  return nullptr;
}

std::string CopyLocalizedString(const Bundle& bundle, std::string_view key,
                                std::string_view table, std::string_view defaultValue) {
  return bundle.localizedString(key, table, defaultValue);
}

}  // namespace varno::bundle
