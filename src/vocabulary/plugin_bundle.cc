#include "vocabulary/plugin_bundle.h"

namespace varno {

bundle::BundleRef gBundle;

bundle::BundleRef GetPDEBundle() { return gBundle; }

bundle::BundleRef FindPlugInBundle() {
  return bundle::Bundle::FindByIdentifier(kPlugInBundleIdentifier);
}

}  // namespace varno

extern "C" varno::bundle::Bundle* GetPDEBundle() { return varno::gBundle.get(); }
