// SPDX-License-Identifier: Apache-2.0
// The Paper/Output panel's finishing choices: the staple and punch pop-ups or the one
// finishing menu of a booklet maker, what each of their commands does to the panel's
// finishing fields, the menu's check marks and the finishing summary.
#pragma once

#include <string>

#include "panels/paper_output/paper_output_panel.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/menu.h"

namespace varno::panels {

inline constexpr toolkit::MenuCommand kNoStapleCommand = MakeOSType("Stp0");
inline constexpr toolkit::MenuCommand kSingleStapleCommand = MakeOSType("Stp1");
inline constexpr toolkit::MenuCommand kDualStapleCommand = MakeOSType("Stp2");
inline constexpr toolkit::MenuCommand kMultipleStapleCommand = MakeOSType("Stp4");
inline constexpr toolkit::MenuCommand kNoPunchCommand = MakeOSType("Hpn0");
inline constexpr toolkit::MenuCommand kGenericPunchCommand = MakeOSType("HPun");
inline constexpr toolkit::MenuCommand kDualPunchCommand = MakeOSType("Hpn2");
inline constexpr toolkit::MenuCommand kTriplePunchCommand = MakeOSType("Hpn3");
inline constexpr toolkit::MenuCommand kQuadruplePunchCommand = MakeOSType("Hpn4");
inline constexpr toolkit::MenuCommand kNoFoldCommand = MakeOSType("Fld0");
inline constexpr toolkit::MenuCommand kBiFoldCommand = MakeOSType("Bfld");
inline constexpr toolkit::MenuCommand kCFoldCommand = MakeOSType("Cfld");
inline constexpr toolkit::MenuCommand kZFoldCommand = MakeOSType("Zfld");
inline constexpr toolkit::MenuCommand kZFoldHalfSheetCommand = MakeOSType("Zfol");
inline constexpr toolkit::MenuCommand kBookletCreationCommand = MakeOSType("Bkcr");
inline constexpr toolkit::MenuCommand kCoilCommand = MakeOSType("Coil");
inline constexpr toolkit::MenuCommand kOffsetCommand = MakeOSType("Ofsb");
inline constexpr toolkit::MenuCommand kCustomCommand = MakeOSType("Cust");
inline constexpr toolkit::MenuCommand kPrinterDefaultCommand = MakeOSType("Pdef");
inline constexpr toolkit::MenuCommand kNoFinishingCommand = MakeOSType("None");
inline constexpr toolkit::MenuCommand kPadPrintingCommand = MakeOSType("PADS");

// Finishing options codes.
inline constexpr std::int32_t kNoFinishing = 0;
inline constexpr std::int32_t kSingleStapleFinishing = 4;
inline constexpr std::int32_t kDualStapleFinishing = 9;
inline constexpr std::int32_t kMultipleStapleFinishing = 53;
inline constexpr std::int32_t kPunchFinishing = 30;
inline constexpr std::int32_t kFoldFinishing = 40;
inline constexpr std::int32_t kBookletFinishing = 24;
inline constexpr std::int32_t kCustomFinishing = 22;
inline constexpr std::int32_t kCoilFinishing = 58;

// Fold codes that make a booklet.
inline constexpr std::int32_t kBookletFold = 43;
inline constexpr std::int32_t kBookletFoldStaple = 53;

// Builds the finishing controls for the installed finisher, in Open: the staple and
// punch pop-ups, or with a booklet maker the one finishing menu; the finishing menu
// button otherwise holds the choices that are not staples or holes.
void BuildFinishingControls(PaperOutputContext* panel);
// The menu that holds the finishing items (the booklet maker's, or the stand-alone one).
toolkit::Menu* FinishingMenu(const PaperOutputContext* panel);

// Runs a finishing command; false when `command` is not one.
bool RunFinishingCommand(PaperOutputContext* panel, const toolkit::HICommand& command);
// The first step of every finishing command but booklet creation.
void UnselectBooklet(PaperOutputContext* panel);
// What follows every menu command of the panel: the staple-chosen flag, the marks, the
// summary and the finishing icon.
void FinishingChanged(PaperOutputContext* panel);
void MarkFinishingMenu(PaperOutputContext* panel);
void CreateFinishingString(const PaperOutputContext* panel, std::string* text);
// Coil binding and square folding against the job's stock, before every panel event.
void CheckFinisherAgainstStock(PaperOutputContext* panel);
// Enables or disables the items of `command` in every finishing menu and pop-up.
void EnableFinishingItems(PaperOutputContext* panel, toolkit::MenuCommand command, bool enabled);

// The stand-alone finishing menu button.
void PopulateFinishingMenu(toolkit::Menu* menu, const bundle::BundleRef& bundle);
void InitializeFinishingMenuButton(toolkit::Control* button, const bundle::BundleRef& bundle);
void FinalizeFinishingMenuButton(toolkit::Control* button);

}  // namespace varno::panels
