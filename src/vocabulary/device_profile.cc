// SPDX-License-Identifier: Apache-2.0
#include "vocabulary/device_profile.h"

#include "platform/plist/file.h"
#include "vocabulary/plugin_bundle.h"

namespace varno::vocabulary {
namespace {

// The loaded profile; nullopt when none is.
std::optional<plist::Dictionary> gDeviceProfile;

const plist::Dictionary* Features() {
  if (!gDeviceProfile) return nullptr;
  const plist::Value* features = gDeviceProfile->find("Features");
  return features ? features->asDictionary() : nullptr;
}

const plist::Dictionary* DictionaryIn(const plist::Dictionary* d, std::string_view key) {
  if (!d) return nullptr;
  const plist::Value* v = d->find(key);
  return v ? v->asDictionary() : nullptr;
}

// True when the dictionary's "Properties" hold `property` (equal to `value` if given).
bool HasProperty(const plist::Dictionary* d, std::string_view property,
                 const plist::Value* value) {
  const plist::Dictionary* properties = DictionaryIn(d, "Properties");
  const plist::Value* found = properties ? properties->find(property) : nullptr;
  return found && (!value || *found == *value);
}

}  // namespace

void VNPInitialize() {
  if (gDeviceProfile) return;
  bundle::BundleRef bundle = GetPDEBundle();
  if (!bundle) return;
  std::optional<std::filesystem::path> path = bundle->resourcePath("Device Profile", "plist");
  if (!path) return;
  gDeviceProfile = plist::ReadDictionaryFile(*path);
}

void VNPFinalize() { gDeviceProfile.reset(); }

const plist::Dictionary* VNPGetFeature(std::string_view name) {
  return DictionaryIn(Features(), name);
}

plist::Array VNPGetFeaturesWithProperty(std::string_view property) {
  return VNPGetFeaturesWithPropertyAndValue(property, nullptr);
}

plist::Array VNPGetFeaturesWithPropertyAndValue(std::string_view property,
                                                const plist::Value* value) {
  plist::Array result;
  const plist::Dictionary* features = Features();
  if (!features) return result;
  for (const auto& [name, feature] : *features) {
    if (HasProperty(feature.asDictionary(), property, value)) result.append(feature);
  }
  return result;
}

const plist::Dictionary* VNPGetFeatureSyntax(const plist::Dictionary* feature,
                                             std::string_view kind) {
  return DictionaryIn(DictionaryIn(feature, "Syntax"), kind);
}

const plist::Value* VNPGetFeatureProperty(const plist::Dictionary* feature,
                                          std::string_view property) {
  const plist::Dictionary* properties = DictionaryIn(feature, "Properties");
  return properties ? properties->find(property) : nullptr;
}

bool VNPGetFeatureDefaultValue(const plist::Dictionary* feature, std::string* kind,
                               plist::Value* value) {
  const plist::Dictionary* syntax = DictionaryIn(feature, "Syntax");
  if (!syntax) return false;
  auto give = [&](std::string_view k, const plist::Value& v) {
    if (kind) *kind = k;
    if (value) *value = v;
    return true;
  };
  if (const plist::Dictionary* keywords = DictionaryIn(syntax, "Keyword")) {
    for (const auto& [keyword, entry] : *keywords) {
      const plist::Dictionary* d = entry.asDictionary();
      const plist::Value* isDefault = d ? d->find("Default") : nullptr;
      if (isDefault && isDefault->asBoolean() && *isDefault->asBoolean()) {
        return give("Keyword", plist::Value(keyword));
      }
    }
  }
  for (std::string_view k : {"Name", "Number"}) {
    const plist::Dictionary* d = DictionaryIn(syntax, k);
    if (const plist::Value* v = d ? d->find("Default") : nullptr) return give(k, *v);
  }
  return false;
}

plist::Array VNPGetKeywordsWithPropertyAndValue(const plist::Dictionary* feature,
                                                std::string_view property,
                                                const plist::Value& value) {
  plist::Array result;
  const plist::Dictionary* keywords = VNPGetFeatureSyntax(feature, "Keyword");
  if (!keywords) return result;
  for (const auto& [keyword, entry] : *keywords) {
    if (HasProperty(entry.asDictionary(), property, &value)) result.append(entry);
  }
  return result;
}

std::optional<plist::Value> CreatePropertiesFromXMLFile(const std::filesystem::path& path) {
  return plist::ReadFile(path);
}

}  // namespace varno::vocabulary
