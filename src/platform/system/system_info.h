// SPDX-License-Identifier: Apache-2.0
// Who is at the machine and what the machine is called, as the hosts put them into the
// client information of a job. Every answer degrades to nullopt; nothing here throws.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace varno::sys {

// The name of the user of the active graphical session on seat0 (logind), else the name
// of the process's effective user; nullopt when neither can be found.
std::optional<std::string> CopyConsoleUser();

// The PRETTY_HOSTNAME value of machine-info file contents with its shell quoting undone;
// nullopt when the key is absent or its value is empty.
std::optional<std::string> PrettyHostnameFromMachineInfo(std::string_view contents);

// The pretty host name from machineInfoFile when one is set, else the host name
// (gethostname); nullopt when neither is available.
std::optional<std::string> CopyComputerName(
    const std::filesystem::path& machineInfoFile = "/etc/machine-info");

}  // namespace varno::sys
