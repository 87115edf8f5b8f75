// SPDX-License-Identifier: Apache-2.0
// The machine's primary IPv4 interface and address, and the small key/value view of them
// that the dialog host reads. Parsing is split from reading so it can be tested on fixed
// inputs; the live functions read /proc and getifaddrs and degrade to nullopt.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/plist/value.h"

struct ifaddrs;

namespace varno::sys {

// The interface of the default IPv4 route in /proc/net/route contents (the lowest metric
// wins, the first listed among equals); nullopt when there is no usable default route.
std::optional<std::string> PrimaryInterfaceFromRouteTable(std::string_view contents);

// The IPv4 addresses of the named interface in a getifaddrs list, dotted-quad, in list order.
std::vector<std::string> IPv4AddressesFromInterfaceList(const ifaddrs* list,
                                                        std::string_view interface);

// The interface carrying the default IPv4 route, read from routeFile; nullopt when unknown.
std::optional<std::string> PrimaryInterface(
    const std::filesystem::path& routeFile = "/proc/net/route");

// The IPv4 addresses the named interface has now, dotted-quad; empty when none or unknown.
std::vector<std::string> InterfaceIPv4Addresses(std::string_view interface);

// The first IPv4 address of the primary interface, dotted-quad; nullopt when there is none.
std::optional<std::string> PrimaryIPv4Address();

// The live answer for a network-store key: "State:/Network/Global/IPv4" gives
// {"PrimaryInterface": name}, "State:/Network/Interface/<name>/IPv4" gives
// {"Addresses": [dotted-quad, ...]}; nullopt for other keys or when the machine has no answer.
std::optional<plist::Dictionary> CopyNetworkStoreValue(std::string_view key);

}  // namespace varno::sys
