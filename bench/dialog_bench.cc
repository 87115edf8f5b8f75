// SPDX-License-Identifier: Apache-2.0
// What the user waits for: the Print dialog opening on the sample printer (the plug-in
// bundle loaded through the framework driver, Prologue, Initialize, Open, up to the first
// panel on screen, then Close, Terminate and the release of it all), and one switch
// between panels with the host's selector pop-up. Beside them the bare libcups open, mark
// and close of the same PPD, the part of a cold start no plug-in code can avoid.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "host/dialog_host.h"
#include "platform/print/framework_driver.h"
#include "platform/print/session.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/window.h"
#include "ppd_baseline.h"

namespace {

namespace fs = std::filesystem;
using namespace varno;
using Clock = std::chrono::steady_clock;

const fs::path kPlugIn = VARNO_BUILT_PLUGIN;
const fs::path kPlugInLibrary = kPlugIn / "Contents/Linux/VarnoFeatures";
const std::string kSamplePPD = VARNO_SAMPLE_PPD;
// Runs one cold start and writes its ColdStartTimes to the file descriptor that follows.
constexpr const char* kChildFlag = "--cold-start-child=";

// The headless Print dialog as the framework makes it (as tests/support/plugin_dialog.h
// does): the window on screen, the parent pane handed to the plug-in, a session.
struct Dialog {
  Dialog() {
    window = toolkit::Window::create({0, 0, 700, 600}, "Print");
    window->setVisible(true);
    parentPane = window->embed(
        toolkit::Control::create(toolkit::ControlKind::UserPane, {0, 0, 500, 600}));
    session = std::make_unique<print::Session>();
    session->setPrinterPPD(kSamplePPD);
  }
  toolkit::Control* control(OSType signature, std::int32_t id) {
    return window->findByID({signature, id});
  }

  // Declared before the driver, which terminates the plug-in while they still exist.
  std::unique_ptr<toolkit::Window> window;
  toolkit::Control* parentPane = nullptr;
  std::unique_ptr<print::Session> session;
  print::FrameworkDriver driver;
};

// Empty when `status` is noErr, else what failed and the driver's reason.
std::string Failure(OSStatus status, const Dialog& dialog, const char* call) {
  if (status == noErr) return {};
  return std::string(call) + " failed: " + std::to_string(status) + " " + dialog.driver.error();
}

// True for no failure; otherwise stops the benchmark with the reason.
bool Ok(benchmark::State& state, const std::string& failure) {
  if (failure.empty()) return true;
  state.SkipWithError(failure.c_str());
  return false;
}

bool Open(benchmark::State& state, Dialog& dialog) {
  return Ok(state, Failure(dialog.driver.loadFromPath(kPlugIn), dialog, "load")) &&
         Ok(state, Failure(dialog.driver.prologue(), dialog, "Prologue")) &&
         Ok(state, Failure(dialog.driver.initialize(dialog.session.get(), dialog.parentPane),
                           dialog, "Initialize")) &&
         Ok(state, Failure(dialog.driver.open(), dialog, "Open"));
}

bool Close(benchmark::State& state, Dialog& dialog) {
  return Ok(state, Failure(dialog.driver.close(), dialog, "Close")) &&
         Ok(state, Failure(dialog.driver.terminate(noErr), dialog, "Terminate"));
}

bool PlugInMapped() {
  // RTLD_NOLOAD only finds a library already in the process, and loads nothing.
  void* handle = dlopen(kPlugInLibrary.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (handle) dlclose(handle);
  return handle != nullptr;
}

// A kB figure of /proc/self/status ("VmRSS", "VmHWM"); -1 when missing.
long StatusKB(const std::string& field) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.rfind(field + ":", 0) == 0) return std::stol(line.substr(field.size() + 1));
  return -1;
}

double Micros(Clock::duration d) { return std::chrono::duration<double, std::micro>(d).count(); }

// One cold start, split by step (µs), with how far it raised the resident set. Plain
// data, so a child process can hand it back through a pipe.
struct ColdStartTimes {
  double step[7] = {};
  double total = 0;
  double peakKB = -1;  // -1: the kernel would not reset the peak
  bool wasMapped = false;
  char failure[200] = {};
};
constexpr const char* kStepNames[7] = {"1_window_us", "2_load_us",  "3_prologue_us",
                                       "4_initialize_us", "5_open_us", "6_close_terminate_us",
                                       "7_release_us"};

// A new window, session and driver, the bundle opened and its library loaded, up to panel
// 1 on screen; then Close, Terminate and the destruction of it all. `measureMemory` reads
// /proc before and after, which costs more than some of the steps.
ColdStartTimes ColdStart(bool measureMemory) {
  ColdStartTimes times;
  bool peakReset = false;
  long before = -1;
  if (measureMemory) {
    times.wasMapped = PlugInMapped();
    // The peak is reset through clear_refs because ru_maxrss only ever grows: after the
    // first cold start of a process it would read 0.
    std::ofstream reset("/proc/self/clear_refs");
    peakReset = static_cast<bool>(reset << "5" << std::flush);
    before = StatusKB("VmRSS");
  }

  std::string failure;
  Clock::time_point t[8];
  t[0] = Clock::now();
  auto dialog = std::make_unique<Dialog>();
  t[1] = Clock::now();
  failure = Failure(dialog->driver.loadFromPath(kPlugIn), *dialog, "load");
  t[2] = Clock::now();
  if (failure.empty()) failure = Failure(dialog->driver.prologue(), *dialog, "Prologue");
  t[3] = Clock::now();
  if (failure.empty())
    failure = Failure(dialog->driver.initialize(dialog->session.get(), dialog->parentPane),
                      *dialog, "Initialize");
  t[4] = Clock::now();
  if (failure.empty()) failure = Failure(dialog->driver.open(), *dialog, "Open");
  t[5] = Clock::now();
  // Panel 1 must be on screen, or this was no dialog a user could see; checked untimed.
  toolkit::Control* first = dialog->control(host::kPanelPaneSignature, 1);
  if (failure.empty() && (!first || !first->isShown())) failure = "panel 1 is not on screen";
  Clock::duration check = Clock::now() - t[5];
  if (failure.empty()) failure = Failure(dialog->driver.close(), *dialog, "Close");
  if (failure.empty()) failure = Failure(dialog->driver.terminate(noErr), *dialog, "Terminate");
  t[6] = Clock::now();
  dialog.reset();
  t[7] = Clock::now();

  for (int i = 0; i < 7; ++i) times.step[i] = Micros(t[i + 1] - t[i]);
  times.step[5] -= Micros(check);
  times.total = Micros(t[7] - t[0] - check);
  long peak = measureMemory ? StatusKB("VmHWM") : -1;
  if (peakReset && before >= 0 && peak >= 0) times.peakKB = static_cast<double>(peak - before);
  failure.copy(times.failure, sizeof times.failure - 1);
  return times;
}

void ReportSteps(benchmark::State& state, const double (&sums)[7]) {
  for (int i = 0; i < 7; ++i)
    state.counters[kStepNames[i]] = benchmark::Counter(sums[i], benchmark::Counter::kAvgIterations);
}

// The first dialog of a process, the one a user waits for most: each iteration starts
// this program afresh (kChildFlag), which times one cold start and hands the figures back
// through a pipe. A fork alone would not do: its copy-on-write faults slow every step,
// and it inherits whatever the parent has loaded. Wall time is the child's own (manual
// time); the CPU column is the parent's waiting and means nothing here.
void BM_DialogColdStartNewProcess(benchmark::State& state) {
  double sums[7] = {}, peakKB = 0;
  for (auto _ : state) {
    int fds[2];
    if (pipe(fds) != 0) {
      state.SkipWithError("pipe failed");
      break;
    }
    pid_t child = fork();
    if (child == 0) {
      close(fds[0]);
      std::string flag = kChildFlag + std::to_string(fds[1]);
      execl("/proc/self/exe", "dialog_bench", flag.c_str(), static_cast<char*>(nullptr));
      _exit(127);
    }
    close(fds[1]);
    ColdStartTimes times;
    ssize_t got = child > 0 ? read(fds[0], &times, sizeof times) : -1;
    close(fds[0]);
    int status = 0;
    if (child > 0) waitpid(child, &status, 0);
    if (got != sizeof times) {
      state.SkipWithError("the child process reported nothing");
      break;
    }
    if (!Ok(state, times.failure)) break;
    if (times.wasMapped) {
      state.SkipWithError("the child had the plug-in loaded before the cold start");
      break;
    }
    state.SetIterationTime(times.total / 1e6);
    for (int i = 0; i < 7; ++i) sums[i] += times.step[i];
    peakKB = std::max(peakKB, times.peakKB);
  }
  ReportSteps(state, sums);
  state.counters["peak_rss_kb"] = peakKB;
}
BENCHMARK(BM_DialogColdStartNewProcess)->UseManualTime()->Unit(benchmark::kMicrosecond);

// Every later dialog of the same process: each iteration is still a full cold start (a
// new window, session and driver, the bundle opened again), but the library stays mapped
// after the driver's dlclose (library_left_mapped, see the docs), so no relocation or
// static initialisation is repeated.
void BM_DialogColdStart(benchmark::State& state) {
  toolkit::HeadlessAlerts().clear();
  double sums[7] = {}, peakKB = -1;
  bool first = true;
  for (auto _ : state) {
    // Memory on the first iteration only; its /proc reads are lost in the average.
    ColdStartTimes times = ColdStart(first);
    if (!Ok(state, times.failure)) break;
    for (int i = 0; i < 7; ++i) sums[i] += times.step[i];
    if (first) peakKB = times.peakKB;
    first = false;
  }
  ReportSteps(state, sums);
  state.counters["peak_rss_kb"] = peakKB;
  state.counters["library_left_mapped"] = PlugInMapped() ? 1 : 0;
  // A headless alert is answered and recorded, not waited for; counted so a dialog that
  // complains on every start does not pass unnoticed.
  state.counters["alerts"] = static_cast<double>(toolkit::HeadlessAlerts().alerts().size());
}
BENCHMARK(BM_DialogColdStart)->Unit(benchmark::kMicrosecond);

// One panel switch as a user makes it, alternating between panels `a` and `b` of a dialog
// opened once. The first showing of each is timed apart (first_*_us): a panel may build
// or refresh more on first sight than on a return visit.
void BM_PanelSwitch(benchmark::State& state, toolkit::MenuItemIndex a, toolkit::MenuItemIndex b) {
  Dialog dialog;
  if (!Open(state, dialog)) return;
  toolkit::Control* selector = dialog.control(host::kHostSignature, host::kSelectorID);
  if (!selector) {
    state.SkipWithError("no selector pop-up");
    return;
  }
  double first[2] = {};
  toolkit::MenuItemIndex items[2] = {a, b};
  for (int i = 0; i < 2; ++i) {
    Clock::time_point start = Clock::now();
    if (toolkit::ChooseMenuItem(*selector, items[i]) != noErr) {
      state.SkipWithError("the selector refused the item");
      return;
    }
    first[i] = Micros(Clock::now() - start);
  }

  // Each direction timed apart: leaving one panel may cost more than leaving the other.
  Clock::duration to[2] = {};
  std::int64_t count[2] = {};
  int side = 0;
  for (auto _ : state) {
    Clock::time_point start = Clock::now();
    if (toolkit::ChooseMenuItem(*selector, items[side]) != noErr) {
      state.SkipWithError("the selector refused the item");
      break;
    }
    to[side] += Clock::now() - start;
    ++count[side];
    side ^= 1;
  }
  toolkit::MenuItemIndex next = items[side];
  // The last item chosen must be the panel on screen, or nothing was switched.
  toolkit::MenuItemIndex last = next == a ? b : a;
  toolkit::Control* pane = dialog.control(host::kPanelPaneSignature, last);
  if (!state.error_occurred() && (!pane || !pane->isShown()))
    state.SkipWithError("the chosen panel is not on screen");
  state.counters["first_a_us"] = first[0];
  state.counters["first_b_us"] = first[1];
  for (int i = 0; i < 2; ++i)
    if (count[i]) state.counters[i ? "to_b_us" : "to_a_us"] = Micros(to[i]) / count[i];
  Close(state, dialog);
}
BENCHMARK_CAPTURE(BM_PanelSwitch, 2_4, 2, 4)->Unit(benchmark::kMicrosecond);

using bench::BareOpenMarkClose;
BENCHMARK_CAPTURE(BareOpenMarkClose, sample, fs::path(VARNO_SAMPLE_PPD), false)
    ->Name("BM_BareOpenMarkClose/sample")
    ->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::string_view(argv[1]).starts_with(kChildFlag)) {
    int fd = std::atoi(argv[1] + std::string_view(kChildFlag).size());
    ColdStartTimes times = ColdStart(true);
    return write(fd, &times, sizeof times) == sizeof times ? 0 : 1;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
