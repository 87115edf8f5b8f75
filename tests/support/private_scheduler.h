// A CUPS scheduler of a test's own: cupsd on 127.0.0.1 with a free port, its
// configuration, spool and logs in a fresh folder, and queues whose filter records what
// it is given (the job's options argument and PPD) instead of printing. Programs run
// through run() talk to it alone, and the defaults they save stay in its folder.
// Needs root (cupsd runs filters as user lp) and /usr/sbin/cupsd.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varno::testing {

inline constexpr const char* kCupsd = "/usr/sbin/cupsd";

// What a program run through the scheduler did.
struct ProgramRun {
  int status = -1;  // exit status; -1 when it did not exit normally
  std::string out;  // standard output
  std::string err;  // standard error
};

class PrivateScheduler {
 public:
  PrivateScheduler() = default;
  PrivateScheduler(const PrivateScheduler&) = delete;
  PrivateScheduler& operator=(const PrivateScheduler&) = delete;
  // Stops the scheduler and removes its folder.
  ~PrivateScheduler();

  // Creates the folder, starts cupsd and waits until it takes connections. False, with
  // a message, when it cannot be started.
  bool start(std::string* error);
  // Stops the scheduler, if running: SIGTERM, then SIGKILL when it lingers.
  void stop();

  // Adds and enables `queue`, printing to /dev/null through a copy of `ppd` whose only
  // filter records the job (see recordedOptions).
  bool addQueue(const std::string& queue, const std::filesystem::path& ppd, std::string* error);

  int port() const { return port_; }
  // "127.0.0.1:PORT", for -h and CUPS_SERVER.
  std::string server() const;
  const std::filesystem::path& root() const { return root_; }

  // The job's options argument (argv[5]) and PPD, as its filter recorded them.
  std::filesystem::path recordedOptions(int job) const;
  std::filesystem::path recordedPPD(int job) const;
  // Waits until the filter of `job` has recorded both files.
  bool waitForJob(int job, std::chrono::milliseconds timeout = std::chrono::seconds(30)) const;
  // The error log's errors and job lines, to explain a job that went wrong.
  std::string errorLogDigest() const;

  // Runs `argv` (argv[0] looked up in PATH) until it exits, with CUPS_SERVER naming this
  // scheduler and CUPS_SERVERROOT and HOME inside its folder: libcups 2.4 keeps saved
  // defaults in $HOME/.cups/lpoptions even for root, and reads
  // <CUPS_SERVERROOT>/lpoptions, so no run reads or changes the machine's or the user's.
  // Output goes to /dev/null unless `capture`.
  ProgramRun run(const std::vector<std::string>& argv, bool capture = true) const;

  // A TCP port nothing listens on at the moment of the call.
  static int FreePort();

 private:
  bool writeConfiguration(std::string* error) const;
  bool waitUntilAnswering(std::string* error);

  std::filesystem::path root_;
  int port_ = 0;
  pid_t pid_ = -1;
};

// The job id in varno-print's or lp's "request id is QUEUE-N" line, or 0.
int RequestId(std::string_view output, std::string_view queue);

}  // namespace varno::testing
