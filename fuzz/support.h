// SPDX-License-Identifier: Apache-2.0
// Helpers shared by the fuzz targets: one scratch folder per process, files written into
// it, a check that stops the run, and value comparison that tolerates what a property
// list's text form cannot carry.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "platform/plist/value.h"

namespace varno::fuzz {

// The process's scratch folder, made on first use and removed at exit.
const std::filesystem::path& ScratchDir();

// Writes `bytes` to `path` (folders created), replacing it. Aborts when it cannot.
void WriteBytes(const std::filesystem::path& path, std::string_view bytes);

// Writes `bytes` as `name` in the scratch folder and returns its path.
std::filesystem::path WriteScratchFile(std::string_view name, std::string_view bytes);

// The fuzz input as text.
inline std::string_view AsText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Stops the run with `what` on standard error when `ok` is false, so libFuzzer saves the
// input as a crash.
void Check(bool ok, std::string_view what);

// How strictly a value read back is compared with the one written.
enum class Fidelity {
  Exact,         // every bit kept, except that a NaN matches any NaN
  WholeSeconds,  // as Exact, but dates only to the second (the XML form drops fractions)
};

// True when `b` is what writing `a` and reading it back may give: operator== first, then,
// only where that says no, a walk that forgives NaN and, for WholeSeconds, date fractions.
bool SameValue(const plist::Value& a, const plist::Value& b, Fidelity fidelity);

}  // namespace varno::fuzz
