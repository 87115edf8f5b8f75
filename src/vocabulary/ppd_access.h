// SPDX-License-Identifier: Apache-2.0
// PPD access: the shared PPD of the current printer, choices kept in the ticket's PPD
// dictionary, conversion between choice keywords and the numbers the panels store, and
// menus filled from a PPD option's choices.
//
// Process-wide state: the shared PPD, opened by the first PPDGetCurrent and closed by
// PPDCloseCurrent (host Terminate); main thread only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <cups/ppd.h>

#include "platform/print/ticket.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/menu.h"

namespace varno::vocabulary {

// String encodings a PPD may declare.
enum class PPDEncoding { MacRoman, ISOLatin1, ISOLatin2, ISOLatin5, ShiftJIS, UTF8 };

// The shared PPD of the current session's printer, opened on first use; null when there
// is no session, no printer PPD, or it cannot be opened (the next call tries again).
// Its texts are localized once, on opening, by the localizer plug-in inside the plug-in
// bundle when there is one (kPPDLocalizerFunction of Resources/kPPDLocalizerBundle, called
// with the PPD), else by libcups from the translations the PPD itself carries.
ppd_file_t* PPDGetCurrent();
inline constexpr const char* kPPDLocalizerBundle = "LyraCups.plugin";
inline constexpr const char* kPPDLocalizerFunction = "InvokeLocalizedPPD";
using PPDLocalizer = void (*)(ppd_file_t* ppd);
void PPDCloseCurrent();

// The choice under `keyword` in the ticket's PPD dictionary, or nullopt.
std::optional<std::string> PPDCopyCurrentChoice(const print::Ticket* ticket, const char* keyword);
void PPDSetCurrentChoice(print::Ticket* ticket, const char* keyword, const char* choice);

// Through MainKeywordMap and the keyword's choice map; -1 / null when unknown.
std::int32_t PPDTicketValueForChoice(const char* keyword, const char* choice);
const char* PPDChoiceForTicketValue(const char* keyword, std::int32_t value);
// Sets the ticket's choice of `keyword` to the one whose value is `value`; a value without
// a choice leaves the ticket as it is.
void PPDSetCurrentChoiceForTicketValue(print::Ticket* ticket, const char* keyword,
                                       std::int32_t value);
// `value` := the number of the ticket's choice, else of the PPD's default choice (-1 when
// unknown); untouched when there is neither.
void PPDGetTicketValueForChoiceOrDefault(ppd_file_t* ppd, const print::Ticket* ticket,
                                         const char* keyword, std::int32_t* value);

PPDEncoding PPDGetEncoding(ppd_file_t* ppd);
// The human-readable text of a choice, as UTF-8; nullopt when absent.
std::optional<std::string> PPDCopyChoiceText(ppd_file_t* ppd, const char* keyword,
                                             const char* choice);
std::optional<std::string> PPDCopyDefaultChoice(ppd_file_t* ppd, const char* keyword);

// Fills `menu` with the option's recognised choices; returns the item count. A choice
// the maps do not know is left out with a line on standard error, except `leftOut` (a
// choice the caller offers otherwise, as the cover sheets' "None" is no cover at all).
int PPDPopulateMenuWithChoices(toolkit::Menu* menu, ppd_file_t* ppd, const char* keyword,
                               std::uint32_t commandID, bool markConflicts,
                               const char* leftOut = nullptr);
int PPDPopulatePopupWithChoices(toolkit::Control* popup, ppd_file_t* ppd, const char* keyword,
                                bool markConflicts, const char* leftOut = nullptr);

// True when the PPD's constraints forbid `choice` of `keyword` with the installed
// configuration and the other choices of `ticket` (the PPD's defaults where it has none).
// Leaves the PPD marked so.
bool PPDChoiceConflicts(ppd_file_t* ppd, const print::Ticket* ticket, const char* keyword,
                        const char* choice);

// True when the PPD is one of this printer family's: its manufacturer is exactly "Varno".
bool PPDIsFromMaker(ppd_file_t* ppd);

}  // namespace varno::vocabulary
