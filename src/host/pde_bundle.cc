#include "host/pde_bundle.h"

namespace varno {

bundle::BundleRef gBundle;

bundle::BundleRef GetPDEBundle() { return gBundle; }

}  // namespace varno

extern "C" varno::bundle::Bundle* GetPDEBundle() { return varno::gBundle.get(); }
