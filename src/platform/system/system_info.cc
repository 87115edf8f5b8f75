// SPDX-License-Identifier: Apache-2.0
#include "platform/system/system_info.h"

#include <systemd/sd-login.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <memory>

#include "platform/system/posix_util.h"

namespace varno::sys {
namespace {

struct FreeDeleter {
  void operator()(char* p) const { std::free(p); }
};
using CString = std::unique_ptr<char, FreeDeleter>;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

std::string_view TrimLeadingBlanks(std::string_view s) {
  while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
  return s;
}

std::string_view TrimBlanks(std::string_view s) {
  s = TrimLeadingBlanks(s);
  while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
  return s;
}

// Undoes shell-style quoting the way systemd reads its environment-like files: quoted and
// unquoted runs may alternate, a backslash outside quotes takes the next character
// literally, inside double quotes it only escapes " \ ` $, and single quotes take
// everything literally. Trailing unquoted blanks are dropped; escaped or quoted ones stay.
// nullopt on an unclosed quote.
std::optional<std::string> UnquoteShellValue(std::string_view raw) {
  std::string out;
  std::size_t keep = 0;  // length of out without trailing unquoted blanks
  std::size_t i = 0;
  while (i < raw.size()) {
    char c = raw[i++];
    if (c == '\'') {
      std::size_t close = raw.find('\'', i);
      if (close == std::string_view::npos) return std::nullopt;
      out.append(raw.substr(i, close - i));
      i = close + 1;
      keep = out.size();
    } else if (c == '"') {
      for (;;) {
        if (i >= raw.size()) return std::nullopt;
        char d = raw[i++];
        if (d == '"') break;
        if (d == '\\' && i < raw.size()) {
          char e = raw[i++];
          if (e != '"' && e != '\\' && e != '`' && e != '$') out.push_back('\\');
          out.push_back(e);
        } else {
          out.push_back(d);
        }
      }
      keep = out.size();
    } else if (c == '\\') {
      if (i < raw.size()) out.push_back(raw[i++]);
      keep = out.size();
    } else {
      out.push_back(c);
      if (!IsBlank(c)) keep = out.size();
    }
  }
  out.resize(keep);
  return out;
}

// The user of seat0's active session when that session is a graphical one of a real user
// (not a display manager's greeter); nullopt otherwise or without logind.
std::optional<std::string> GraphicalSeatUser() {
  char* rawSession = nullptr;
  uid_t uid = 0;
  if (sd_seat_get_active("seat0", &rawSession, &uid) < 0) {
    std::free(rawSession);
    return std::nullopt;
  }
  CString session(rawSession);
  if (!session) return std::nullopt;

  char* rawType = nullptr;
  int typeRc = sd_session_get_type(session.get(), &rawType);
  CString type(rawType);
  char* rawClass = nullptr;
  int classRc = sd_session_get_class(session.get(), &rawClass);
  CString sessionClass(rawClass);
  if (typeRc < 0 || !type || classRc < 0 || !sessionClass) return std::nullopt;

  std::string_view t(type.get());
  if (t != "x11" && t != "wayland" && t != "mir") return std::nullopt;
  if (std::string_view(sessionClass.get()) != "user") return std::nullopt;

  std::optional<detail::UserRecord> user = detail::LookUpUser(uid);
  if (!user || user->name.empty()) return std::nullopt;
  return user->name;
}

}  // namespace

std::optional<std::string> CopyConsoleUser() {
  if (std::optional<std::string> seatUser = GraphicalSeatUser()) return seatUser;
  std::optional<detail::UserRecord> self = detail::LookUpUser(geteuid());
  if (!self || self->name.empty()) return std::nullopt;
  return self->name;
}

std::optional<std::string> PrettyHostnameFromMachineInfo(std::string_view contents) {
  std::optional<std::string> found;
  while (!contents.empty()) {
    std::size_t end = contents.find('\n');
    std::string_view line = contents.substr(0, end);
    contents.remove_prefix(end == std::string_view::npos ? contents.size() : end + 1);

    // Comment lines ("#" or ";") never name the key, so they drop out with the other keys.
    std::size_t eq = line.find('=');
    if (eq == std::string_view::npos) continue;
    if (TrimBlanks(line.substr(0, eq)) != "PRETTY_HOSTNAME") continue;
    // A later assignment overrides an earlier one; a malformed one is ignored.
    if (std::optional<std::string> value =
            UnquoteShellValue(TrimLeadingBlanks(line.substr(eq + 1))))
      found = std::move(value);
  }
  if (found && found->empty()) return std::nullopt;
  return found;
}

std::optional<std::string> CopyComputerName(const std::filesystem::path& machineInfoFile) {
  if (std::optional<std::string> info = detail::ReadSmallFile(machineInfoFile)) {
    if (std::optional<std::string> pretty = PrettyHostnameFromMachineInfo(*info)) return pretty;
  }
  char name[HOST_NAME_MAX + 1] = {};
  if (gethostname(name, sizeof name - 1) != 0 || name[0] == '\0') return std::nullopt;
  return std::string(name);
}

}  // namespace varno::sys
