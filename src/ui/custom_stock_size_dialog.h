// SPDX-License-Identifier: Apache-2.0
// The custom paper size dialog of the stock menus: a width and a length in points,
// millimetres or inches, within the printer's custom size limits.
#pragma once

#include <cstdint>

#include "platform/bundle/bundle.h"
#include "platform/status.h"
#include "platform/toolkit/types.h"
#include "ui/panel_ui.h"

namespace varno::ui {

// The dialog's fields: width, length, and the unit pop-up (points, millimetres, inches).
inline constexpr toolkit::ControlID kCustomStockWidthFieldID{kPanelUICreator, 124001};
inline constexpr toolkit::ControlID kCustomStockLengthFieldID{kPanelUICreator, 124002};
inline constexpr toolkit::ControlID kCustomStockUnitPopupID{kPanelUICreator, 124003};
inline constexpr toolkit::ControlID kCustomStockLimitsTextID{kPanelUICreator, 124004};

// Width and length in whole points, as a custom-size stock keeps them.
// Runs the dialog from "Utilities" / "CustomStockSize" with `*width` and `*length` shown
// (in points; unset values show empty fields). OK is refused, with the printer's limits
// said in the dialog, while a value is missing or outside GetMediaLimits; a confirmed
// dialog stores the size and sets `*confirmed`. Returns the status of opening the window.
OSStatus RunModalCustomStockSizeDialog(const bundle::BundleRef& bundle, std::int32_t* width,
                                       std::int32_t* length, bool* confirmed);

}  // namespace varno::ui
