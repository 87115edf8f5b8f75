// SPDX-License-Identifier: Apache-2.0
// The output destination menu built from the installed finisher configuration, on the
// sample printer and on a printer with a line of finisher modules.
#include "panels/paper_output/output_destination.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "platform/print/ppd_calls.h"
#include "support/temp_dir.h"
#include "vocabulary/choice_maps.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {
namespace {

namespace ppdcall = print::ppdcall;

const std::filesystem::path kSample = VARNO_SAMPLE_PPD;
const std::filesystem::path kModules = VARNO_TEST_DATA_DIR "/ppd/Varno-FinisherModules.ppd";

// Items as "text=value", the value read back as a ticket value.
std::vector<std::string> Items(toolkit::Control& popup) {
  std::vector<std::string> items;
  for (toolkit::MenuItemIndex i = 1; i <= popup.menu()->count(); ++i) {
    popup.setValue(i);
    items.push_back(popup.menu()->item(i)->text + "=" +
                    std::to_string(vocabulary::GetPopupButtonTicketValue(&popup)));
  }
  return items;
}

class OutputDestination : public ::testing::Test {
 protected:
  // Opens `path` with the installable options' defaults replaced as `installed` says and
  // loads its installable options.
  void usePrinter(const std::filesystem::path& path, const std::map<std::string, std::string>& installed) {
    std::ifstream in(path);
    std::stringstream buffer;
    buffer << in.rdbuf();
    std::string text = buffer.str();
    for (const auto& [option, choice] : installed) {
      const std::string line = "*Default" + option + ": ";
      const std::size_t at = text.find(line);
      ASSERT_NE(at, std::string::npos) << option;
      text.replace(at + line.size(), text.find('\n', at) - at - line.size(), choice);
    }
    ppd_ = ppdcall::Open(dir_.write("printer.ppd", text));
    ASSERT_TRUE(ppd_) << ppdcall::LastErrorText();
    vocabulary::UnloadInstallableOptions();
    ASSERT_TRUE(vocabulary::LoadInstallableOptions(ppd_.get(), vocabulary::InstalledFeatures));
  }
  void TearDown() override { vocabulary::UnloadInstallableOptions(); }

  testing::TempDir dir_;
  ppdcall::FilePtr ppd_;
  bundle::BundleRef bundle_ = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
};

const std::string kDefault = "Printer Default=-2147483648", kAuto = "Auto=1", kSwitch = "Auto-Switch Tray=11";
const std::string kATop = "Finisher Top Tray=18", kAMain = "Finisher Stacker=4";
const std::string kBTop = "Finisher B Top Tray=16", kBMain = "Finisher B Stacker=17";
const std::string kCTop = "Finisher C Top Tray=26", kCMain = "Finisher C Stacker=27";
const std::string kDTop = "Finisher D Top Tray=24", kDMain = "Finisher D Stacker=25";

TEST_F(OutputDestination, TheInstalledConfigurationsGiveTheirTraysInOrder) {
  ASSERT_TRUE(bundle_);
  const std::map<std::string, std::string> bare{
      {"VNFinisher", "None"}, {"VNFinishingModules", "None"}, {"VNInserter", "False"}, {"VNAutoSwitchTray", "False"}};
  const auto with = [&](std::map<std::string, std::string> changes) {
    changes.insert(bare.begin(), bare.end());  // the changes win
    return changes;
  };
  struct Case {
    const char* what;
    std::filesystem::path ppd;
    std::map<std::string, std::string> installed;
    std::vector<std::string> items;
  } cases[] = {
      {"no finisher", kSample, {{"VNFinisher", "None"}}, {kDefault, kAuto}},
      {"a catch tray is no finisher", kSample, {{"VNFinisher", "OCT"}}, {kDefault, kAuto}},
      {"the sample's finisher", kSample, {}, {kDefault, kAuto, kATop, kAMain}},
      {"basic finisher module", kSample, {{"VNFinisher", "AClass"}}, {kDefault, kAuto, kATop, kAMain}},
      {"the inserter alone", kModules, with({{"VNInserter", "True"}}), {kDefault, kAuto}},
      {"the auto-switch tray alone", kModules, with({{"VNAutoSwitchTray", "True"}}), {kDefault, kAuto, kSwitch}},
      {"a finisher behind the inserter", kModules, with({{"VNFinisher", "SBClassBooklet"}, {"VNInserter", "True"}}),
       {kDefault, kAuto, kBTop, kBMain}},
      {"finisher transport", kModules, with({{"VNFinishingModules", "FTM"}}), {kDefault, kAuto, kATop}},
      {"three modules", kModules, with({{"VNFinishingModules", "BFMFTMSFTMS"}}),
       {kDefault, kAuto, kAMain, kBMain, kBTop, kCMain, kCTop}},
      {"three modules behind the inserter", kModules, {},  // the printer as it comes
       {kDefault, kAuto, kSwitch, kBMain, kCMain, kCTop, kDMain, kDTop}},
      {"two configurations keep the tray they share twice", kModules,
       with({{"VNFinisher", "SBClass"}, {"VNFinishingModules", "BFMBFM"}}),
       {kDefault, kAuto, kATop, kAMain, kAMain, kBMain, kBTop}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    usePrinter(c.ppd, c.installed);
    std::unique_ptr<toolkit::Control> popup = toolkit::Control::create(toolkit::ControlKind::PopupButton);
    popup->menu()->appendItem("left over");
    ASSERT_EQ(PopulateOutputDestination(popup.get(), bundle_), noErr);
    EXPECT_EQ(Items(*popup), c.items);
    EXPECT_EQ(popup->maximum(), static_cast<std::int32_t>(c.items.size()));
    // Only the finishers' trays make the finisher-driven menu worth more than the PPD's.
    const bool trays = c.items.size() > (c.items.size() > 2 && c.items[2] == kSwitch ? 3u : 2u);
    EXPECT_EQ(AnyFinisherConfigurationInstalled(), trays);
  }
}

// Each destination offered is a choice of the printer's "OutputBin", so the panel can
// write it; the printer's default is no PPD choice.
TEST_F(OutputDestination, EveryDestinationIsAnOutputBinOfThePrinter) {
  for (const std::filesystem::path& path : {kSample, kModules}) {
    SCOPED_TRACE(path);
    usePrinter(path, {});
    std::unique_ptr<toolkit::Control> popup = toolkit::Control::create(toolkit::ControlKind::PopupButton);
    ASSERT_EQ(PopulateOutputDestination(popup.get(), bundle_), noErr);
    ASSERT_GT(popup->menu()->count(), 3);
    ppd_option_t* bins = ppdcall::FindOption(ppd_.get(), "OutputBin");
    ASSERT_NE(bins, nullptr);
    for (toolkit::MenuItemIndex i = 2; i <= popup->menu()->count(); ++i) {
      popup->setValue(i);
      const char* choice = vocabulary::PPDChoiceForTicketValue("OutputBin", vocabulary::GetPopupButtonTicketValue(popup.get()));
      ASSERT_NE(choice, nullptr) << popup->menu()->item(i)->text;
      EXPECT_NE(ppdcall::FindChoice(bins, choice), nullptr) << choice;
    }
    EXPECT_EQ(vocabulary::SetPopupButtonToTicketValue(popup.get(), vocabulary::kUnsetValue), 1);
    EXPECT_EQ(popup->value(), 1);
  }
  EXPECT_EQ(PopulateOutputDestination(nullptr, bundle_), paramErr);
}

}  // namespace
}  // namespace varno::panels
