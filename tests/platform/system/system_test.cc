// SPDX-License-Identifier: Apache-2.0
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <pwd.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <filesystem>

#include "platform/system/folders.h"
#include "platform/system/network.h"
#include "platform/system/system_info.h"
#include "platform/bundle/test_bundle.h"
#include "support/temp_dir.h"

namespace varno::sys {
namespace {

using std::filesystem::path;
using varno::testing::ScopedEnv;
using varno::testing::TempDir;

const std::string kHeader =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

// One /proc/net/route line; the gateway and the trailing columns never matter.
std::string Route(const char* iface, const char* metric, const char* flags = "0003",
                  const char* dest = "00000000", const char* mask = "00000000") {
  return std::string(iface) + "\t" + dest + "\t0100000A\t" + flags + "\t0\t0\t" + metric +
         "\t" + mask + "\t0\t0\t0\n";
}

TEST(RouteTable, LowestMetricUsableDefaultRouteWinsAndOtherLinesAreSkipped) {
  const std::string unusable =
      kHeader + Route("docker0", "0", "0001", "000011AC", "0000FFFF") +
      Route("eth9", "0", "0002") + Route("*", "0", "0201") +  // down, unreachable
      Route("tun0", "0", "0001", "00000000", "00000080") +    // 0.0.0.0/1
      "eth1\t00000000\t0100000A\t0003\n" + Route("eth3", "-5") + "garbage\n\n";
  EXPECT_EQ(PrimaryInterfaceFromRouteTable(unusable), std::nullopt);
  EXPECT_EQ(PrimaryInterfaceFromRouteTable(unusable + Route("wlan0", "600") + Route("eth0", "100") +
                                           Route("eth5", "100", "0001")),
            "eth0");
  EXPECT_EQ(PrimaryInterfaceFromRouteTable(unusable + "ppp0 00000000 0 0001 0 0 9 00000000"),
            "ppp0");
  TempDir dir;
  EXPECT_EQ(PrimaryInterface(dir.write("route", kHeader + Route("en7", "0"))), "en7");
  EXPECT_EQ(PrimaryInterface(dir / "absent"), std::nullopt);
}

TEST(InterfaceList, IPv4AddressesOfTheInterfaceInListOrder) {
  sockaddr_in first{AF_INET, 0, {}, {}}, second = first;
  inet_pton(AF_INET, "192.168.1.20", &first.sin_addr);
  inet_pton(AF_INET, "10.0.0.5", &second.sin_addr);
  sockaddr_in6 six{};
  six.sin6_family = AF_INET6;
  auto sa = [](auto* address) { return reinterpret_cast<sockaddr*>(address); };
  char eth0[] = "eth0";
  ifaddrs n3{nullptr, eth0, 0, sa(&second), nullptr, {}, nullptr};
  ifaddrs n2{&n3, eth0, 0, nullptr, nullptr, {}, nullptr};
  ifaddrs n1{&n2, eth0, 0, sa(&six), nullptr, {}, nullptr};
  ifaddrs n0{&n1, eth0, 0, sa(&first), nullptr, {}, nullptr};
  EXPECT_EQ(IPv4AddressesFromInterfaceList(&n0, "eth0"),
            (std::vector<std::string>{"192.168.1.20", "10.0.0.5"}));
  EXPECT_TRUE(IPv4AddressesFromInterfaceList(&n0, "eth").empty());  // names match exactly
}

TEST(NetworkStore, LiveAnswersAreConsistentAndWellFormed) {
  for (const char* key : {"State:/Network/Global/IPv6", "State:/Network/Interface/no-such-if9/IPv4"})
    EXPECT_EQ(CopyNetworkStoreValue(key), std::nullopt) << key;
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
  in_addr parsed{};
  EXPECT_EQ(inet_pton(AF_INET, address->c_str(), &parsed), 1) << *address;
  EXPECT_EQ((*addresses)[0], plist::Value(*address));
}

TEST(MachineInfo, PrettyHostnameIsUnquotedAndLastAssignmentWins) {
  const std::pair<const char*, std::optional<std::string>> cases[] = {
      {R"(PRETTY_HOSTNAME="Ann's \"Front\" Desk \$5")", R"(Ann's "Front" Desk $5)"},
      {"PRETTY_HOSTNAME='Lab  #3 \\ok'", "Lab  #3 \\ok"},
      {"PRETTY_HOSTNAME=Print\\ Room\\  \n", "Print Room "},
      {R"(PRETTY_HOSTNAME="A "'b 'c)", "A b c"},
      {"ICON_NAME=x\r\nPRETTY_HOSTNAME_OLD=\"Other\"\nPRETTY_HOSTNAME=\"First\"\n"
       "  PRETTY_HOSTNAME = \"Reception Desk\"  \r\nPRETTY_HOSTNAME=\"unclosed\n"
       "# PRETTY_HOSTNAME=Commented\n\t; PRETTY_HOSTNAME=AlsoCommented\n",
       "Reception Desk"},
      {"PRETTY_HOSTNAME=\"\"\n", std::nullopt},
      {"PRETTY_HOSTNAME\n", std::nullopt},
  };
  for (const auto& [info, expected] : cases) {
    EXPECT_EQ(PrettyHostnameFromMachineInfo(info), expected) << info;
  }
}

TEST(MachineIdentity, ComputerNamePrefersThePrettyNameAndConsoleUserIsAKnownUser) {
  char host[HOST_NAME_MAX + 1] = {};
  gethostname(host, sizeof host - 1);
  TempDir dir;
  EXPECT_EQ(CopyComputerName(dir.write("info", "PRETTY_HOSTNAME=\"Studio 2\"\n")), "Studio 2");
  EXPECT_EQ(CopyComputerName(dir.write("info", "CHASSIS=server\n")), host);
  EXPECT_EQ(CopyComputerName(dir / "absent"), host);
  std::optional<std::string> user = CopyConsoleUser();
  ASSERT_TRUE(user);
  EXPECT_NE(getpwnam(user->c_str()), nullptr) << *user;
  if (!std::filesystem::exists("/run/systemd/seats/seat0")) {
    EXPECT_EQ(*user, getpwuid(geteuid())->pw_name);
  }
}

TEST(Folders, ChosenByEnvironmentWithFallbacks) {
  using std::nullopt;
  const std::string passwdHome = getpwuid(geteuid())->pw_dir;
  const struct {
    std::optional<std::string> home, xdg;
    path expected;
  } preferences[] = {
      {"/home/ann", "relative/cfg", "/home/ann/.config/varno"},
      {"/home/ann", "/srv/cfg", "/srv/cfg/varno"},
      {nullopt, nullopt, path(passwdHome) / ".config/varno"},
  };
  for (const auto& c : preferences) {
    ScopedEnv env{{"HOME", c.home}, {"XDG_CONFIG_HOME", c.xdg}};
    EXPECT_EQ(UserPreferencesFolder(), c.expected)
        << c.home.value_or("unset") << ", " << c.xdg.value_or("unset");
  }
  const std::pair<std::optional<std::string>, path> support[] = {
      {nullopt, "/var/lib/varno"}, {"", "/var/lib/varno"}, {"/tmp/vs", "/tmp/vs"}};
  for (const auto& [value, expected] : support) {
    ScopedEnv env{{"VARNO_SUPPORT_DIR", value}};
    EXPECT_EQ(ApplicationSupportFolder(), expected) << value.value_or("unset");
  }
}

TEST(Folders, CreateMakesParentsAndFailsWithAMessageWhenAFileIsInTheWay) {
  TempDir dir;
  EXPECT_TRUE(CreateFolder(dir / "a/b/varno").ok);
  EXPECT_TRUE(CreateFolder(dir / "a/b/varno").ok);  // an existing folder is fine
  EXPECT_TRUE(std::filesystem::is_directory(dir / "a/b/varno"));
  const path blocker = dir.write("blocker", "not a folder");
  for (const path& target : {blocker, blocker / "varno"}) {
    FolderResult result = CreateFolder(target);
    EXPECT_FALSE(result.ok) << target;
    EXPECT_NE(result.error.find("cannot create"), std::string::npos) << result.error;
  }
}

}  // namespace
}  // namespace varno::sys
