// SPDX-License-Identifier: Apache-2.0
#include "platform/bundle/plugin.h"

#include <map>
#include <mutex>

namespace varno::bundle {
namespace {

struct InstanceCounts {
  std::mutex mutex;
  std::map<UUID, int> byFactory;
};

InstanceCounts& Counts() {
  static InstanceCounts counts;
  return counts;
}

void SetError(std::string* error, std::string text) {
  if (error) *error = std::move(text);
}

}  // namespace

void CFPlugInAddInstanceForFactory(const UUID& factoryID) {
  InstanceCounts& counts = Counts();
  std::lock_guard lock(counts.mutex);
  ++counts.byFactory[factoryID];
}

void CFPlugInRemoveInstanceForFactory(const UUID& factoryID) {
  InstanceCounts& counts = Counts();
  std::lock_guard lock(counts.mutex);
  auto found = counts.byFactory.find(factoryID);
  if (found == counts.byFactory.end()) return;
  if (--found->second <= 0) counts.byFactory.erase(found);
}

int InstanceCountForFactory(const UUID& factoryID) {
  InstanceCounts& counts = Counts();
  std::lock_guard lock(counts.mutex);
  auto found = counts.byFactory.find(factoryID);
  return found == counts.byFactory.end() ? 0 : found->second;
}

std::vector<UUID> FactoriesForPlugInType(const Bundle& bundle, const UUID& typeID) {
  std::vector<UUID> factories;
  std::optional<plist::Dictionary> types =
      bundle.infoDictionary().getDictionary("CFPlugInTypes");
  if (!types) return factories;
  // Keys are compared as UUIDs, not as text, so lower-case spellings match too.
  for (const auto& [key, value] : *types) {
    if (ParseUUID(key) != typeID || !value.isArray()) continue;
    for (const plist::Value& entry : *value.asArray()) {
      const std::string* text = entry.asString();
      if (!text) continue;
      if (std::optional<UUID> factory = ParseUUID(*text)) factories.push_back(*factory);
    }
  }
  return factories;
}

std::string FactoryFunctionName(const Bundle& bundle, const UUID& factoryID) {
  std::optional<plist::Dictionary> factories =
      bundle.infoDictionary().getDictionary("CFPlugInFactories");
  if (!factories) return {};
  for (const auto& [key, value] : *factories) {
    if (ParseUUID(key) != factoryID) continue;
    if (const std::string* name = value.asString()) return *name;
  }
  return {};
}

OSStatus CreateInstance(const Bundle& bundle, const UUID& factoryID, const UUID& typeID,
                        void** instance, std::string* error) {
  *instance = nullptr;
  std::string name = FactoryFunctionName(bundle, factoryID);
  if (name.empty()) {
    SetError(error, "bundle \"" + bundle.path().string() + "\" registers no factory " +
                        factoryID.toString());
    return fnfErr;
  }
  auto factory = bundle.function<PlugInFactoryFunction>(name, error);
  if (!factory) return fnfErr;
  *instance = factory(nullptr, typeID);
  if (!*instance) {
    SetError(error, "factory " + name + " returned no instance for plug-in type " +
                        typeID.toString());
    return paramErr;
  }
  return noErr;
}

}  // namespace varno::bundle
