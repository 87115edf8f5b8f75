// SPDX-License-Identifier: Apache-2.0
// Ticket files: any file given as a ticket loads or is refused with a reason, and a ticket
// that loads saves and loads back equal.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/print/ticket.h"
#include "support.h"

using namespace varno;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::filesystem::path file = fuzz::WriteScratchFile("input.ticket", fuzz::AsText(data, size));
  std::string error;
  std::optional<print::Ticket> ticket = print::Ticket::load(file, &error);
  if (!ticket) {
    fuzz::Check(!error.empty(), "a refused ticket comes without a reason");
    return 0;
  }
  // The in-memory form must carry the ticket whole.
  std::optional<print::Ticket> copy = print::Ticket::fromPropertyList(ticket->toPropertyList(), &error);
  fuzz::Check(copy.has_value(), "a loaded ticket's own form is refused: " + error);
  fuzz::Check(fuzz::SameValue(ticket->toPropertyList(), copy->toPropertyList(), fuzz::Fidelity::Exact),
              "a ticket changes through its property-list form");

  const std::filesystem::path saved = fuzz::ScratchDir() / "saved.ticket";
  if (!ticket->save(saved, &error)) return 0;  // refusing to save is allowed, with a reason
  std::optional<print::Ticket> back = print::Ticket::load(saved, &error);
  fuzz::Check(back.has_value(), "a saved ticket does not load back: " + error);
  fuzz::Check(fuzz::SameValue(ticket->toPropertyList(), back->toPropertyList(),
                              fuzz::Fidelity::WholeSeconds),
              "a ticket changes through save and load");
  return 0;
}
