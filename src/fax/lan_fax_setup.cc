// SPDX-License-Identifier: Apache-2.0
#include "fax/lan_fax_setup.h"

namespace varno::fax {

OSStatus RunModalLANFaxSetup(const bundle::BundleRef&, plist::Dictionary&, FaxRecipientList*) {
  return noErr;
}

}  // namespace varno::fax
