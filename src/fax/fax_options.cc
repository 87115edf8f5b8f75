// SPDX-License-Identifier: Apache-2.0
#include "fax/fax_options.h"

#include "vocabulary/setting_maps.h"

namespace varno::fax {

using print::CFDictionaryGetNumber;
using print::CFDictionarySetNumber;
using print::CFIndex;
using vocabulary::FaxSendSpeedMap;
using vocabulary::TicketToUI;

int FaxSendSpeedItemFromOptions(const plist::Dictionary& options) {
  CFIndex speed = kFaxDefaultSendSpeed;
  CFDictionaryGetNumber(options, kFaxSendSpeedProperty, &speed);
  return TicketToUI(FaxSendSpeedMap, speed);
}

void SetFaxSendSpeedItemInOptions(plist::Dictionary& options, int item) {
  CFDictionarySetNumber(options, kFaxSendSpeedProperty, static_cast<CFIndex>(item));
}

}  // namespace varno::fax
