// Setting maps: lookups between menu positions and ticket values, menus and pop-ups filled
// from maps (with installed options and input history), and the English string tables.
#include "vocabulary/setting_maps.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "platform/bundle/bundle.h"
#include "platform/four_char_code.h"
#include "platform/bundle/test_bundle.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/menu.h"
#include "support/temp_dir.h"
#include "vocabulary/installable_options.h"

// The PPD library is deprecated as a whole; these tests only open fixtures with it.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace varno {
namespace {

using testing::ScopedEnv;
using testing::TempDir;
using toolkit::Control;
using toolkit::ControlKind;

constexpr std::int32_t kVujn = static_cast<std::int32_t>(MakeOSType("Vujn"));
constexpr const char* kNotFound = "STRING NOT FOUND";

// The texts of every item of a menu, in order.
std::vector<std::string> Titles(const toolkit::Menu& menu) {
  std::vector<std::string> titles;
  for (toolkit::MenuItemIndex i = 1; i <= menu.count(); ++i) titles.push_back(menu.item(i)->text);
  return titles;
}

std::int32_t ItemValue(const toolkit::Menu& menu, toolkit::MenuItemIndex index) {
  return static_cast<std::int32_t>(static_cast<std::intptr_t>(menu.item(index)->refCon));
}

// ---------------------------------------------------------------------------------------
// Lookups that need no installed options.

TEST(SettingMapLookup, PositionIsThatOfTheRowWithTheValueAndGapsAreMisses) {
  // Cover codes skip 4: the last item stands for 5.
  EXPECT_EQ(TicketToUI(CoverOptionMap, 4), -1);
  EXPECT_EQ(LocalizedKeyForTicketValue(CoverOptionMap, 4), nullptr);
  EXPECT_EQ(TicketToUI(CoverOptionMap, 5), 4);
  EXPECT_STREQ(LocalizedKeyForTicketValue(CoverOptionMap, 5), "Front and Back Covers");
  EXPECT_EQ(TicketToUI(FaxResolutionMap, 3), 4);
  EXPECT_EQ(TicketToUI(FaxResolutionMap, 4), 3);
  EXPECT_EQ(TicketToUI(WatermarkMap, -7), 4);
}

TEST(SettingMapLookup, LookupStopsAtTheFirstRowWhoseValueIsZero) {
  EXPECT_EQ(TicketToUI(OutputOptionsMap, 1), 1);
  EXPECT_STREQ(LocalizedKeyForTicketValue(OutputOptionsMap, 1), "Face Down");
  EXPECT_EQ(TicketToUI(OutputOptionsMap, 0), 1);
  EXPECT_EQ(TicketToUI(TabStockRadioMap, 2), 1);
  EXPECT_STREQ(LocalizedKeyForTicketValue(SavedJobSaveOptionRadioMap, 12345), "Save");
  // A 0 asked of a map without a 0 row walks to the terminator.
  EXPECT_EQ(TicketToUI(CoverOptionMap, 0), -1);
}

TEST(SettingMapLookup, RepeatedValuesResolveToTheFirstRow) {
  EXPECT_EQ(TicketToUI(OnOffMap, kVujn), 1);
  EXPECT_STREQ(LocalizedKeyForTicketValue(OnOffMap, kVujn), "On");
  EXPECT_STREQ(LocalizedKeyForTicketValue(RotateImageMap, kVujn), "PrinterDefault");
  EXPECT_EQ(TicketToUI(WatermarkOptionsMap, -5), 4);
}

TEST(SettingMapLookup, PositionGivesTheTicketValueOfItsRow) {
  EXPECT_EQ(UIToTicket(WatermarkMap, 3), -6);
  EXPECT_EQ(UIToTicket(WatermarkMap, 1), 1);
  EXPECT_EQ(UIToTicket(JobTypeMap, 5), 3);
  // Round trip over a map whose values are all distinct and non-zero.
  for (int position = 1; position <= CountMaps(SeparatorOptionMap); ++position)
    EXPECT_EQ(TicketToUI(SeparatorOptionMap, UIToTicket(SeparatorOptionMap, position)), position);
  // Outside the map nothing is read past the terminator.
  EXPECT_EQ(UIToTicket(WatermarkMap, 0), 0);
  EXPECT_EQ(UIToTicket(WatermarkMap, 7), 0);
}

TEST(SettingMapLookup, EmptyAndNullMapsAnswerNothing) {
  EXPECT_EQ(CountMaps(PrintQualityMap), 0);
  EXPECT_EQ(TicketToUI(PrintQualityMap, 0), -1);
  EXPECT_EQ(LocalizedKeyForTicketValue(PrintQualityMap, 0), nullptr);
  EXPECT_EQ(CountMaps(nullptr), 0);
  EXPECT_EQ(TicketToUI(nullptr, 1), -1);
  EXPECT_EQ(UIToTicket(nullptr, 1), 0);
  EXPECT_EQ(LocalizedKeyForTicketValue(nullptr, 1), nullptr);
}

// ---------------------------------------------------------------------------------------
// The tables themselves: the rows that are easy to get wrong.

const SettingMap* MapNamed(const char* name) {
  for (const NamedSettingMap* entry = kAllSettingMaps; entry->name; ++entry)
    if (std::strcmp(entry->name, name) == 0) return entry->map;
  return nullptr;
}

TEST(SettingMapTables, EveryMapIsListedOnceUnderItsOwnName) {
  std::set<std::string> names;
  std::set<const SettingMap*> maps;
  int listed = 0;
  for (const NamedSettingMap* entry = kAllSettingMaps; entry->name; ++entry, ++listed) {
    names.insert(entry->name);
    maps.insert(entry->map);
  }
  EXPECT_EQ(listed, 40);
  EXPECT_EQ(names.size(), 40u);
  EXPECT_EQ(maps.size(), 40u);  // the two job-name maps are separate copies
  EXPECT_EQ(MapNamed("JobTypeMap"), JobTypeMap);
  EXPECT_EQ(MapNamed("OPISubsitutionMap"), OPISubsitutionMap);
  EXPECT_EQ(MapNamed("JobNotesJobNameMap"), JobNotesJobNameMap);
}

TEST(SettingMapTables, TrickyRowsKeepTheirKeysValuesCommandsAndConditions) {
  EXPECT_STREQ(WatermarkOptionsMap[5].key, "WatermarmPrintOnPage1Only");
  EXPECT_EQ(WatermarkOptionsMap[5].commandID, MakeOSType("VWm1"));
  EXPECT_EQ(WatermarkOptionsMap[3].commandID, 0u);
  EXPECT_STREQ(InsertOptionMap[1].key, "SpecialPageSummaryBefore1");
  EXPECT_STREQ(OPISubsitutionMap[1].key, "True");
  EXPECT_STREQ(JobTypeMap[4].key, "Save to Mailbox Command");
  EXPECT_STREQ(TabStockSetupMap[1].key, "0.5\" (8.5x11\" Template)");
  EXPECT_EQ(CoverSheetImageMap[3].commandID, MakeOSType("LFin"));
  EXPECT_EQ(FaxCoverSizeMap[1].ticketValue, 4);
  EXPECT_EQ(FolderNameMap[0].ticketValue, static_cast<std::int32_t>(MakeOSType("Vfln")));
  EXPECT_EQ(LoginNameMap[0].ticketValue, static_cast<std::int32_t>(MakeOSType("JnUL")));
  EXPECT_EQ(CoverSidesSimplexImagedMap[0].ticketValue, 2);

  // Only the fax row carries a condition.
  for (const NamedSettingMap* entry = kAllSettingMaps; entry->name; ++entry) {
    for (const SettingMap* row = entry->map; row->key; ++row) {
      const bool isFax = entry->map == JobTypeMap && std::strcmp(row->key, "Fax") == 0;
      EXPECT_EQ(row->installedFeature != nullptr, isFax) << entry->name << " " << row->key;
      // Rows stand for real settings; the printer-default marker belongs to choice maps.
      EXPECT_NE(row->ticketValue, kUnsetValue) << entry->name << " " << row->key;
    }
  }
  EXPECT_STREQ(JobTypeMap[5].installedFeature, "FaxKey");
  EXPECT_EQ(JobTypeMap[5].installedValue, 1);
}

// ---------------------------------------------------------------------------------------
// Menus and pop-ups, titled from a small bundle of the test's own.

class MapMenus : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_.write("Test.plugin/Contents/Info.plist", R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>CFBundleIdentifier</key><string>com.varno.test.maps</string>
<key>CFBundleDevelopmentRegion</key><string>en</string>
</dict></plist>)");
    dir_.write("Test.plugin/Contents/Resources/en.lproj/Localizable.plist",
               R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>NoWatermark</key><string>No Watermark</string>
<key>-</key><string>-</string>
<key>Options</key><string>Watermark Options</string>
<key>New...</key><string>New Watermark</string>
<key>Edit...</key><string>Edit Watermark</string>
<key>On</key><string>Switched On</string>
<key>Off</key><string>Switched Off</string>
<key>UseJobSetting</key><string>As the Job Says</string>
<key>PrinterDefault</key><string>As the Printer Says</string>
<key>Standalone</key><string>A Real Value</string>
</dict></plist>)");
    std::string error;
    bundle_ = bundle::Bundle::Open(dir_ / "Test.plugin", &error);
    ASSERT_TRUE(bundle_) << error;
  }

  ScopedEnv locale_{{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", std::nullopt}};
  TempDir dir_;
  bundle::BundleRef bundle_;
  std::unique_ptr<Control> popup_ = Control::create(ControlKind::PopupButton);
};

TEST_F(MapMenus, ItemsCarryTitleCommandAndTicketValueOfTheirRows) {
  popup_->menu()->appendItem("left over from before");
  EXPECT_EQ(PopulatePopupButtonFromMap(bundle_, popup_.get(), WatermarkMap, false, 0), 6);

  const toolkit::Menu& menu = *popup_->menu();
  EXPECT_EQ(Titles(menu), (std::vector<std::string>{"No Watermark", "-", "Watermark Options",
                                                    "New Watermark", "Edit Watermark",
                                                    kNotFound}));
  EXPECT_EQ(menu.item(1)->command, MakeOSType("VWmX"));
  EXPECT_EQ(menu.item(2)->command, 0u);
  EXPECT_EQ(menu.item(6)->command, MakeOSType("VWmD"));
  EXPECT_EQ(ItemValue(menu, 3), -6);
  EXPECT_EQ(ItemValue(menu, 6), -9);
  EXPECT_EQ(popup_->maximum(), 6);
  // The menu remembers which map filled it.
  EXPECT_EQ(menu.refCon(), reinterpret_cast<toolkit::URefCon>(WatermarkMap));

  popup_->setValue(3);
  EXPECT_EQ(GetPopupButtonTicketValue(popup_.get()), -6);

  // A command given by the caller replaces every row's own.
  const std::uint32_t pick = MakeOSType("Pick");
  PopulatePopupButtonFromMap(bundle_, popup_.get(), WatermarkMap, false, pick);
  EXPECT_EQ(popup_->menu()->item(1)->command, pick);
  EXPECT_EQ(popup_->menu()->item(2)->command, pick);
}

TEST_F(MapMenus, UnsetRowIsTitledByWhereTheMenuIsShownNotByItsKey) {
  static const SettingMap kWithDefault[] = {
      {"Standalone", 7, 0, nullptr, 0},
      {"IgnoredKey", kUnsetValue, 0, nullptr, 0},
      {nullptr, 0, 0, nullptr, 0},
  };
  toolkit::MenuPtr menu = toolkit::Menu::create();
  EXPECT_EQ(PopulateMenuFromMap(bundle_, menu.get(), kWithDefault, true, 0), 2);
  EXPECT_EQ(Titles(*menu), (std::vector<std::string>{"A Real Value", "As the Job Says"}));
  EXPECT_EQ(ItemValue(*menu, 2), kUnsetValue);

  menu->deleteAllItems();
  PopulateMenuFromMap(bundle_, menu.get(), kWithDefault, false, 0);
  EXPECT_EQ(Titles(*menu), (std::vector<std::string>{"A Real Value", "As the Printer Says"}));

  // The most negative value survives the trip through the item's reference value.
  PopulatePopupButtonFromMap(bundle_, popup_.get(), kWithDefault, false, 0);
  EXPECT_EQ(SetPopupButtonToTicketValue(popup_.get(), kUnsetValue), 1);
  EXPECT_EQ(popup_->value(), 2);
  EXPECT_EQ(GetPopupButtonTicketValue(popup_.get()), kUnsetValue);
}

TEST_F(MapMenus, EmptyMapFillsNothingButStillMarksTheMenu) {
  popup_->menu()->appendItem("stale");
  EXPECT_EQ(PopulatePopupButtonFromMap(bundle_, popup_.get(), PrintQualityMap, false, 0), 0);
  EXPECT_EQ(popup_->menu()->count(), 0);
  EXPECT_EQ(popup_->maximum(), 0);
  EXPECT_EQ(popup_->menu()->refCon(), reinterpret_cast<toolkit::URefCon>(PrintQualityMap));
}

TEST_F(MapMenus, SelectionByTicketValueTakesTheFirstMatchOrChangesNothing) {
  PopulatePopupButtonFromMap(bundle_, popup_.get(), CoverOptionMap, false, 0);
  EXPECT_EQ(SetPopupButtonToTicketValue(popup_.get(), 5), 1);
  EXPECT_EQ(popup_->value(), 4);
  EXPECT_EQ(SetPopupButtonToTicketValue(popup_.get(), 4), 0);
  EXPECT_EQ(popup_->value(), 4);
  EXPECT_EQ(GetPopupButtonTicketValue(popup_.get()), 5);

  PopulatePopupButtonFromMap(bundle_, popup_.get(), OnOffMap, false, 0);
  popup_->setValue(2);
  EXPECT_EQ(SetPopupButtonToTicketValue(popup_.get(), kVujn), 1);
  EXPECT_EQ(popup_->value(), 1);
}

TEST_F(MapMenus, NullArgumentsDoNothing) {
  toolkit::MenuPtr menu = toolkit::Menu::create();
  EXPECT_EQ(PopulateMenuFromMap(bundle_, nullptr, OnOffMap, false, 0), 0);
  EXPECT_EQ(PopulateMenuFromMap(bundle_, menu.get(), nullptr, false, 0), 0);
  EXPECT_EQ(menu->count(), 0);
  EXPECT_EQ(PopulatePopupButtonFromMap(bundle_, nullptr, OnOffMap, false, 0), 0);
  EXPECT_EQ(PopulatePopupButtonFromMapAndHistory(bundle_, nullptr, OnOffMap, false, "Key", 0,
                                                 0, 0),
            0);
  EXPECT_EQ(SetPopupButtonToTicketValue(nullptr, 1), 0);
  EXPECT_EQ(GetPopupButtonTicketValue(nullptr), 0);
  // Without a bundle the items are still made, with the missing-text title.
  EXPECT_EQ(PopulateMenuFromMap(nullptr, menu.get(), OnOffMap, false, 0), 2);
  EXPECT_EQ(Titles(*menu), (std::vector<std::string>{kNotFound, kNotFound}));
  // An empty pop-up has nothing selected.
  popup_->menu()->deleteAllItems();
  EXPECT_EQ(GetPopupButtonTicketValue(popup_.get()), 0);
}

// ---------------------------------------------------------------------------------------
// Input history from the user's preferences.

class MapMenusWithHistory : public MapMenus {
 protected:
  void WriteHistory(const std::string& entries) {
    prefs_.write("varno/com.varno.print.inputhistory.plist",
                 R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>OtherField</key><array><string>Elsewhere</string></array>
<key>JobNameHistory</key><array>)" + entries + R"(</array>
</dict></plist>)");
  }

  TempDir prefs_;
  ScopedEnv config_{{"XDG_CONFIG_HOME", prefs_.path().string()}};
};

TEST_F(MapMenusWithHistory, EntriesGoInOrderAfterTheGivenItemWithTheHistoryCommand) {
  WriteHistory("<string>Quarterly Report</string><integer>7</integer><string>Invoice</string>");
  const std::uint32_t history = MakeOSType("Hist");
  const std::int16_t count = PopulatePopupButtonFromMapAndHistory(
      bundle_, popup_.get(), OnOffMap, false, "JobNameHistory", 1, history, 0);

  EXPECT_EQ(count, 4);
  EXPECT_EQ(popup_->maximum(), 4);
  const toolkit::Menu& menu = *popup_->menu();
  EXPECT_EQ(Titles(menu), (std::vector<std::string>{"Switched On", "Quarterly Report", "Invoice",
                                                    "Switched Off"}));
  EXPECT_EQ(menu.item(2)->command, history);
  EXPECT_EQ(menu.item(3)->command, history);
  EXPECT_EQ(menu.item(4)->command, 0u);
  EXPECT_EQ(ItemValue(menu, 4), kVujn);
}

TEST_F(MapMenusWithHistory, WithoutHistoryTheMenuIsTheMapsAlone) {
  // No file yet.
  EXPECT_EQ(PopulatePopupButtonFromMapAndHistory(bundle_, popup_.get(), OnOffMap, false,
                                                 "JobNameHistory", 1, 0, 0),
            2);
  WriteHistory("<string>Kept</string>");
  // A key the file does not have, and no key at all.
  EXPECT_EQ(PopulatePopupButtonFromMapAndHistory(bundle_, popup_.get(), OnOffMap, false,
                                                 "NoSuchHistory", 1, 0, 0),
            2);
  EXPECT_EQ(PopulatePopupButtonFromMapAndHistory(bundle_, popup_.get(), OnOffMap, false, nullptr,
                                                 1, 0, 0),
            2);
  EXPECT_EQ(Titles(*popup_->menu()), (std::vector<std::string>{"Switched On", "Switched Off"}));
  EXPECT_EQ(popup_->maximum(), 2);
}

// ---------------------------------------------------------------------------------------
// Rows that depend on the printer's installed options, read from fixture PPDs.

class JobTypeMenu : public MapMenus {
 protected:
  void Load(const char* path) {
    UnloadInstallableOptions();
    ppd_ = ppdOpenFile(path);
    ASSERT_NE(ppd_, nullptr) << path;
    ASSERT_TRUE(LoadInstallableOptions(ppd_, InstalledFeatures));
  }
  void TearDown() override {
    UnloadInstallableOptions();
    if (ppd_) ppdClose(ppd_);
  }

  ppd_file_t* ppd_ = nullptr;
};

TEST_F(JobTypeMenu, FaxIsOfferedWhenTheFaxCardIsInstalled) {
  Load(VARNO_TEST_DATA_DIR "/ppd/Varno-BookletFaxPunch.ppd");
  ASSERT_EQ(getInstalledFeature("FaxKey"), 1);
  EXPECT_EQ(TicketToUI(JobTypeMap, 5), 6);
  EXPECT_STREQ(LocalizedKeyForTicketValue(JobTypeMap, 5), "Fax");
  EXPECT_EQ(PopulatePopupButtonFromMap(bundle_, popup_.get(), JobTypeMap, false, 0), 6);
  EXPECT_EQ(popup_->menu()->count(), 6);
  EXPECT_EQ(ItemValue(*popup_->menu(), 6), 5);
}

TEST_F(JobTypeMenu, WithoutTheFaxCardTheFaxRowIsSkippedButStillCounted) {
  // The sample printer comes without the fax card.
  Load(VARNO_SOURCE_RESOURCES_DIR "/ppd/Varno-AT120A.ppd");
  ASSERT_EQ(getInstalledFeature("FaxKey"), 0);
  EXPECT_EQ(TicketToUI(JobTypeMap, 5), -1);
  EXPECT_EQ(LocalizedKeyForTicketValue(JobTypeMap, 5), nullptr);
  EXPECT_EQ(TicketToUI(JobTypeMap, 3), 5);
  EXPECT_EQ(CountMaps(JobTypeMap), 6);

  EXPECT_EQ(PopulatePopupButtonFromMap(bundle_, popup_.get(), JobTypeMap, false, 0), 6);
  const toolkit::Menu& menu = *popup_->menu();
  EXPECT_EQ(menu.count(), 5);
  EXPECT_EQ(menu.findRefCon(5), 0);
  EXPECT_EQ(popup_->maximum(), 6);
  EXPECT_EQ(SetPopupButtonToTicketValue(popup_.get(), 5), 0);
}

// ---------------------------------------------------------------------------------------
// The English string tables of the built plug-in bundle.

class EnglishStrings : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    bundle_ = bundle::Bundle::Open(VARNO_BUILD_DIR "/VarnoFeatures.plugin", &error);
    ASSERT_TRUE(bundle_) << error;
  }
  // The keys of `table` that have no text.
  std::vector<std::string> Missing(const std::vector<std::string>& keys, const char* table) {
    std::vector<std::string> missing;
    for (const std::string& key : keys) {
      const std::string text = bundle_->localizedString(key, table, kNotFound);
      if (text == kNotFound || text.empty()) missing.push_back(key);
    }
    return missing;
  }
  static std::vector<std::string> KeysOf(const SettingMap* map) {
    std::vector<std::string> keys;
    for (; map->key; ++map) keys.push_back(map->key);
    return keys;
  }

  ScopedEnv locale_{{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", std::nullopt}};
  bundle::BundleRef bundle_;
};

TEST_F(EnglishStrings, EveryMenuItemFeatureAndPanelHasAText) {
  std::vector<std::string> keys{"UseJobSetting", "PrinterDefault", "PaperOutput",
                                "ImageOptions",  "BookletWatermark", "Advanced",
                                "SpecialPages",  "JobNotes"};
  for (const NamedSettingMap* entry = kAllSettingMaps; entry->name; ++entry)
    for (const std::string& key : KeysOf(entry->map)) keys.push_back(key);
  for (const InstalledFeatureMap* row = InstalledFeatures; row->featureKey; ++row)
    if (row->displayNameKey) keys.push_back(row->displayNameKey);

  EXPECT_EQ(Missing(keys, "Localizable"), std::vector<std::string>{});
  EXPECT_EQ(bundle_->localizedString("Save to Mailbox Command", "Localizable", kNotFound),
            "Save to Mailbox");
}

TEST_F(EnglishStrings, FaxMenusHaveTheirOwnTableToo) {
  std::vector<std::string> keys;
  for (const SettingMap* map : {FaxResolutionMap, FaxSendSpeedMap, ConfirmationSheetMap,
                                CoverSheetMap, CoverSheetRecipientMap, CoverSheetSenderMap,
                                CoverSheetImageMap, FaxCoverSizeMap})
    for (const std::string& key : KeysOf(map)) keys.push_back(key);
  EXPECT_EQ(Missing(keys, "LANFax"), std::vector<std::string>{});
}

}  // namespace
}  // namespace varno
