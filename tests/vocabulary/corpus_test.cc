// SPDX-License-Identifier: Apache-2.0
// Robustness of the PPD layer on real PPDs of another maker: Debian's HP PostScript
// driver package, about 475 files of every age and style. Each is opened, its installable
// options loaded and a menu filled for every option the panels use.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "platform/print/ppd_calls.h"
#include "support/temp_dir.h"
#include "vocabulary/choice_maps.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/ppd_access.h"

namespace varno::vocabulary {

namespace ppdcall = print::ppdcall;

namespace {

constexpr const char* kDriver = "/usr/lib/cups/driver/postscript-hp";

// Standard output of a shell command, or nullopt when it does not exit with 0.
std::optional<std::string> OutputOf(const std::string& command) {
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  if (!pipe) return std::nullopt;
  std::string out;
  char buffer[65536];
  while (std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe.get())) out.append(buffer, n);
  int status = pclose(pipe.release());
  if (status != 0) return std::nullopt;
  return out;
}

// The driver's URIs ("postscript-hp:1/ppd/hplip/HP/x.ppd") reduced to their PPD paths
// ("ppd/hplip/HP/x.ppd"); several URIs name the same PPD.
std::set<std::string> ListedPPDs(const std::string& listing) {
  static const std::regex kUri(R"re(^"[^":]+:[^/"]*/([^"]+)".*)re");
  std::set<std::string> paths;
  std::istringstream lines(listing);
  std::smatch match;
  for (std::string line; std::getline(lines, line);) {
    if (std::regex_match(line, match, kUri)) paths.insert(match[1]);
    else ADD_FAILURE() << "unexpected listing line: " << line;
  }
  return paths;
}

TEST(PPDCorpus, EveryPPDOpensLoadsAndFillsMenusWithoutBeingTakenForOurs) {
  if (!std::filesystem::exists(kDriver))
    GTEST_SKIP() << kDriver << " is missing (package printer-driver-postscript-hp)";
  std::optional<std::string> listing = OutputOf(std::string(kDriver) + " list");
  ASSERT_TRUE(listing) << kDriver << " list failed";
  const std::set<std::string> listed = ListedPPDs(*listing);
  ASSERT_FALSE(listed.empty());

  testing::TempDir dir;
  ASSERT_EQ(std::system(("python3 '" VARNO_CORPUS_EXTRACTOR "' '" + std::string(kDriver) +
                         "' '" + dir.path().string() + "'")
                            .c_str()),
            0);
  // The fast extraction gives what the driver itself serves.
  const std::string& sample = *listed.begin();
  std::optional<std::string> served = OutputOf(std::string(kDriver) + " cat 'postscript-hp:0/" +
                                          sample + "'");
  ASSERT_TRUE(served);
  ASSERT_EQ(testing::ReadAll(dir / sample), *served) << sample;

  int opened = 0, withInstallable = 0, menus = 0;
  std::vector<std::string> refused;
  ::testing::internal::CaptureStderr();
  for (const std::string& path : listed) {
    SCOPED_TRACE(path);
    ppdcall::FilePtr ppd = ppdcall::Open(dir / path);
    if (!ppd) {
      refused.push_back(path + ": " + ppdcall::LastErrorText());
      continue;
    }
    ++opened;
    EXPECT_FALSE(PPDIsFromMaker(ppd.get()));
    if (LoadInstallableOptions(ppd.get(), InstalledFeatures)) ++withInstallable;
    EXPECT_EQ(getInstalledFeature("FaxKey"), 0);  // no HP PPD has our fax option
    EXPECT_TRUE(CopyDeviceMimicFilename().starts_with("Mimic_GR_QTMZ_"));

    for (const MainKeywordMapEntry* entry = MainKeywordMap; entry->keyword; ++entry) {
      ppd_option_t* option = ppdcall::FindOption(ppd.get(), entry->keyword);
      if (!option) continue;
      ++menus;
      for (bool markConflicts : {false, true}) {
        toolkit::MenuPtr menu = toolkit::Menu::create();
        int count = PPDPopulateMenuWithChoices(menu.get(), ppd.get(), entry->keyword, 0,
                                               markConflicts);
        EXPECT_LE(count, option->num_choices) << entry->keyword;
        for (toolkit::MenuItemIndex i = 1; i <= menu->count(); ++i)
          EXPECT_NE(static_cast<std::int32_t>(menu->item(i)->refCon), -1);
      }
      std::optional<std::string> choice = PPDCopyDefaultChoice(ppd.get(), entry->keyword);
      if (choice) PPDCopyChoiceText(ppd.get(), entry->keyword, choice->c_str());
    }
    UnloadInstallableOptions();
  }
  // Every line of the layer's diagnostics is one of its two fixed messages.
  std::istringstream err(::testing::internal::GetCapturedStderr());
  for (std::string line; std::getline(err, line);)
    EXPECT_TRUE(line.starts_with("Skipped unrecognized choice in PPD: ") ||
                line.starts_with("Expected PPD option not found: "))
        << line;

  // A few files of the package are malformed; refusing them is right as long as the
  // validator, cupstestppd, refuses them too.
  for (const std::string& line : refused) {
    std::printf("refused %s\n", line.c_str());
    std::string path = line.substr(0, line.find(':'));
    EXPECT_NE(std::system(("cupstestppd -q '" + (dir / path).string() + "' >/dev/null 2>&1")
                              .c_str()),
              0)
        << path << " passes cupstestppd but was refused";
  }
  EXPECT_EQ(opened + refused.size(), listed.size());
  EXPECT_GT(opened, 0);
  std::printf("%zu PPDs listed, %d opened, %d with installable options, %d menus filled\n",
              listed.size(), opened, withInstallable, menus);
}

}  // namespace
}  // namespace varno::vocabulary
