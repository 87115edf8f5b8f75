// SPDX-License-Identifier: Apache-2.0
// What the bundle tests share: where the test plug-in bundle is built, and a guard that
// sets environment variables for one scope.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace varno::testing {

inline const std::filesystem::path kTestBundleFolder = VARNO_BUILD_DIR "/tests";
inline const std::filesystem::path kTestBundle = kTestBundleFolder / "TestPDE.plugin";
inline constexpr const char* kTestBundleID = "com.varno.test.pde";

// Sets (nullopt: unsets) environment variables until the guard goes, then restores them.
class ScopedEnv {
 public:
  using Setting = std::pair<const char*, std::optional<std::string>>;
  ScopedEnv(std::initializer_list<Setting> settings) {
    for (const auto& [name, value] : settings) {
      const char* old = std::getenv(name);
      saved_.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
      Set(name, value);
    }
  }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;
  ~ScopedEnv() {
    for (const auto& [name, value] : saved_) Set(name, value);
  }

 private:
  static void Set(const char* name, const std::optional<std::string>& value) {
    value ? ::setenv(name, value->c_str(), 1) : ::unsetenv(name);
  }
  std::vector<Setting> saved_;
};

// Only LANG set, as in a desktop session, for the locale variables the bundle reads.
struct ScopedLocale : ScopedEnv {
  explicit ScopedLocale(std::string lang)
      : ScopedEnv{{"LC_ALL", {}}, {"LC_MESSAGES", {}}, {"LANG", lang}, {"LANGUAGE", {}}} {}
};

}  // namespace varno::testing
