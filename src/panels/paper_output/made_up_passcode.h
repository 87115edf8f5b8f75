// SPDX-License-Identifier: Apache-2.0
// The passcode a set-up makes up when the person gave none: four digits, 1000 to 9999.
#pragma once

#include <string>

namespace varno::panels {

std::string MakeUpPasscode();

}  // namespace varno::panels
