// SPDX-License-Identifier: Apache-2.0
// Four-character codes: the signatures, commands, event classes and tags that the
// print framework and the toolkit both name by four letters ("pde ", "ok  ", "cntl").
#pragma once

#include <cstdint>

namespace varno {

using OSType = std::uint32_t;

// A four-character code as one big-endian number: MakeOSType("pde ") == 0x70646520.
constexpr OSType MakeOSType(const char (&code)[5]) {
  return static_cast<OSType>(static_cast<unsigned char>(code[0])) << 24 |
         static_cast<OSType>(static_cast<unsigned char>(code[1])) << 16 |
         static_cast<OSType>(static_cast<unsigned char>(code[2])) << 8 |
         static_cast<OSType>(static_cast<unsigned char>(code[3]));
}

}  // namespace varno
