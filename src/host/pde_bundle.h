// The plug-in's own bundle, where its string tables, interface files, pictures and device
// profile live.
#pragma once

#include "platform/bundle/bundle.h"

namespace varno {

// Process-wide state: the plug-in bundle, set by the host's Prologue when it finds the
// bundle by its identifier; null before. Main thread only.
extern bundle::BundleRef gBundle;

// Returns gBundle.
bundle::BundleRef GetPDEBundle();

}  // namespace varno
