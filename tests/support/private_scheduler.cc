#include "support/private_scheduler.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

extern char** environ;

namespace varno::testing {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr const char* kFilterName = "varno-record";

// Records the options argument and the PPD (each renamed into place once complete, so a
// test that sees a file sees all of it, the options last), then reads the job to the end
// as a real filter would.
std::string FilterScript(const fs::path& out) {
  return "#!/bin/sh\nout='" + out.string() + "'\n" + R"(
cp "$PPD" "$out/.job-$1.ppd" && mv "$out/.job-$1.ppd" "$out/job-$1.ppd"
printf '%s' "$5" > "$out/.options-$1.txt" && mv "$out/.options-$1.txt" "$out/options-$1.txt"
if [ -n "$6" ]; then cat "$6"; else cat; fi > /dev/null
)";
}

std::string ReadFile(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool WriteFile(const fs::path& file, std::string_view text, fs::perms mode, std::string* error) {
  std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
  std::error_code ec;
  fs::permissions(file, mode, ec);
  if (ec || ReadFile(file) != text) {
    if (error) *error = "cannot write " + file.string();
    return false;
  }
  return true;
}

// The process's environment with the scheduler's variables and HOME replaced.
std::vector<std::string> ChildEnvironment(const std::string& server, const fs::path& root) {
  std::vector<std::string> env;
  for (char** e = environ; *e; ++e) {
    std::string_view entry = *e;
    if (!entry.starts_with("CUPS_SERVER=") && !entry.starts_with("CUPS_SERVERROOT=") &&
        !entry.starts_with("HOME="))
      env.emplace_back(entry);
  }
  env.push_back("CUPS_SERVER=" + server);
  env.push_back("CUPS_SERVERROOT=" + (root / "conf").string());
  env.push_back("HOME=" + (root / "home").string());
  return env;
}

std::vector<char*> Pointers(std::vector<std::string>& strings) {
  std::vector<char*> pointers;
  for (std::string& s : strings) pointers.push_back(s.data());
  pointers.push_back(nullptr);
  return pointers;
}

// Exit status of a finished child, -1 when it did not exit normally.
int ExitStatus(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

bool Accepts(int port) {
  int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return false;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool connected = ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  ::close(fd);
  return connected;
}

}  // namespace

PrivateScheduler::~PrivateScheduler() {
  stop();
  if (!root_.empty()) {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
  }
}

std::string PrivateScheduler::server() const { return "127.0.0.1:" + std::to_string(port_); }

fs::path PrivateScheduler::recordedOptions(int job) const {
  return root_ / "out" / ("options-" + std::to_string(job) + ".txt");
}

fs::path PrivateScheduler::recordedPPD(int job) const {
  return root_ / "out" / ("job-" + std::to_string(job) + ".ppd");
}

int PrivateScheduler::FreePort() {
  int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return 0;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  int port = 0;
  if (::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
      ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0)
    port = ntohs(address.sin_port);
  ::close(fd);
  return port;
}

bool PrivateScheduler::writeConfiguration(std::string* error) const {
  const fs::path& t = root_;
  const std::string conf =
      "Listen " + server() +
      "\nLogLevel debug\nBrowsing No\nWebInterface No\nDefaultAuthType None\n"
      "<Location />\n  Order allow,deny\n  Allow all\n</Location>\n"
      "<Policy default>\n  <Limit All>\n    Order deny,allow\n  </Limit>\n</Policy>\n";
  // cupsd refuses "User root" and "PidFile" here; it runs filters as lp on its own.
  const std::string files = "ServerRoot " + (t / "conf").string() +
                            "\nRequestRoot " + (t / "spool").string() +
                            "\nCacheDir " + (t / "cache").string() +
                            "\nStateDir " + (t / "state").string() +
                            "\nServerBin " + (t / "bin").string() +
                            "\nDataDir /usr/share/cups"
                            "\nErrorLog " + (t / "log/error_log").string() +
                            "\nAccessLog " + (t / "log/access_log").string() +
                            "\nPageLog " + (t / "log/page_log").string() +
                            "\nFileDevice Yes\nSandboxing Relaxed\n";
  constexpr fs::perms kReadable = fs::perms::owner_read | fs::perms::owner_write |
                                  fs::perms::group_read | fs::perms::others_read;
  constexpr fs::perms kRunnable = kReadable | fs::perms::owner_exec | fs::perms::group_exec |
                                  fs::perms::others_exec;
  if (!WriteFile(t / "conf/cupsd.conf", conf, kReadable, error) ||
      !WriteFile(t / "conf/cups-files.conf", files, kReadable, error) ||
      !WriteFile(t / "bin/filter" / kFilterName, FilterScript(t / "out"), kRunnable, error))
    return false;
  // Without it every filter fails to start ("No such file or directory").
  std::error_code ec;
  fs::create_symlink("/usr/lib/cups/daemon/cups-exec", t / "bin/daemon/cups-exec", ec);
  if (ec && error) *error = "cannot link cups-exec: " + ec.message();
  return !ec;
}

bool PrivateScheduler::start(std::string* error) {
  if (!fs::exists(kCupsd)) {
    if (error) *error = std::string(kCupsd) + " is missing: install the package cups-daemon";
    return false;
  }
  std::string pattern = (fs::temp_directory_path() / "varno-cupsd-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    if (error) *error = "cannot create a folder for the scheduler: " + std::string(std::strerror(errno));
    return false;
  }
  root_ = pattern;
  port_ = FreePort();
  std::error_code ec;
  // Filters run as lp: they must get through the folder and write to out/.
  fs::permissions(root_, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                             fs::perms::others_read | fs::perms::others_exec, ec);
  for (const char* dir : {"conf", "spool", "cache", "state", "log", "bin/filter", "bin/daemon", "out", "home"})
    fs::create_directories(root_ / dir, ec);
  fs::permissions(root_ / "out", fs::perms::all, ec);
  if (ec) {
    if (error) *error = "cannot prepare " + root_.string() + ": " + ec.message();
    return false;
  }
  if (port_ == 0 || !writeConfiguration(error)) return false;

  std::vector<std::string> args = {kCupsd, "-f", "-c", (root_ / "conf/cupsd.conf").string(), "-s",
                                   (root_ / "conf/cups-files.conf").string()};
  std::vector<char*> argv = Pointers(args);
  const std::string output = (root_ / "log/cupsd-output.txt").string();
  pid_ = ::fork();
  if (pid_ == 0) {
    // Should the test die without stopping it, the scheduler goes too.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    int fd = ::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd >= 0) {
      ::dup2(fd, STDOUT_FILENO);
      ::dup2(fd, STDERR_FILENO);
    }
    ::execv(kCupsd, argv.data());
    ::_exit(127);
  }
  if (pid_ < 0) {
    if (error) *error = "cannot start cupsd: " + std::string(std::strerror(errno));
    return false;
  }
  return waitUntilAnswering(error);
}

bool PrivateScheduler::waitUntilAnswering(std::string* error) {
  const auto deadline = Clock::now() + std::chrono::seconds(20);
  while (Clock::now() < deadline) {
    int status = 0;
    if (::waitpid(pid_, &status, WNOHANG) == pid_) {
      pid_ = -1;
      if (error)
        *error = "cupsd exited (status " + std::to_string(ExitStatus(status)) + "): " +
                 ReadFile(root_ / "log/cupsd-output.txt") + errorLogDigest();
      return false;
    }
    if (Accepts(port_)) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  if (error) *error = "cupsd did not answer on " + server() + " within 20 s\n" + errorLogDigest();
  return false;
}

void PrivateScheduler::stop() {
  if (pid_ <= 0) return;
  ::kill(pid_, SIGTERM);
  const auto deadline = Clock::now() + std::chrono::seconds(10);
  int status = 0;
  while (Clock::now() < deadline) {
    if (::waitpid(pid_, &status, WNOHANG) == pid_) {
      pid_ = -1;
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  ::kill(pid_, SIGKILL);
  while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
}

bool PrivateScheduler::addQueue(const std::string& queue, const fs::path& ppd, std::string* error) {
  // The filter line goes right after *PCFileName, among the PPD's other identification.
  std::istringstream in(ReadFile(ppd));
  std::string text, line;
  bool added = false;
  while (std::getline(in, line)) {
    text += line + "\n";
    if (!added && line.starts_with("*PCFileName:")) {
      text += std::string("*cupsFilter2: \"application/postscript application/vnd.cups-postscript 0 ") +
              kFilterName + "\"\n";
      added = true;
    }
  }
  const fs::path copy = root_ / (queue + ".ppd");
  if (!added) {
    if (error) *error = ppd.string() + " has no *PCFileName line";
    return false;
  }
  if (!WriteFile(copy, text, fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read,
                 error))
    return false;
  ProgramRun lpadmin = run({"lpadmin", "-h", server(), "-p", queue, "-E", "-v", "file:///dev/null",
                            "-P", copy.string()});
  if (lpadmin.status != 0) {
    if (error) *error = "lpadmin failed (" + std::to_string(lpadmin.status) + "): " + lpadmin.err;
    return false;
  }
  return true;
}

bool PrivateScheduler::waitForJob(int job, std::chrono::milliseconds timeout) const {
  const auto deadline = Clock::now() + timeout;
  while (!fs::exists(recordedOptions(job))) {
    if (Clock::now() >= deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

std::string PrivateScheduler::errorLogDigest() const {
  std::istringstream log(ReadFile(root_ / "log/error_log"));
  std::vector<std::string> lines;
  for (std::string line; std::getline(log, line);)
    if (line.starts_with("E ") || line.find("[Job") != std::string::npos) lines.push_back(line);
  // The last lines tell what happened to the latest job.
  constexpr std::size_t kShown = 60;
  std::string digest = "error_log (errors and job lines):\n";
  for (std::size_t i = lines.size() > kShown ? lines.size() - kShown : 0; i < lines.size(); ++i)
    digest += lines[i] + "\n";
  return digest;
}

ProgramRun PrivateScheduler::run(const std::vector<std::string>& command, bool capture) const {
  ProgramRun result;
  std::vector<std::string> env = ChildEnvironment(server(), root_);
  std::vector<std::string> args = command;
  std::vector<char*> envp = Pointers(env), argv = Pointers(args);
  const fs::path out = capture ? root_ / "run-stdout.txt" : "/dev/null";
  const fs::path err = capture ? root_ / "run-stderr.txt" : "/dev/null";
  const int outFd = ::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  const int errFd = ::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  const int inFd = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  const pid_t pid = outFd >= 0 && errFd >= 0 && inFd >= 0 ? ::fork() : -1;
  if (pid == 0) {
    ::dup2(inFd, STDIN_FILENO);
    ::dup2(outFd, STDOUT_FILENO);
    ::dup2(errFd, STDERR_FILENO);
    ::execvpe(argv[0], argv.data(), envp.data());
    ::_exit(127);
  }
  for (int fd : {outFd, errFd, inFd})
    if (fd >= 0) ::close(fd);
  if (pid < 0) {
    result.err = "cannot run " + command.front() + ": " + std::strerror(errno);
    return result;
  }
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  result.status = ExitStatus(status);
  if (capture) {
    result.out = ReadFile(out);
    result.err = ReadFile(err);
  }
  return result;
}

int RequestId(std::string_view output, std::string_view queue) {
  const std::string marker = "request id is " + std::string(queue) + "-";
  const std::size_t at = output.find(marker);
  if (at == std::string_view::npos) return 0;
  int job = 0;
  const char* begin = output.data() + at + marker.size();
  std::from_chars(begin, output.data() + output.size(), job);
  return job;
}

}  // namespace varno::testing
