#include "platform/system/system_info.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <fstream>

namespace varno::sys {
namespace {

std::string HostName() {
  char name[HOST_NAME_MAX + 1] = {};
  gethostname(name, sizeof name - 1);
  return name;
}

TEST(MachineInfo, ShellQuotingIsUndone) {
  EXPECT_EQ(PrettyHostnameFromMachineInfo(R"(PRETTY_HOSTNAME="Ann's \"Front\" Desk \$5")"),
            R"(Ann's "Front" Desk $5)");
  EXPECT_EQ(PrettyHostnameFromMachineInfo("PRETTY_HOSTNAME='Lab  #3 \\ok'"), "Lab  #3 \\ok");
  EXPECT_EQ(PrettyHostnameFromMachineInfo("PRETTY_HOSTNAME=Print\\ Room\\  \n"), "Print Room ");
  EXPECT_EQ(PrettyHostnameFromMachineInfo(R"(PRETTY_HOSTNAME="A "'b 'c)"), "A b c");
  EXPECT_EQ(PrettyHostnameFromMachineInfo(R"(PRETTY_HOSTNAME="a\nb")"), R"(a\nb)");
  EXPECT_EQ(PrettyHostnameFromMachineInfo("PRETTY_HOSTNAME=\"Café Ü\""), "Café Ü");
}

TEST(MachineInfo, CommentsAndOtherKeysAreSkippedAndLastAssignmentWins) {
  const char* info =
      "ICON_NAME=computer-laptop\r\n"
      "PRETTY_HOSTNAME_OLD=\"Other key\"\n"
      "PRETTY_HOSTNAME=\"First\"\n"
      "  PRETTY_HOSTNAME = \"Reception Desk\"  \r\n"
      "PRETTY_HOSTNAME=\"unclosed\n"
      "# PRETTY_HOSTNAME=Commented\n"
      "\t; PRETTY_HOSTNAME=AlsoCommented\n"
      "CHASSIS=laptop\n";
  EXPECT_EQ(PrettyHostnameFromMachineInfo(info), "Reception Desk");
}

TEST(MachineInfo, AbsentEmptyOrMalformedValueGivesNothing) {
  EXPECT_EQ(PrettyHostnameFromMachineInfo(""), std::nullopt);
  EXPECT_EQ(PrettyHostnameFromMachineInfo("CHASSIS=desktop\n#PRETTY_HOSTNAME=x\n"), std::nullopt);
  EXPECT_EQ(PrettyHostnameFromMachineInfo("PRETTY_HOSTNAME=\n"), std::nullopt);
  EXPECT_EQ(PrettyHostnameFromMachineInfo("PRETTY_HOSTNAME=\"\"\n"), std::nullopt);
  EXPECT_EQ(PrettyHostnameFromMachineInfo("PRETTY_HOSTNAME='open\n"), std::nullopt);
  EXPECT_EQ(PrettyHostnameFromMachineInfo("PRETTY_HOSTNAME\n"), std::nullopt);
}

TEST(ComputerName, PrettyNameWinsElseHostName) {
  std::filesystem::path file = std::filesystem::path(testing::TempDir()) / "varno-machine-info";
  std::ofstream(file) << "PRETTY_HOSTNAME=\"Studio 2\"\n";
  EXPECT_EQ(CopyComputerName(file), "Studio 2");
  std::ofstream(file) << "CHASSIS=server\n";
  EXPECT_EQ(CopyComputerName(file), HostName());
  std::filesystem::remove(file);
  EXPECT_EQ(CopyComputerName(file), HostName());
  std::optional<std::string> live = CopyComputerName();
  ASSERT_TRUE(live);
  EXPECT_FALSE(live->empty());
}

TEST(ConsoleUser, IsAKnownUserAndTheProcessUserWithoutASeat) {
  std::optional<std::string> user = CopyConsoleUser();
  ASSERT_TRUE(user);
  EXPECT_NE(getpwnam(user->c_str()), nullptr) << *user;
  if (!std::filesystem::exists("/run/systemd/seats/seat0")) {
    EXPECT_EQ(*user, getpwuid(geteuid())->pw_name);
  }
}

}  // namespace
}  // namespace varno::sys
