// SPDX-License-Identifier: Apache-2.0
// Bundles: a plug-in (or any loadable package) as a folder with a fixed layout.
//
//   Name.plugin/Contents/Info.plist                 identifier, executable, factories ...
//   Name.plugin/Contents/Linux/<CFBundleExecutable> the shared library, named exactly so
//   Name.plugin/Contents/Resources/                 resources that every language shares
//   Name.plugin/Contents/Resources/<lang>.lproj/    per-language resources and string tables
//   Name.plugin/Contents/PlugIns/                   private bundles, loaded the same way
//
// A Bundle is shared (BundleRef): its library stays loaded, and its parsed string tables
// cached, for as long as anyone holds a reference. Opening the same folder twice while a
// reference is alive gives the same object, so a plug-in that looks itself up by
// identifier gets the bundle its host loaded it from.
//
// Process-wide state: the table of open bundles (folder -> weak reference), guarded by a
// mutex. Bundles themselves guard their caches with their own mutex.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/plist/value.h"

namespace varno::bundle {

class Bundle;
using BundleRef = std::shared_ptr<Bundle>;

// The environment variable with extra bundle folders, separated by colons.
inline constexpr const char* kBundlePathVariable = "VARNO_BUNDLE_PATH";

// The folders searched for bundles, in order: every folder of VARNO_BUNDLE_PATH, then the
// install location. The override comes first so that a user or a test can run a
// development build of a bundle that is also installed; a run in the build tree finds the
// bundles only through it (the scripts and tests set it).
std::vector<std::filesystem::path> BundleSearchPath();
// Where bundles are installed: the folder that holds this platform library
// (<libdir>/varno once installed). nullopt when the library cannot find itself.
std::optional<std::filesystem::path> InstalledBundleFolder();

// The user's preferred languages from the locale environment, most preferred first, as
// "de_DE" or "de" (codeset and modifier dropped). The locale is the first non-empty of
// LC_ALL, LC_MESSAGES and LANG; when it is unset, "C" or "POSIX" the list is empty and
// bundles fall back to their development region. Otherwise LANGUAGE, a colon-separated
// list, takes precedence over the locale, as gettext does.
std::vector<std::string> PreferredLanguages();

class Bundle {
 public:
  // Opens the bundle folder `dir` (the folder holding Contents/). Returns null, and says
  // why in `error`, when the folder or its Contents/Info.plist is missing or unreadable,
  // or Info.plist is not a dictionary. The library is not loaded yet.
  static BundleRef Open(const std::filesystem::path& dir, std::string* error = nullptr);

  // Finds the bundle whose CFBundleIdentifier is `identifier`: first among bundles open
  // in this process, then among the folders directly inside each BundleSearchPath()
  // folder (in name order). Returns null, and says why, when there is none.
  static BundleRef FindByIdentifier(std::string_view identifier, std::string* error = nullptr);

  Bundle(const Bundle&) = delete;
  Bundle& operator=(const Bundle&) = delete;
  ~Bundle();

  // The bundle folder, canonical.
  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path contentsPath() const { return path_ / "Contents"; }
  std::filesystem::path resourcesPath() const { return contentsPath() / "Resources"; }
  std::filesystem::path privatePlugInsPath() const { return contentsPath() / "PlugIns"; }
  // Contents/Linux/<CFBundleExecutable>, or empty when Info.plist names no executable.
  std::filesystem::path executablePath() const;

  // The parsed Info.plist.
  const plist::Dictionary& infoDictionary() const { return info_; }
  // The Info.plist value under `key`, or null.
  const plist::Value* infoValue(std::string_view key) const { return info_.find(key); }
  // CFBundleIdentifier, empty when missing.
  std::string identifier() const;
  // CFBundleDevelopmentRegion, "en" when missing.
  std::string developmentRegion() const;

  // The names of the bundle's <lang>.lproj folders ("de", "en" ...), sorted.
  const std::vector<std::string>& localizations() const { return localizations_; }
  // The localizations to search, best first: those matching PreferredLanguages() (for
  // "de_DE": "de_DE", "de-DE", then "de"), then the development region. No duplicates.
  std::vector<std::string> localizationSearchOrder() const;

  // The path of resource "name.type" ("name" when type is empty; a leading dot in type
  // is ignored), inside `subfolder` when given. Looks in each localization of
  // localizationSearchOrder() first, then in the shared Resources folder. nullopt when
  // nowhere.
  std::optional<std::filesystem::path> resourcePath(std::string_view name,
                                                    std::string_view type = {},
                                                    std::string_view subfolder = {}) const;
  // As resourcePath, but for one given localization before the shared folder.
  std::optional<std::filesystem::path> resourcePathForLocalization(
      std::string_view name, std::string_view type, std::string_view subfolder,
      std::string_view localization) const;

  // The string under `key` in the string table `table` (Resources/<lang>.lproj/<table>.plist,
  // a property-list dictionary of strings), trying each of localizationSearchOrder().
  // Returns `defaultValue` when no table has the key. Tables are parsed once and cached.
  std::string localizedString(std::string_view key, std::string_view table,
                              std::string_view defaultValue) const;
  // As localizedString, but in one given localization, then the development region.
  std::string localizedStringForLocalization(std::string_view key, std::string_view table,
                                             std::string_view defaultValue,
                                             std::string_view localization) const;

  // Loads the library (dlopen, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE: never unmapped) the
  // first time it is asked for.
  // Returns true when it is loaded. A failure is remembered: later calls fail at once
  // with the same message, so a broken plug-in is not retried on every lookup.
  bool load(std::string* error = nullptr) const;
  bool isLoaded() const;
  // The address of the exported function `name`, loading the library first. Null when
  // the library cannot be loaded or does not export the name; `error` says which.
  void* functionPointer(std::string_view name, std::string* error = nullptr) const;
  // functionPointer cast to the caller's function type.
  template <typename Function>
  Function function(std::string_view name, std::string* error = nullptr) const {
    return reinterpret_cast<Function>(functionPointer(name, error));
  }

  // A private bundle from Contents/PlugIns/, found by folder name ("Helper.plugin"),
  // by folder name without its extension ("Helper"), or by CFBundleIdentifier. Null, and
  // `error` says why, when there is none.
  BundleRef privateBundle(std::string_view nameOrIdentifier, std::string* error = nullptr) const;

 private:
  struct LibraryCloser {
    void operator()(void* handle) const;
  };
  using Library = std::unique_ptr<void, LibraryCloser>;
  // A parsed string table; nullopt when the file is missing or unreadable.
  using Table = std::optional<plist::Dictionary>;

  Bundle(std::filesystem::path path, plist::Dictionary info);
  // The cached table, parsed on first use; the caller holds mutex_.
  const Table& tableLocked(const std::string& localization, std::string_view name) const;
  // The first string under key in the tables of `localizations`; the caller holds mutex_.
  std::string stringLocked(std::string_view key, std::string_view table,
                           std::string_view defaultValue,
                           const std::vector<std::string>& localizations) const;

  std::filesystem::path path_;
  plist::Dictionary info_;
  std::vector<std::string> localizations_;

  mutable std::mutex mutex_;
  mutable Library library_;
  mutable bool loadAttempted_ = false;
  mutable std::string loadError_;
  // (localization, table name) -> table.
  mutable std::map<std::pair<std::string, std::string>, Table> tables_;
};

// The localized string under `key` in `table` of `bundle`, or `defaultValue`; the same as
// bundle.localizedString (callers pass "STRING NOT FOUND" as the default).
std::string CopyLocalizedString(const Bundle& bundle, std::string_view key,
                                std::string_view table, std::string_view defaultValue);

}  // namespace varno::bundle
