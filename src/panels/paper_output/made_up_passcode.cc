// SPDX-License-Identifier: Apache-2.0
#include "panels/paper_output/made_up_passcode.h"

#include <chrono>
#include <exception>
#include <random>

namespace varno::panels {

// The system's entropy source: a passcode must not follow from the time the job was set
// up. The clock seeds a generator only where that source is missing.
std::string MakeUpPasscode() {
  std::uniform_int_distribution<int> offset(0, 8999);
  try {
    std::random_device device;
    return std::to_string(1000 + offset(device));
  } catch (const std::exception&) {
    const auto ticks = std::chrono::system_clock::now().time_since_epoch().count();
    std::mt19937 generator(static_cast<std::mt19937::result_type>(ticks));
    return std::to_string(1000 + offset(generator));
  }
}

}  // namespace varno::panels
