// SPDX-License-Identifier: Apache-2.0
// Installable options: how the printer is configured (trays, finisher, fax card), read from
// the PPD's "InstallableOptions" group, and the installed-feature table that asks about it.
//
// Process-wide state: the dictionary of recorded options and the feature table passed when
// it was made, loaded once at host Initialize and unloaded at Terminate; main thread only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <cups/ppd.h>

#include "platform/bundle/bundle.h"

namespace varno::vocabulary {

// One row of an installed-feature table; a null feature key ends it.
struct InstalledFeatureMap {
  const char* featureKey;     // the name menus and panels ask about
  const char* ppdKeyword;     // PPD option, or null: then the feature is always present
  const char* choice;         // the option's choice that means "present"
  const char* displayNameKey; // localization key of the display name, or null
  std::int32_t ticketValue;
};
extern const InstalledFeatureMap InstalledFeatures[];

// Records option keyword -> marked choice of the group "InstallableOptions" after marking
// the PPD's defaults. True when at least one option was recorded; false, changing nothing,
// when options are loaded already.
bool LoadInstallableOptions(ppd_file_t* ppd, const InstalledFeatureMap* featureMap);
void UnloadInstallableOptions();
bool getInstallableOptionValue(const char* keyword, std::string* choice);
// 1 when a row with that key is satisfied, else 0.
int getInstalledFeature(const char* featureKey);
bool getInstallableOptionTicketValue(const char* featureKey, std::int32_t* value);
// The localized display name, or nullopt.
std::optional<std::string> CopyLocalizedStringForInstalledFeatureFromPlugin(
    const char* featureKey, const bundle::BundleRef& bundle);
// The file name of the printer picture for the installed options.
std::string CopyDeviceMimicFilename();

}  // namespace varno::vocabulary
