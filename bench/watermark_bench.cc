// SPDX-License-Identifier: Apache-2.0
// The watermark store with 1,000 watermarks: loading the list, loading one record and
// saving one record, each a whole read (and, for the save, a whole atomic rewrite) of the
// file. The store lives in a temporary support folder on the disk the build tree is on;
// with the argument "tmpfs" it moves to /dev/shm, which shows what the disk flush costs.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "panels/booklet_watermark/watermark_store.h"
#include "platform/plist/file.h"

namespace {

using namespace varno::panels;

constexpr int kWatermarks = 1000;

// A text watermark as the editor makes them: a name of a few words, a font, 12 glyphs.
WatermarkData Watermark(int n) {
  WatermarkData record;
  record.isTextWatermark = 1;
  CopyWatermarkString(record.text, "Confidential draft " + std::to_string(n));
  CopyWatermarkString(record.fontName, "ArialMT");
  record.fontSize = 72, record.angle = 45, record.density = 25, record.scale = 100;
  record.fontColorRed = record.fontColorGreen = 0.75f;
  record.fontColorBlue = record.fontColorAlpha = 1.0f;
  record.xPos = 280.627441 + n, record.yPos = 311.049927;
  record.glyphs = std::vector<std::uint16_t>(12, static_cast<std::uint16_t>(n));
  record.glyphCount = 12;
  return record;
}

void FillStore(benchmark::State& state) {
  static bool filled = false;
  if (filled) return;
  std::optional<std::filesystem::path> file = CopyPreferenceFileURL(kWatermarkStoreFileName);
  if (!file) return state.SkipWithError("no store folder");
  // Written in one go: saving 1,000 records one by one rereads a growing file each time.
  varno::plist::Dictionary root;
  varno::plist::Array names;
  for (int n = 0; n < kWatermarks; ++n) {
    WatermarkData record = Watermark(n);
    names.append(WatermarkName(record));
    root.set(WatermarkName(record), CreateWatermarkDictionary(record));
  }
  root.set(kWatermarkListEntriesKey, names);
  root.set(SubsetFontKey("ArialMT"), varno::plist::Data(40000, 0x2a));
  if (!varno::plist::WriteFile(*file, varno::plist::Value(root)))
    return state.SkipWithError("cannot write the store");
  filled = true;
}

void BM_LoadWatermarkList(benchmark::State& state) {
  FillStore(state);
  for (auto _ : state) {
    std::optional<varno::plist::Array> list;
    bool found = loadWatermarkList(kWatermarkStoreFileName, nullptr, &list);
    if (!found || list->size() != kWatermarks) return state.SkipWithError("list missing");
  }
}

void BM_LoadWatermarkData(benchmark::State& state) {
  FillStore(state);
  WatermarkData record;
  for (auto _ : state)
    if (!loadWatermarkData(kWatermarkStoreFileName, "Confidential draft 500", &record))
      return state.SkipWithError("record missing");
}

void BM_SaveWatermarkData(benchmark::State& state) {
  FillStore(state);
  WatermarkData record = Watermark(500);
  for (auto _ : state) {
    record.xPos += 1;
    saveWatermarkData(kWatermarkStoreFileName, record);
  }
  std::optional<std::filesystem::path> file = CopyPreferenceFileURL(kWatermarkStoreFileName);
  state.counters["file_bytes"] = static_cast<double>(std::filesystem::file_size(*file));
}

BENCHMARK(BM_LoadWatermarkList)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadWatermarkData)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveWatermarkData)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  bool tmpfs = argc > 1 && std::strcmp(argv[1], "tmpfs") == 0;
  if (tmpfs) --argc, ++argv;
  std::string folder = (tmpfs ? std::filesystem::path("/dev/shm")
                              : std::filesystem::current_path()) /
                       "varno-wm-bench-XXXXXX";
  if (!::mkdtemp(folder.data())) return 1;
  ::setenv("VARNO_SUPPORT_DIR", folder.c_str(), 1);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  std::filesystem::remove_all(folder);
  return 0;
}
