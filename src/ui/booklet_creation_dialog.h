// SPDX-License-Identifier: Apache-2.0
// The booklet creation dialog: booklet finishing (a fold or crease, with or without a staple
// on it), booklet layout with optional outlines, a new paper size for the booklet, gutter
// and creep. The Paper/Output panel opens it from its finishing menu; the Booklet/Watermark
// panel opens the same dialog as its booklet options.
#pragma once

#include <climits>
#include <cstdint>

#include "platform/bundle/bundle.h"
#include "platform/print/ticket.h"
#include "platform/toolkit/menu.h"
#include "platform/toolkit/types.h"
#include "ui/panel_ui.h"

namespace varno::ui {

inline constexpr std::int32_t kBookletNoNewSize = INT32_MIN;  // 0x80000000

// Fold codes, booklet layout and outlines as the parameters and the ticket carry them.
inline constexpr std::int32_t kBookletNoFold = 1;
inline constexpr std::int32_t kBookletFold = 43;           // fold, or crease on a booklet maker
inline constexpr std::int32_t kBookletFoldAndStaple = 53;  // the same, stapled on the fold
inline constexpr std::int32_t kBookletLayoutOn = 1;
inline constexpr std::int32_t kBookletLayoutOff = 2;
inline constexpr std::int32_t kBookletOutlinesOn = 2;
inline constexpr std::int32_t kBookletOutlinesOff = 1;

// Limits of the number fields. Gutter in points (216 is 3 inches), creep and trim width in
// tenths of a millimetre, shown in millimetres with one decimal.
inline constexpr std::int32_t kBookletMaxGutter = 216;
inline constexpr std::int32_t kBookletMaxCreep = 100;
inline constexpr std::int32_t kBookletMinTrimWidth = 20;
inline constexpr std::int32_t kBookletMaxTrimWidth = 200;
inline constexpr std::int32_t kBookletDefaultTrimWidth = 50;

struct BookletCreationParameters {
  bundle::BundleRef bundle;
  // 1 none, 43 booklet fold (or crease), 53 fold (or crease) and staple
  std::int32_t fold = 1;
  std::int32_t bookletLayout = 2;              // 1 on, 2 off
  std::int32_t drawOutlines = 1;               // 2 on, 1 off
  std::int32_t paperSize = kBookletNoNewSize;  // a stock size code of the size menu
  std::int32_t gutter = 24;
  std::int32_t creep = 0;
};

// What the Paper/Output panel lends the dialog in booklet creation mode.
struct BookletPanelState {
  // The print-settings ticket: its special pages decide enabling.
  const print::Ticket* ticket = nullptr;
  bool stapleChosen = false;  // the panel's staple-chosen flag
  // The square-fold trimmer is installed and the stock allows it.
  bool squareFoldAvailable = false;
  std::uint8_t* squareFold = nullptr;  // in/out: square fold the booklet's spine
  std::uint8_t* trim = nullptr;        // in/out: trim the booklet's outer (face) edge
  std::int32_t* trimWidth = nullptr;   // in/out: how much to trim, in tenths of a millimetre
  // The panel's finishing menu: "Stp1", "Stp2", "Stp4" re-enabled.
  toolkit::Menu* finishingMenu = nullptr;
};

// The dialog's controls.
constexpr toolkit::ControlID BookletControlID(std::int32_t id) { return {kPanelUICreator, id}; }
inline constexpr toolkit::ControlID kBookletNoFoldRadioID = BookletControlID(1600);
inline constexpr toolkit::ControlID kBookletFoldRadioID = BookletControlID(1601);
inline constexpr toolkit::ControlID kBookletFoldAndStapleRadioID = BookletControlID(1602);
inline constexpr toolkit::ControlID kBookletLayoutNoneRadioID = BookletControlID(1603);
inline constexpr toolkit::ControlID kBookletLayoutRadioID = BookletControlID(1604);
inline constexpr toolkit::ControlID kBookletOutlinesCheckBoxID = BookletControlID(1605);
inline constexpr toolkit::ControlID kBookletNewSizeLabelID = BookletControlID(1606);
inline constexpr toolkit::ControlID kBookletNewSizePopupID = BookletControlID(1607);
inline constexpr toolkit::ControlID kBookletPreviewID = BookletControlID(1608);
inline constexpr toolkit::ControlID kBookletFinishingLabelID = BookletControlID(1609);
inline constexpr toolkit::ControlID kBookletLayoutLabelID = BookletControlID(1610);
inline constexpr toolkit::ControlID kBookletGutterLabelID = BookletControlID(1611);
inline constexpr toolkit::ControlID kBookletGutterFieldID = BookletControlID(1612);
inline constexpr toolkit::ControlID kBookletGutterSpinID = BookletControlID(1613);
inline constexpr toolkit::ControlID kBookletGutterRangeID = BookletControlID(1614);
inline constexpr toolkit::ControlID kBookletCreepLabelID = BookletControlID(1615);
inline constexpr toolkit::ControlID kBookletCreepFieldID = BookletControlID(1616);
inline constexpr toolkit::ControlID kBookletCreepSpinID = BookletControlID(1617);
inline constexpr toolkit::ControlID kBookletCreepRangeID = BookletControlID(1618);
inline constexpr toolkit::ControlID kBookletGutterIconID = BookletControlID(1619);
inline constexpr toolkit::ControlID kBookletCreepIconID = BookletControlID(1620);
inline constexpr toolkit::ControlID kBookletSquareFoldPictureID = BookletControlID(1621);
inline constexpr toolkit::ControlID kBookletSquareFoldCheckBoxID = BookletControlID(1622);
inline constexpr toolkit::ControlID kBookletTrimPictureID = BookletControlID(1623);
inline constexpr toolkit::ControlID kBookletTrimCheckBoxID = BookletControlID(1624);
inline constexpr toolkit::ControlID kBookletTrimWidthFieldID = BookletControlID(1625);
inline constexpr toolkit::ControlID kBookletTrimWidthSpinID = BookletControlID(1626);
inline constexpr toolkit::ControlID kBookletTrimWidthLabelID = BookletControlID(1627);
inline constexpr toolkit::ControlID kBookletTrimWidthRangeID = BookletControlID(1628);
inline constexpr toolkit::MenuCommand kBookletHelpCommand = MakeOSType("Vhlp");
inline constexpr const char* kBookletHelpPage =
    "Paper_Output/Finishing/M_Booklet_Creation_Overview.htm";

// Runs the window "BookletCreation" of the interface file "BookletCreation" (title
// "Booklet Creation") on the parameters, with the panel's special pages, staple flag,
// square-fold and trim state. -1 when cancelled (parameters untouched), else 0 (parameters
// replaced, square fold, trim and trim width copied back through the panel's pointers,
// and with neither booklet layout nor a fold chosen the panel's "Stp1", "Stp2" and "Stp4"
// finishing items enabled again), or the status of loading the window. paramErr for null
// parameters or a parameter record without a bundle; a null panel lends nothing.
int RunModalBookletCreationDialog(BookletCreationParameters* parameters, BookletPanelState* panel);
// The same dialog in booklet options mode (title "Booklet Options Title"); window
// "BookletFinishingOptions" when any of "BookletFoldKey", "BiFoldMultiple", "BiFoldStapleMultiple"
// is installed (vocabulary::getInstalledFeature), else "BookletOptions" (which has no finishing
// radio group). `ticket` (may be null) is the print-settings ticket whose special pages decide
// enabling.
int RunModalBookletOptionsDialog(BookletCreationParameters* parameters,
                                 const print::Ticket* ticket);

}  // namespace varno::ui
