#include "host/pde_bundle.h"

#include "host/plugin_entry.h"

namespace varno {

bundle::BundleRef gBundle;

bundle::BundleRef GetPDEBundle() { return gBundle; }

bundle::BundleRef FindPlugInBundle() {
  return bundle::Bundle::FindByIdentifier(host::kPlugInBundleIdentifier);
}

}  // namespace varno

extern "C" varno::bundle::Bundle* GetPDEBundle() { return varno::gBundle.get(); }
