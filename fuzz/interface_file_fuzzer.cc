// SPDX-License-Identifier: Apache-2.0
// Interface files: any file opens or is refused with a reason, and every window of one that
// opens is built or refused with a reason.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/toolkit/interface_file.h"
#include "support.h"

using namespace varno;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::filesystem::path file =
      fuzz::WriteScratchFile("Input.interface.plist", fuzz::AsText(data, size));
  std::unique_ptr<toolkit::InterfaceFile> interface;
  std::string error;
  if (toolkit::InterfaceFile::openFile(file, &interface, &error) != noErr) {
    fuzz::Check(!error.empty(), "a refused interface file comes without a reason");
    return 0;
  }
  for (const std::string& name : interface->windowNames()) {
    std::unique_ptr<toolkit::Window> window;
    error.clear();
    if (interface->createWindow(name, &window, &error) == noErr)
      fuzz::Check(window != nullptr, "a window built without error is missing: " + name);
    else
      fuzz::Check(!error.empty(), "a refused window comes without a reason: " + name);
  }
  return 0;
}
