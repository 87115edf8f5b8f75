// SPDX-License-Identifier: Apache-2.0
// Printing one page on a CUPS queue, timed from the user's command to its exit: varno-print
// (plug-in, dialog, PPD fetched from the scheduler, job with the whole ticket) beside a plain
// `lp` with the same PPD choices. Both talk to one private scheduler started for the run
// (tests/support/private_scheduler.h; needs root and /usr/sbin/cupsd). Two more varno-print
// runs that stop early tell where its time goes: --dry-run on the queue (everything but
// the job) and --dry-run on the local PPD file (no scheduler at all).
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "support/private_scheduler.h"

namespace {

using varno::testing::PrivateScheduler;

constexpr const char* kQueue = "varno";
constexpr int kIterations = 30;

PrivateScheduler* scheduler = nullptr;
std::string document;

// Times `command` from start to exit, as the manual time of one iteration.
void TimeCommand(benchmark::State& state, const std::vector<std::string>& command) {
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    const varno::testing::ProgramRun run = scheduler->run(command);
    const auto end = std::chrono::steady_clock::now();
    if (run.status != 0) {
      state.SkipWithError((command.front() + " failed").c_str());
      return;
    }
    state.SetIterationTime(std::chrono::duration<double>(end - start).count());
  }
}

std::vector<std::string> VarnoPrint(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), VARNO_BUILD_DIR "/bin/varno-print");
  return arguments;
}

void BM_VarnoPrintJob(benchmark::State& state) {
  TimeCommand(state, VarnoPrint({"-P", kQueue, "-h", scheduler->server(), "--image-quality",
                                 "HighQuality", "--feed-edge", "ShortEdge", document}));
}

void BM_LpJob(benchmark::State& state) {
  TimeCommand(state, {"lp", "-h", scheduler->server(), "-d", kQueue, "-o", "VNOutputMode=HighQuality",
                      "-o", "VNFeedEdge=ShortEdge", document});
}

void BM_VarnoPrintDryRunOnQueue(benchmark::State& state) {
  TimeCommand(state, VarnoPrint({"-P", kQueue, "-h", scheduler->server(), "--image-quality",
                                 "HighQuality", "--feed-edge", "ShortEdge", "--dry-run"}));
}

void BM_VarnoPrintDryRunOnPPDFile(benchmark::State& state) {
  TimeCommand(state, VarnoPrint({"--ppd", VARNO_SAMPLE_PPD, "--image-quality", "HighQuality",
                                 "--feed-edge", "ShortEdge", "--dry-run"}));
}

BENCHMARK(BM_VarnoPrintJob)->UseManualTime()->Iterations(kIterations)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LpJob)->UseManualTime()->Iterations(kIterations)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_VarnoPrintDryRunOnQueue)->UseManualTime()->Iterations(kIterations)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_VarnoPrintDryRunOnPPDFile)->UseManualTime()->Iterations(kIterations)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  PrivateScheduler privateScheduler;
  std::string error;
  if (!privateScheduler.start(&error) || !privateScheduler.addQueue(kQueue, VARNO_SAMPLE_PPD, &error)) {
    std::fprintf(stderr, "submit_bench: no private scheduler: %s\n", error.c_str());
    return 1;
  }
  scheduler = &privateScheduler;
  document = (privateScheduler.root() / "one-page.ps").string();
  std::ofstream(document) << "%!PS\nshowpage\n";
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
