// SPDX-License-Identifier: Apache-2.0
// The device feature database: the bundle's own description of the device ("Device
// Profile.plist"), beside the PPD. Features have properties and a syntax ("Keyword",
// "Name" or "Number") with an optional default.
//
// Process-wide state: the loaded profile, read by VNPInitialize at host Initialize and
// released by VNPFinalize at Terminate; main thread only. Dictionaries and values handed
// out are borrowed from it and must not be changed; arrays returned are the caller's.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/plist/value.h"

namespace varno::vocabulary {

// Loads the profile from the plug-in bundle unless one is loaded; a missing or unreadable
// file leaves none.
void VNPInitialize();
void VNPFinalize();

// The feature's dictionary, or null.
const plist::Dictionary* VNPGetFeature(std::string_view name);
// Every feature whose "Properties" hold `property` (with a value equal to `value` when
// one is given), in the profile's order.
plist::Array VNPGetFeaturesWithProperty(std::string_view property);
plist::Array VNPGetFeaturesWithPropertyAndValue(std::string_view property,
                                                const plist::Value* value);
// The feature's syntax of that kind ("Keyword", "Name", "Number"), or null.
const plist::Dictionary* VNPGetFeatureSyntax(const plist::Dictionary* feature,
                                             std::string_view kind);
// The value of one of the feature's properties, or null.
const plist::Value* VNPGetFeatureProperty(const plist::Dictionary* feature,
                                          std::string_view property);
// The default: the first keyword marked "Default", else the "Name" default, else the
// "Number" default. False, outputs untouched, when there is none.
bool VNPGetFeatureDefaultValue(const plist::Dictionary* feature, std::string* kind,
                               plist::Value* value);
// The keyword dictionaries (not their names) of the feature's "Keyword" syntax whose
// "Properties" hold `property` equal to `value`.
plist::Array VNPGetKeywordsWithPropertyAndValue(const plist::Dictionary* feature,
                                                std::string_view property,
                                                const plist::Value& value);
// A property list read from an XML file, or nullopt when it cannot be read.
std::optional<plist::Value> CreatePropertiesFromXMLFile(const std::filesystem::path& path);

}  // namespace varno::vocabulary
