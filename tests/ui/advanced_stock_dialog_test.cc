// SPDX-License-Identifier: Apache-2.0
// The advanced stock selection dialog, driven as a person would through the automation
// script, on its own and through the stock menus' "Sadv" command.
#include "ui/advanced_stock_dialog.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "platform/print/session.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/event.h"
#include "ui/stock_menus.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::ui {
namespace {

using model::Stock;
using toolkit::URefCon;
using vocabulary::kUnsetValue;

URefCon Ref(std::int32_t value) { return static_cast<URefCon>(static_cast<std::intptr_t>(value)); }

class AdvancedStockDialog : public ::testing::Test {
 protected:
  void SetUp() override {
    session_.setPrinterPPD(VARNO_SAMPLE_PPD);
    print::SetCurrentPrintSession(&session_);
    vocabulary::LoadInstallableOptions(vocabulary::PPDGetCurrent(), vocabulary::InstalledFeatures);
  }
  void TearDown() override {
    vocabulary::UnloadInstallableOptions();
    vocabulary::PPDCloseCurrent();
    print::SetCurrentPrintSession(nullptr);
    script_.clear();
    toolkit::HeadlessAlerts().clear();
  }
  // Sends "Sadv" as choosing the stock menu's item does.
  OSStatus chooseAdvanced() {
    toolkit::MenuPtr menu = toolkit::Menu::create();
    menu->appendItem("Advanced...", kAdvancedStockCommand);
    toolkit::Event event(toolkit::kEventClassCommand, toolkit::kEventCommandProcess);
    event.set<toolkit::HICommand>(toolkit::kEventParamDirectObject, toolkit::typeHICommand,
                                  {toolkit::kHICommandFromMenu, kAdvancedStockCommand, nullptr, menu.get(), 1});
    return StockMenuCommandEventHandler(nullptr, &event, &data_);
  }
  // A stock that has every attribute the dialog shows, and a name.
  static Stock Described() {
    Stock stock;
    stock.setWeight(90);
    stock.setModulus(3);
    stock.setPunched(kStockNotPunched);
    stock.setSidesCoated(kStockCoatedFront);
    stock.setCoatingType(kStockCoatingSilk);
    stock.setFinish(kStockFinishVellum);
    stock.setGrain(1);
    stock.setCustomType("Recycled");
    stock.setCustomColor("Ivory");
    stock.setDescription("Shelf 2");
    stock.setComment("letters");
    stock.setCustomName("Letterhead");
    return stock;
  }

  toolkit::AutomationScript& script_ = toolkit::Application::shared().script();
  print::Session session_;
  bundle::BundleRef bundle_ = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
  Stock stock_;
  std::unique_ptr<toolkit::Control> summary_ = toolkit::Control::create(toolkit::ControlKind::StaticText);
  StockMenuCommandEventHandlerData data_{bundle_, &stock_, nullptr, kInsertStockContext, summary_.get(), nullptr};
};

TEST_F(AdvancedStockDialog, OkStoresWhatWasTypedAndChosenAndClearsTheName) {
  ASSERT_TRUE(bundle_);
  DefaultStock(&stock_, kInsertStockContext);
  stock_.setCustomName("Heavy blue");
  stock_.setSize(4);
  script_.chooseMenuItemByRefCon(kAdvancedStockCoatingPopupID, Ref(kStockCoatingMatte));  // refused: uncoated
  script_.typeText(kAdvancedStockWeightFieldID, "120");
  script_.typeText(kAdvancedStockTabsFieldID, "5");
  script_.chooseMenuItemByRefCon(kAdvancedStockPunchedPopupID, Ref(kStockPrePunched));
  script_.chooseMenuItemByRefCon(kAdvancedStockSidesCoatedPopupID, Ref(kStockCoatedBoth));
  script_.chooseMenuItemByRefCon(kAdvancedStockCoatingPopupID, Ref(kStockCoatingMatte));
  script_.chooseMenuItemByRefCon(kAdvancedStockFinishPopupID, Ref(kStockFinishLinen));
  script_.chooseMenuItemByText(kAdvancedStockGrainPopupID, "Disabled (Recommended)");
  script_.typeText(kAdvancedStockCustomTypeFieldID, "Synthetic");
  script_.typeText(kAdvancedStockCustomColorFieldID, "Sea green");
  script_.typeText(kAdvancedStockDescriptionFieldID, "Shelf 3");
  script_.typeText(kAdvancedStockCommentFieldID, "for covers");
  script_.sendCommand(kAdvancedStockHelpCommand);
  script_.sendCommand(toolkit::kHICommandOK);

  EXPECT_EQ(chooseAdvanced(), eventNotHandledErr);
  EXPECT_EQ(script_.failures().size(), 1u) << "the coating of uncoated paper cannot be chosen";
  EXPECT_EQ(std::make_tuple(stock_.weight(), stock_.modulus(), stock_.punched(), stock_.sidesCoated(),
                            stock_.coatingType(), stock_.finish(), stock_.grain()),
            std::make_tuple(120, 5, std::int32_t{kStockPrePunched}, std::int32_t{kStockCoatedBoth},
                            std::int32_t{kStockCoatingMatte}, std::int32_t{kStockFinishLinen}, 2));
  EXPECT_EQ(std::make_tuple(stock_.customType(), stock_.customColor(), stock_.description(), stock_.comment()),
            std::make_tuple("Synthetic", "Sea green", "Shelf 3", "for covers"));
  EXPECT_EQ(stock_.customName(), "") << "the name no longer describes the stock";
  EXPECT_EQ(stock_.size(), 4) << "the menus' attributes stay";
  EXPECT_EQ(summary_->text(), "- A4") << "the summary is shown again";
  ASSERT_EQ(toolkit::HeadlessAlerts().helpRequests().size(), 1u);
  EXPECT_EQ(toolkit::HeadlessAlerts().helpRequests()[0].page, kAdvancedStockHelpPage);
}

TEST_F(AdvancedStockDialog, CancelAndAnUntouchedOkLeaveTheStockAsItWas) {
  ASSERT_TRUE(bundle_);
  // A value the menus do not know (written by something else) is kept too.
  Stock described = Described();
  described.setFinish(9);
  for (toolkit::MenuCommand close : {toolkit::kHICommandCancel, toolkit::kHICommandOK}) {
    stock_ = described;
    if (close == toolkit::kHICommandCancel) {
      script_.typeText(kAdvancedStockWeightFieldID, "0");
      script_.chooseMenuItemByRefCon(kAdvancedStockPunchedPopupID, Ref(kStockPrePunched));
      script_.typeText(kAdvancedStockCommentFieldID, " and more");
    }
    script_.sendCommand(close);
    EXPECT_EQ(chooseAdvanced(), eventNotHandledErr);
    EXPECT_TRUE(script_.failures().empty());
    EXPECT_EQ(stock_.customName(), close == toolkit::kHICommandOK ? "" : "Letterhead");
    stock_.setCustomName("Letterhead");
    EXPECT_TRUE(stock_ == described) << (close == toolkit::kHICommandOK ? "OK" : "Cancel");
  }
}

TEST_F(AdvancedStockDialog, NumbersOutsideTheirLimitsAreRefused) {
  ASSERT_TRUE(bundle_);
  struct Case {
    toolkit::ControlID field;
    const char* typed;
    bool accepted;
    std::int32_t stored;  // weight or tabs when accepted
  } cases[] = {
      {kAdvancedStockWeightFieldID, "39", false, 0},
      {kAdvancedStockWeightFieldID, "40", true, 40},
      {kAdvancedStockWeightFieldID, "350", true, 350},
      {kAdvancedStockWeightFieldID, "351", false, 0},
      {kAdvancedStockWeightFieldID, "1200", true, 120},  // a fourth digit cannot be typed
      {kAdvancedStockWeightFieldID, "8x0", true, 80},     // nor a letter
      {kAdvancedStockTabsFieldID, "0", false, 0},
      {kAdvancedStockTabsFieldID, "50", true, 50},
      {kAdvancedStockTabsFieldID, "51", false, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.typed);
    toolkit::HeadlessAlerts().clear();
    Stock stock;
    script_.typeText(c.field, c.typed);
    script_.sendCommand(toolkit::kHICommandOK);
    script_.sendCommand(toolkit::kHICommandCancel);  // reached only when OK was refused
    bool confirmed = true;
    ASSERT_EQ(RunModalAdvancedStockDialog(bundle_, &stock, nullptr, &confirmed), noErr);
    EXPECT_EQ(confirmed, c.accepted);
    EXPECT_EQ(toolkit::HeadlessAlerts().notices().size(), c.accepted ? 0u : 1u);
    const std::int32_t stored = c.field == kAdvancedStockWeightFieldID ? stock.weight() : stock.modulus();
    EXPECT_EQ(stored, c.accepted ? c.stored : kUnsetValue);
    script_.clear();
  }
  bool confirmed = false;
  EXPECT_EQ(RunModalAdvancedStockDialog(bundle_, nullptr, nullptr, &confirmed), paramErr);
}

}  // namespace
}  // namespace varno::ui
