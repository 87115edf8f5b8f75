// SPDX-License-Identifier: Apache-2.0
// The output destination pop-up of the Paper/Output panel, filled from the installed
// finisher configuration: the trays and stackers of the finisher modules that can receive
// the job. Each item's reference value is the output bin code that the panel stores and
// writes to the PPD option "OutputBin".
//
// Needs the installable options loaded (vocabulary::LoadInstallableOptions with
// vocabulary::InstalledFeatures). Main thread only.
#pragma once

#include "platform/bundle/bundle.h"
#include "platform/status.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/menu.h"

namespace varno::panels {

// True when any finisher configuration that has trays of its own is installed; without
// one the panel fills the pop-up from the PPD's "OutputBin" choices instead.
bool AnyFinisherConfigurationInstalled();

// Appends one item titled with the feature label of `key`, whose reference value is the
// feature's ticket value (sign-extended, as the setting maps keep values). Returns the
// new item's index, or 0 when the menu or bundle is null, the menu is full, or no row of
// the feature table for `key` is satisfied (then nothing is appended).
toolkit::MenuItemIndex appendMenuItemTextForKey(toolkit::Menu* menu, const char* key,
                                                const bundle::BundleRef& bundle);

// Empties the pop-up's menu and fills it: "Printer Default" (kUnsetValue), "Auto" (1), the
// auto-switch tray when installed, then the trays of every installed configuration in
// the panel's fixed order, with the module letters shifted by one when an inserter is
// installed ahead of the finishers. A tray that two configurations have is listed twice.
// Sets the pop-up's maximum to the item count. paramErr for a null pop-up or one
// without a menu.
OSStatus PopulateOutputDestination(toolkit::Control* popup, const bundle::BundleRef& bundle);

}  // namespace varno::panels
