// SPDX-License-Identifier: Apache-2.0
// Not built yet: the dialog refuses to open, and the panel changes nothing.
#include "panels/special_pages/exceptions_dialog.h"

namespace varno::panels {

OSStatus RunModalExceptionsDialog(const bundle::BundleRef&, std::int32_t, const model::Stock*, const print::Ticket*,
                               model::ExceptionPageList*, model::ExceptionPage*, std::int16_t* itemHit) {
  if (itemHit) *itemHit = 2;
  return kInterfaceObjectNotFound;
}

}  // namespace varno::panels
