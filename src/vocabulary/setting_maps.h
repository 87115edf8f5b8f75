// SPDX-License-Identifier: Apache-2.0
// Setting maps: the vocabulary of every pop-up menu. A map ties the items of one menu to the
// numbers stored in the ticket; its rows are constant data, ended by a row whose key is null.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/bundle/bundle.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/menu.h"

namespace varno::vocabulary {

// Marks a record field as not set, and the item that stands for the printer's default.
inline constexpr std::int32_t kUnsetValue = INT32_MIN;

// One row of a map.
struct SettingMap {
  const char* key;               // localization key of the item title; null ends the map
  std::int32_t ticketValue;      // written to the ticket; the item's reference value
  std::uint32_t commandID;       // the item's menu command, 0 for none
  const char* installedFeature;  // when set, the row is live only when the feature...
  std::uint8_t installedValue;   // ...has this installed value
};

extern const SettingMap OnOffMap[];
extern const SettingMap OPIPrescanMap[];
extern const SettingMap OPISubsitutionMap[];
extern const SettingMap PrinterEmulationMap[];
extern const SettingMap OutputOptionsMap[];
extern const SettingMap RotateImageMap[];
extern const SettingMap BookletLayoutOrderMap[];
extern const SettingMap CoverOptionMap[];
extern const SettingMap InsertOptionMap[];
extern const SettingMap BookletWatermarkBackgroundFormsMap[];
extern const SettingMap PageBordersMap[];
extern const SettingMap EnabledDisabledMap[];
extern const SettingMap WatermarkOptionsMap[];
extern const SettingMap WatermarkMap[];
extern const SettingMap FaxResolutionMap[];
extern const SettingMap FaxSendSpeedMap[];
extern const SettingMap ConfirmationSheetMap[];
extern const SettingMap CoverSheetMap[];
extern const SettingMap CoverSheetRecipientMap[];
extern const SettingMap CoverSheetSenderMap[];
extern const SettingMap CoverSheetImageMap[];
extern const SettingMap TabStockSetupMap[];
extern const SettingMap TabStockRadioMap[];
extern const SettingMap GrainCompensationMap[];
extern const SettingMap CoverSidesDuplexImagedMap[];
extern const SettingMap CoverSidesSimplexImagedMap[];
extern const SettingMap AdvancedMirrorImageMap[];
extern const SettingMap PrintingOptimizationMap[];
extern const SettingMap PrintQualityMap[];
extern const SettingMap SavedJobSaveOptionRadioMap[];
extern const SettingMap FolderNameMap[];
// Two identical copies, one for each panel that uses it.
extern const SettingMap JobNameMap[];
extern const SettingMap JobNotesJobNameMap[];
extern const SettingMap LoginNameMap[];
extern const SettingMap FaxCoverSizeMap[];
extern const SettingMap SeparatorOptionMap[];
extern const SettingMap JobTypeMap[];
extern const SettingMap ResolutionMap[];
extern const SettingMap PlexMap[];
extern const SettingMap CoverSidesImagedMap[];

// Every map above with its name, for checks over all of them; ended by a null name.
struct NamedSettingMap {
  const char* name;
  const SettingMap* map;
};
extern const NamedSettingMap kAllSettingMaps[];

// The number of rows before the terminator.
int CountMaps(const SettingMap* map);
// The ticket value of the row at a 1-based menu position (no bounds check).
std::int32_t UIToTicket(const SettingMap* map, int position);
// The 1-based position of the row for `value`, or -1.
int TicketToUI(const SettingMap* map, std::int32_t value);
// The key of the row for `value`, or null.
const char* LocalizedKeyForTicketValue(const SettingMap* map, std::int32_t value);

// Appends the map's live rows to `menu` and returns the number of rows walked.
int PopulateMenuFromMap(const bundle::BundleRef& bundle, toolkit::Menu* menu,
                        const SettingMap* map, bool useJobSetting, std::uint32_t commandID);
std::int16_t PopulatePopupButtonFromMap(const bundle::BundleRef& bundle, toolkit::Control* popup,
                                        const SettingMap* map, bool useJobSetting,
                                        std::uint32_t commandID);
std::int16_t PopulatePopupButtonFromMapAndHistory(
    const bundle::BundleRef& bundle, toolkit::Control* popup, const SettingMap* map,
    bool useJobSetting, const char* historyKey, int insertAfter, std::uint32_t historyCommandID,
    std::uint32_t commandID);
// Selects the first item whose reference value is `value`: 1, or 0 when none matches.
int SetPopupButtonToTicketValue(toolkit::Control* popup, std::int32_t value);
// The reference value of the selected item.
std::int32_t GetPopupButtonTicketValue(toolkit::Control* popup);

}  // namespace varno::vocabulary
