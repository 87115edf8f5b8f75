// SPDX-License-Identifier: Apache-2.0
#include "vocabulary/plugin_bundle.h"

namespace varno::vocabulary {

bundle::BundleRef gBundle;

bundle::BundleRef GetPDEBundle() { return gBundle; }

bundle::BundleRef FindPlugInBundle() {
  return bundle::Bundle::FindByIdentifier(kPlugInBundleIdentifier);
}

}  // namespace varno::vocabulary

extern "C" varno::bundle::Bundle* GetPDEBundle() { return varno::vocabulary::gBundle.get(); }
