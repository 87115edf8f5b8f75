// SPDX-License-Identifier: Apache-2.0
#include "host/host_ticket_entries.h"

#include <cstdint>

#include "platform/system/network.h"
#include "platform/system/system_info.h"
#include "vocabulary/ppd_access.h"

namespace varno::host {

using vocabulary::PPDSetCurrentChoice;

namespace {

// Absent values remove the key, so a stale entry from an earlier job cannot survive.
void SetOrRemoveString(print::Ticket& ticket, const char* key,
                       const std::optional<std::string>& value) {
  if (value && !value->empty())
    ticket.setValue(key, plist::Value(*value), kHostTicketClient);
  else
    ticket.releaseItem(key);
}

std::optional<std::string> PrimaryAddressFromNetworkStore() {
  std::optional<plist::Dictionary> global = sys::CopyNetworkStoreValue("State:/Network/Global/IPv4");
  if (!global) return std::nullopt;
  std::optional<std::string> interface = global->getString("PrimaryInterface");
  if (!interface || interface->empty()) return std::nullopt;
  std::optional<plist::Dictionary> state =
      sys::CopyNetworkStoreValue("State:/Network/Interface/" + *interface + "/IPv4");
  if (!state) return std::nullopt;
  const plist::Value* addresses = state->find("Addresses");
  const plist::Array* list = addresses ? addresses->asArray() : nullptr;
  const plist::Value* first = list ? list->at(0) : nullptr;
  const std::string* text = first ? first->asString() : nullptr;
  if (!text || text->empty()) return std::nullopt;
  return *text;
}

}  // namespace

ClientInformation CopyClientInformation() {
  return {sys::CopyConsoleUser(), sys::CopyComputerName(), PrimaryAddressFromNetworkStore()};
}

bool IsControllerPrintableName(std::string_view utf8) {
  std::size_t i = 0;
  while (i < utf8.size()) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    std::uint32_t code = 0;
    std::size_t length = 0;
    if (lead < 0x80) {
      code = lead;
      length = 1;
    } else if ((lead & 0xE0) == 0xC0) {
      code = lead & 0x1F;
      length = 2;
    } else {
      // Three- and four-byte sequences encode U+0800 and above: out of range anyway.
      return false;
    }
    if (i + length > utf8.size()) return false;
    for (std::size_t k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(utf8[i + k]);
      if ((next & 0xC0) != 0x80) return false;
      code = (code << 6) | (next & 0x3F);
    }
    if (length == 2 && code < 0x80) return false;  // overlong form
    if (code < 0x20 || code > 0xFE) return false;
    i += length;
  }
  return true;
}

OSStatus WriteHostTicketEntries(print::Ticket& ticket, const ClientInformation& client) {
  plist::Dictionary vnif;
  vnif.set("VNIFOptionCovers", plist::Value(true));
  vnif.set("VNIFOptionExceptions", plist::Value(true));
  vnif.set("VNIFOptionInserts", plist::Value(true));
  ticket.setValue(kVNIFOptionsKey, plist::Value(vnif), kHostTicketClient);

  ticket.releaseItem(kRotateBookletKey);

  ticket.setValue(kControllerFamilyKey, plist::Value(std::string("Green")), kHostTicketClient);
  ticket.setValue(kControllerVersionKey, plist::Value(std::string("7.0")), kHostTicketClient);

  SetOrRemoveString(ticket, kUserNameKey, client.userName);
  const bool nameAllowed = client.userName && !client.userName->empty() &&
                           client.computerName &&
                           IsControllerPrintableName(*client.computerName);
  SetOrRemoveString(ticket, kComputerNameKey,
                    nameAllowed ? client.computerName : std::optional<std::string>());
  SetOrRemoveString(ticket, kIPAddressKey, client.ipAddress);

  if (!ticket.contains(kJobTypeKey)) return noErr;
  plist::Dictionary jobType;
  const OSStatus status = ticket.getDictionary(kJobTypeKey, jobType);
  if (status != noErr) return status;
  const std::int32_t type = jobType.getNumber<std::int32_t>("JobType").value_or(1);
  // The fax card sends in black and white only; a colour choice would be refused.
  if (type == kFaxJobType) PPDSetCurrentChoice(&ticket, "VNOColor", "BW");
  return noErr;
}

}  // namespace varno::host
