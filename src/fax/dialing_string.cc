// SPDX-License-Identifier: Apache-2.0
#include "fax/dialing_string.h"

namespace varno::fax {

using print::CFIndex;
using toolkit::CharacterSet;

const CharacterSet& kFaxDialingCharacterSet() {
  static const CharacterSet set(kFaxDialingCharacters);
  return set;
}

std::string CopyDialingStringFromFaxNumber(std::string_view faxNumber) {
  const CharacterSet& dialing = kFaxDialingCharacterSet();
  std::string result;
  // Every dialing character is ASCII and no byte of a multi-byte UTF-8 character is, so
  // testing byte by byte keeps exactly the dialing characters.
  for (char c : faxNumber) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80 && dialing.contains(static_cast<char32_t>(byte))) result += c;
  }
  return result;
}

std::vector<FaxRecipientRef> FindMaxCharacters(const FaxRecipientList& recipients,
                                               CFIndex prefixLength, CFIndex creditCardLength) {
  std::vector<FaxRecipientRef> tooLong;
  // Summed in 64 bits: the lengths come from callers and must not wrap.
  const std::int64_t extra = std::int64_t{prefixLength} + creditCardLength;
  for (CFIndex i = 0; i < recipients.count(); ++i) {
    FaxRecipient* recipient = recipients.recipientAtIndex(i);
    const std::int64_t number =
        recipient->faxNumber()
            ? static_cast<std::int64_t>(CopyDialingStringFromFaxNumber(*recipient->faxNumber()).size())
            : 0;
    if (number + extra > kFaxMaxDialingCharacters)
      tooLong.push_back(FaxRecipientRef::Retain(recipient));
  }
  return tooLong;
}

}  // namespace varno::fax
