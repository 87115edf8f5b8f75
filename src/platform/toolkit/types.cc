// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/types.h"

namespace varno::toolkit {

std::string OSTypeString(OSType code) {
  std::string text(4, ' ');
  for (int i = 0; i < 4; ++i) text[i] = static_cast<char>(code >> (24 - 8 * i) & 0xFF);
  return text;
}

std::optional<OSType> ParseOSType(std::string_view text) {
  if (text.size() != 4) return std::nullopt;
  OSType code = 0;
  for (char c : text) code = code << 8 | static_cast<unsigned char>(c);
  return code;
}

}  // namespace varno::toolkit
