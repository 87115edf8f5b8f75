// SPDX-License-Identifier: Apache-2.0
#include "panels/paper_output/output_destination.h"

#include <cstdint>
#include <initializer_list>
#include <string>

#include "vocabulary/installable_options.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

namespace {

constexpr std::int32_t kAutoOutputBin = 1;
constexpr const char* kInserterKey = "OrbisInserter";
constexpr const char* kAutoSwitchTrayKey = "AutoSwitchTrayKey";

// A tray of one finisher module: the module's position along the paper path (0 for the
// first, A) and whether it is the top tray or the main stacker.
struct Tray {
  int module;
  bool top;
};

// Tray feature keys by module letter.
constexpr const char* kTopTrayKeys[] = {"FinisherATopTrayKey", "FinisherBTopTrayKey",
                                        "FinisherCTopTrayKey", "FinisherDTopTrayKey"};
constexpr const char* kMainStackerKeys[] = {"FinisherAMainStacker", "FinisherBMainStacker",
                                            "FinisherCMainStacker", "FinisherDMainStacker"};

constexpr Tray ATop{0, true}, AMain{0, false}, BTop{1, true}, BMain{1, false}, CTop{2, true},
    CMain{2, false};

// One configuration row: installed when any of its keys is, then its trays in order.
struct ConfigurationRow {
  std::initializer_list<const char*> keys;
  std::initializer_list<Tray> trays;
};

const ConfigurationRow kConfigurations[] = {
    {{"MultifunctionFinisher", "MultifunctionProPlusFinisher", "BasicFinisherModule",
      "FinisherTransportWithStacker"},
     {ATop, AMain}},
    {{"FinisherTransportModule"}, {ATop}},
    {{"BFMPlusBFMKey"}, {AMain, BMain, BTop}},
    {{"BFMFTMKey"}, {AMain, BTop}},
    {{"BFMBFMFTMKey"}, {AMain, BMain, CTop}},
    {{"BFMFTMStackerKey"}, {AMain, BMain, BTop}},
    {{"FTMSFTMSKey"}, {AMain, ATop, BMain, BTop}},
    {{"BFMFTMSFTMSKey"}, {AMain, BMain, BTop, CMain, CTop}},
    {{"BFMBFMFTMSKey"}, {AMain, BMain, CMain, CTop}},
};

bool RowInstalled(const ConfigurationRow& row) {
  for (const char* key : row.keys)
    if (vocabulary::getInstalledFeature(key)) return true;
  return false;
}

toolkit::URefCon RefConForValue(std::int32_t value) {
  return static_cast<toolkit::URefCon>(static_cast<std::intptr_t>(value));
}

toolkit::MenuItemIndex AppendItem(toolkit::Menu& menu, std::string text, std::int32_t value) {
  const toolkit::MenuItemIndex item = menu.appendItem(std::move(text));
  if (item != 0) menu.setItemRefCon(item, RefConForValue(value));
  return item;
}

}  // namespace

bool AnyFinisherConfigurationInstalled() {
  for (const ConfigurationRow& row : kConfigurations)
    if (RowInstalled(row)) return true;
  return false;
}

toolkit::MenuItemIndex appendMenuItemTextForKey(toolkit::Menu* menu, const char* key,
                                                const bundle::BundleRef& bundle) {
  std::int32_t value = 0;
  if (!menu || !bundle || !vocabulary::getInstallableOptionTicketValue(key, &value)) return 0;
  std::string text = vocabulary::CopyLocalizedStringForInstalledFeatureFromPlugin(key, bundle)
                         .value_or("STRING NOT FOUND");
  return AppendItem(*menu, std::move(text), value);
}

OSStatus PopulateOutputDestination(toolkit::Control* popup, const bundle::BundleRef& bundle) {
  if (!popup || !popup->menu()) return paramErr;
  toolkit::Menu& menu = *popup->menu();
  menu.deleteAllItems();
  const auto localized = [&](const char* key) {
    return bundle ? bundle->localizedString(key, "Localizable", "STRING NOT FOUND")
                  : std::string("STRING NOT FOUND");
  };
  AppendItem(menu, localized("PrinterDefault"), vocabulary::kUnsetValue);
  AppendItem(menu, localized("Auto"), kAutoOutputBin);
  if (vocabulary::getInstalledFeature(kAutoSwitchTrayKey))
    appendMenuItemTextForKey(&menu, kAutoSwitchTrayKey, bundle);

  // An inserter is the first module after the printer, so the finishers' letters move on.
  const int shift = vocabulary::getInstalledFeature(kInserterKey) ? 1 : 0;
  for (const ConfigurationRow& row : kConfigurations) {
    if (!RowInstalled(row)) continue;
    for (const Tray& tray : row.trays) {
      const int module = tray.module + shift;
      appendMenuItemTextForKey(&menu, tray.top ? kTopTrayKeys[module] : kMainStackerKeys[module],
                               bundle);
    }
  }
  popup->setMaximum(static_cast<std::int32_t>(menu.count()));
  return noErr;
}

}  // namespace varno::panels
