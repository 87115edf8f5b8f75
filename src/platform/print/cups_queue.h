// SPDX-License-Identifier: Apache-2.0
// Jobs on a CUPS queue, and a user's saved default options for it (the lpoptions file
// that libcups keeps in the user's $HOME/.cups, root's included).
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/print/job_options.h"

namespace varno::print {

// Submits `files`, in order, as one job on `queue` of `server` ("host[:port]", a socket
// path, or empty for the default scheduler). Every file is checked to be readable first,
// and a job whose files cannot all be sent is cancelled, so nothing prints half-way.
// Returns the job id, or 0 with a one-line message in `error`.
int SubmitJob(std::string_view queue, std::string_view server,
              std::span<const std::filesystem::path> files, const std::vector<JobOption>& options,
              std::string_view title, std::string* error);

// A destination as lp users name one: "QUEUE" or "QUEUE/INSTANCE", an instance being a
// saved set of options that every application's print dialog shows as a printer of its own.
struct Destination {
  std::string queue;
  std::string instance;  // empty: the queue itself
};
Destination SplitDestination(std::string_view name);

// The destinations of `server` (empty: the default scheduler) that a print dialog lists,
// queues and their instances in libcups' order, or nullopt with a message when the
// scheduler cannot be reached.
struct DestinationInfo {
  Destination name;
  std::string description;  // printer-info, or the make and model
  bool isDefault = false;
};
std::optional<std::vector<DestinationInfo>> ListDestinations(std::string_view server,
                                                             std::string* error);

// Stores `options` as the user's default options of the queue ("QUEUE/INSTANCE": of that
// instance, made when it is new, starting from the queue's own saved options). Ticket entries saved
// before (current and older form alike) and options named again are replaced, so the
// defaults are exactly this ticket's; other saved options stay.
bool SaveQueueDefaults(std::string_view queue, std::string_view server,
                       const std::vector<JobOption>& options, std::string* error);

// The queue's (or "QUEUE/INSTANCE"'s) default options as the user's jobs get them (saved
// options over the scheduler's), or nullopt with a message.
std::optional<std::vector<JobOption>> ReadQueueDefaults(std::string_view queue,
                                                        std::string_view server,
                                                        std::string* error);

}  // namespace varno::print
