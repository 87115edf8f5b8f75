// SPDX-License-Identifier: Apache-2.0
// The dialog host's own entries in the print-settings ticket: the interface options every
// job carries, the controller it is meant for, who sent it from where, and the colour
// mode that fax jobs force.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/print/ticket.h"
#include "platform/status.h"

namespace varno::host {

// The writer of every host entry.
inline constexpr const char* kHostTicketClient = "V";

inline constexpr const char* kVNIFOptionsKey = "com.varno.print.VNIFOptions";
inline constexpr const char* kRotateBookletKey = "com.varno.print.RotateBooklet180Degrees";
inline constexpr const char* kControllerFamilyKey =
    "com.varno.print.ControllerInformation.ControllerFamily";
inline constexpr const char* kControllerVersionKey =
    "com.varno.print.ControllerInformation.ControllerVersion";
inline constexpr const char* kUserNameKey = "com.varno.print.ClientInformation.UserName";
inline constexpr const char* kComputerNameKey = "com.varno.print.ClientInformation.ComputerName";
inline constexpr const char* kIPAddressKey = "com.varno.print.ClientInformation.IPAddress";
inline constexpr const char* kJobTypeKey = "com.varno.print.JobType";
inline constexpr int kFaxJobType = 5;

// Who sends the job and from where; each part may be unknown.
struct ClientInformation {
  std::optional<std::string> userName;
  std::optional<std::string> computerName;
  std::optional<std::string> ipAddress;
};

// The live answers of this machine: console user, computer name, and the first IPv4
// address of the primary interface as the network store reports it.
ClientInformation CopyClientInformation();

// True when `utf8` is valid UTF-8 and every character lies in U+0020 ... U+00FE: the
// controller prints the computer name in a Latin-1 font and cannot show more.
bool IsControllerPrintableName(std::string_view utf8);

// Writes the host entries into `ticket` (client "V", unlocked). The computer name is only
// written together with a user name: the controller pairs them, and a job without a user
// must not name a machine. Returns the status of reading the job-type dictionary when
// one is there (a fax job then gets "VNOColor" = "BW" in the PPD dictionary), else noErr.
OSStatus WriteHostTicketEntries(print::Ticket& ticket, const ClientInformation& client);

}  // namespace varno::host
