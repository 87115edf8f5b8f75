// How a print-settings ticket travels to the driver as CUPS job options, and back.
//
// Each entry of the ticket's PPD dictionary becomes the PPD option of that name with its
// choice keyword as value. Every other entry becomes a job option named by its key whose
// value encodes the entry's property-list value exactly: the base64 text of its binary
// property list. A value longer than kMaxJobOptionValueLength is cut into parts: the first
// under the key itself, the others under "<key>--2", "<key>--3", ..., each part's text
// starting with "<number of parts>*" (first) or "<part number>*" (others). Ticket keys
// always contain a "." and PPD option names never do, which tells the two kinds apart.
// docs/ticket-to-cups.md is the full description for filter writers.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/plist/value.h"
#include "platform/print/ticket.h"

namespace varno::print {

struct JobOption {
  std::string name;
  std::string value;
  friend bool operator==(const JobOption&, const JobOption&) = default;
};

// The longest value one option carries: an IPP name value, so every scheduler and every
// IPP hop keeps it whole.
inline constexpr std::size_t kMaxJobOptionValueLength = 255;

// The job options of a print-settings ticket: PPD choices first, in the dictionary's
// order, then the ticket's entries in the ticket's order. A nested ticket travels as its
// property-list form. nullopt (with `error`) only for a value too deep to encode.
std::optional<std::vector<JobOption>> TicketToJobOptions(const Ticket& printSettings,
                                                         std::string* error = nullptr);

// The options a ticket entry becomes (one, or several parts).
std::optional<std::vector<JobOption>> EncodeTicketEntry(std::string_view key,
                                                        const plist::Value& value,
                                                        std::string* error = nullptr);

// The ticket entries held in a set of job options, in the order their first parts come:
// options whose name has no "." are left out (PPD choices and standard IPP options); an
// entry whose parts are missing, out of order or undecodable is an error naming it.
std::optional<std::vector<std::pair<std::string, plist::Value>>> DecodeTicketEntries(
    const std::vector<JobOption>& options, std::string* error = nullptr);

// The options whose names have no "." (PPD choices and standard options), in order.
std::vector<JobOption> PlainJobOptions(const std::vector<JobOption>& options);

// Parses a filter's options argument ("name=value name2=value2 ..." as the scheduler
// writes it, backslash escapes and quotes included) into options, as libcups does.
std::vector<JobOption> ParseJobOptionsArgument(std::string_view argument);

}  // namespace varno::print
