// SPDX-License-Identifier: Apache-2.0
// The fax options of a LAN fax job: one dictionary under "com.varno.print.FaxOptions",
// changed in place by the set-up dialog. Absent keys have the defaults noted below.
#pragma once

#include <cstdint>

#include "platform/plist/value.h"
#include "platform/print/ticket_access.h"

namespace varno::fax {

inline constexpr const char* kFaxOptionsKey = "com.varno.print.FaxOptions";

inline constexpr const char* kFaxPrintConfirmationSheetProperty = "ConfirmationSheet";  // bool; absent: on
inline constexpr const char* kFaxSendSpeedProperty = "SendSpeed";        // CFIndex; see below
inline constexpr const char* kFaxResolutionProperty = "Resolution";      // FaxResolutionMap value
inline constexpr const char* kFaxSendTimeProperty = "SendTime";          // SInt64, seconds since 1904
inline constexpr const char* kFaxDialingPrefixProperty = "DialingPrefix";  // string
inline constexpr const char* kFaxCreditCardProperty = "CreditCard";      // string
inline constexpr const char* kFaxPrintCoverSheetProperty = "CoverSheet";  // bool; absent: none
inline constexpr const char* kFaxCoverSheetNotesProperty = "CoverSheetNotes";  // string
inline constexpr const char* kFaxCoverLocalizedNotesLabel = "LocalizedNotesLabel";  // string

// What the dialog shows for an absent "SendSpeed" ("G3-Auto") and "Resolution" ("Fine").
inline constexpr print::CFIndex kFaxDefaultSendSpeed = 4;
inline constexpr print::CFIndex kFaxDefaultResolution = 2;

// The send-speed menu is read and written asymmetrically, and has to stay so for tickets
// already in use: showing selects the FaxSendSpeedMap row whose value equals the stored
// "SendSpeed", storing writes the selected item's number. Only "Fixed G3" (item 2, value 2)
// comes back as it went in.
//
// The 1-based menu item to select for the options' "SendSpeed" (the default when absent or
// not a CFIndex), or -1 when no row has that value.
int FaxSendSpeedItemFromOptions(const plist::Dictionary& options);
// Stores the menu item number itself as "SendSpeed".
void SetFaxSendSpeedItemInOptions(plist::Dictionary& options, int item);

}  // namespace varno::fax
