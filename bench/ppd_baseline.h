// SPDX-License-Identifier: Apache-2.0
// The bare libcups baseline the benchmarks compare our own work with: open a PPD, mark
// its defaults, close it, through the ppdcall wrappers so libcups' deprecation warnings
// stay silenced in ppd_calls.cc alone.
#pragma once

#include <benchmark/benchmark.h>

#include <filesystem>

#include "platform/print/ppd_calls.h"

namespace varno::bench {

// `localize` adds the ppdLocalize pass that PPDGetCurrent makes.
inline void BareOpenMarkClose(benchmark::State& state, const std::filesystem::path& ppd,
                              bool localize = false) {
  for (auto _ : state) {
    ppd_file_t* file = print::ppdcall::OpenFile(ppd.c_str());
    if (!file) {
      state.SkipWithError("cannot open the PPD");
      break;
    }
    if (localize) print::ppdcall::Localize(file);
    print::ppdcall::MarkDefaults(file);
    print::ppdcall::Close(file);
  }
  state.counters["file_bytes"] = static_cast<double>(std::filesystem::file_size(ppd));
}

}  // namespace varno::bench
