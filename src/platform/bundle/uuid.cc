// SPDX-License-Identifier: Apache-2.0
#include "platform/bundle/uuid.h"

#include <cstdlib>

namespace varno::bundle {

std::string UUID::toString() const {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(36);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text.push_back('-');
    text.push_back(kDigits[bytes[i] >> 4]);
    text.push_back(kDigits[bytes[i] & 0x0F]);
  }
  return text;
}

namespace detail {

void MalformedUUIDLiteral() {
  // Only reachable through MakeUUID, which is consteval: this never runs.
  std::abort();
}

}  // namespace detail

}  // namespace varno::bundle
