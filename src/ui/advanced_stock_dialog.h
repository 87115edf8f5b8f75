// SPDX-License-Identifier: Apache-2.0
// The advanced stock selection dialog of the stock menus: the attributes of a paper stock
// that its size, colour and type menus do not reach (weight, tabs per set, pre-punching,
// coating, finish, grain compensation, and the person's own names and notes for it).
#pragma once

#include <cstdint>

#include "model/stock.h"
#include "platform/bundle/bundle.h"
#include "platform/status.h"
#include "platform/toolkit/types.h"
#include "ui/panel_ui.h"

namespace varno::ui {

// The dialog's controls, in the window "AdvancedStock" of the interface file "Utilities".
inline constexpr toolkit::ControlID kAdvancedStockWeightFieldID{kPanelUICreator, 125001};
inline constexpr toolkit::ControlID kAdvancedStockTabsFieldID{kPanelUICreator, 125002};
inline constexpr toolkit::ControlID kAdvancedStockPunchedPopupID{kPanelUICreator, 125003};
inline constexpr toolkit::ControlID kAdvancedStockSidesCoatedPopupID{kPanelUICreator, 125004};
inline constexpr toolkit::ControlID kAdvancedStockCoatingPopupID{kPanelUICreator, 125005};
inline constexpr toolkit::ControlID kAdvancedStockFinishPopupID{kPanelUICreator, 125006};
inline constexpr toolkit::ControlID kAdvancedStockGrainPopupID{kPanelUICreator, 125007};
inline constexpr toolkit::ControlID kAdvancedStockCustomTypeFieldID{kPanelUICreator, 125008};
inline constexpr toolkit::ControlID kAdvancedStockCustomColorFieldID{kPanelUICreator, 125009};
inline constexpr toolkit::ControlID kAdvancedStockDescriptionFieldID{kPanelUICreator, 125010};
inline constexpr toolkit::ControlID kAdvancedStockCommentFieldID{kPanelUICreator, 125011};
inline constexpr toolkit::ControlID kAdvancedStockLimitsTextID{kPanelUICreator, 125012};
inline constexpr toolkit::MenuCommand kAdvancedStockHelpCommand = MakeOSType("Vhlp");
inline constexpr toolkit::MenuCommand kAdvancedStockCoatedSidesCommand = MakeOSType("Vcsd");
inline constexpr const char* kAdvancedStockHelpPage =
    "Paper_Output/Paper/Advanced_Stock/idh_advanced_stock.htm";

// What the number fields take; an empty field leaves the attribute unset.
inline constexpr std::int32_t kMinStockWeight = 40;   // g/m²
inline constexpr std::int32_t kMaxStockWeight = 350;
inline constexpr std::int32_t kMinTabsPerSet = 1;
inline constexpr std::int32_t kMaxTabsPerSet = 50;
// The most characters each text field takes.
inline constexpr std::int32_t kMaxStockNameLength = 31;  // type and colour names
inline constexpr std::int32_t kMaxStockNoteLength = 127; // description and comment

// The values of the stock's pop-up attributes (unset: the printer decides).
enum StockPunched : std::int32_t { kStockNotPunched = 1, kStockPrePunched = 2 };
enum StockSidesCoated : std::int32_t {
  kStockUncoated = 1,
  kStockCoatedFront = 2,
  kStockCoatedBack = 3,
  kStockCoatedBoth = 4,
};
enum StockCoating : std::int32_t { kStockCoatingGloss = 1, kStockCoatingMatte = 2, kStockCoatingSilk = 3 };
enum StockFinish : std::int32_t {
  kStockFinishSmooth = 1,
  kStockFinishVellum = 2,
  kStockFinishLaid = 3,
  kStockFinishLinen = 4,
};

// Runs the dialog modally on `*stock`, showing its current attributes. OK is refused,
// with a notice and the limits said in the dialog, while a number field holds something
// other than a whole number within its limits; a confirmed dialog writes every attribute
// it shows into the stock and sets `*confirmed`; Cancel changes nothing. The coating can
// only be chosen for a coated stock. `reserved` is kept for the caller's context and not
// used. Returns paramErr for a null bundle, stock or `confirmed`, else the status of
// opening the window.
OSStatus RunModalAdvancedStockDialog(const bundle::BundleRef& bundle, model::Stock* stock,
                                     void* reserved, bool* confirmed);

}  // namespace varno::ui
