// SPDX-License-Identifier: Apache-2.0
// The Offset/Subset dialog of the Paper/Output panel's finishing menu: how finished sets
// are shifted against each other in the output tray, and whether subsets of a fixed
// number of pages are shifted too.
#pragma once

#include <cstdint>
#include <span>

#include "panels/paper_output/paper_output_panel.h"
#include "platform/status.h"
#include "platform/toolkit/types.h"

namespace varno::panels {

// Controls of the window "Offset" in the interface file "OffsetSelection".
inline constexpr toolkit::ControlID kOffsetLabelID{kPaperOutputCreator, 1500};
inline constexpr toolkit::ControlID kOffsetPopupID{kPaperOutputCreator, 1501};
inline constexpr toolkit::ControlID kOffsetSubsetCheckBoxID{kPaperOutputCreator, 1502};
inline constexpr toolkit::ControlID kOffsetPagesFieldID{kPaperOutputCreator, 1503};
inline constexpr toolkit::ControlID kOffsetPagesSpinID{kPaperOutputCreator, 1504};

inline constexpr toolkit::MenuCommand kOffsetPopupCommand = MakeOSType("Ofpu");
inline constexpr toolkit::MenuCommand kOffsetSubsetCommand = MakeOSType("Ofss");
inline constexpr toolkit::MenuCommand kOffsetSpinCommand = MakeOSType("Ofsp");
inline constexpr toolkit::MenuCommand kOffsetHelpCommand = MakeOSType("Vhlp");
inline constexpr const char* kOffsetHelpPage = "paper_output/finishing/db_offset_subset_d.htm";

// The offset values ("com.varno.print.FinishingOffset").
inline constexpr std::int32_t kOffsetPrinterDefault = 1;
inline constexpr std::int32_t kOffsetNone = 2;
inline constexpr std::int32_t kOffsetEachSet = 3;         // sets only: subsets are off
inline constexpr std::int32_t kOffsetEachSubset = 4;      // subsets only
inline constexpr std::int32_t kOffsetSetsAndSubsets = 5;  // both

// Pages per subset that OK takes while subsets are offset.
inline constexpr std::int32_t kMinPagesPerSubset = 1;
inline constexpr std::int32_t kMaxPagesPerSubset = 99999;

// One offset value: its command-line word and the string-table key of its menu item.
struct OffsetChoice {
  std::int32_t value;
  const char* word;
  const char* labelKey;
};
// Every offset value in menu order; here so that programs that load the plug-in name
// them as its menu does.
inline constexpr OffsetChoice kOffsetChoices[] = {
    {kOffsetPrinterDefault, "default", "PrinterDefault"},
    {kOffsetNone, "none", "No Offset"},
    {kOffsetEachSet, "sets", "Offset Each Set"},
    {kOffsetEachSubset, "subsets", "Offset Each Subset"},
    {kOffsetSetsAndSubsets, "sets-and-subsets", "Offset Sets and Subsets"},
};

// Runs the window "Offset" on the context's offset, offsetEnableSubset and
// offsetPagesPerSubset. OK stores the offset and whether subsets are offset and, only
// while they are, the pages per subset; it is refused, with a notice, while subsets are
// on and the pages are not 1 to 99999. Cancel changes nothing. Returns paramErr for a
// null context or a context without a bundle, the status of loading the window (nothing
// changes then), else noErr.
OSStatus RunModalOffsetFinishingDialog(PaperOutputContext* context);

}  // namespace varno::panels
