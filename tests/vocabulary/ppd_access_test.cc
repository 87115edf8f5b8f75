// SPDX-License-Identifier: Apache-2.0
// PPD access: choice keywords and ticket numbers, choices kept in the ticket, texts and menus
// from a PPD's options, the installed options, and the shared PPD of the session's printer.
#include "vocabulary/ppd_access.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/print/ppd_calls.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/control.h"
#include "support/bundle_folder.h"
#include "support/temp_dir.h"
#include "vocabulary/choice_maps.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/plugin_bundle.h"

namespace varno::vocabulary {

namespace ppdcall = print::ppdcall;

namespace {

using toolkit::Control;
using toolkit::ControlKind;

const std::filesystem::path kSample = VARNO_TEST_DATA_DIR "/../../resources/ppd/Varno-AT120A.ppd";
const std::filesystem::path kFixtures = VARNO_TEST_DATA_DIR "/ppd";
const std::filesystem::path kBookletFax = kFixtures / "Varno-BookletFaxPunch.ppd";
const std::filesystem::path kNoFinisher = kFixtures / "Varno-NoFinisher.ppd";
const std::filesystem::path kOtherMaker = kFixtures / "Other-Maker.ppd";

ppdcall::FilePtr OpenFixture(const std::filesystem::path& path) {
  ppdcall::FilePtr ppd = ppdcall::Open(path);
  EXPECT_TRUE(ppd) << path << ": " << ppdcall::LastErrorText();
  return ppd;
}

// The items of a menu as "text=value" pairs, values read back as ticket values.
std::vector<std::string> Items(const toolkit::Menu& menu) {
  std::vector<std::string> items;
  for (toolkit::MenuItemIndex i = 1; i <= menu.count(); ++i)
    items.push_back(menu.item(i)->text + "=" +
                    std::to_string(static_cast<std::int32_t>(menu.item(i)->refCon)));
  return items;
}

TEST(ChoiceMapping, FirstPairWinsAndUnknownsGiveMinusOneOrNull) {
  EXPECT_EQ(PPDTicketValueForChoice("MediaType", "CardStock"), 12);
  EXPECT_EQ(PPDTicketValueForChoice("MediaType", "CardStockF"), 43);
  EXPECT_STREQ(PPDChoiceForTicketValue("MediaType", 43), "CardStock");
  EXPECT_EQ(PPDTicketValueForChoice("OutputBin", "PrinterDefault"), INT32_MIN);
  // Keywords that share a map share its vocabulary.
  EXPECT_EQ(PPDTicketValueForChoice("VNSlipSheetType", "CardStock"), 12);
  EXPECT_EQ(PPDTicketValueForChoice("MediaType", "Glitter"), -1);
  EXPECT_EQ(PPDChoiceForTicketValue("Duplex", 4), nullptr);
  EXPECT_EQ(PPDChoiceForTicketValue("mediatype", 12), nullptr);  // keywords are exact
}

TEST(TicketChoices, StoredChoiceWinsThenThePPDDefaultElseValueIsUntouched) {
  ppdcall::FilePtr ppd = OpenFixture(kSample);
  print::Ticket ticket;
  std::int32_t value = 77;
  PPDGetTicketValueForChoiceOrDefault(ppd.get(), &ticket, "MediaType", &value);
  EXPECT_EQ(value, 23);  // the PPD's default "SystemDefault"

  PPDSetCurrentChoice(&ticket, "MediaType", "CardStock");
  PPDGetTicketValueForChoiceOrDefault(ppd.get(), &ticket, "MediaType", &value);
  EXPECT_EQ(value, 12);

  value = 77;
  PPDGetTicketValueForChoiceOrDefault(ppd.get(), &ticket, "VNNoSuchOption", &value);
  EXPECT_EQ(value, 77);
}

TEST(PPDTexts, DefaultsAndChoiceTextsComeFromThePPDAsUTF8) {
  ppdcall::FilePtr ppd = OpenFixture(kSample);
  EXPECT_EQ(PPDCopyDefaultChoice(ppd.get(), "PageSize"), "Letter");
  EXPECT_EQ(PPDCopyChoiceText(ppd.get(), "InputSlot", "Tray6"), "Tray 6 (High Capacity Feeder)");
  EXPECT_EQ(PPDCopyChoiceText(ppd.get(), "InputSlot", "Tray9"), std::nullopt);
  // libcups converts a whole ISOLatin1 file to UTF-8 while reading it.
  ppdcall::FilePtr latin1 = OpenFixture(kFixtures / "Varno-UnknownChoice.ppd");
  EXPECT_EQ(PPDCopyChoiceText(latin1.get(), "MediaType", "Recycled"), "Papier recycl\u00e9");

  // Texts still in the declared encoding, as other readers leave them.
  const struct {
    const char* langEncoding;
    PPDEncoding encoding;
    const char* text;
    std::optional<std::string> utf8;
  } cases[] = {
      {"JIS83-RKSJ", PPDEncoding::ShiftJIS, "\x83\x65\x83\x58\x83\x67", "\u30c6\u30b9\u30c8"},
      {"UTF-8", PPDEncoding::UTF8, "caf\xe9", std::nullopt},  // lies about its encoding
      {nullptr, PPDEncoding::MacRoman, "\xa5", "\u2022"},
  };
  ppd_choice_t* choice = ppdcall::FindChoice(ppdcall::FindOption(ppd.get(), "VNFeedEdge"),
                                             "ShortEdge");
  ASSERT_TRUE(choice);
  char* const ownEncoding = ppd->lang_encoding;
  for (const auto& c : cases) {
    ppd->lang_encoding = const_cast<char*>(c.langEncoding);
    std::snprintf(choice->text, sizeof choice->text, "%s", c.text);
    EXPECT_EQ(PPDGetEncoding(ppd.get()), c.encoding) << c.text;
    EXPECT_EQ(PPDCopyChoiceText(ppd.get(), "VNFeedEdge", "ShortEdge"), c.utf8) << c.text;
    // A menu never shows malformed text: the keyword stands in for it.
    toolkit::MenuPtr menu = toolkit::Menu::create();
    PPDPopulateMenuWithChoices(menu.get(), ppd.get(), "VNFeedEdge", 0, false);
    EXPECT_EQ(menu->item(2)->text, c.utf8.value_or("ShortEdge"));
  }
  ppd->lang_encoding = ownEncoding;  // libcups frees its own string on close
}

TEST(PPDMenus, UnknownChoicesAndMissingOptionsAreSkippedWithADiagnostic) {
  ppdcall::FilePtr ppd = OpenFixture(kFixtures / "Varno-UnknownChoice.ppd");
  toolkit::MenuPtr menu = toolkit::Menu::create();
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(PPDPopulateMenuWithChoices(menu.get(), ppd.get(), "InputSlot", 0, false), 8);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "Skipped unrecognized choice in PPD: LargeCapacity\n");
  EXPECT_EQ(Items(*menu), (std::vector<std::string>{"Auto Select=0", "Tray 1=1", "Tray 2=2",
                                                     "Tray 3=3", "Tray 4=4", "Tray 5=5",
                                                     "Tray 6 (High Capacity Feeder)=6",
                                                     "Bypass Tray=100"}));

  ppdcall::FilePtr other = OpenFixture(kOtherMaker);
  std::unique_ptr<Control> popup = Control::create(ControlKind::PopupButton);
  popup->menu()->appendItem("left over");
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(PPDPopulatePopupWithChoices(popup.get(), other.get(), "StapleLocation", false), 0);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "Expected PPD option not found: StapleLocation\n");
  EXPECT_EQ(popup->menu()->count(), 0);
}

// With conflicts marked a pop-up leaves out what the installed configuration forbids;
// without, it offers every recognised choice.
TEST(PPDMenus, MarkingConflictsLeavesOutWhatTheConfigurationForbids) {
  const struct {
    std::filesystem::path ppd;
    const char* keyword;
    std::vector<std::string> marked;
  } cases[] = {
      {kNoFinisher, "StapleLocation", {"None=1"}},
      {kSample, "VNPunch", {"None=1", "2 Holes=3", "3 Holes=4"}},
      {kBookletFax, "VNPunch", {"None=1", "2 Holes=3", "4 Holes=5"}},
      {kBookletFax, "VNFold", {"None=1", "Bi-Fold=43", "Bi-Fold and Staple=53"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.ppd.filename().string() + " " + c.keyword);
    ppdcall::FilePtr ppd = OpenFixture(c.ppd);
    std::unique_ptr<Control> popup = Control::create(ControlKind::PopupButton);
    EXPECT_EQ(PPDPopulatePopupWithChoices(popup.get(), ppd.get(), c.keyword, true),
              static_cast<int>(c.marked.size()));
    EXPECT_EQ(Items(*popup->menu()), c.marked);
    EXPECT_EQ(PPDPopulatePopupWithChoices(popup.get(), ppd.get(), c.keyword, false),
              ppdcall::FindOption(ppd.get(), c.keyword)->num_choices);
  }
}

// The sample printer and the maps are written together: every option a panel asks for
// exists, and its choices are all in the option's map, except the cover sources' "None"
// (no cover) and "Lighten1", whose value -1 reads as unknown. It also passes the validator,
// as do the fixtures.
TEST(SamplePrinter, IsOursOffersEveryMappedOptionAndPassesCupsTestPPD) {
  ppdcall::FilePtr ppd = OpenFixture(kSample);
  ASSERT_TRUE(PPDIsFromMaker(ppd.get()));
  std::string err;
  for (const MainKeywordMapEntry* entry = MainKeywordMap; entry->keyword; ++entry) {
    toolkit::MenuPtr menu = toolkit::Menu::create();
    ::testing::internal::CaptureStderr();
    int count = PPDPopulateMenuWithChoices(menu.get(), ppd.get(), entry->keyword, 0, false);
    err += ::testing::internal::GetCapturedStderr();
    EXPECT_GT(count, 1) << entry->keyword;
  }
  EXPECT_EQ(err,
            "Skipped unrecognized choice in PPD: Lighten1\n"
            "Skipped unrecognized choice in PPD: None\n"
            "Skipped unrecognized choice in PPD: None\n");

  if (std::system("command -v cupstestppd >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "cupstestppd is not installed";
  for (const std::filesystem::path& file :
       {kSample, kNoFinisher, kBookletFax, kOtherMaker, kFixtures / "Varno-UnknownChoice.ppd",
        kFixtures / "Varno-BookletFolder.ppd", kFixtures / "Varno-CoilSquareFold.ppd",
        kFixtures / "Varno-FinisherModules.ppd"}) {
    std::string command = "cupstestppd -W all -q '" + file.string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
  }
}

class InstalledOptions : public ::testing::Test {
 protected:
  void TearDown() override { UnloadInstallableOptions(); }
};

TEST_F(InstalledOptions, PictureNameFollowsTraysFeederAndFinisher) {
  EXPECT_EQ(CopyDeviceMimicFilename(), "Mimic_GR_QTMZ_.gif");  // nothing loaded
  const std::pair<std::filesystem::path, const char*> cases[] = {
      {kBookletFax, "Mimic_GR_QTMZ_5TrayHcap+HCF_SBFinBK.gif"},
      {kSample, "Mimic_GR_QTMZ_5Tray_SBFin.gif"},
      {kNoFinisher, "Mimic_GR_QTMZ_5Tray.gif"},
      {kOtherMaker, "Mimic_GR_QTMZ_.gif"},
  };
  for (const auto& [path, picture] : cases) {
    ppdcall::FilePtr ppd = OpenFixture(path);
    LoadInstallableOptions(ppd.get(), InstalledFeatures);
    EXPECT_EQ(CopyDeviceMimicFilename(), picture) << path;
    UnloadInstallableOptions();
  }
}

// The first load wins until unloaded, even one that found no installable options.
TEST_F(InstalledOptions, InstalledUnitsSatisfyTheirFeaturesAndTheFirstLoadWinsUntilUnloaded) {
  ppdcall::FilePtr booklet = OpenFixture(kBookletFax);
  ppdcall::FilePtr bare = OpenFixture(kNoFinisher);
  ASSERT_TRUE(LoadInstallableOptions(booklet.get(), InstalledFeatures));
  // The punch unit satisfies every feature its patterns cover.
  EXPECT_EQ(getInstalledFeature("DualPunchKey"), 1);
  EXPECT_EQ(getInstalledFeature("QuadruplePunchKey"), 1);
  EXPECT_EQ(getInstalledFeature("TriplePunchKey"), 0);
  std::string choice;
  ASSERT_TRUE(getInstallableOptionValue("VNFinisher", &choice));
  EXPECT_EQ(choice, "SBClassBooklet");
  EXPECT_FALSE(getInstallableOptionValue("Duplex", &choice));  // not an installable option

  EXPECT_FALSE(LoadInstallableOptions(bare.get(), InstalledFeatures));
  EXPECT_EQ(getInstalledFeature("FaxKey"), 1);
  EXPECT_EQ(getInstalledFeature("SingleStapleKey"), 1);

  UnloadInstallableOptions();
  EXPECT_EQ(getInstalledFeature("FaxKey"), 0);
  EXPECT_FALSE(getInstallableOptionValue("VNFinisher", &choice));
  ASSERT_TRUE(LoadInstallableOptions(bare.get(), InstalledFeatures));
  EXPECT_EQ(getInstalledFeature("SingleStapleKey"), 0);

  UnloadInstallableOptions();
  testing::TempDir dir;
  std::string text = testing::ReadAll(kOtherMaker);
  for (const std::string line : {"*OpenGroup: InstallableOptions/Installable Options\n",
                                 "*CloseGroup: InstallableOptions\n"})
    text.erase(text.find(line), line.size());
  ppdcall::FilePtr noGroup = OpenFixture(dir.write("NoGroup.ppd", text));
  ASSERT_TRUE(ppdcall::FindOption(noGroup.get(), "OptionalTray"));
  EXPECT_FALSE(LoadInstallableOptions(noGroup.get(), InstalledFeatures));
  EXPECT_FALSE(getInstallableOptionValue("OptionalTray", &choice));
  EXPECT_FALSE(LoadInstallableOptions(booklet.get(), InstalledFeatures));
  EXPECT_EQ(getInstalledFeature("FaxKey"), 0);
}

// A feature table of the test's own, to reach the rules for rows without a PPD option
// and without a display name.
const InstalledFeatureMap kTestFeatures[] = {
    {"Stapler", "VNFinisher", "None", "No Stapler", 1},
    {"Stapler", "VNFinisher", "SBClass", nullptr, 2},
    {"Stapler", "VNFinisher", "SBClass", "SB Stapler", 3},
    {"Builtin", nullptr, nullptr, nullptr, 4},
    {"Builtin", nullptr, nullptr, "Built In", 5},
    {"Fax", "VNFax", "True", "Fax Card", 6},
    {nullptr, nullptr, nullptr, nullptr, 0},
};

TEST_F(InstalledOptions, FirstSatisfiedRowGivesTicketValueAndLabel) {
  testing::TempDir dir;
  bundle::BundleRef bundle = testing::MakeBundle(dir, {{"SB Stapler", "Saddle Stapler"}});
  ASSERT_TRUE(bundle);
  ppdcall::FilePtr ppd = OpenFixture(kSample);
  ASSERT_TRUE(LoadInstallableOptions(ppd.get(), kTestFeatures));

  std::int32_t value = 0;
  EXPECT_TRUE(getInstallableOptionTicketValue("Stapler", &value));
  EXPECT_EQ(value, 2);
  EXPECT_EQ(CopyLocalizedStringForInstalledFeatureFromPlugin("Stapler", bundle),
            "Saddle Stapler");
  EXPECT_TRUE(getInstallableOptionTicketValue("Builtin", &value));
  EXPECT_EQ(value, 4);
  EXPECT_EQ(CopyLocalizedStringForInstalledFeatureFromPlugin("Builtin", bundle), std::nullopt);

  value = 99;
  EXPECT_FALSE(getInstallableOptionTicketValue("Fax", &value));
  EXPECT_EQ(value, 99);
  EXPECT_EQ(CopyLocalizedStringForInstalledFeatureFromPlugin("Fax", bundle), std::nullopt);
}

TEST(CurrentPPD, OpensTheSessionPrintersPPDOnceAndAgainAfterClosing) {
  print::Session session;
  EXPECT_EQ(PPDGetCurrent(), nullptr);  // no session
  print::SetCurrentPrintSession(&session);
  session.setPrinterPPD((kFixtures / "Missing.ppd").string());
  EXPECT_EQ(PPDGetCurrent(), nullptr);

  // A failed open is retried on the next call.
  session.setPrinterPPD(kSample.string());
  ppd_file_t* first = PPDGetCurrent();
  EXPECT_TRUE(PPDIsFromMaker(first));
  session.setPrinterPPD(kOtherMaker.string());
  EXPECT_EQ(PPDGetCurrent(), first);  // shared until closed

  PPDCloseCurrent();
  ppd_file_t* other = PPDGetCurrent();
  EXPECT_TRUE(other && !PPDIsFromMaker(other));
  PPDCloseCurrent();
  print::SetCurrentPrintSession(nullptr);
}

// A localizer plug-in inside the plug-in bundle localizes the shared PPD in place of libcups.
TEST(CurrentPPD, IsLocalizedByTheBundlesLocalizerWhenItHasOne) {
  print::Session session;
  print::SetCurrentPrintSession(&session);
  session.setPrinterPPD(kSample.string());
  const bundle::BundleRef saved = gBundle;
  const std::pair<std::filesystem::path, std::string> cases[] = {
      {VARNO_BUILD_DIR "/tests/TestPDE.plugin", "[stand-in] Paper Size"},
      {VARNO_BUILT_PLUGIN, "Paper Size"}};  // has none
  for (const auto& [bundlePath, text] : cases) {
    gBundle = bundle::Bundle::Open(bundlePath);
    ASSERT_NE(gBundle, nullptr) << bundlePath;
    ppd_file_t* ppd = PPDGetCurrent();
    ASSERT_NE(ppd, nullptr);
    ppd_option_t* pageSize = ppdFindOption(ppd, "PageSize");
    ASSERT_NE(pageSize, nullptr);
    EXPECT_EQ(std::string(pageSize->text), text) << bundlePath;
    PPDCloseCurrent();
  }
  gBundle = saved;
  print::SetCurrentPrintSession(nullptr);
}

}  // namespace
}  // namespace varno::vocabulary
