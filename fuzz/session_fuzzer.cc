// SPDX-License-Identifier: Apache-2.0
// Session files: any file loads or is refused with a reason; a session that loads saves and
// loads back with the same form.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/print/session.h"
#include "support.h"

using namespace varno;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::filesystem::path file = fuzz::WriteScratchFile("input.session", fuzz::AsText(data, size));
  std::string error;
  std::unique_ptr<print::Session> session = print::Session::load(file, &error);
  if (!session) {
    fuzz::Check(!error.empty(), "a refused session comes without a reason");
    return 0;
  }
  const std::filesystem::path saved = fuzz::ScratchDir() / "saved.session";
  if (!session->save(saved, &error)) return 0;
  std::unique_ptr<print::Session> back = print::Session::load(saved, &error);
  fuzz::Check(back != nullptr, "a saved session does not load back: " + error);
  fuzz::Check(fuzz::SameValue(session->toPropertyList(), back->toPropertyList(),
                              fuzz::Fidelity::WholeSeconds),
              "a session changes through save and load");
  return 0;
}
