// SPDX-License-Identifier: Apache-2.0
// Setting maps: lookups between menu positions and ticket values, menus and pop-ups filled
// from maps (with installed options and input history), and the English string tables.
#include "vocabulary/setting_maps.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/bundle/test_bundle.h"
#include "platform/four_char_code.h"
#include "platform/print/ppd_calls.h"
#include "support/bundle_folder.h"
#include "vocabulary/installable_options.h"

namespace varno::vocabulary {

namespace ppdcall = print::ppdcall;

namespace {

using testing::ScopedEnv;
using testing::TempDir;
using toolkit::Control;
using toolkit::ControlKind;
using Titles = std::vector<std::string>;

constexpr std::int32_t kVujn = static_cast<std::int32_t>(MakeOSType("Vujn"));
constexpr const char* kNotFound = "STRING NOT FOUND";

Titles TitlesOf(const toolkit::Menu& menu) {
  Titles titles;
  for (toolkit::MenuItemIndex i = 1; i <= menu.count(); ++i) titles.push_back(menu.item(i)->text);
  return titles;
}

std::int32_t ItemValue(const toolkit::Menu& menu, toolkit::MenuItemIndex index) {
  return static_cast<std::int32_t>(static_cast<std::intptr_t>(menu.item(index)->refCon));
}

TEST(SettingMapLookup, ValueFindsItsFirstRowButNoRowPastAZeroRowAndPositionItsValue) {
  // Cover codes skip 4: the last item stands for 5.
  EXPECT_EQ(TicketToUI(CoverOptionMap, 4), -1);
  EXPECT_EQ(LocalizedKeyForTicketValue(CoverOptionMap, 4), nullptr);
  EXPECT_EQ(TicketToUI(CoverOptionMap, 5), 4);
  EXPECT_STREQ(LocalizedKeyForTicketValue(CoverOptionMap, 5), CoverOptionMap[3].key);
  // Face down is 0, so face up (1) is never reached.
  EXPECT_EQ(TicketToUI(OutputOptionsMap, 1), 1);
  EXPECT_STREQ(LocalizedKeyForTicketValue(OutputOptionsMap, 1), OutputOptionsMap[0].key);
  EXPECT_EQ(TicketToUI(OnOffMap, kVujn), 1);  // both rows carry it
  EXPECT_EQ(TicketToUI(PrintQualityMap, 0), -1);

  // A position gives its row's value, and nothing outside the map.
  for (int position = 1; position <= CountMaps(CoverOptionMap); ++position)
    EXPECT_EQ(TicketToUI(CoverOptionMap, UIToTicket(CoverOptionMap, position)), position);
  EXPECT_EQ(UIToTicket(WatermarkMap, 0), 0);
  EXPECT_EQ(UIToTicket(WatermarkMap, CountMaps(WatermarkMap) + 1), 0);
  EXPECT_EQ(CountMaps(PrintQualityMap), 0);
}

// Menus and pop-ups titled from a small bundle of the test's own.
class MapMenus : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    bundle_ = testing::MakeBundle(
        dir_,
        {{"NoWatermark", "No Watermark"}, {"-", "-"}, {"Options", "Watermark Options"},
         {"New...", "New Watermark"}, {"Edit...", "Edit Watermark"}, {"On", "Switched On"},
         {"Off", "Switched Off"}, {"UseJobSetting", "As the Job Says"},
         {"PrinterDefault", "As the Printer Says"}, {"Standalone", "A Real Value"}},
        &error);
    ASSERT_TRUE(bundle_) << error;
  }
  void TearDown() override { UnloadInstallableOptions(); }

  ScopedEnv locale_{{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", std::nullopt}};
  TempDir dir_;
  bundle::BundleRef bundle_;
  std::unique_ptr<Control> popup_ = Control::create(ControlKind::PopupButton);
};

TEST_F(MapMenus, ItemsCarryTitleCommandAndTicketValueOfTheirRows) {
  popup_->menu()->appendItem("left over from before");
  EXPECT_EQ(PopulatePopupButtonFromMap(bundle_, popup_.get(), WatermarkMap, false, 0), 6);
  const toolkit::Menu& menu = *popup_->menu();
  EXPECT_EQ(TitlesOf(menu), (Titles{"No Watermark", "-", "Watermark Options", "New Watermark",
                                    "Edit Watermark", kNotFound}));
  for (toolkit::MenuItemIndex i = 1; i <= menu.count(); ++i) {
    EXPECT_EQ(menu.item(i)->command, WatermarkMap[i - 1].commandID) << i;
    EXPECT_EQ(ItemValue(menu, i), WatermarkMap[i - 1].ticketValue) << i;
  }
  // A command given by the caller replaces every row's own, none included.
  PopulatePopupButtonFromMap(bundle_, popup_.get(), WatermarkMap, false, kVujn);
  EXPECT_EQ(popup_->menu()->item(2)->command, static_cast<std::uint32_t>(kVujn));
}

TEST_F(MapMenus, SelectionByTicketValueTakesTheFirstMatchAndUnsetRowIsTitledByPlace) {
  static const SettingMap kWithDefault[] = {
      {"Standalone", 7, 0, nullptr, 0},
      {"IgnoredKey", kUnsetValue, 0, nullptr, 0},
      {nullptr, 0, 0, nullptr, 0},
  };
  toolkit::MenuPtr menu = toolkit::Menu::create();
  EXPECT_EQ(PopulateMenuFromMap(bundle_, menu.get(), kWithDefault, true, 0), 2);
  EXPECT_EQ(TitlesOf(*menu), (Titles{"A Real Value", "As the Job Says"}));

  PopulatePopupButtonFromMap(bundle_, popup_.get(), kWithDefault, false, 0);
  EXPECT_EQ(TitlesOf(*popup_->menu()), (Titles{"A Real Value", "As the Printer Says"}));
  // The most negative value survives the trip through the item's reference value.
  EXPECT_EQ(SetPopupButtonToTicketValue(popup_.get(), kUnsetValue), 1);
  EXPECT_EQ(popup_->value(), 2);
  EXPECT_EQ(GetPopupButtonTicketValue(popup_.get()), kUnsetValue);

  // Selection by ticket value takes the first matching item or changes nothing.
  PopulatePopupButtonFromMap(bundle_, popup_.get(), CoverOptionMap, false, 0);
  EXPECT_EQ(SetPopupButtonToTicketValue(popup_.get(), 5), 1);
  EXPECT_EQ(popup_->value(), 4);
  EXPECT_EQ(SetPopupButtonToTicketValue(popup_.get(), 4), 0);
  EXPECT_EQ(GetPopupButtonTicketValue(popup_.get()), 5);
  PopulatePopupButtonFromMap(bundle_, popup_.get(), OnOffMap, false, 0);
  popup_->setValue(2);
  EXPECT_EQ(SetPopupButtonToTicketValue(popup_.get(), kVujn), 1);
  EXPECT_EQ(popup_->value(), 1);
}

TEST_F(MapMenus, EmptyMapsAndMissingArgumentsFillNothing) {
  popup_->menu()->appendItem("stale");
  EXPECT_EQ(PopulatePopupButtonFromMap(bundle_, popup_.get(), PrintQualityMap, false, 0), 0);
  EXPECT_EQ(popup_->menu()->count(), 0);
  EXPECT_EQ(GetPopupButtonTicketValue(popup_.get()), 0);  // nothing to select
  toolkit::MenuPtr menu = toolkit::Menu::create();
  // Without a bundle the items are still made, with the missing-text title.
  EXPECT_EQ(PopulateMenuFromMap(nullptr, menu.get(), OnOffMap, false, 0), 2);
  EXPECT_EQ(TitlesOf(*menu), (Titles{kNotFound, kNotFound}));
}

TEST_F(MapMenus, HistoryEntriesGoInOrderAfterTheGivenItemWithTheHistoryCommand) {
  TempDir prefs;
  ScopedEnv config{{"XDG_CONFIG_HOME", prefs.path().string()}};
  auto fill = [&](const char* key, std::uint32_t command) {
    return PopulatePopupButtonFromMapAndHistory(bundle_, popup_.get(), OnOffMap, false, key, 1,
                                                command, 0);
  };
  EXPECT_EQ(fill("JobNameHistory", 0), 2);  // no file yet
  prefs.write("varno/com.varno.print.inputhistory.plist", R"(<?xml version="1.0"?>
<plist version="1.0"><dict>
<key>OtherField</key><array><string>Elsewhere</string></array>
<key>JobNameHistory</key><array>
<string>Quarterly Report</string><integer>7</integer><string>Invoice</string>
</array></dict></plist>)");
  EXPECT_EQ(fill("NoSuchHistory", 0), 2);

  const std::uint32_t history = MakeOSType("Hist");
  EXPECT_EQ(fill("JobNameHistory", history), 4);
  const toolkit::Menu& menu = *popup_->menu();
  EXPECT_EQ(TitlesOf(menu), (Titles{"Switched On", "Quarterly Report", "Invoice", "Switched Off"}));
  EXPECT_EQ(menu.item(2)->command, history);
  EXPECT_EQ(menu.item(3)->command, history);
  EXPECT_EQ(ItemValue(menu, 4), kVujn);
}

// The fax row is live only with the fax card installed; hidden, it is still counted, so
// the pop-up's maximum does not depend on the card.
TEST_F(MapMenus, FaxJobTypeIsOfferedOnlyWithTheFaxCard) {
  using Printer = std::pair<const char*, bool>;
  for (const auto& [path, fax] : {Printer{VARNO_TEST_DATA_DIR "/ppd/Varno-BookletFaxPunch.ppd", true},
                                  Printer{VARNO_SOURCE_RESOURCES_DIR "/ppd/Varno-AT120A.ppd", false}}) {
    SCOPED_TRACE(path);
    UnloadInstallableOptions();
    ppdcall::FilePtr ppd = ppdcall::Open(path);
    ASSERT_TRUE(ppd) << ppdcall::LastErrorText();
    ASSERT_TRUE(LoadInstallableOptions(ppd.get(), InstalledFeatures));
    EXPECT_EQ(TicketToUI(JobTypeMap, 5), fax ? 6 : -1);
    EXPECT_EQ(LocalizedKeyForTicketValue(JobTypeMap, 5) != nullptr, fax);
    EXPECT_EQ(PopulatePopupButtonFromMap(bundle_, popup_.get(), JobTypeMap, false, 0), 6);
    EXPECT_EQ(popup_->maximum(), 6);
    EXPECT_EQ(popup_->menu()->count(), fax ? 6 : 5);
    EXPECT_EQ(SetPopupButtonToTicketValue(popup_.get(), 5), fax ? 1 : 0);
  }
}

std::vector<std::string> KeysOf(std::initializer_list<const SettingMap*> maps) {
  std::vector<std::string> keys;
  for (const SettingMap* map : maps)
    for (; map->key; ++map) keys.push_back(map->key);
  return keys;
}

// Every key a menu, an installed feature or a panel title asks for has an English text in
// the built plug-in bundle; the fax menus' keys also in their own table.
TEST(EnglishStrings, EveryMenuItemFeatureAndPanelHasAText) {
  ScopedEnv locale{{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", std::nullopt}};
  std::string error;
  bundle::BundleRef bundle = bundle::Bundle::Open(VARNO_BUILT_PLUGIN, &error);
  ASSERT_TRUE(bundle) << error;
  auto missing = [&](const std::vector<std::string>& keys, const char* table) {
    std::vector<std::string> without;
    for (const std::string& key : keys)
      if (bundle->localizedString(key, table, "").empty()) without.push_back(key);
    return without;
  };

  std::vector<std::string> keys{"UseJobSetting", "PrinterDefault", "PaperOutput", "ImageOptions",
                                "BookletWatermark", "Advanced", "SpecialPages", "JobNotes"};
  for (const NamedSettingMap* entry = kAllSettingMaps; entry->name; ++entry)
    for (const std::string& key : KeysOf({entry->map})) keys.push_back(key);
  for (const InstalledFeatureMap* row = InstalledFeatures; row->featureKey; ++row)
    if (row->displayNameKey) keys.push_back(row->displayNameKey);
  EXPECT_EQ(missing(keys, "Localizable"), std::vector<std::string>{});
  EXPECT_EQ(missing(KeysOf({FaxResolutionMap, FaxSendSpeedMap, ConfirmationSheetMap,
                            CoverSheetMap, CoverSheetRecipientMap, CoverSheetSenderMap,
                            CoverSheetImageMap, FaxCoverSizeMap}),
                    "LANFax"),
            std::vector<std::string>{});
}

}  // namespace
}  // namespace varno::vocabulary
