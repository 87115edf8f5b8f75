#include "vocabulary/ppd_access.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/ticket_access.h"
#include "platform/toolkit/control.h"
#include "support/temp_dir.h"
#include "vocabulary/choice_maps.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/ppd_calls.h"

namespace varno {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using toolkit::Control;
using toolkit::ControlKind;

const std::filesystem::path kSample = VARNO_TEST_DATA_DIR "/../../resources/ppd/Varno-AT120A.ppd";
const std::filesystem::path kFixtures = VARNO_TEST_DATA_DIR "/ppd";

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

TEST(ChoiceMapping, FirstPairWinsForDuplicatedChoicesAndValues) {
  EXPECT_EQ(PPDTicketValueForChoice("MediaType", "CardStock"), 12);
  EXPECT_EQ(PPDTicketValueForChoice("MediaType", "CardStockF"), 43);
  EXPECT_STREQ(PPDChoiceForTicketValue("MediaType", 43), "CardStock");
  EXPECT_EQ(PPDTicketValueForChoice("PageSize", "3x5"), 80);
  EXPECT_STREQ(PPDChoiceForTicketValue("PageSize", 80), "3x5");
  EXPECT_EQ(PPDTicketValueForChoice("OutputBin", "PrinterDefault"), INT32_MIN);
  EXPECT_STREQ(PPDChoiceForTicketValue("OutputBin", INT32_MIN), "PrinterDefault");
  // Keywords that share a map share its vocabulary.
  EXPECT_EQ(PPDTicketValueForChoice("VNSlipSheetType", "CardStock"), 12);
  EXPECT_EQ(PPDTicketValueForChoice("VNBackCoverSheet", "Bypass"), 100);
}

TEST(ChoiceMapping, UnknownKeywordsChoicesAndValuesGiveMinusOneOrNull) {
  EXPECT_EQ(PPDTicketValueForChoice("MediaType", "Glitter"), -1);
  EXPECT_EQ(PPDTicketValueForChoice("VNOColor", "BW"), -1);  // read by panels, not mapped
  EXPECT_EQ(PPDTicketValueForChoice(nullptr, "None"), -1);
  EXPECT_EQ(PPDTicketValueForChoice("Duplex", nullptr), -1);
  EXPECT_EQ(PPDChoiceForTicketValue("Duplex", 4), nullptr);
  EXPECT_EQ(PPDChoiceForTicketValue("mediatype", 12), nullptr);  // keywords are exact
  EXPECT_EQ(PPDChoiceForTicketValue(nullptr, 1), nullptr);
  EXPECT_EQ(ChoiceMapForKeyword("VNSlipSheetType"), MediaTypeMap);
}

TEST(TicketChoices, StoredChoiceWinsThenThePPDDefaultElseValueIsUntouched) {
  ppdcall::FilePtr ppd = OpenFixture(kSample);
  print::Ticket ticket;
  std::int32_t value = 77;
  PPDGetTicketValueForChoiceOrDefault(ppd.get(), &ticket, "MediaType", &value);
  EXPECT_EQ(value, 23);  // the PPD's default "SystemDefault"

  PPDSetCurrentChoice(&ticket, "MediaType", "CardStock");
  EXPECT_EQ(PPDCopyCurrentChoice(&ticket, "MediaType"), "CardStock");
  PPDGetTicketValueForChoiceOrDefault(ppd.get(), &ticket, "MediaType", &value);
  EXPECT_EQ(value, 12);
  PPDGetTicketValueForChoiceOrDefault(ppd.get(), nullptr, "MediaType", &value);
  EXPECT_EQ(value, 23);

  PPDSetCurrentChoice(&ticket, "MediaType", "Glitter");
  PPDGetTicketValueForChoiceOrDefault(ppd.get(), &ticket, "MediaType", &value);
  EXPECT_EQ(value, -1);

  // Neither the ticket nor the PPD know the option.
  value = 77;
  PPDGetTicketValueForChoiceOrDefault(ppd.get(), &ticket, "VNNoSuchOption", &value);
  PPDGetTicketValueForChoiceOrDefault(nullptr, &ticket, "VNFold", &value);
  EXPECT_EQ(value, 77);

  PPDSetCurrentChoice(&ticket, nullptr, "x");
  PPDSetCurrentChoice(&ticket, "Duplex", nullptr);
  PPDSetCurrentChoice(nullptr, "Duplex", "None");
  EXPECT_EQ(ticket.ppdDictionary().size(), 1u);
  EXPECT_EQ(PPDCopyCurrentChoice(&ticket, "Duplex"), std::nullopt);
  EXPECT_EQ(PPDCopyCurrentChoice(nullptr, "MediaType"), std::nullopt);
}

TEST(PPDTexts, DefaultsAndChoiceTextsComeFromThePPD) {
  ppdcall::FilePtr ppd = OpenFixture(kSample);
  EXPECT_EQ(PPDCopyDefaultChoice(ppd.get(), "PageSize"), "Letter");
  EXPECT_EQ(PPDCopyDefaultChoice(ppd.get(), "VNOColor"), "Color");
  EXPECT_EQ(PPDCopyDefaultChoice(ppd.get(), "VNNoSuchOption"), std::nullopt);
  EXPECT_EQ(PPDCopyChoiceText(ppd.get(), "InputSlot", "Tray6"), "Tray 6 (High Capacity Feeder)");
  EXPECT_EQ(PPDCopyChoiceText(ppd.get(), "InputSlot", "Tray9"), std::nullopt);
  EXPECT_EQ(PPDCopyChoiceText(ppd.get(), "VNNoSuchOption", "None"), std::nullopt);
  EXPECT_EQ(PPDCopyChoiceText(nullptr, "InputSlot", "Tray1"), std::nullopt);
}

TEST(PPDTexts, TextsAreConvertedFromThePPDsEncodingToUTF8) {
  // libcups converts a whole ISOLatin1 file to UTF-8 while reading it.
  ppdcall::FilePtr latin1 = OpenFixture(kFixtures / "Varno-UnknownChoice.ppd");
  EXPECT_EQ(PPDCopyChoiceText(latin1.get(), "MediaType", "Recycled"), "Papier recycl\u00e9");

  // Texts that are still in the declared encoding, as other readers leave them.
  struct Case {
    const char* langEncoding;
    PPDEncoding encoding;
    const char* text;
    std::optional<std::string> utf8;
  };
  const Case cases[] = {
      {"ISOLatin1", PPDEncoding::ISOLatin1, "recycl\xe9", "recycl\u00e9"},
      {"ISOLatin2", PPDEncoding::ISOLatin2, "\xb3\xf3\x64\xbc", "\u0142\u00f3d\u017a"},
      {"ISOLatin5", PPDEncoding::ISOLatin5, "\xfe\xfd", "\u015f\u0131"},
      {"JIS83-RKSJ", PPDEncoding::ShiftJIS, "\x83\x65\x83\x58\x83\x67", "\u30c6\u30b9\u30c8"},
      {"UTF8", PPDEncoding::UTF8, "caf\xc3\xa9", "caf\u00e9"},
      {"UTF-8", PPDEncoding::UTF8, "caf\xe9", std::nullopt},  // lies about its encoding
      {"Windows1252", PPDEncoding::MacRoman, "caf\x8e", "caf\u00e9"},
      {nullptr, PPDEncoding::MacRoman, "\xa5", "\u2022"},
  };
  ppdcall::FilePtr ppd = OpenFixture(kSample);
  ppd_choice_t* choice = ppdcall::FindChoice(ppdcall::FindOption(ppd.get(), "VNFeedEdge"),
                                             "ShortEdge");
  ASSERT_TRUE(choice);
  char* const ownEncoding = ppd->lang_encoding;
  for (const Case& c : cases) {
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

TEST(PPDMenus, UnknownChoicesAreSkippedWithADiagnostic) {
  ppdcall::FilePtr ppd = OpenFixture(kFixtures / "Varno-UnknownChoice.ppd");
  toolkit::MenuPtr menu = toolkit::Menu::create();
  ::testing::internal::CaptureStderr();
  const toolkit::MenuCommand command = MakeOSType("VSrc");
  int count = PPDPopulateMenuWithChoices(menu.get(), ppd.get(), "InputSlot", command, false);
  std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(err, "Skipped unrecognized choice in PPD: LargeCapacity\n");
  EXPECT_EQ(count, 8);
  EXPECT_THAT(Items(*menu),
              ::testing::ElementsAre("Auto Select=0", "Tray 1=1", "Tray 2=2", "Tray 3=3",
                                     "Tray 4=4", "Tray 5=5", "Tray 6 (High Capacity Feeder)=6",
                                     "Bypass Tray=100"));
  EXPECT_EQ(menu->item(8)->command, command);
}

TEST(PPDMenus, MissingOptionEmptiesTheMenuAndSaysWhichOption) {
  ppdcall::FilePtr ppd = OpenFixture(kFixtures / "Other-Maker.ppd");
  std::unique_ptr<Control> popup = Control::create(ControlKind::PopupButton);
  popup->menu()->appendItem("left over");
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(PPDPopulatePopupWithChoices(popup.get(), ppd.get(), "StapleLocation", false), 0);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "Expected PPD option not found: StapleLocation\n");
  EXPECT_EQ(popup->menu()->count(), 0);

  std::unique_ptr<Control> text = Control::create(ControlKind::StaticText);
  EXPECT_EQ(PPDPopulatePopupWithChoices(text.get(), ppd.get(), "Duplex", false), 0);
  EXPECT_EQ(PPDPopulatePopupWithChoices(popup.get(), nullptr, "Duplex", false), 0);
  EXPECT_EQ(PPDPopulateMenuWithChoices(nullptr, ppd.get(), "Duplex", 0, false), 0);
}

// Which finishing choices a pop-up offers when conflicts are marked, per installed
// configuration; without marking every recognised choice is offered.
TEST(PPDMenus, MarkingConflictsLeavesOutWhatTheConfigurationForbids) {
  struct Case {
    const char* fixture;
    const char* keyword;
    std::vector<std::string> marked;
  };
  const std::string sample = kSample.string();
  const Case cases[] = {
      {"Varno-NoFinisher.ppd", "StapleLocation", {"None=1"}},
      {"Varno-NoFinisher.ppd", "VNPunch", {"None=1"}},
      {"Varno-NoFinisher.ppd", "OutputBin", {"Automatic=1", "Center Tray=2"}},
      {"Varno-NoFinisher.ppd", "Jog", {"Off=0"}},
      {nullptr, "VNPunch", {"None=1", "2 Holes=3", "3 Holes=4"}},
      {nullptr, "VNFold", {"None=1"}},
      {"Varno-BookletFaxPunch.ppd", "VNPunch", {"None=1", "2 Holes=3", "4 Holes=5"}},
      {"Varno-BookletFaxPunch.ppd", "VNFold", {"None=1", "Bi-Fold=43", "Bi-Fold and Staple=53"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.fixture ? c.fixture : "sample") + " " + c.keyword);
    ppdcall::FilePtr ppd = OpenFixture(c.fixture ? kFixtures / c.fixture : kSample);
    std::unique_ptr<Control> popup = Control::create(ControlKind::PopupButton);
    EXPECT_EQ(PPDPopulatePopupWithChoices(popup.get(), ppd.get(), c.keyword, true),
              static_cast<int>(c.marked.size()));
    EXPECT_EQ(Items(*popup->menu()), c.marked);
    EXPECT_EQ(popup->maximum(), static_cast<std::int32_t>(c.marked.size()));

    int all = PPDPopulatePopupWithChoices(popup.get(), ppd.get(), c.keyword, false);
    EXPECT_EQ(all, ppdcall::FindOption(ppd.get(), c.keyword)->num_choices);
  }
}

// The sample printer and the maps are written together: every option a panel asks for
// exists, and its choices are all in the option's map, except the cover sources' "None"
// (no cover) and "Lighten1", whose value -1 reads as unknown.
TEST(SamplePrinter, OffersEveryMappedOptionWithChoicesTheMapsKnow) {
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
}

TEST(SamplePrinter, PassesCupsTestPPD) {
  if (std::system("command -v cupstestppd >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "cupstestppd is not installed";
  const std::vector<std::filesystem::path> files = {
      kSample, kFixtures / "Varno-NoFinisher.ppd", kFixtures / "Varno-BookletFaxPunch.ppd",
      kFixtures / "Varno-UnknownChoice.ppd", kFixtures / "Other-Maker.ppd"};
  for (const std::filesystem::path& file : files) {
    std::string command = "cupstestppd -W all -q '" + file.string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
  }
}

class InstalledOptions : public ::testing::Test {
 protected:
  void TearDown() override { UnloadInstallableOptions(); }
};

TEST_F(InstalledOptions, PunchUnitSatisfiesEveryFeatureItsPatternsCover) {
  ppdcall::FilePtr ppd = OpenFixture(kFixtures / "Varno-BookletFaxPunch.ppd");
  ASSERT_TRUE(LoadInstallableOptions(ppd.get(), InstalledFeatures));
  EXPECT_EQ(getInstalledFeature("DualPunchKey"), 1);
  EXPECT_EQ(getInstalledFeature("QuadruplePunchKey"), 1);
  EXPECT_EQ(getInstalledFeature("TriplePunchKey"), 0);
  EXPECT_EQ(getInstalledFeature("FaxKey"), 1);
  EXPECT_EQ(getInstalledFeature("SBBookletMaker"), 1);
  EXPECT_EQ(getInstalledFeature("Offset"), 0);  // the booklet finisher has no offset row
  EXPECT_EQ(getInstalledFeature("NoSuchKey"), 0);
  EXPECT_EQ(getInstalledFeature(nullptr), 0);
  std::string choice;
  ASSERT_TRUE(getInstallableOptionValue("VNFinisher", &choice));
  EXPECT_EQ(choice, "SBClassBooklet");
  EXPECT_FALSE(getInstallableOptionValue("Duplex", &choice));  // not an installable option
  EXPECT_EQ(CopyDeviceMimicFilename(), "Mimic_GR_QTMZ_5TrayHcap+HCF_SBFinBK.gif");
}

TEST_F(InstalledOptions, PictureNameFollowsTraysFeederAndFinisher) {
  struct Case {
    std::filesystem::path ppd;
    const char* picture;
  };
  const Case cases[] = {
      {kSample, "Mimic_GR_QTMZ_5Tray_SBFin.gif"},
      {kFixtures / "Varno-NoFinisher.ppd", "Mimic_GR_QTMZ_5Tray.gif"},
      {kFixtures / "Other-Maker.ppd", "Mimic_GR_QTMZ_.gif"},
  };
  EXPECT_EQ(CopyDeviceMimicFilename(), "Mimic_GR_QTMZ_.gif");  // nothing loaded
  for (const Case& c : cases) {
    ppdcall::FilePtr ppd = OpenFixture(c.ppd);
    LoadInstallableOptions(ppd.get(), InstalledFeatures);
    EXPECT_EQ(CopyDeviceMimicFilename(), c.picture) << c.ppd;
    UnloadInstallableOptions();
  }
}

TEST_F(InstalledOptions, FirstLoadWinsUntilUnloaded) {
  ppdcall::FilePtr booklet = OpenFixture(kFixtures / "Varno-BookletFaxPunch.ppd");
  ppdcall::FilePtr bare = OpenFixture(kFixtures / "Varno-NoFinisher.ppd");
  ASSERT_TRUE(LoadInstallableOptions(booklet.get(), InstalledFeatures));
  EXPECT_FALSE(LoadInstallableOptions(bare.get(), InstalledFeatures));
  EXPECT_EQ(getInstalledFeature("FaxKey"), 1);
  EXPECT_EQ(getInstalledFeature("SingleStapleKey"), 1);

  UnloadInstallableOptions();
  EXPECT_EQ(getInstalledFeature("FaxKey"), 0);
  std::string choice;
  EXPECT_FALSE(getInstallableOptionValue("VNFinisher", &choice));
  ASSERT_TRUE(LoadInstallableOptions(bare.get(), InstalledFeatures));
  EXPECT_EQ(getInstalledFeature("SingleStapleKey"), 0);
  EXPECT_FALSE(LoadInstallableOptions(nullptr, InstalledFeatures));
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
  dir.write("T.plugin/Contents/Info.plist",
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key>"
            "<string>com.varno.test.features</string></dict></plist>");
  dir.write("T.plugin/Contents/Resources/en.lproj/Localizable.plist",
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<plist version=\"1.0\"><dict><key>SB Stapler</key><string>Saddle Stapler</string>"
            "</dict></plist>");
  bundle::BundleRef bundle = bundle::Bundle::Open(dir / "T.plugin");
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
  EXPECT_FALSE(getInstallableOptionTicketValue(nullptr, &value));
  EXPECT_EQ(value, 99);
  EXPECT_EQ(CopyLocalizedStringForInstalledFeatureFromPlugin("Fax", bundle), std::nullopt);
  EXPECT_EQ(CopyLocalizedStringForInstalledFeatureFromPlugin("Stapler", nullptr), std::nullopt);

  // The real table's labels are looked up with the usual fallback.
  UnloadInstallableOptions();
  ASSERT_TRUE(LoadInstallableOptions(ppd.get(), InstalledFeatures));
  EXPECT_EQ(CopyLocalizedStringForInstalledFeatureFromPlugin("DualStapleKey", bundle),
            "STRING NOT FOUND");
}

TEST_F(InstalledOptions, PPDWithoutTheGroupLeavesOnlyOptionlessRowsPresent) {
  testing::TempDir dir;
  std::string text = testing::ReadAll(kFixtures / "Other-Maker.ppd");
  for (const char* line : {"*OpenGroup: InstallableOptions/Installable Options\n",
                           "*CloseGroup: InstallableOptions\n"})
    text.erase(text.find(line), std::string(line).size());
  ppdcall::FilePtr ppd = OpenFixture(dir.write("NoGroup.ppd", text));
  ASSERT_TRUE(ppdcall::FindOption(ppd.get(), "OptionalTray"));

  EXPECT_FALSE(LoadInstallableOptions(ppd.get(), kTestFeatures));
  EXPECT_EQ(getInstalledFeature("Builtin"), 1);
  EXPECT_EQ(getInstalledFeature("Stapler"), 0);
  std::string choice;
  EXPECT_FALSE(getInstallableOptionValue("OptionalTray", &choice));
  // The empty table still counts as loaded.
  ppdcall::FilePtr sample = OpenFixture(kSample);
  EXPECT_FALSE(LoadInstallableOptions(sample.get(), kTestFeatures));
  EXPECT_EQ(getInstalledFeature("Stapler"), 0);
}

class CurrentPPD : public ::testing::Test {
 protected:
  void TearDown() override {
    PPDCloseCurrent();
    SetCurrentPrintSession(nullptr);
  }
  print::Session session_;
};

TEST_F(CurrentPPD, OpensTheSessionPrintersPPDOnceAndAgainAfterClosing) {
  EXPECT_EQ(PPDGetCurrent(), nullptr);  // no session
  SetCurrentPrintSession(&session_);
  session_.setPrinterPPD((kFixtures / "Missing.ppd").string());
  EXPECT_EQ(PPDGetCurrent(), nullptr);

  // A failed open is retried on the next call.
  session_.setPrinterPPD(kSample.string());
  ppd_file_t* first = PPDGetCurrent();
  ASSERT_TRUE(first);
  EXPECT_TRUE(PPDIsFromMaker(first));
  session_.setPrinterPPD((kFixtures / "Other-Maker.ppd").string());
  EXPECT_EQ(PPDGetCurrent(), first);  // shared until closed

  PPDCloseCurrent();
  ppd_file_t* other = PPDGetCurrent();
  ASSERT_TRUE(other);
  EXPECT_STREQ(other->manufacturer, "Exemplar");
  EXPECT_FALSE(PPDIsFromMaker(other));
  EXPECT_FALSE(PPDIsFromMaker(nullptr));
}

}  // namespace
}  // namespace varno
