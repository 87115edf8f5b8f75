// SPDX-License-Identifier: Apache-2.0
#include "platform/system/network.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/route.h>
#include <netinet/in.h>

#include <charconv>
#include <cstdint>
#include <memory>

#include "platform/system/posix_util.h"

namespace varno::sys {
namespace {

constexpr std::string_view kGlobalIPv4Key = "State:/Network/Global/IPv4";
constexpr std::string_view kInterfacePrefix = "State:/Network/Interface/";
constexpr std::string_view kInterfaceSuffix = "/IPv4";

std::vector<std::string_view> SplitFields(std::string_view line) {
  std::vector<std::string_view> fields;
  std::size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t' || line[i] == '\r')) ++i;
    std::size_t start = i;
    while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != '\r') ++i;
    if (i > start) fields.push_back(line.substr(start, i - start));
  }
  return fields;
}

// The whole field as a number in the given base; nullopt for anything else (the header
// line's titles fail here, which is how it is skipped).
std::optional<std::uint32_t> ParseField(std::string_view field, int base) {
  std::uint32_t value = 0;
  auto [end, ec] = std::from_chars(field.data(), field.data() + field.size(), value, base);
  if (ec != std::errc() || end != field.data() + field.size()) return std::nullopt;
  return value;
}

}  // namespace

std::optional<std::string> PrimaryInterfaceFromRouteTable(std::string_view contents) {
  // Columns: Iface Destination Gateway Flags RefCnt Use Metric Mask MTU Window IRTT.
  std::optional<std::string> best;
  std::uint32_t bestMetric = 0;
  while (!contents.empty()) {
    std::size_t end = contents.find('\n');
    std::string_view line = contents.substr(0, end);
    contents.remove_prefix(end == std::string_view::npos ? contents.size() : end + 1);

    std::vector<std::string_view> f = SplitFields(line);
    if (f.size() < 8) continue;
    std::optional<std::uint32_t> destination = ParseField(f[1], 16);
    std::optional<std::uint32_t> flags = ParseField(f[3], 16);
    std::optional<std::uint32_t> metric = ParseField(f[6], 10);
    std::optional<std::uint32_t> mask = ParseField(f[7], 16);
    if (!destination || !flags || !metric || !mask) continue;
    if (*destination != 0 || *mask != 0) continue;
    // A route that is down or rejects traffic ("unreachable default") carries nothing.
    if (!(*flags & RTF_UP) || (*flags & RTF_REJECT)) continue;
    if (!best || *metric < bestMetric) {
      best = std::string(f[0]);
      bestMetric = *metric;
    }
  }
  return best;
}

std::vector<std::string> IPv4AddressesFromInterfaceList(const ifaddrs* list,
                                                        std::string_view interface) {
  std::vector<std::string> addresses;
  for (const ifaddrs* a = list; a != nullptr; a = a->ifa_next) {
    if (a->ifa_addr == nullptr || a->ifa_addr->sa_family != AF_INET) continue;
    if (a->ifa_name == nullptr || interface != a->ifa_name) continue;
    const auto* in = reinterpret_cast<const sockaddr_in*>(a->ifa_addr);
    char text[INET_ADDRSTRLEN] = {};
    if (inet_ntop(AF_INET, &in->sin_addr, text, sizeof text) != nullptr)
      addresses.emplace_back(text);
  }
  return addresses;
}

std::optional<std::string> PrimaryInterface(const std::filesystem::path& routeFile) {
  std::optional<std::string> table = detail::ReadSmallFile(routeFile);
  if (!table) return std::nullopt;
  return PrimaryInterfaceFromRouteTable(*table);
}

std::vector<std::string> InterfaceIPv4Addresses(std::string_view interface) {
  ifaddrs* raw = nullptr;
  if (getifaddrs(&raw) != 0) return {};
  std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> list(raw, &freeifaddrs);
  return IPv4AddressesFromInterfaceList(list.get(), interface);
}

std::optional<std::string> PrimaryIPv4Address() {
  std::optional<std::string> interface = PrimaryInterface();
  if (!interface) return std::nullopt;
  std::vector<std::string> addresses = InterfaceIPv4Addresses(*interface);
  if (addresses.empty()) return std::nullopt;
  return addresses.front();
}

std::optional<plist::Dictionary> CopyNetworkStoreValue(std::string_view key) {
  if (key == kGlobalIPv4Key) {
    std::optional<std::string> interface = PrimaryInterface();
    if (!interface) return std::nullopt;
    return plist::Dictionary{{"PrimaryInterface", *interface}};
  }
  if (key.size() <= kInterfacePrefix.size() + kInterfaceSuffix.size() ||
      !key.starts_with(kInterfacePrefix) || !key.ends_with(kInterfaceSuffix))
    return std::nullopt;
  std::string_view name = key.substr(kInterfacePrefix.size(),
                                     key.size() - kInterfacePrefix.size() - kInterfaceSuffix.size());
  std::vector<std::string> addresses = InterfaceIPv4Addresses(name);
  if (addresses.empty()) return std::nullopt;
  plist::Array array;
  for (std::string& address : addresses) array.append(std::move(address));
  return plist::Dictionary{{"Addresses", array}};
}

}  // namespace varno::sys
