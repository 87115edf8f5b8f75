// SPDX-License-Identifier: Apache-2.0
#include "support.h"

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

// libcups 2.4 loses the first code string of a PPD that defines "*CustomPageSize True"
// twice (fuzz/regressions/ppd-duplicate-custompagesize-libcups-leak.ppd); the string is
// allocated and dropped inside _ppdOpen, out of our reach. A few bytes per such file.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:_ppdOpen\n"; }

namespace varno::fuzz {
namespace {

// Removes the folder when the process ends normally.
struct Scratch {
  std::filesystem::path path;
  Scratch() {
    std::string pattern = (std::filesystem::temp_directory_path() / "varno-fuzz-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
      std::perror("varno fuzz: cannot make a scratch folder in the temporary folder");
      std::abort();
    }
    path = pattern;
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
};

bool SameDate(double a, double b, Fidelity fidelity) {
  if (a == b || (std::isnan(a) && std::isnan(b))) return true;
  // The XML form keeps the whole second at or before; a difference taken in doubles would
  // round to exactly 1 for a date a hair before a whole second.
  return fidelity == Fidelity::WholeSeconds && b == std::floor(a);
}

}  // namespace

const std::filesystem::path& ScratchDir() {
  static Scratch scratch;
  return scratch.path;
}

void WriteBytes(const std::filesystem::path& path, std::string_view bytes) {
  std::error_code ignored;
  std::filesystem::create_directories(path.parent_path(), ignored);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  Check(static_cast<bool>(out), "cannot write the input to the scratch folder (disk full?)");
}

std::filesystem::path WriteScratchFile(std::string_view name, std::string_view bytes) {
  std::filesystem::path path = ScratchDir() / name;
  WriteBytes(path, bytes);
  return path;
}

void Check(bool ok, std::string_view what) {
  if (ok) return;
  std::fprintf(stderr, "varno fuzz: %.*s\n", static_cast<int>(what.size()), what.data());
  std::abort();
}

bool SameValue(const plist::Value& a, const plist::Value& b, Fidelity fidelity) {
  if (a == b) return true;
  if (a.kind() != b.kind()) return false;
  switch (a.kind()) {
    case plist::Kind::Real:
      return std::isnan(*a.asReal()) && std::isnan(*b.asReal());
    case plist::Kind::Date:
      return SameDate(a.asDate()->seconds, b.asDate()->seconds, fidelity);
    case plist::Kind::Array: {
      const plist::Array &x = *a.asArray(), &y = *b.asArray();
      if (x.size() != y.size()) return false;
      for (std::size_t i = 0; i < x.size(); ++i)
        if (!SameValue(x[i], y[i], fidelity)) return false;
      return true;
    }
    case plist::Kind::Dictionary: {
      const auto &x = a.asDictionary()->entries(), &y = b.asDictionary()->entries();
      if (x.size() != y.size()) return false;
      for (std::size_t i = 0; i < x.size(); ++i)
        if (x[i].first != y[i].first || !SameValue(x[i].second, y[i].second, fidelity))
          return false;
      return true;
    }
    default:
      return false;
  }
}

}  // namespace varno::fuzz
