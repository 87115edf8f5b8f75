// SPDX-License-Identifier: Apache-2.0
// Not built yet: the dialog refuses to open, and the panel changes nothing.
#include "panels/special_pages/inserts_dialog.h"

namespace varno::panels {

OSStatus RunModalInsertsDialog(const bundle::BundleRef&, std::int32_t, const model::Stock*, model::InsertList*,
                               model::Insert*, std::int16_t* itemHit) {
  if (itemHit) *itemHit = 2;
  return kInterfaceObjectNotFound;
}

}  // namespace varno::panels
