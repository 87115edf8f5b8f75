// SPDX-License-Identifier: Apache-2.0
// The modal About dialog: the product's name and version from the bundle's Info.plist.
#pragma once

#include <string>

#include "platform/bundle/bundle.h"
#include "platform/status.h"

namespace varno::panels {

inline constexpr std::int32_t kAboutNameID = 1;
inline constexpr std::int32_t kAboutVersionID = 2;

// The name shown: CFBundleName, else "Varno Features".
std::string AboutProductName(const bundle::BundleRef& bundle);
// The version shown: CFBundleShortVersionString, else CFBundleVersion, else empty.
std::string AboutProductVersion(const bundle::BundleRef& bundle);

// Runs the window "About" of "AdvancedPanel" modally until OK ("ok  ") ends it (headless:
// until the automation script runs out). Returns the status of opening the file or the
// window, else noErr.
OSStatus RunModalAboutDialog(const bundle::BundleRef& bundle);

}  // namespace varno::panels
