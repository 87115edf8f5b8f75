#include "platform/system/network.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <netinet/in.h>

#include <filesystem>
#include <fstream>

namespace varno::sys {
namespace {

constexpr const char* kHeader =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

// One /proc/net/route line; the gateway and the trailing columns never matter.
std::string Route(const char* iface, const char* dest, const char* flags, const char* metric,
                  const char* mask) {
  return std::string(iface) + "\t" + dest + "\t0100000A\t" + flags + "\t0\t0\t" + metric +
         "\t" + mask + "\t0\t0\t0\n";
}

bool IsIPv4(const std::string& text) {
  in_addr a{};
  return inet_pton(AF_INET, text.c_str(), &a) == 1;
}

TEST(RouteTable, LowestMetricUsableDefaultRouteWinsFirstAmongEquals) {
  std::string table = kHeader + Route("wlan0", "00000000", "0003", "600", "00000000") +
                      Route("docker0", "000011AC", "0001", "0", "0000FFFF") +
                      Route("eth9", "00000000", "0002", "0", "00000000") +    // down
                      Route("*", "00000000", "0201", "0", "00000000") +       // unreachable
                      Route("tun0", "00000000", "0001", "0", "00000080") +    // 0.0.0.0/1
                      Route("eth0", "00000000", "0003", "100", "00000000") +
                      Route("eth1", "00000000", "0001", "100", "00000000");
  EXPECT_EQ(PrimaryInterfaceFromRouteTable(table), "eth0");
}

TEST(RouteTable, NoDefaultRouteOrMalformedLinesGiveNothing) {
  EXPECT_EQ(PrimaryInterfaceFromRouteTable(""), std::nullopt);
  EXPECT_EQ(PrimaryInterfaceFromRouteTable(kHeader), std::nullopt);
  std::string table = kHeader + Route("eth0", "0000A8C0", "0001", "0", "00FFFFFF") +
                      "eth1\t00000000\t0100000A\t0003\n" +  // too short
                      Route("eth2", "zz000000", "0003", "0", "00000000") +
                      Route("eth3", "00000000", "0003", "-5", "00000000") +
                      Route("eth4", "00000000", "0003", "99999999999", "00000000") +
                      "garbage line\n\n";
  EXPECT_EQ(PrimaryInterfaceFromRouteTable(table), std::nullopt);
  EXPECT_EQ(PrimaryInterfaceFromRouteTable(table + "ppp0 00000000 0 0001 0 0 9 00000000"), "ppp0");
}

TEST(InterfaceList, IPv4AddressesOfTheInterfaceInListOrder) {
  auto v4 = [](const char* text) {
    sockaddr_in a{};
    a.sin_family = AF_INET;
    inet_pton(AF_INET, text, &a.sin_addr);
    return a;
  };
  sockaddr_in first = v4("192.168.1.20"), loop = v4("127.0.0.1"), second = v4("10.0.0.5");
  sockaddr_in6 six{};
  six.sin6_family = AF_INET6;
  auto sa = [](auto* address) { return reinterpret_cast<sockaddr*>(address); };
  char eth0[] = "eth0", lo[] = "lo";
  ifaddrs n5{nullptr, eth0, 0, sa(&second), nullptr, {}, nullptr};
  ifaddrs n4{&n5, eth0, 0, nullptr, nullptr, {}, nullptr};
  ifaddrs n3{&n4, lo, 0, sa(&loop), nullptr, {}, nullptr};
  ifaddrs n2{&n3, eth0, 0, sa(&six), nullptr, {}, nullptr};
  ifaddrs n1{&n2, eth0, 0, sa(&first), nullptr, {}, nullptr};
  EXPECT_EQ(IPv4AddressesFromInterfaceList(&n1, "eth0"),
            (std::vector<std::string>{"192.168.1.20", "10.0.0.5"}));
  EXPECT_EQ(IPv4AddressesFromInterfaceList(&n1, "lo"), std::vector<std::string>{"127.0.0.1"});
  EXPECT_TRUE(IPv4AddressesFromInterfaceList(&n1, "eth").empty());
  EXPECT_TRUE(IPv4AddressesFromInterfaceList(nullptr, "eth0").empty());
}

TEST(PrimaryInterface, ReadsTheGivenTableAndToleratesItsAbsence) {
  std::filesystem::path file = std::filesystem::path(testing::TempDir()) / "varno-route";
  std::ofstream(file) << kHeader << Route("en7", "00000000", "0003", "0", "00000000");
  EXPECT_EQ(PrimaryInterface(file), "en7");
  std::filesystem::remove(file);
  EXPECT_EQ(PrimaryInterface(file), std::nullopt);
}

TEST(NetworkStore, LiveAnswersAreConsistentAndWellFormed) {
  std::optional<std::string> primary = PrimaryInterface();
  std::optional<plist::Dictionary> global = CopyNetworkStoreValue("State:/Network/Global/IPv4");
  ASSERT_EQ(global.has_value(), primary.has_value());
  if (!primary) GTEST_SKIP() << "no default IPv4 route on this machine";
  EXPECT_EQ(global->getString("PrimaryInterface"), primary);

  std::optional<plist::Dictionary> iface =
      CopyNetworkStoreValue("State:/Network/Interface/" + *primary + "/IPv4");
  std::optional<std::string> address = PrimaryIPv4Address();
  ASSERT_EQ(iface.has_value(), address.has_value());
  if (!iface) return;
  std::optional<plist::Array> addresses = iface->getArray("Addresses");
  ASSERT_TRUE(addresses && !addresses->empty());
  EXPECT_EQ(*(*addresses)[0].asString(), *address);
  for (const plist::Value& v : *addresses) EXPECT_TRUE(v.asString() && IsIPv4(*v.asString()));
}

TEST(NetworkStore, OtherKeysAndUnknownInterfacesGiveNothing) {
  for (const char* key : {"", "State:/Network/Global/IPv6", "State:/Network/Interface//IPv4",
                          "State:/Network/Interface/lo/IPv6", "State:/Network/Interface/a/lo/IPv4",
                          "State:/Network/Interface/no-such-if9/IPv4", "Setup:/Network/Global/IPv4"})
    EXPECT_EQ(CopyNetworkStoreValue(key), std::nullopt) << key;
}

}  // namespace
}  // namespace varno::sys
