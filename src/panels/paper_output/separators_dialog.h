// SPDX-License-Identifier: Apache-2.0
// The transparency separators dialog of the Paper/Output panel: whether a sheet goes
// between transparencies (none, blank, printed) and the tray it comes from.
#pragma once

#include <cstdint>

#include "model/stock.h"
#include "platform/bundle/bundle.h"
#include "platform/status.h"
#include "platform/toolkit/types.h"
#include "ui/panel_ui.h"

namespace varno::panels {

// Controls of the "Separators" window, by number under the panels' signature.
inline constexpr toolkit::ControlID kSeparatorOptionLabelID{ui::kPanelUICreator, 1001};
inline constexpr toolkit::ControlID kSeparatorOptionPopupID{ui::kPanelUICreator, 1002};
inline constexpr toolkit::ControlID kSeparatorPreviewID{ui::kPanelUICreator, 1003};
inline constexpr toolkit::ControlID kSeparatorColorLabelID{ui::kPanelUICreator, 1004};
inline constexpr toolkit::ControlID kSeparatorColorPopupID{ui::kPanelUICreator, 1005};
inline constexpr toolkit::ControlID kSeparatorSourceLabelID{ui::kPanelUICreator, 1006};
inline constexpr toolkit::ControlID kSeparatorSourcePopupID{ui::kPanelUICreator, 1007};
inline constexpr toolkit::ControlID kSeparatorTypeLabelID{ui::kPanelUICreator, 1008};
inline constexpr toolkit::ControlID kSeparatorTypePopupID{ui::kPanelUICreator, 1009};
inline constexpr toolkit::ControlID kSeparatorNoteID{ui::kPanelUICreator, 1010};
inline constexpr toolkit::ControlID kSeparatorOKButtonID{ui::kPanelUICreator, 1100};
inline constexpr toolkit::ControlID kSeparatorCancelButtonID{ui::kPanelUICreator, 1101};
inline constexpr toolkit::ControlID kSeparatorDefaultsButtonID{ui::kPanelUICreator, 1102};

inline constexpr toolkit::MenuCommand kSeparatorOptionCommand = MakeOSType("SepO");
inline constexpr toolkit::MenuCommand kSeparatorSourceCommand = MakeOSType("SepC");
inline constexpr toolkit::MenuCommand kSeparatorHelpCommand = MakeOSType("Vhlp");
inline constexpr const char* kSeparatorHelpPage =
    "Paper_Output/Paper/Transparency_Separators/idh_transparency_separator_options.htm";

// The preview picture of a separator option on paper of `mediaColor` (a "MediaColor"
// value): none, blank or printed separators; null for an option that is none of them.
const char* SeparatorPreviewPicture(std::int32_t option, std::int32_t mediaColor);

// Runs the "Separators" window of the "Separators" interface file on the caller's option
// (a "VNSlipSheetPrint" value) and the separator stock, of which only `source` is used.
// OK stores the chosen option and, when there are separators, the tray; `*result` := 1
// for OK, 2 for Cancel, which changes nothing. Returns the status of loading the window
// (nothing changes when it fails), paramErr for a null argument.
OSStatus RunModalSeparatorsDialog(const bundle::BundleRef& bundle, std::int32_t* option,
                                  model::Stock* stock, std::int16_t* result);

}  // namespace varno::panels
