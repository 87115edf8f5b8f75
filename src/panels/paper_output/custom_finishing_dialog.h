// SPDX-License-Identifier: Apache-2.0
// The Custom finishing dialog of the Paper/Output panel's finishing menu: a short free
// instruction for finishing the printer's finisher has no menu item for, which the
// operator carries out.
#pragma once

#include <cstdint>

#include "panels/paper_output/paper_output_panel.h"
#include "platform/status.h"
#include "platform/toolkit/types.h"
#include "ui/panel_ui.h"

namespace varno::panels {

// Controls of the window "Custom" in the interface file "Finishing".
inline constexpr toolkit::ControlID kCustomFinishingOKButtonID{ui::kPanelUICreator, 1400};
inline constexpr toolkit::ControlID kCustomFinishingFieldID{ui::kPanelUICreator, 1401};
inline constexpr toolkit::ControlID kCustomFinishingLabelID{ui::kPanelUICreator, 1402};

inline constexpr toolkit::MenuCommand kCustomFinishingHelpCommand = MakeOSType("Vhlp");
inline constexpr const char* kCustomFinishingHelpPage =
    "paper_output/finishing/db_custom_finishing_d.htm";

// The finishing options code of a job finished by a custom instruction.
inline constexpr std::int32_t kCustomFinishingOptions = 22;
// The most characters the instruction holds.
inline constexpr std::int32_t kMaxCustomFinishingLength = 30;

// Runs the window "Custom" with the field showing the context's customFinishing. OK can
// be pressed only while the field holds text; it sets finishingOptions to 22 and
// customFinishing to the text. Cancel changes nothing. Returns paramErr for a null
// context or one without a bundle, the status of loading the window (nothing changes
// then), else noErr.
OSStatus RunModalCustomFinishingDialog(PaperOutputContext* context);

}  // namespace varno::panels
