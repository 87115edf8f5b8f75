// SPDX-License-Identifier: Apache-2.0
// The plug-in's own bundle, where its string tables, interface files, pictures and device
// profile live. Kept with the vocabulary, its lowest user: the device profile and the
// shared PPD's localizer are read from it.
#pragma once

#include "platform/bundle/bundle.h"

namespace varno::vocabulary {

// The bundle identifier the plug-in finds itself by.
inline constexpr const char* kPlugInBundleIdentifier =
    "com.varno.print.pde.varnofeatures.at100_110_110A_120_120A";

// Process-wide state: the plug-in bundle, set by the host's Prologue when it finds the
// bundle by its identifier; null before. Main thread only.
extern bundle::BundleRef gBundle;

// Returns gBundle.
bundle::BundleRef GetPDEBundle();

// The plug-in bundle found by its identifier, as each panel's Prologue finds it: the one
// this code was loaded from when it is open, so a panel loaded by another host's panel
// table has its strings and interface files too. Null when there is none.
bundle::BundleRef FindPlugInBundle();

}  // namespace varno::vocabulary

// The same, exported by name for code outside the plug-in (another panel bundle, a host),
// borrowed: valid while the plug-in is loaded.
extern "C" varno::bundle::Bundle* GetPDEBundle();
