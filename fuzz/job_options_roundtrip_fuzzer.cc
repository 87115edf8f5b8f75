// SPDX-License-Identifier: Apache-2.0
// The job-option encoder: a print-settings ticket built from a fuzzed property list travels
// as job options, and decoding them gives back exactly the ticket's entries, in order.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/plist/file.h"
#include "platform/print/job_options.h"
#include "platform/print/ticket.h"
#include "support.h"

using namespace varno;

// The ticket the input describes: its ticket form when it is one, else a ticket holding the
// dictionary's entries. Only keys with a "." are ticket keys; PPD choices come from the
// form's PPD dictionary as they are.
static std::optional<print::Ticket> TicketFrom(const plist::Dictionary& form) {
  print::Ticket ticket;
  if (std::optional<print::Ticket> parsed = print::Ticket::fromPropertyList(form)) {
    for (const std::string& key : parsed->keys()) {
      if (key.find('.') == std::string::npos) continue;
      const print::TicketItem* item = parsed->item(key);
      if (item->nested) ticket.setTicket(key, *item->nested, item->client, item->locked);
      else ticket.setValue(key, item->value, item->client, item->locked);
    }
    for (const auto& [keyword, choice] : parsed->ppdDictionary())
      ticket.ppdDictionary().set(keyword, choice);
    return ticket;
  }
  for (const auto& [key, value] : form)
    if (key.find('.') != std::string::npos) ticket.setValue(key, value, "com.varno.fuzz");
  return ticket;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::optional<plist::Value> value = plist::Parse(fuzz::AsText(data, size));
  if (!value || !value->isDictionary()) return 0;
  std::optional<print::Ticket> ticket = TicketFrom(*value->asDictionary());
  if (!ticket) return 0;

  std::string error;
  std::optional<std::vector<print::JobOption>> options = print::TicketToJobOptions(*ticket, &error);
  if (!options) {
    fuzz::Check(!error.empty(), "a ticket that cannot be encoded comes without a reason");
    return 0;
  }
  auto entries = print::DecodeTicketEntries(*options, &error);
  fuzz::Check(entries.has_value(), "the job options of a ticket do not decode: " + error);
  const std::vector<std::string> keys = ticket->keys();
  fuzz::Check(entries->size() == keys.size(), "decoding gives another number of ticket entries");
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const print::TicketItem* item = ticket->item(keys[i]);
    const plist::Value expected = item->nested ? plist::Value(item->nested->toPropertyList()) : item->value;
    fuzz::Check((*entries)[i].first == keys[i], "a decoded entry has another key: " + keys[i]);
    fuzz::Check(fuzz::SameValue(expected, (*entries)[i].second, fuzz::Fidelity::Exact),
                "a decoded entry has another value: " + keys[i]);
  }
  // The PPD choices travel as plain options, one per entry, unchanged.
  std::vector<print::JobOption> plain = print::PlainJobOptions(*options);
  std::vector<print::JobOption> choices;
  for (const auto& [keyword, choice] : ticket->ppdDictionary())
    if (const std::string* text = choice.asString()) choices.push_back({keyword, *text});
  fuzz::Check(plain == choices, "the PPD choices do not travel unchanged as plain options");
  return 0;
}
