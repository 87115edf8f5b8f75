// SPDX-License-Identifier: Apache-2.0
// The property-list reader on arbitrary bytes (XML and binary), and the writers on what
// it accepts: a value that parses must write as XML and as binary and read back the same.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/plist/file.h"
#include "support.h"

using namespace varno;

// Writes `value` with `write`, reads it back and checks it matches. A writer may refuse
// (nullopt); what it does write must read back.
template <typename Writer>
static void RoundTrip(const plist::Value& value, Writer write, fuzz::Fidelity fidelity,
                      const char* form) {
  std::string error;
  std::optional<std::string> bytes = write(value, &error);
  if (!bytes) return;
  std::optional<plist::Value> back = plist::Parse(*bytes, &error);
  fuzz::Check(back.has_value(), std::string("the ") + form + " form does not read back: " + error);
  fuzz::Check(fuzz::SameValue(value, *back, fidelity),
              std::string("the ") + form + " form reads back a different value");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string error;
  std::optional<plist::Value> value = plist::Parse(fuzz::AsText(data, size), &error);
  if (!value) {
    fuzz::Check(!error.empty(), "a refused property list comes without a reason");
    return 0;
  }
  RoundTrip(*value, [](const plist::Value& v, std::string* e) { return plist::ToXML(v, e); },
            fuzz::Fidelity::WholeSeconds, "XML");
  RoundTrip(*value, [](const plist::Value& v, std::string* e) { return plist::ToBinary(v, e); },
            fuzz::Fidelity::Exact, "binary");
  return 0;
}
