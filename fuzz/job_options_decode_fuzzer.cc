// SPDX-License-Identifier: Apache-2.0
// The job-option decoder on arbitrary text, as a filter receives its options argument:
// whatever it decodes must encode again and decode to the same entry.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/print/job_options.h"
#include "support.h"

using namespace varno;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<print::JobOption> options = print::ParseJobOptionsArgument(fuzz::AsText(data, size));
  std::string error;
  auto entries = print::DecodeTicketEntries(options, &error);
  if (!entries) {
    fuzz::Check(!error.empty(), "undecodable job options come without a reason");
    return 0;
  }
  for (const auto& [key, value] : *entries) {
    std::optional<std::vector<print::JobOption>> encoded = print::EncodeTicketEntry(key, value, &error);
    fuzz::Check(encoded.has_value(), "a decoded entry does not encode again: " + error);
    auto again = print::DecodeTicketEntries(*encoded, &error);
    fuzz::Check(again && again->size() == 1 && (*again)[0].first == key &&
                    fuzz::SameValue(value, (*again)[0].second, fuzz::Fidelity::Exact),
                "a decoded entry changes when encoded again: " + key);
  }
  return 0;
}
