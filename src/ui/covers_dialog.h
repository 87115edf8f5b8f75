// SPDX-License-Identifier: Apache-2.0
// The covers dialog: no covers, a front cover, a back cover or both, each with its stock,
// the tray it comes from and which of its sides are printed. The Paper/Output and Special
// Pages panels both open it on their cover slots.
#pragma once

#include <cstdint>
#include <memory>

#include "model/special_pages.h"
#include "model/stock.h"
#include "platform/bundle/bundle.h"
#include "platform/status.h"
#include "platform/toolkit/types.h"
#include "ui/panel_ui.h"

namespace varno::ui {

inline constexpr std::int32_t kCoversDialogAdd = 0;
inline constexpr std::int32_t kCoversDialogEdit = 1;

// The covers as they were before the dialog first ran since the panel last read the
// ticket; the dialog's Revert goes back to them. The panel calls clear() on every ticket
// read.
struct CoversUndoState {
  std::unique_ptr<model::Cover> front;
  std::unique_ptr<model::Cover> back;
  bool saved = false;  // the covers above are the ones to go back to, even when null
  void clear() {
    front.reset();
    back.reset();
    saved = false;
  }
};

// The dialog's controls. A cover's controls are its base number plus the offsets below;
// the front cover's sit in group 125010, the back cover's in 125020.
inline constexpr toolkit::ControlID kCoverOptionPopupID{kPanelUICreator, 125001};
inline constexpr toolkit::ControlID kFrontCoverGroupID{kPanelUICreator, 125010};
inline constexpr toolkit::ControlID kBackCoverGroupID{kPanelUICreator, 125020};
inline constexpr std::int32_t kCoverStockButtonOffset = 1;   // bevel button with the stock menu
inline constexpr std::int32_t kCoverStockSummaryOffset = 2;  // the stock's summary
inline constexpr std::int32_t kCoverSourcePopupOffset = 3;   // the tray
inline constexpr std::int32_t kCoverSidesPopupOffset = 4;    // the printed sides
constexpr toolkit::ControlID CoverControlID(toolkit::ControlID group, std::int32_t offset) {
  return {group.signature, group.id + offset};
}
inline constexpr toolkit::MenuCommand kCoverOptionCommand = MakeOSType("CvrO");
inline constexpr toolkit::MenuCommand kCoversHelpCommand = MakeOSType("Vhlp");
inline constexpr const char* kCoversHelpPage = "Paper_Output/Paper/Covers/idh_covers.htm";

// The printed sides of a cover (Cover::sidesImaged), as its pop-up offers them.
inline constexpr std::int32_t kCoverSidesBlank = 1;
inline constexpr std::int32_t kCoverSidesFront = 2;
inline constexpr std::int32_t kCoverSidesBack = 3;
inline constexpr std::int32_t kCoverSidesBoth = 4;

// Runs the "Covers" window of the "Covers" interface file on the caller's cover slots.
// `mode` is kCoversDialogAdd or kCoversDialogEdit (adding with no covers yet offers a
// front cover). A cover the slots lack starts from `jobLevelStock` (may be null) set to
// follow the job, fed from "Auto", with blank sides. OK puts the chosen covers into the
// slots (null for a cover the chosen option leaves out) and sets `*itemHit` to 1; Cancel
// sets 2 and changes nothing. With `undo`, its first use keeps the slots as they were,
// and Revert goes back to them; without it, Revert goes back to the slots as given.
// Returns the status of loading the window (nothing changes when it fails), paramErr for
// a null slot or result, or a mode outside the two.
OSStatus RunModalCoversDialog(const bundle::BundleRef& bundle, std::int32_t mode,
                              const model::Stock* jobLevelStock,
                              std::unique_ptr<model::Cover>* front,
                              std::unique_ptr<model::Cover>* back, std::int16_t* itemHit,
                              CoversUndoState* undo);

}  // namespace varno::ui
