#include "fax/fax_options.h"

#include "vocabulary/setting_maps.h"

namespace varno::fax {

int FaxSendSpeedItemFromOptions(const plist::Dictionary& options) {
  CFIndex speed = kFaxDefaultSendSpeed;
  CFDictionaryGetNumber(options, kFaxSendSpeedProperty, &speed);
  return TicketToUI(FaxSendSpeedMap, speed);
}

void SetFaxSendSpeedItemInOptions(plist::Dictionary& options, int item) {
  CFDictionarySetNumber(options, kFaxSendSpeedProperty, static_cast<CFIndex>(item));
}

}  // namespace varno::fax
