// SPDX-License-Identifier: Apache-2.0
// A CUPS scheduler of a test's own: cupsd on 127.0.0.1 with a free port, its configuration,
// spool and logs in a fresh folder, and queues whose filter records the job's options
// argument and PPD instead of printing. Needs root (cupsd runs filters as lp) and cupsd.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace varno::testing {

struct ProgramRun {
  int status = -1;  // exit status; -1 when the program did not exit normally
  std::string out, err;
};

class PrivateScheduler {
 public:
  PrivateScheduler() = default;
  PrivateScheduler(const PrivateScheduler&) = delete;
  PrivateScheduler& operator=(const PrivateScheduler&) = delete;
  ~PrivateScheduler();  // stops the scheduler and removes its folder

  // Creates the folder, starts cupsd and waits until it answers; false, with a message, if not.
  bool start(std::string* error);
  void stop();  // SIGTERM, then SIGKILL when cupsd lingers
  // Adds and enables `queue` on /dev/null with a copy of `ppd` whose only filter records jobs.
  bool addQueue(const std::string& queue, const std::filesystem::path& ppd, std::string* error);

  std::string server() const { return "127.0.0.1:" + std::to_string(port_); }
  const std::filesystem::path& root() const { return root_; }
  // The options argument (argv[5]) of `job`, once its filter has recorded that and the
  // PPD (nullopt after 30 s), and the PPD; the error log's last errors and job lines.
  std::optional<std::string> recordedOptions(int job) const;
  std::filesystem::path recordedPPD(int job) const { return root_ / "out" / ("job-" + std::to_string(job) + ".ppd"); }
  // The job's title and copies (argv[3] and argv[4]) as "TITLE\nCOPIES", recorded with the PPD.
  std::filesystem::path recordedTitleAndCopies(int job) const {
    return root_ / "out" / ("job-" + std::to_string(job) + ".title-copies");
  }
  std::string errorLogDigest() const;

  // Runs `argv` (argv[0] looked up in PATH) to its end with CUPS_SERVER naming this
  // scheduler and CUPS_SERVERROOT and HOME inside its folder: libcups 2.4 keeps even root's
  // saved defaults in $HOME/.cups/lpoptions, so no run reads or changes the machine's or
  // the user's.
  ProgramRun run(const std::vector<std::string>& argv) const;
  static int FreePort();  // a TCP port nothing listens on at the moment of the call

 private:
  std::filesystem::path root_;
  int port_ = 0;
  pid_t pid_ = -1;
};

}  // namespace varno::testing
