// SPDX-License-Identifier: Apache-2.0
// Cost of what host Initialize and Terminate do with the printer's PPD: open the shared
// PPD, mark its defaults and record its installable options, then unload and close;
// beside it the bare libcups open, mark and close of the same file, to show what our
// layer adds. Run on the sample printer and on the largest PPD of the corpus package
// (printer-driver-postscript-hp), which is skipped when the package is missing.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "platform/print/ppd_calls.h"
#include "platform/print/ticket_access.h"
#include "ppd_baseline.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/ppd_access.h"

namespace {

namespace fs = std::filesystem;
using namespace varno;
using vocabulary::InstalledFeatures;
using vocabulary::LoadInstallableOptions;
using vocabulary::PPDCloseCurrent;
using vocabulary::PPDGetCurrent;
using vocabulary::UnloadInstallableOptions;
using vocabulary::getInstalledFeature;

constexpr const char* kCorpusDriver = "/usr/lib/cups/driver/postscript-hp";

void BM_SharedPPDWithInstallableOptions(benchmark::State& state, const fs::path& ppd) {
  print::Session session;
  session.setPrinterPPD(ppd.string());
  print::SetCurrentPrintSession(&session);
  for (auto _ : state) {
    ppd_file_t* current = PPDGetCurrent();
    if (!current) {
      state.SkipWithError("cannot open the PPD");
      break;
    }
    LoadInstallableOptions(current, InstalledFeatures);
    benchmark::DoNotOptimize(getInstalledFeature("FaxKey"));
    UnloadInstallableOptions();
    PPDCloseCurrent();
  }
  print::SetCurrentPrintSession(nullptr);
  state.counters["file_bytes"] = static_cast<double>(fs::file_size(ppd));
}

// Extracts the corpus into `dir` and returns its largest PPD, or an empty path.
fs::path LargestCorpusPPD(const fs::path& dir) {
  if (!fs::exists(kCorpusDriver)) return {};
  std::string command = "python3 '" VARNO_CORPUS_EXTRACTOR "' '" + std::string(kCorpusDriver) +
                        "' '" + dir.string() + "'";
  if (std::system(command.c_str()) != 0) return {};
  fs::path largest;
  std::uintmax_t size = 0;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(dir)) {
    if (entry.is_regular_file() && entry.file_size() > size) {
      size = entry.file_size();
      largest = entry.path();
    }
  }
  return largest;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

  std::vector<std::pair<std::string, fs::path>> files = {{"sample", VARNO_SAMPLE_PPD}};
  std::string pattern = (fs::temp_directory_path() / "varno-ppd-bench-XXXXXX").string();
  fs::path corpusDir = ::mkdtemp(pattern.data()) ? fs::path(pattern) : fs::path();
  if (!corpusDir.empty()) {
    if (fs::path largest = LargestCorpusPPD(corpusDir); !largest.empty())
      files.emplace_back("largest_corpus", largest);
  }
  for (const auto& [name, path] : files) {
    benchmark::RegisterBenchmark(("BM_SharedPPDWithInstallableOptions/" + name).c_str(),
                                 BM_SharedPPDWithInstallableOptions, path)
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark(("BM_BareOpenMarkClose/" + name).c_str(),
                                 bench::BareOpenMarkClose, path, false)
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark(("BM_BareOpenLocalizeMarkClose/" + name).c_str(),
                                 bench::BareOpenMarkClose, path, true)
        ->Unit(benchmark::kMicrosecond);
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  if (!corpusDir.empty()) fs::remove_all(corpusDir);
  return 0;
}
