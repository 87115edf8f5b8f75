// SPDX-License-Identifier: Apache-2.0
// Dialing strings: the characters of a fax number that the device actually dials, and the
// device's limit on how many it dials per recipient, prefix and calling card included.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "fax/fax_recipient.h"
#include "fax/fax_recipient_list.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/character_set.h"

namespace varno::fax {

// Upper case only: the device reads "s" and "a".."d" as nothing.
inline constexpr const char* kFaxDialingCharacters = "0123456789*#=:!,/S$<>ABCD";

// The most characters the device dials for one recipient, prefix and calling card included.
inline constexpr print::CFIndex kFaxMaxDialingCharacters = 50;
// Field limits: the dialing prefix (dialing characters), the calling card (decimal digits)
// and a recipient's fax number (dialing characters).
inline constexpr print::CFIndex kFaxDialingPrefixMaxCharacters = 4;
inline constexpr print::CFIndex kFaxCreditCardMaxDigits = 16;
inline constexpr print::CFIndex kFaxNumberMaxCharacters = 50;

// The set of kFaxDialingCharacters, made once and shared by every field and check.
const toolkit::CharacterSet& kFaxDialingCharacterSet();

// The characters of `faxNumber` that are dialing characters, in their order; everything
// else (blanks, brackets, "+", "-", lower case, any non-ASCII character) is dropped.
std::string CopyDialingStringFromFaxNumber(std::string_view faxNumber);

// The recipients of `recipients`, in list order, whose dialing string plus `prefixLength`
// plus `creditCardLength` characters exceeds kFaxMaxDialingCharacters. A recipient without
// a fax number counts only the prefix and the card. Each result holds a reference, so the
// recipients outlive their removal from the list while the caller still shows them.
std::vector<FaxRecipientRef> FindMaxCharacters(const FaxRecipientList& recipients,
                                               print::CFIndex prefixLength,
                                               print::CFIndex creditCardLength);

}  // namespace varno::fax
