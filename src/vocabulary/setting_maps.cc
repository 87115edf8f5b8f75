// SPDX-License-Identifier: Apache-2.0
#include "vocabulary/setting_maps.h"

#include <algorithm>
#include <optional>
#include <string>

#include "platform/four_char_code.h"
#include "platform/plist/value.h"
#include "platform/system/user_preferences.h"
#include "vocabulary/installable_options.h"

namespace varno::vocabulary {

namespace {

// A four-character code as a ticket value: the placeholder of rows whose number nobody
// reads, kept so every item still carries a distinct, recognisable reference value.
constexpr std::int32_t Code(const char (&code)[5]) {
  return static_cast<std::int32_t>(MakeOSType(code));
}

constexpr std::int32_t kVujn = Code("Vujn");
constexpr std::int32_t kVfln = Code("Vfln");
constexpr std::int32_t kJnUL = Code("JnUL");

constexpr const char* kStringTable = "Localizable";
constexpr const char* kStringNotFound = "STRING NOT FOUND";
constexpr const char* kInputHistoryFile = "com.varno.print.inputhistory.plist";

// True when the row has no condition or the printer has the option it asks for. The
// installed value is a small flag, compared as a byte as the tables store it.
bool RowIsLive(const SettingMap& row) {
  if (!row.installedFeature) return true;
  return static_cast<std::uint8_t>(getInstalledFeature(row.installedFeature)) ==
         row.installedValue;
}

// The index of the row where a lookup of `value` stops: the first live row with that
// value, or the first row whose value is 0. Maps that start with a 0 row (face-down
// output, the radio maps) therefore answer every lookup with their first item; the
// panels that use them rely on that, so the stop is kept.
int StopRow(const SettingMap* map, std::int32_t value) {
  int index = 0;
  for (; map[index].key; ++index) {
    const SettingMap& row = map[index];
    if (row.ticketValue == value && RowIsLive(row)) break;
    if (row.ticketValue == 0) break;
  }
  return index;
}

// Menu items keep 32-bit ticket values sign-extended in their pointer-sized reference value.
toolkit::URefCon RefConForValue(std::int32_t value) {
  return static_cast<toolkit::URefCon>(static_cast<std::intptr_t>(value));
}

std::int32_t ValueForRefCon(toolkit::URefCon refCon) {
  return static_cast<std::int32_t>(static_cast<std::intptr_t>(refCon));
}

}  // namespace

const SettingMap OnOffMap[] = {
  {"On", kVujn, 0, nullptr, 0},
  {"Off", kVujn, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap OPIPrescanMap[] = {
  {"PrinterDefault", kVujn, 0, nullptr, 0},
  {"None", kVujn, 0, nullptr, 0},
  {"Scan", kVujn, 0, nullptr, 0},
  {"Gather", kVujn, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap OPISubsitutionMap[] = {
  {"PrinterDefault", kVujn, 0, nullptr, 0},
  {"True", kVujn, 0, nullptr, 0},
  {"False", kVujn, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap PrinterEmulationMap[] = {
  {"PrinterDefault", kVujn, 0, nullptr, 0},
  {"None", kVujn, 0, nullptr, 0},
  {"PressLine 900", kVujn, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap OutputOptionsMap[] = {
  {"Face Down", 0, 0, nullptr, 0},
  {"Face Up", 1, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap RotateImageMap[] = {
  {"PrinterDefault", kVujn, 0, nullptr, 0},
  {"Off", kVujn, 0, nullptr, 0},
  {"On", kVujn, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap BookletLayoutOrderMap[] = {
  {"RightToLeft", kVujn, 0, nullptr, 0},
  {"LeftToRight", kVujn, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

// There is no 4: the ticket's cover codes skip it.
const SettingMap CoverOptionMap[] = {
  {"No Covers", 1, 0, nullptr, 0},
  {"Front Cover Only", 2, 0, nullptr, 0},
  {"Back Cover Only", 3, 0, nullptr, 0},
  {"Front and Back Covers", 5, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap InsertOptionMap[] = {
  {"After Page", 1, 0, nullptr, 0},
  {"SpecialPageSummaryBefore1", 2, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap BookletWatermarkBackgroundFormsMap[] = {
  {"None", 1, MakeOSType("BfCn"), nullptr, 0},
  {"-", 2, 0, nullptr, 0},
  {"Setup...", 3, MakeOSType("BfCs"), nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap PageBordersMap[] = {
  {"No Page Borders", 1, 0, nullptr, 0},
  {"Draw Page Borders", 2, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap EnabledDisabledMap[] = {
  {"Enabled", 1, 0, nullptr, 0},
  {"Disabled", 2, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

// Negative values are menu actions and separators, never stored as a watermark choice.
const SettingMap WatermarkOptionsMap[] = {
  {"WatermarkBackground", 1, MakeOSType("VWmB"), nullptr, 0},
  {"WatermarkBlend", 2, MakeOSType("VWmL"), nullptr, 0},
  {"WatermarkForeground", 3, MakeOSType("VWmF"), nullptr, 0},
  {"-", -5, 0, nullptr, 0},
  {"WatermarkPrintOnAllPages", 4, MakeOSType("VWmA"), nullptr, 0},
  {"WatermarmPrintOnPage1Only", 5, MakeOSType("VWm1"), nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap WatermarkMap[] = {
  {"NoWatermark", 1, MakeOSType("VWmX"), nullptr, 0},
  {"-", -5, 0, nullptr, 0},
  {"Options", -6, MakeOSType("VWmO"), nullptr, 0},
  {"New...", -7, MakeOSType("VWmN"), nullptr, 0},
  {"Edit...", -8, MakeOSType("VWmE"), nullptr, 0},
  {"Delete", -9, MakeOSType("VWmD"), nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

// The ticket codes are the device's own and do not follow the menu order.
const SettingMap FaxResolutionMap[] = {
  {"Standard", 1, 0, nullptr, 0},
  {"Fine", 2, 0, nullptr, 0},
  {"Superfine", 4, 0, nullptr, 0},
  {"Ultrafine", 3, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap FaxSendSpeedMap[] = {
  {"G3-Auto", 4, 0, nullptr, 0},
  {"Fixed G3", 2, 0, nullptr, 0},
  {"G4-Auto", 5, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap ConfirmationSheetMap[] = {
  {"Print a Confirmation Sheet", 1, 0, nullptr, 0},
  {"Do Not Print a Confirmation Sheet", 2, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap CoverSheetMap[] = {
  {"Do Not Print a Cover Sheet", 1, 0, nullptr, 0},
  {"Print a Cover Sheet...", 2, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap CoverSheetRecipientMap[] = {
  {"Show All Recipients", 1, 0, nullptr, 0},
  {"Hide Recipient's Information", 2, 0, nullptr, 0},
  {"Show Custom Text", 3, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap CoverSheetSenderMap[] = {
  {"Show Sender's Information", 1, 0, nullptr, 0},
  {"Hide Sender's Information", 2, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

// The cover-sheet image menu reuses the watermark menu's layout with the fax commands.
const SettingMap CoverSheetImageMap[] = {
  {"NoWatermark", 1, MakeOSType("VWmX"), nullptr, 0},
  {"-", -5, 0, nullptr, 0},
  {"Cover Sheet Paper Size", -6, MakeOSType("VWmO"), nullptr, 0},
  {"New...", -7, MakeOSType("LFin"), nullptr, 0},
  {"Edit...", -8, MakeOSType("LFie"), nullptr, 0},
  {"Delete", -9, MakeOSType("LFid"), nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap TabStockSetupMap[] = {
  {"None", 1, 0, nullptr, 0},
  {"0.5\" (8.5x11\" Template)", 2, 0, nullptr, 0},
  {"12.7 mm (A4 Template)", 3, 0, nullptr, 0},
  {"Custom", 4, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

// Radio groups whose rows all carry 0, so every lookup lands on the first row.
const SettingMap TabStockRadioMap[] = {
  {"Inches", 0, 0, nullptr, 0},
  {"Millimeters", 0, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap GrainCompensationMap[] = {
  {"Enabled", 1, 0, nullptr, 0},
  {"Disabled (Recommended)", 2, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap CoverSidesDuplexImagedMap[] = {
  {"CoverPrinted", 4, 0, nullptr, 0},
  {"CoverBlankorPreprinted", 1, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap CoverSidesSimplexImagedMap[] = {
  {"CoverPrinted", 2, 0, nullptr, 0},
  {"CoverBlankorPreprinted", 1, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap AdvancedMirrorImageMap[] = {
  {"Enabled", 1, 0, nullptr, 0},
  {"Disabled", 2, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap PrintingOptimizationMap[] = {
  {"Speed", 1, 0, nullptr, 0},
  {"Economy", 2, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

// Deliberately empty: a menu filled from it has no items.
const SettingMap PrintQualityMap[] = {
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap SavedJobSaveOptionRadioMap[] = {
  {"Save", 0, 0, nullptr, 0},
  {"SavePrint", 0, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap FolderNameMap[] = {
  {"PublicFolder", kVfln, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap JobNameMap[] = {
  {"UseJobName", kVujn, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

// The job-notes panel's own copy of JobNameMap.
const SettingMap JobNotesJobNameMap[] = {
  {"UseJobName", kVujn, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap LoginNameMap[] = {
  {"UseLoginName", kJnUL, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap FaxCoverSizeMap[] = {
  {"StockSizeLetter", 1, MakeOSType("FwmL"), nullptr, 0},
  {"StockSizeA4", 4, MakeOSType("FwmA"), nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap SeparatorOptionMap[] = {
  {"Separator Option None", 1, 0, nullptr, 0},
  {"Separator Option Blank", 2, 0, nullptr, 0},
  {"Separator Option Printed", 3, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

// Fax is last so that hiding it leaves the positions of the other items unchanged.
const SettingMap JobTypeMap[] = {
  {"Normal Print", 1, 0, nullptr, 0},
  {"SecurePrint", 6, 0, nullptr, 0},
  {"SampleSet", 8, 0, nullptr, 0},
  {"DelayedPrint", 7, 0, nullptr, 0},
  {"Save to Mailbox Command", 3, 0, nullptr, 0},
  {"Fax", 5, 0, "FaxKey", 1},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap ResolutionMap[] = {
  {"600 x 600 Resolution", 2, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap PlexMap[] = {
  {"Simplex", 1, 0, nullptr, 0},
  {"Duplex", 2, 0, nullptr, 0},
  {"DuplexShort", 3, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const SettingMap CoverSidesImagedMap[] = {
  {"CoverPrinted", 4, 0, nullptr, 0},
  {"CoverBlankorPreprinted", 1, 0, nullptr, 0},
  {nullptr, 0, 0, nullptr, 0},
};

const NamedSettingMap kAllSettingMaps[] = {
  {"OnOffMap", OnOffMap},
  {"OPIPrescanMap", OPIPrescanMap},
  {"OPISubsitutionMap", OPISubsitutionMap},
  {"PrinterEmulationMap", PrinterEmulationMap},
  {"OutputOptionsMap", OutputOptionsMap},
  {"RotateImageMap", RotateImageMap},
  {"BookletLayoutOrderMap", BookletLayoutOrderMap},
  {"CoverOptionMap", CoverOptionMap},
  {"InsertOptionMap", InsertOptionMap},
  {"BookletWatermarkBackgroundFormsMap", BookletWatermarkBackgroundFormsMap},
  {"PageBordersMap", PageBordersMap},
  {"EnabledDisabledMap", EnabledDisabledMap},
  {"WatermarkOptionsMap", WatermarkOptionsMap},
  {"WatermarkMap", WatermarkMap},
  {"FaxResolutionMap", FaxResolutionMap},
  {"FaxSendSpeedMap", FaxSendSpeedMap},
  {"ConfirmationSheetMap", ConfirmationSheetMap},
  {"CoverSheetMap", CoverSheetMap},
  {"CoverSheetRecipientMap", CoverSheetRecipientMap},
  {"CoverSheetSenderMap", CoverSheetSenderMap},
  {"CoverSheetImageMap", CoverSheetImageMap},
  {"TabStockSetupMap", TabStockSetupMap},
  {"TabStockRadioMap", TabStockRadioMap},
  {"GrainCompensationMap", GrainCompensationMap},
  {"CoverSidesDuplexImagedMap", CoverSidesDuplexImagedMap},
  {"CoverSidesSimplexImagedMap", CoverSidesSimplexImagedMap},
  {"AdvancedMirrorImageMap", AdvancedMirrorImageMap},
  {"PrintingOptimizationMap", PrintingOptimizationMap},
  {"PrintQualityMap", PrintQualityMap},
  {"SavedJobSaveOptionRadioMap", SavedJobSaveOptionRadioMap},
  {"FolderNameMap", FolderNameMap},
  {"JobNameMap", JobNameMap},
  {"JobNotesJobNameMap", JobNotesJobNameMap},
  {"LoginNameMap", LoginNameMap},
  {"FaxCoverSizeMap", FaxCoverSizeMap},
  {"SeparatorOptionMap", SeparatorOptionMap},
  {"JobTypeMap", JobTypeMap},
  {"ResolutionMap", ResolutionMap},
  {"PlexMap", PlexMap},
  {"CoverSidesImagedMap", CoverSidesImagedMap},
  {nullptr, nullptr},
};

// Returns the number of rows before the terminator; 0 for a null map.
int CountMaps(const SettingMap* map) {
  if (!map) return 0;
  int count = 0;
  while (map[count].key) ++count;
  return count;
}

// Returns the ticket value of the row at 1-based `position`. Positions come from a menu
// the same map filled, so skipped rows are not accounted for; a position outside the map
// gives 0 rather than reading past the terminator.
std::int32_t UIToTicket(const SettingMap* map, int position) {
  if (!map || position < 1 || position > CountMaps(map)) return 0;
  return map[position - 1].ticketValue;
}

// Returns the 1-based position where the lookup of `value` stops, or -1 at the terminator.
int TicketToUI(const SettingMap* map, std::int32_t value) {
  if (!map) return -1;
  const int index = StopRow(map, value);
  return map[index].key ? index + 1 : -1;
}

// Returns the key of the row where the lookup of `value` stops, or null at the terminator.
const char* LocalizedKeyForTicketValue(const SettingMap* map, std::int32_t value) {
  if (!map) return nullptr;
  return map[StopRow(map, value)].key;
}

// Appends an item for each live row and returns the number of rows walked. Skipped rows
// are counted too, so the result is the map's size, not the menu's: callers set the
// pop-up's maximum from it on purpose.
int PopulateMenuFromMap(const bundle::BundleRef& bundle, toolkit::Menu* menu,
                        const SettingMap* map, bool useJobSetting, std::uint32_t commandID) {
  if (!menu || !map) return 0;
  // The menu remembers which map filled it, so a handler can map its choice back.
  menu->setRefCon(reinterpret_cast<toolkit::URefCon>(map));

  int rows = 0;
  for (; map[rows].key; ++rows) {
    const SettingMap& row = map[rows];
    if (!RowIsLive(row)) continue;
    // The unset value stands for "whatever the job or the printer decides", whose wording
    // depends on where the menu is shown, not on the row.
    const char* key = row.key;
    if (row.ticketValue == kUnsetValue) key = useJobSetting ? "UseJobSetting" : "PrinterDefault";
    std::string title = bundle ? bundle->localizedString(key, kStringTable, kStringNotFound)
                               : std::string(kStringNotFound);
    const toolkit::MenuItemIndex item =
        menu->appendItem(std::move(title), commandID != 0 ? commandID : row.commandID);
    if (item != 0) menu->setItemRefCon(item, RefConForValue(row.ticketValue));
  }
  return rows;
}

// Refills the pop-up's menu from the map and returns the count PopulateMenuFromMap gave.
std::int16_t PopulatePopupButtonFromMap(const bundle::BundleRef& bundle, toolkit::Control* popup,
                                        const SettingMap* map, bool useJobSetting,
                                        std::uint32_t commandID) {
  if (!popup || !popup->menu()) return 0;
  toolkit::Menu* menu = popup->menu();
  menu->deleteAllItems();
  const auto count =
      static_cast<std::int16_t>(PopulateMenuFromMap(bundle, menu, map, useJobSetting, commandID));
  popup->setMaximum(count);
  return count;
}

// As PopulatePopupButtonFromMap, then inserts the user's earlier entries stored under
// `historyKey` after item `insertAfter`, in the order stored, each with `historyCommandID`.
std::int16_t PopulatePopupButtonFromMapAndHistory(
    const bundle::BundleRef& bundle, toolkit::Control* popup, const SettingMap* map,
    bool useJobSetting, const char* historyKey, int insertAfter, std::uint32_t historyCommandID,
    std::uint32_t commandID) {
  std::int16_t count = PopulatePopupButtonFromMap(bundle, popup, map, useJobSetting, commandID);
  if (!popup || !popup->menu() || !historyKey) return count;

  std::optional<plist::Dictionary> history = sys::CopyUserPreferences(kInputHistoryFile);
  if (!history) return count;
  std::optional<plist::Array> entries = history->getArray(historyKey);
  if (!entries) return count;

  toolkit::Menu* menu = popup->menu();
  int inserted = 0;
  for (const plist::Value& entry : *entries) {
    const std::string* text = entry.asString();
    if (!text) continue;  // a hand-edited file may hold other kinds; they are not entries
    // Past the end (or before the start) the entry goes last (first), as insertItem does.
    const int after = std::clamp(insertAfter + inserted, 0, static_cast<int>(menu->count()));
    if (menu->insertItem(static_cast<toolkit::MenuItemIndex>(after), *text, historyCommandID) == 0)
      break;  // the menu is full
    ++inserted;
    ++count;
  }
  popup->setMaximum(count);
  return count;
}

// Selects the first item whose reference value is `value` and returns 1; 0 when none
// matches, leaving the selection as it was.
int SetPopupButtonToTicketValue(toolkit::Control* popup, std::int32_t value) {
  if (!popup || !popup->menu()) return 0;
  const toolkit::Menu* menu = popup->menu();
  for (toolkit::MenuItemIndex index = 1; index <= menu->count(); ++index) {
    if (ValueForRefCon(menu->item(index)->refCon) == value) {
      popup->setValue(index);
      return 1;
    }
  }
  return 0;
}

// Returns the reference value of the selected item; 0 when nothing is selected.
std::int32_t GetPopupButtonTicketValue(toolkit::Control* popup) {
  if (!popup || !popup->menu()) return 0;
  const std::int32_t selected = popup->value();
  if (selected < 1 || selected > popup->menu()->count()) return 0;
  return ValueForRefCon(popup->menu()->item(static_cast<toolkit::MenuItemIndex>(selected))->refCon);
}

}  // namespace varno::vocabulary
