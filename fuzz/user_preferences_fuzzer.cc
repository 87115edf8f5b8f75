// SPDX-License-Identifier: Apache-2.0
// User preference files: any file reads as a dictionary (empty when it is none), and that
// dictionary writes and reads back the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "platform/system/user_preferences.h"
#include "support.h"

using namespace varno;

constexpr const char* kFileName = "com.varno.fuzz.plist";

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  ::setenv("XDG_CONFIG_HOME", fuzz::ScratchDir().c_str(), 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::WriteBytes(fuzz::ScratchDir() / "varno" / kFileName, fuzz::AsText(data, size));
  std::optional<plist::Dictionary> preferences = sys::CopyUserPreferences(kFileName);
  fuzz::Check(preferences.has_value(), "the preferences folder is there, yet nothing was read");
  if (!sys::WriteUserPreferences(kFileName, *preferences)) return 0;
  std::optional<plist::Dictionary> back = sys::CopyUserPreferences(kFileName);
  fuzz::Check(back && fuzz::SameValue(*preferences, *back, fuzz::Fidelity::WholeSeconds),
              "preferences change when written and read back");
  return 0;
}
