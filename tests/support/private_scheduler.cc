// SPDX-License-Identifier: Apache-2.0
#include "support/private_scheduler.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <system_error>
#include <thread>

extern char** environ;

namespace varno::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr const char* kCupsd = "/usr/sbin/cupsd";

std::string ReadFile(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteFile(const fs::path& file, std::string_view text, fs::perms mode = fs::perms(0644)) {
  std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
  fs::permissions(file, mode);
}

bool Fail(std::string* error, const std::string& message) {
  *error = message;
  return false;
}

// True once `done` holds, polled until `timeout` has passed.
template <class Done>
bool Poll(std::chrono::milliseconds timeout, Done done) {
  for (const auto deadline = std::chrono::steady_clock::now() + timeout; !done();
       std::this_thread::sleep_for(10ms))
    if (std::chrono::steady_clock::now() >= deadline) return false;
  return true;
}

int Wait(pid_t pid) {
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

sockaddr_in Loopback(int port) {
  return {.sin_family = AF_INET, .sin_port = htons(static_cast<std::uint16_t>(port)),
          .sin_addr = {htonl(INADDR_LOOPBACK)}, .sin_zero = {}};
}

// Starts `args` with the scheduler's variables in its environment (see run()), standard
// input from /dev/null and output to `out` and `err`.
pid_t Spawn(std::vector<std::string> args, const std::string& server, const fs::path& root,
            const fs::path& out, const fs::path& err) {
  std::vector<std::string> env = {"CUPS_SERVER=" + server, "CUPS_SERVERROOT=" + (root / "conf").string(),
                                  "HOME=" + (root / "home").string()};
  for (char** e = environ; *e; ++e)
    if (std::string_view v = *e; !v.starts_with("CUPS_SERVER") && !v.starts_with("HOME="))
      env.emplace_back(v);
  std::vector<char*> argv, envp;
  for (std::string& s : args) argv.push_back(s.data());
  for (std::string& s : env) envp.push_back(s.data());
  argv.push_back(nullptr);
  envp.push_back(nullptr);
  const pid_t pid = ::fork();
  if (pid == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);  // should the test die without stopping it
    // O_APPEND, so that `out` and `err` may be one file.
    constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC;
    ::dup2(::open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    ::dup2(::open(out.c_str(), kFlags, 0644), STDOUT_FILENO);
    ::dup2(::open(err.c_str(), kFlags, 0644), STDERR_FILENO);
    ::execvpe(argv[0], argv.data(), envp.data());
    ::_exit(127);
  }
  return pid;
}

}  // namespace

PrivateScheduler::~PrivateScheduler() {
  stop();
  std::error_code ignored;
  if (!root_.empty()) fs::remove_all(root_, ignored);
}

int PrivateScheduler::FreePort() {
  sockaddr_in address = Loopback(0);
  socklen_t length = sizeof address;
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  auto* a = reinterpret_cast<sockaddr*>(&address);
  const bool bound = ::bind(fd, a, length) == 0 && ::getsockname(fd, a, &length) == 0;
  ::close(fd);
  return bound ? ntohs(address.sin_port) : 0;
}

bool PrivateScheduler::start(std::string* error) {
  if (!fs::exists(kCupsd))
    return Fail(error, std::string(kCupsd) + " is missing: these tests need the CUPS scheduler "
                       "(package cups-daemon, installed by scripts/setup) and root");
  std::string pattern = (fs::temp_directory_path() / "varno-cupsd-XXXXXX").string();
  const fs::path& t = root_;
  try {
    if (::mkdtemp(pattern.data()) == nullptr) throw std::system_error(errno, std::generic_category());
    root_ = pattern;
    if ((port_ = FreePort()) == 0) throw std::runtime_error("no free port");
    // Filters run as lp: they must get through the folder and write to out/.
    fs::permissions(t, fs::perms(0755));
    for (const char* dir : {"conf", "spool", "cache", "state", "log", "bin/filter", "bin/daemon",
                            "home", "out"})
      fs::create_directories(t / dir);
    fs::permissions(t / "out", fs::perms::all);
    WriteFile(t / "conf/cupsd.conf",
              "Listen " + server() +
                  "\nLogLevel debug\nBrowsing No\nWebInterface No\nDefaultAuthType None\n"
                  "<Location />\n  Order allow,deny\n  Allow all\n</Location>\n"
                  "<Policy default>\n  <Limit All>\n    Order deny,allow\n  </Limit>\n</Policy>\n");
    // cupsd refuses "User root" and "PidFile" here; it runs filters as lp on its own.
    std::string files = "DataDir /usr/share/cups\nFileDevice Yes\nSandboxing Relaxed\n";
    for (const auto& [key, path] : {std::pair{"ServerRoot", "conf"}, {"RequestRoot", "spool"},
                                    {"CacheDir", "cache"}, {"StateDir", "state"}, {"ServerBin", "bin"},
                                    {"ErrorLog", "log/error_log"}, {"AccessLog", "log/access_log"},
                                    {"PageLog", "log/page_log"}})
      files += std::string(key) + " " + (t / path).string() + "\n";
    WriteFile(t / "conf/cups-files.conf", files);
    // Records the options argument and the PPD, each renamed into place once complete
    // (the options last, so a test that sees them sees everything), then reads the job
    // to its end as a real filter would.
    WriteFile(t / "bin/filter/varno-record", "#!/bin/sh\nout='" + (t / "out").string() + "'\n" + R"(
cp "$PPD" "$out/.job-$1.ppd" && mv "$out/.job-$1.ppd" "$out/job-$1.ppd"
printf '%s\n%s' "$3" "$4" > "$out/job-$1.title-copies"
printf '%s' "$5" > "$out/.options-$1.txt" && mv "$out/.options-$1.txt" "$out/options-$1.txt"
if [ -n "$6" ]; then cat "$6"; else cat; fi > /dev/null
)", fs::perms(0755));
    // Without it every filter fails to start ("No such file or directory").
    fs::create_symlink("/usr/lib/cups/daemon/cups-exec", t / "bin/daemon/cups-exec");
  } catch (const std::exception& e) {
    return Fail(error, "cannot prepare " + pattern + ": " + e.what());
  }

  const fs::path output = t / "log/cupsd-output.txt";
  pid_ = Spawn({kCupsd, "-f", "-c", t / "conf/cupsd.conf", "-s", t / "conf/cups-files.conf"},
               server(), t, output, output);
  bool exited = false;
  const bool answered = pid_ > 0 && Poll(20s, [&] {
    if ((exited = ::waitpid(pid_, nullptr, WNOHANG) == pid_)) return true;
    const sockaddr_in address = Loopback(port_);
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool connected = ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(fd);
    return connected;
  });
  if (answered && !exited) return true;
  if (exited) pid_ = -1;
  return Fail(error, (exited ? "cupsd exited: " + ReadFile(output)
                             : "cupsd did not answer on " + server() + " within 20 s\n") +
                        errorLogDigest());
}

void PrivateScheduler::stop() {
  if (pid_ <= 0) return;
  ::kill(pid_, SIGTERM);
  if (!Poll(10s, [this] { return ::waitpid(pid_, nullptr, WNOHANG) == pid_; })) {
    ::kill(pid_, SIGKILL);
    Wait(pid_);
  }
  pid_ = -1;
}

bool PrivateScheduler::addQueue(const std::string& queue, const fs::path& ppd, std::string* error) {
  // The filter line goes right after *PCFileName, among the PPD's other identification.
  std::string text = ReadFile(ppd);
  const std::size_t line = text.find("\n*PCFileName:");
  const std::size_t end = line == std::string::npos ? line : text.find('\n', line + 1);
  if (end == std::string::npos) return Fail(error, ppd.string() + " has no *PCFileName line");
  text.insert(end + 1, "*cupsFilter2: \"application/postscript application/vnd.cups-postscript 0 "
                       "varno-record\"\n");
  const fs::path copy = root_ / (queue + ".ppd");
  std::ofstream(copy, std::ios::binary) << text;  // lpadmin says so if it cannot read it
  const ProgramRun lpadmin =
      run({"lpadmin", "-h", server(), "-p", queue, "-E", "-v", "file:///dev/null", "-P", copy});
  return lpadmin.status == 0 ||
         Fail(error, "lpadmin failed (" + std::to_string(lpadmin.status) + "): " + lpadmin.err);
}

std::optional<std::string> PrivateScheduler::recordedOptions(int job) const {
  const fs::path file = root_ / "out" / ("options-" + std::to_string(job) + ".txt");
  if (!Poll(30s, [&] { return fs::exists(file); })) return std::nullopt;
  return ReadFile(file);
}

std::string PrivateScheduler::errorLogDigest() const {
  std::istringstream log(ReadFile(root_ / "log/error_log"));
  std::string digest;  // its end tells what happened to the latest job
  for (std::string line; std::getline(log, line);)
    if (line.starts_with("E ") || line.find("[Job") != std::string::npos) digest += line + "\n";
  return "error_log (errors and job lines):\n" + digest.substr(digest.size() > 8000 ? digest.size() - 8000 : 0);
}

ProgramRun PrivateScheduler::run(const std::vector<std::string>& argv) const {
  const pid_t pid = Spawn(argv, server(), root_, root_ / "run-stdout.txt", root_ / "run-stderr.txt");
  if (pid < 0) return {-1, "", "cannot run " + argv.front()};
  const int status = Wait(pid);
  return {status, ReadFile(root_ / "run-stdout.txt"), ReadFile(root_ / "run-stderr.txt")};
}

}  // namespace varno::testing
