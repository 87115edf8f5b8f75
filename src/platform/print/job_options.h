// SPDX-License-Identifier: Apache-2.0
// How a print-settings ticket travels to the driver as CUPS job options, and back.
//
// Each entry of the ticket's PPD dictionary becomes the PPD option of that name with its
// choice keyword as value. All other entries travel together as one dictionary (key ->
// value) in a binary property list, base64-encoded and cut into parts of at most
// kMaxJobOptionValueLength characters under the reserved names "ticket-entries-1",
// "ticket-entries-2", ...; each part's value reads "<part>/<parts>:<base64 text>". Because
// the keys live inside the dictionary and never in an option name, every key (with or
// without a ".", ending in "--2", empty, very long, in any script) comes back exactly, and
// a PPD keyword with a "." stays a PPD choice. docs/ticket-to-cups.md is the full
// description for filter writers, including the older per-key form still read here.
#pragma once

#include <cstddef>
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

// Part n of the ticket entries is the option named kTicketEntriesOption + "-<n>". Every
// name starting with it (in any case) is reserved: a PPD keyword may not take one.
inline constexpr std::string_view kTicketEntriesOption = "ticket-entries";

// The base64 text of the ticket entries is refused beyond this size (about 17,500 parts).
// A ticket with hundreds of special pages and inserts needs well under a tenth of it.
inline constexpr std::size_t kMaxTicketEntriesText = 4u * 1024 * 1024;

// The job options of a print-settings ticket: PPD choices first, in the dictionary's
// order, then the parts of the ticket entries (the ticket's items in its order; a nested
// ticket travels as its property-list form). nullopt with `error` for a PPD keyword that
// is no option name or is reserved, a choice that is no string, entries whose text would
// pass kMaxTicketEntriesText, or a value too deep to encode.
std::optional<std::vector<JobOption>> TicketToJobOptions(const Ticket& printSettings,
                                                         std::string* error = nullptr);

// The reserved options carrying `entries` (key -> value, in order); none for no entries.
// nullopt with `error` as for TicketToJobOptions.
std::optional<std::vector<JobOption>> EncodeTicketEntries(const plist::Dictionary& entries,
                                                          std::string* error = nullptr);

// The options carrying one ticket entry alone (EncodeTicketEntries of {key: value}).
std::optional<std::vector<JobOption>> EncodeTicketEntry(std::string_view key,
                                                        const plist::Value& value,
                                                        std::string* error = nullptr);

// The ticket entries held in a set of job options, in the order they were encoded. The
// reserved parts are read when any is present; otherwise the older per-key form (a key
// with a ".", value "<parts>*<base64>", later parts under "<key>--<n>") is. Other options
// are left out. Missing, repeated, misnumbered, oversized or undecodable parts give
// nullopt and an error naming the problem.
std::optional<std::vector<std::pair<std::string, plist::Value>>> DecodeTicketEntries(
    const std::vector<JobOption>& options, std::string* error = nullptr);

// True for an option that carries ticket entries: a reserved name, or an entry or part of
// the older per-key form. Such options are no PPD choice.
bool IsTicketEntryOption(const JobOption& option);

// The options that carry no ticket entries (PPD choices and standard options), in order.
std::vector<JobOption> PlainJobOptions(const std::vector<JobOption>& options);

// Parses a filter's options argument ("name=value name2=value2 ..." as the scheduler
// writes it, backslash escapes and quotes included) into options, as libcups does.
std::vector<JobOption> ParseJobOptionsArgument(std::string_view argument);

}  // namespace varno::print
