// SPDX-License-Identifier: Apache-2.0
// The Advanced panel inside the real plug-in bundle, loaded by the framework driver into a
// headless window and reached through the dialog host's selector, as a user reaches it.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "host/dialog_host.h"
#include "panels/image_options/advanced_panel.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/automation_script.h"
#include "support/plugin_dialog.h"

namespace varno::panels {
namespace {

using toolkit::Control;

const std::string kVarnoPPD = testing::kVarnoTestPPD;
constexpr std::int32_t kAdvancedTab = 4;
constexpr std::int32_t kVujn = MakeOSType("Vujn");

// A copy of the test PPD without the "Jog" default, so the panel has none to read.
std::string PPDWithoutJogDefault() {
  const auto path = std::filesystem::temp_directory_path() / "advanced_panel_no_jog_default.ppd";
  std::ifstream in(kVarnoPPD);
  std::ofstream out(path);
  for (std::string line; std::getline(in, line);)
    if (!line.starts_with("*DefaultJog:")) out << line << '\n';
  return path.string();
}

class AdvancedPanel : public testing::PlugInDialogTest {
 protected:
  // Opens the dialog and shows the Advanced panel with the host's selector.
  void OpenAdvanced(const std::string& ppd = kVarnoPPD) {
    OpenDialog(ppd);
    if (HasFatalFailure()) return;
    Control* selector = window_->findByID({host::kHostSignature, host::kSelectorID});
    ASSERT_NE(selector, nullptr);
    ASSERT_EQ(toolkit::ChooseMenuItem(*selector, kAdvancedTab), noErr);
    Control* pane = window_->findByID({host::kPanelPaneSignature, kAdvancedTab});
    ASSERT_TRUE(pane && pane->isShown());
  }
  void Choose(std::int32_t id, const char* text) {
    ASSERT_NE(Panel(id), nullptr) << id;
    ASSERT_EQ(toolkit::ChooseMenuItemByText(*Panel(id), text), noErr) << text;
  }
  Control* Panel(std::int32_t id) { return window_->findByID({kAdvancedSignature, id}); }
  std::optional<std::string> PPDChoice(const char* keyword) {
    return session_->printSettings().ppdDictionary().getString(keyword);
  }
};

TEST_F(AdvancedPanel, FreshTicketTakesTheRequestOffsetFromThePPDDefault) {
  OpenAdvanced();
  ASSERT_EQ(driver_.sync(false), noErr) << driver_.error();
  EXPECT_EQ(PPDChoice("Jog"), "None") << "the PPD's *DefaultJog, not the panel's own 1";
  EXPECT_EQ(PPDChoice("VNFeedEdge"), "LongEdge");
  EXPECT_EQ(PPDChoice("JCLBanner"), "False");
}

TEST_F(AdvancedPanel, WithoutAPPDDefaultOffsetsAreRequested) {
  OpenAdvanced(PPDWithoutJogDefault());
  ASSERT_EQ(driver_.sync(false), noErr) << driver_.error();
  EXPECT_EQ(PPDChoice("Jog"), "EndOfSet");
}

TEST_F(AdvancedPanel, ChosenItemsAreWrittenToTheTicket) {
  OpenAdvanced();
  Choose(kFeedEdgePopupID, "Short Edge");
  Choose(kRequestOffsetPopupID, "Each Set");
  Choose(kBannerSheetPopupID, "On");
  ASSERT_EQ(toolkit::ChooseMenuItem(*Panel(kBookletOrderPopupID), 2), noErr);

  ASSERT_EQ(driver_.sync(false), noErr) << driver_.error();
  EXPECT_EQ(PPDChoice("VNFeedEdge"), "ShortEdge");
  EXPECT_EQ(PPDChoice("Jog"), "EndOfSet");
  EXPECT_EQ(PPDChoice("JCLBanner"), "True");
  const print::Ticket settings = session_->printSettings();
  EXPECT_EQ(settings.number<std::int32_t>(kBookletLayoutOrderKey), kVujn)
      << "both booklet orders store the same placeholder code";
  ASSERT_NE(settings.item(kBookletLayoutOrderKey), nullptr);
  EXPECT_EQ(settings.item(kBookletLayoutOrderKey)->client, kAdvancedTicketClient);
}

TEST_F(AdvancedPanel, ReadingTheTicketSelectsItsChoices) {
  OpenAdvanced();
  print::Ticket settings = session_->printSettings();
  settings.ppdDictionary().set("VNFeedEdge", plist::Value(std::string("ShortEdge")));
  settings.ppdDictionary().set("Jog", plist::Value(std::string("EndOfSet")));
  settings.setValue(kBookletLayoutOrderKey, plist::Value(kVujn), kAdvancedTicketClient);
  ASSERT_EQ(driver_.sync(true), noErr) << driver_.error();
  EXPECT_EQ(Panel(kFeedEdgePopupID)->value(), 2);
  Control* offset = Panel(kRequestOffsetPopupID);
  EXPECT_EQ(offset->menu()->item(offset->value())->text, "Each Set");
  EXPECT_EQ(Panel(kBookletOrderPopupID)->value(), 1) << "the first item with the code";
}

// The panel's own table, from the bundle's exported getter.
TEST_F(AdvancedPanel, MissingBookletOrderFailsTheReadButSetsTheOthers) {
  OpenAdvanced();  // makes the bundle's PPD and session current
  std::unique_ptr<host::PanelInterface> table = PanelTable("GetAdvancedPanelInterface");
  ASSERT_NE(table, nullptr);
  print::PMPDEContext context = nullptr;
  ASSERT_EQ(table->Prologue(&context, nullptr, nullptr, nullptr, nullptr, nullptr), noErr);

  print::Session reading;
  reading.setPrinterPPD(kVarnoPPD);
  print::Ticket in = reading.printSettings();
  in.ppdDictionary().set("JCLBanner", plist::Value(std::string("True")));
  in.ppdDictionary().set("Jog", plist::Value(std::string("EndOfSet")));
  in.ppdDictionary().set("VNFeedEdge", plist::Value(std::string("ShortEdge")));
  EXPECT_EQ(table->Initialize(context, nullptr, nullptr, nullptr, &reading), kPMInvalidKey)
      << "Initialize reports its read";
  EXPECT_EQ(table->Sync(context, &reading, true), kPMInvalidKey);

  print::Session writing;
  ASSERT_EQ(table->Sync(context, &writing, false), noErr);
  const print::Ticket out = writing.printSettings();
  EXPECT_EQ(out.number<std::int32_t>(kBookletLayoutOrderKey), 2) << "the missing entry's stand-in";
  EXPECT_EQ(out.ppdDictionary().getString("JCLBanner"), "True");
  EXPECT_EQ(out.ppdDictionary().getString("Jog"), "EndOfSet");
  EXPECT_EQ(out.ppdDictionary().getString("VNFeedEdge"), "ShortEdge");

  EXPECT_EQ(table->Open(context), noErr);
  EXPECT_EQ(table->Open(context), kPMInvalidPDEContext) << "only the first Open builds";
  EXPECT_EQ(table->Terminate(context, noErr), noErr);
}

TEST_F(AdvancedPanel, AboutButtonRunsTheAboutDialog) {
  OpenAdvanced();
  const bundle::BundleRef& bundle = driver_.bundle();
  std::string title, name, version;
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  script.add("read the About window", [&](toolkit::Window& about) {
    title = about.text();
    if (Control* c = about.findByID({kAdvancedSignature, 1})) name = c->text();
    if (Control* c = about.findByID({kAdvancedSignature, 2})) version = c->text();
    return noErr;
  });
  script.sendCommand(toolkit::kHICommandOK);
  ASSERT_NE(Panel(kAboutButtonID), nullptr);
  ASSERT_EQ(toolkit::Click(*Panel(kAboutButtonID)), noErr);

  EXPECT_EQ(script.pending(), 0u) << "OK ended the dialog";
  EXPECT_TRUE(script.failures().empty());
  EXPECT_EQ(title, bundle->localizedString("About", "Localizable", "?"));
  EXPECT_EQ(name, *bundle->infoValue("CFBundleName")->asString());
  EXPECT_NE(version.find(*bundle->infoValue("CFBundleShortVersionString")->asString()),
            std::string::npos) << version;

  // With nothing scripted the dialog ends by itself and the panel stays usable.
  ASSERT_EQ(toolkit::Click(*Panel(kAboutButtonID)), noErr);
  Choose(kFeedEdgePopupID, "Short Edge");
  ASSERT_EQ(driver_.sync(false), noErr);
  EXPECT_EQ(PPDChoice("VNFeedEdge"), "ShortEdge");
}

}  // namespace
}  // namespace varno::panels
