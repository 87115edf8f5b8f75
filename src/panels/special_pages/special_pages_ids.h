// SPDX-License-Identifier: Apache-2.0
// The controls of the Special Pages panel and of its inserts and exceptions dialogs, by
// number, for whatever drives them from outside the plug-in (the hosts, their tests). All
// carry the signature "VPDE"; the panel and both dialogs come from the interface file
// "SpecialPages" (windows "Panel", "Inserts" and "Exceptions").
#pragma once

#include <cstdint>

#include "platform/four_char_code.h"
#include "platform/toolkit/types.h"

namespace varno::panels {

inline constexpr OSType kSpecialPagesSignature = MakeOSType("VPDE");
inline constexpr const char* kSpecialPagesInterfaceFile = "SpecialPages";
inline constexpr const char* kSpecialPagesPanelGetter = "GetSpecialPagesPanelInterface";

// The panel.
inline constexpr std::int32_t kSpecialPagesPaneID = 1;
inline constexpr std::int32_t kAddCoversButtonID = 100;
inline constexpr std::int32_t kAddCoversLabelID = 101;
inline constexpr std::int32_t kAddInsertsButtonID = 200;
inline constexpr std::int32_t kAddInsertsLabelID = 201;
inline constexpr std::int32_t kAddExceptionsButtonID = 300;
inline constexpr std::int32_t kAddExceptionsLabelID = 301;
inline constexpr std::int32_t kSpecialPagesNoteID = 302;  // why inserts and exceptions are off
inline constexpr std::int32_t kSpecialPagesListID = 1000;
inline constexpr std::int32_t kEditSpecialPageButtonID = 1200;
inline constexpr std::int32_t kDeleteSpecialPagesButtonID = 1300;
inline constexpr std::int32_t kDeleteAllSpecialPagesButtonID = 1400;
inline constexpr std::int32_t kUndoSpecialPagesButtonID = 1500;
inline constexpr std::int32_t kMoveUpButtonID = 1600;
inline constexpr std::int32_t kMoveDownButtonID = 1700;
inline constexpr std::int32_t kSpecialPagesHelpButtonID = 1800;

// The list's columns.
inline constexpr OSType kPageColumn = MakeOSType("PAGE");
inline constexpr OSType kTypeColumn = MakeOSType("TYPE");
inline constexpr OSType kAttributesColumn = MakeOSType("ATTR");

// The inserts dialog.
inline constexpr std::int32_t kInsertOptionPopupID = 2001;   // "After Page" or before page 1
inline constexpr std::int32_t kInsertQuantitySpinID = 2002;  // arrows of the quantity field
inline constexpr std::int32_t kInsertQuantityFieldID = 2003;
inline constexpr std::int32_t kInsertPagesFieldID = 2004;
inline constexpr std::int32_t kInsertStockButtonID = 2005;   // bevel button with the stock menu
inline constexpr std::int32_t kInsertStockSummaryID = 2006;
inline constexpr std::int32_t kInsertPagesLabelID = 2007;         // dimmed with the page field
inline constexpr std::int32_t kInsertInstructionsLabelID = 2008;  // likewise
inline constexpr std::int32_t kInsertOptionLabelID = 2009;
inline constexpr std::int32_t kInsertQuantityLabelID = 2010;
inline constexpr std::int32_t kInsertStockLabelID = 2011;
inline constexpr toolkit::MenuCommand kInsertOptionCommand = MakeOSType("Iopt");
inline constexpr toolkit::MenuCommand kInsertQuantityCommand = MakeOSType("Iqty");  // the arrows
// Values of the insert option pop-up.
inline constexpr std::int32_t kInsertAfterPage = 1;
inline constexpr std::int32_t kInsertBeforePage1 = 2;

// The exceptions dialog.
inline constexpr std::int32_t kExceptionPagesFieldID = 3004;
inline constexpr std::int32_t kExceptionStockButtonID = 3005;
inline constexpr std::int32_t kExceptionStockSummaryID = 3006;
inline constexpr std::int32_t kExceptionPlexPopupID = 3007;  // the PPD's "Duplex" choices
inline constexpr std::int32_t kExceptionImageShiftButtonID = 3008;
inline constexpr std::int32_t kExceptionPagesLabelID = 3009;
inline constexpr std::int32_t kExceptionPlexLabelID = 3010;
inline constexpr std::int32_t kExceptionStockLabelID = 3011;
inline constexpr toolkit::MenuCommand kExceptionPlexCommand = MakeOSType("Eplx");

// Both dialogs: OK "ok  ", Cancel "not!", Defaults "rvrt", Help this.
inline constexpr toolkit::MenuCommand kSpecialPagesHelpCommand = MakeOSType("Vhlp");

// Dialog modes.
inline constexpr std::int32_t kSpecialPagesDialogAdd = 0;
inline constexpr std::int32_t kSpecialPagesDialogEdit = 1;

// Status codes of the page-range parser and the dialogs, each with its alert.
inline constexpr std::int32_t kPageNumberTooLong = 1000;
inline constexpr std::int32_t kInvalidPageRanges = 1001;
inline constexpr std::int32_t kInvalidRangeOrder = 1002;
inline constexpr std::int32_t kInvalidPageNumbers = 1003;
inline constexpr std::int32_t kPageRangeConflict = 1234;

}  // namespace varno::panels
