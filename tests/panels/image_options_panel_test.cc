// SPDX-License-Identifier: Apache-2.0
// The Image Options panel inside the real plug-in bundle, loaded by the framework driver
// into a headless dialog and reached through the host's selector, as a user reaches it.
#include <gtest/gtest.h>

#include <memory>
#include <string_view>
#include <utility>
#include <string>

#include "host/dialog_host.h"
#include "panels/image_options/image_options_panel.h"
#include "platform/toolkit/automation.h"
#include "support/plugin_dialog.h"

namespace varno::panels {
namespace {

using toolkit::Control;

constexpr std::int32_t kImageOptionsTab = 2;

class ImageOptionsPanel : public testing::PlugInDialogTest {
 protected:
  void OpenImageOptions() {
    OpenDialog();
    if (HasFatalFailure()) return;
    Control* selector = window_->findByID({host::kHostSignature, host::kSelectorID});
    ASSERT_NE(selector, nullptr);
    ASSERT_EQ(toolkit::ChooseMenuItem(*selector, kImageOptionsTab), noErr);
    pane_ = window_->findByID({host::kPanelPaneSignature, kImageOptionsTab});
    ASSERT_TRUE(pane_ && pane_->isShown());
  }

  Control* Panel(std::int32_t id) { return window_->findByID({kImageOptionsSignature, id}); }
  std::string Picture(std::int32_t id) { return Panel(id) ? Panel(id)->pictureName() : "-"; }
  std::string Selected(std::int32_t id) { return Panel(id)->menu()->item(Panel(id)->value())->text; }
  print::Ticket Settings() { return session_->printSettings(); }
  void Choose(std::int32_t popupID, const char* text) {
    ASSERT_NE(Panel(popupID), nullptr);
    ASSERT_EQ(toolkit::ChooseMenuItemByText(*Panel(popupID), text), noErr) << text;
  }
  void Click(std::int32_t id) {
    ASSERT_NE(Panel(id), nullptr);
    ASSERT_EQ(toolkit::Click(*Panel(id)), noErr) << id;
  }

  Control* pane_ = nullptr;
};

// Another host's panel table reaches each panel by its getter alone, without our host's
// Prologue: every panel still finds the bundle by its identifier, for its title, and Image
// Options for its interface file.
TEST_F(ImageOptionsPanel, EveryPanelLoadedByAnotherHostFindsItsBundle) {
  const bundle::BundleRef& bundle = driver_.bundle();
  const std::pair<const char*, const char*> panels[] = {
      {"GetPaperOutputPanelInterface", "PaperOutput"},
      {"GetImageOptionsPanelInterface", "ImageOptions"},
      {"GetBookletWatermarkPanelInterface", "BookletWatermark"},
      {"GetAdvancedPanelInterface", "Advanced"},
      {"GetSpecialPagesPanelInterface", "SpecialPages"},
      {"GetJobNotesPanelInterface", "JobNotes"}};
  session_->setPrinterPPD(testing::kVarnoTestPPD);
  for (const auto& [getterName, titleKey] : panels) {
    SCOPED_TRACE(getterName);
    std::unique_ptr<host::PanelInterface> entries = PanelTable(getterName);
    ASSERT_NE(entries, nullptr);
    print::PMPDEContext context = nullptr;
    OSType creator = 0;
    std::string kind, title;
    std::uint32_t maxH = 0, maxV = 0;
    ASSERT_EQ(entries->Prologue(&context, &creator, &kind, &title, &maxH, &maxV), noErr);
    const std::string expected = bundle->localizedString(titleKey, "Localizable", "?");
    EXPECT_EQ(title, expected);
    if (std::string_view(titleKey) == "ImageOptions") {
      print::PMPDEFlags flags = 0;
      EXPECT_EQ(entries->Initialize(context, &flags, nullptr, parentPane_, session_.get()), noErr);
      EXPECT_EQ(entries->Open(context), noErr);
      EXPECT_NE(window_->findByID({kImageOptionsSignature, kImageQualityPopupID}), nullptr);
      entries->Close(context);
    }
    entries->Terminate(context, noErr);
  }
}

TEST_F(ImageOptionsPanel, OpensWithThePrinterDefaultsAndTheirPictures) {
  OpenImageOptions();
  EXPECT_EQ(Selected(kImageQualityPopupID), "Standard");
  EXPECT_EQ(Panel(kTonerSaverCheckBoxID)->value(), 0);
  EXPECT_EQ(Picture(kImageQualityPictureID), "ImageOptions_ImgQual_Standard.gif");
  EXPECT_EQ(Picture(kTonerSaverPictureID), "ImageOptions_TonerSaver_Off.gif");
  EXPECT_EQ(Picture(kInvertPictureID), "ImageOptions_InvertImage_Off.gif");
  // Initialize's read already wrote the quality back.
  EXPECT_EQ(Settings().number<std::int32_t>(kImageResolutionKey), 2);
}

TEST_F(ImageOptionsPanel, PicturesFollowEachChoice) {
  OpenImageOptions();
  const std::pair<const char*, const char*> qualities[] = {
      {"High Speed", "ImageOptions_ImgQual_TonerSaver.gif"},
      {"High Quality", "ImageOptions_ImgQual_Standard.gif"},
      {"High Resolution", "ImageOptions_ImgQual_Enhanced.gif"},
      {"Enhanced", "ImageOptions_ImgQual_Enhanced.gif"}};
  for (const auto& [text, picture] : qualities) {
    Choose(kImageQualityPopupID, text);
    EXPECT_EQ(Picture(kImageQualityPictureID), picture) << text;
  }
  Click(kTonerSaverCheckBoxID);
  EXPECT_EQ(Picture(kTonerSaverPictureID), "ImageOptions_TonerSaver_On.gif");
  Click(kMirrorCheckBoxID);
  EXPECT_EQ(Picture(kInvertPictureID), "ImageOptions_InvertImage_Mirror.gif");
  Click(kNegativeCheckBoxID);
  EXPECT_EQ(Picture(kInvertPictureID), "ImageOptions_InvertImage_Negative&Mirror.gif");
  Click(kMirrorCheckBoxID);
  EXPECT_EQ(Picture(kInvertPictureID), "ImageOptions_InvertImage_Negative.gif");
  // Every picture the panel names is in the bundle.
  for (std::int32_t id : {kImageQualityPictureID, kTonerSaverPictureID, kInvertPictureID})
    EXPECT_TRUE(driver_.bundle()->resourcePath(Picture(id))) << Picture(id);
}

TEST_F(ImageOptionsPanel, ChoicesAreWrittenToTheTicket) {
  OpenImageOptions();
  Choose(kImageQualityPopupID, "High Speed");
  Click(kTonerSaverCheckBoxID);
  Click(kMirrorCheckBoxID);
  ASSERT_EQ(driver_.sync(false), noErr) << driver_.error();

  const print::Ticket settings = Settings();
  EXPECT_EQ(settings.ppdDictionary().getString("VNOutputMode"), "HighSpeed");
  EXPECT_EQ(settings.ppdDictionary().getString("VNEconomode"), "Draft");
  EXPECT_EQ(settings.number<std::int32_t>(kImageResolutionKey), 4);
  std::optional<plist::Dictionary> invert = settings.dictionary(kInvertImageOptionsKey);
  ASSERT_TRUE(invert);
  EXPECT_EQ(invert->getNumber<std::int64_t>("MirrorImage"), 1);
  EXPECT_EQ(invert->getNumber<std::int64_t>("NegativeImage"), 0);
}

TEST_F(ImageOptionsPanel, ClearingTheTonerSaverKeepsDraftInTheTicket) {
  OpenImageOptions();
  print::Ticket settings = Settings();
  settings.ppdDictionary().set("VNEconomode", plist::Value("Draft"));
  ASSERT_EQ(driver_.sync(true), noErr);
  ASSERT_EQ(Panel(kTonerSaverCheckBoxID)->value(), 1);
  EXPECT_EQ(Picture(kTonerSaverPictureID), "ImageOptions_TonerSaver_On.gif");

  Click(kTonerSaverCheckBoxID);
  EXPECT_EQ(Picture(kTonerSaverPictureID), "ImageOptions_TonerSaver_Off.gif");
  ASSERT_EQ(driver_.sync(false), noErr);
  EXPECT_EQ(Settings().ppdDictionary().getString("VNEconomode"), "Draft")
      << "a cleared box names no choice, so the ticket keeps its own";
}

TEST_F(ImageOptionsPanel, ReadingTheTicketShowsItAndWritesTheQualityBack) {
  OpenImageOptions();
  print::Ticket settings = Settings();
  settings.ppdDictionary().set("VNOutputMode", plist::Value("HighResolution"));
  plist::Dictionary invert;
  invert.set("NegativeImage", plist::Value(1));
  settings.setValue(kInvertImageOptionsKey, plist::Value(invert), "V");
  settings.releaseItem(kImageResolutionKey);

  ASSERT_EQ(driver_.sync(true), noErr);
  EXPECT_EQ(Settings().number<std::int32_t>(kImageResolutionKey), 6) << "even a read writes it";
  EXPECT_EQ(Selected(kImageQualityPopupID), "High Resolution");
  EXPECT_EQ(Panel(kNegativeCheckBoxID)->value(), 1);
  EXPECT_EQ(Panel(kMirrorCheckBoxID)->value(), 0) << "a missing entry is off";
  EXPECT_EQ(Picture(kInvertPictureID), "ImageOptions_InvertImage_Negative.gif");
}

TEST_F(ImageOptionsPanel, OnlyTheFirstOpenBuildsTheControls) {
  OpenImageOptions();
  const std::size_t built = pane_->childCount();
  ASSERT_GT(built, 0u);
  ASSERT_EQ(driver_.close(), noErr);
  ASSERT_EQ(driver_.open(), noErr) << "the dialog shown again";
  EXPECT_EQ(pane_->childCount(), built);

  // The panel's own answer, through its exported table.
  std::unique_ptr<host::PanelInterface> table = PanelTable("GetImageOptionsPanelInterface");
  ASSERT_NE(table, nullptr);
  print::PMPDEContext context = nullptr;
  ASSERT_EQ(table->Prologue(&context, nullptr, nullptr, nullptr, nullptr, nullptr), noErr);
  Control* pane = parentPane_->embed(Control::create(toolkit::ControlKind::UserPane, {0, 0, 500, 300}));
  ASSERT_EQ(table->Initialize(context, nullptr, nullptr, pane, session_.get()), noErr);
  EXPECT_EQ(table->Open(context), noErr);
  const std::size_t own = pane->childCount();
  EXPECT_EQ(table->Open(context), kPMInvalidPDEContext);
  EXPECT_EQ(pane->childCount(), own);
  EXPECT_EQ(table->Terminate(context, noErr), noErr);
}

}  // namespace
}  // namespace varno::panels
