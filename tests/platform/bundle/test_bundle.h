// What the bundle tests share: where the test plug-in bundle is built, its identifiers,
// and guards that set environment variables for one test and restore them after.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/bundle/uuid.h"

namespace varno::testing {

inline const std::filesystem::path kTestBundleFolder = VARNO_BUILD_DIR "/tests";
inline const std::filesystem::path kTestBundle = kTestBundleFolder / "TestPDE.plugin";
inline constexpr const char* kTestBundleID = "com.varno.test.pde";

// The factory of the test plug-in, and types its Info.plist registers besides the PDE type.
inline constexpr bundle::UUID kTestFactoryID =
    bundle::MakeUUID("CF57D2B6-813A-4AC7-BA2D-E8DDC9949AC8");
inline constexpr bundle::UUID kTypeTheFactoryRefuses =
    bundle::MakeUUID("5691585C-7950-45D9-A5CD-6F0500506B82");
inline constexpr bundle::UUID kTypeWithUnexportedFactory =
    bundle::MakeUUID("298134C5-699D-4384-AF71-2049DDFA61C9");
inline constexpr bundle::UUID kUnexportedFactoryID =
    bundle::MakeUUID("C66A71D3-82FC-4F2C-83DF-7F0CA0B7ED7D");
inline constexpr bundle::UUID kUnregisteredUUID =
    bundle::MakeUUID("0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0");

// Sets (or, with nullopt, unsets) an environment variable until the guard goes.
class ScopedEnv {
 public:
  ScopedEnv(std::string name, std::optional<std::string> value) : name_(std::move(name)) {
    if (const char* old = std::getenv(name_.c_str())) old_ = old;
    Apply(value);
  }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;
  ~ScopedEnv() { Apply(old_); }

 private:
  void Apply(const std::optional<std::string>& value) {
    if (value) {
      ::setenv(name_.c_str(), value->c_str(), 1);
    } else {
      ::unsetenv(name_.c_str());
    }
  }
  std::string name_;
  std::optional<std::string> old_;
};

// The four locale variables the bundle reads, all set or unset at once.
class ScopedLocale {
 public:
  ScopedLocale(std::optional<std::string> lcAll, std::optional<std::string> lcMessages,
               std::optional<std::string> lang, std::optional<std::string> language)
      : lcAll_("LC_ALL", lcAll),
        lcMessages_("LC_MESSAGES", lcMessages),
        lang_("LANG", lang),
        language_("LANGUAGE", language) {}
  // Only LANG set: the usual desktop session.
  explicit ScopedLocale(std::string lang)
      : ScopedLocale(std::nullopt, std::nullopt, std::move(lang), std::nullopt) {}

 private:
  ScopedEnv lcAll_, lcMessages_, lang_, language_;
};

}  // namespace varno::testing
