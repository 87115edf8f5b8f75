// SPDX-License-Identifier: Apache-2.0
// The Coil Binding dialog of the Paper/Output panel's finishing menu: where and how the
// finisher punches each set for a coil (spiral) that is put in after printing, and the
// line the panel's finishing summary shows for it.
#pragma once

#include <cstdint>
#include <string>

#include "platform/bundle/bundle.h"
#include "platform/toolkit/types.h"
#include "ui/panel_ui.h"

namespace varno::panels {

// A coil-binding punch for the job's sets.
struct CoilBinding {
  std::int32_t edge = 1;     // the edge the coil runs along: 1 left, 2 top, 3 right
  std::int32_t pitch = 1;    // 1 "4:1" (4 holes per inch), 2 "5 mm" metric pitch
  std::int32_t margin = 45;  // from the edge to the hole centres, tenths of a millimetre
  bool operator==(const CoilBinding&) const = default;
};

inline constexpr std::int32_t kCoilLeftEdge = 1;
inline constexpr std::int32_t kCoilTopEdge = 2;
inline constexpr std::int32_t kCoilRightEdge = 3;
inline constexpr std::int32_t kCoilPitch4To1 = 1;
inline constexpr std::int32_t kCoilPitch5mm = 2;
// The margins the punch can be set to, in tenths of a millimetre.
inline constexpr std::int32_t kMinCoilMargin = 35;
inline constexpr std::int32_t kMaxCoilMargin = 65;
// The paper the punch takes; the panel offers the dialog only for such a stock.
inline constexpr std::int32_t kMinCoilPaperWeight = 80;  // g/m²
inline constexpr std::int32_t kMaxCoilPaperWeight = 216;

// Controls of the window "Coil" in the interface file "Finishing".
inline constexpr toolkit::ControlID kCoilEdgeLabelID{ui::kPanelUICreator, 1410};
inline constexpr toolkit::ControlID kCoilEdgePopupID{ui::kPanelUICreator, 1411};
inline constexpr toolkit::ControlID kCoilPitchLabelID{ui::kPanelUICreator, 1412};
inline constexpr toolkit::ControlID kCoilPitchPopupID{ui::kPanelUICreator, 1413};
inline constexpr toolkit::ControlID kCoilMarginLabelID{ui::kPanelUICreator, 1414};
inline constexpr toolkit::ControlID kCoilMarginFieldID{ui::kPanelUICreator, 1415};
inline constexpr toolkit::ControlID kCoilMarginUnitID{ui::kPanelUICreator, 1416};
inline constexpr toolkit::ControlID kCoilMarginLimitsID{ui::kPanelUICreator, 1417};
inline constexpr toolkit::ControlID kCoilPictureID{ui::kPanelUICreator, 1418};
inline constexpr toolkit::ControlID kCoilNoteID{ui::kPanelUICreator, 1419};

inline constexpr toolkit::MenuCommand kCoilEdgeCommand = MakeOSType("Cedg");
inline constexpr toolkit::MenuCommand kCoilHelpCommand = MakeOSType("Vhlp");
inline constexpr const char* kCoilHelpPage = "paper_output/finishing/db_coil_binding_d.htm";

// The picture of a coil along `edge`; null for an edge that is none of the three.
const char* CoilBindingPicture(std::int32_t edge);

// Runs the window "Coil" on `*coil`. OK is refused, with a notice and the focus in the
// field, while the margin is not a number of millimetres with at most one decimal from
// 3.5 to 6.5; otherwise it replaces `*coil` and returns true. Cancel returns false and
// leaves `*coil` untouched, as does a null bundle or coil, or a window that cannot be
// loaded (said on standard error).
bool RunModalCoilBindingDialog(const bundle::BundleRef& bundle, CoilBinding* coil);

// One localized line for the finishing summary: "Coil Binding: Left Edge, 4:1 Pitch".
std::string CoilBindingSummary(const bundle::BundleRef& bundle, const CoilBinding& coil);

}  // namespace varno::panels
