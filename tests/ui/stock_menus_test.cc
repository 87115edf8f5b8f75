// SPDX-License-Identifier: Apache-2.0
// Stock menus, the stock commands and the stock summary, on the sample printer and the
// plug-in's own strings and interface files.
#include "ui/stock_menus.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "platform/print/session.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/event.h"
#include "support/temp_dir.h"
#include "ui/custom_stock_size_dialog.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::ui {
namespace {

using model::Stock;
using toolkit::ControlID;
using vocabulary::kUnsetValue;

constexpr ControlID kWidthField = kCustomStockWidthFieldID;
constexpr ControlID kLengthField = kCustomStockLengthFieldID;

class StockMenus : public ::testing::Test {
 protected:
  // The sample printer, with a post-print inserter installed when asked.
  void usePrinter(bool inserter) {
    vocabulary::UnloadInstallableOptions();
    vocabulary::PPDCloseCurrent();
    std::ifstream in(VARNO_TEST_DATA_DIR "/../../resources/ppd/Varno-AT120A.ppd");
    std::stringstream text;
    text << in.rdbuf();
    std::string ppd = text.str();
    if (inserter)
      ppd.replace(ppd.find("*CloseGroup: InstallableOptions"), 0,
                  "*OpenUI *VNPostPrintInserter/Post-Print Inserter: Boolean\n"
                  "*DefaultVNPostPrintInserter: True\n*VNPostPrintInserter True/Installed: \"\"\n"
                  "*VNPostPrintInserter False/Not Installed: \"\"\n*CloseUI: *VNPostPrintInserter\n");
    session_.setPrinterPPD(dir_.write("printer.ppd", ppd).string());
    print::SetCurrentPrintSession(&session_);
    vocabulary::LoadInstallableOptions(vocabulary::PPDGetCurrent(), vocabulary::InstalledFeatures);
  }
  void SetUp() override { usePrinter(false); }
  void TearDown() override {
    vocabulary::UnloadInstallableOptions();
    vocabulary::PPDCloseCurrent();
    print::SetCurrentPrintSession(nullptr);
    toolkit::Application::shared().script().clear();
    toolkit::HeadlessAlerts().clear();
  }
  // Sends the command as choosing `item` of `menu` does.
  OSStatus choose(toolkit::MenuCommand command, toolkit::URefCon value) {
    toolkit::MenuPtr menu = toolkit::Menu::create();
    menu->setItemRefCon(menu->appendItem("item", command), value);
    toolkit::Event event(toolkit::kEventClassCommand, toolkit::kEventCommandProcess);
    event.set<toolkit::HICommand>(toolkit::kEventParamDirectObject, toolkit::typeHICommand,
                                  {toolkit::kHICommandFromMenu, command, nullptr, menu.get(), 1});
    return StockMenuCommandEventHandler(nullptr, &event, &data_);
  }
  static std::vector<std::int32_t> Values(const toolkit::Menu& menu) {
    std::vector<std::int32_t> values;
    for (toolkit::MenuItemIndex i = 1; i <= menu.count(); ++i)
      values.push_back(static_cast<std::int32_t>(menu.item(i)->refCon));
    return values;
  }
  static bool Holds(const std::vector<std::int32_t>& values, std::int32_t value) {
    return std::find(values.begin(), values.end(), value) != values.end();
  }

  testing::TempDir dir_;
  print::Session session_;
  bundle::BundleRef bundle_ = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
  Stock stock_;
  std::unique_ptr<toolkit::Control> summary_ = toolkit::Control::create(toolkit::ControlKind::StaticText);
  StockMenuCommandEventHandlerData data_{bundle_, &stock_, nullptr, kJobStockContext, summary_.get(), nullptr};
};

TEST_F(StockMenus, SpecialPagesFollowTheJobInsteadOfTheUnspecifiedChoices) {
  ASSERT_TRUE(bundle_);
  for (JobContext context : {kJobStockContext, kInsertStockContext}) {
    SCOPED_TRACE(context);
    const bool special = context != kJobStockContext;
    toolkit::MenuPtr size = toolkit::Menu::create(), color = toolkit::Menu::create(), type = toolkit::Menu::create();
    ASSERT_EQ(PopulateStockSizeMenu(size.get(), bundle_, context), noErr);
    ASSERT_EQ(PopulateStockColorMenu(color.get(), bundle_, context), noErr);
    ASSERT_EQ(PopulateStockTypeMenu(type.get(), bundle_, context), noErr);
    for (toolkit::Menu* menu : {size.get(), color.get(), type.get()}) {
      EXPECT_EQ(Values(*menu).front() == kUnsetValue, special);
      EXPECT_EQ(menu->item(1)->text == "Use Job Setting", special);
    }
    EXPECT_EQ(Holds(Values(*size), 1), true) << "Letter";
    EXPECT_EQ(Holds(Values(*type), 23), !special) << "the printer's default type";
    EXPECT_FALSE(special && Holds(Values(*type), 34)) << "unspecified";
    EXPECT_EQ(type->item(2)->text, "Plain") << "after the printer's default, or in its place";
  }
}

TEST_F(StockMenus, TheStockMenuOffersSubmenusForSpecialPagesAndTheInserterForInserts) {
  struct Case {
    bool inserter;
    JobContext context;
    std::vector<std::string> items;
  } cases[] = {
      {true, kJobStockContext, {}},
      {false, kInsertStockContext, {"Other Size", "Other Color", "Other Type", "-", "-"}},
      {true, kInsertStockContext, {"Other Size", "Other Color", "Other Type", "-", "-", "Post-Print Inserter"}},
      {true, kExceptionStockContext, {"Other Size", "Other Color", "Other Type", "-", "-"}},
  };
  for (const Case& c : cases) {
    TearDown();
    usePrinter(c.inserter);
    toolkit::MenuPtr menu = toolkit::Menu::create();
    menu->appendItem("left over");
    ASSERT_EQ(PopulateStockMenu(menu.get(), bundle_, c.context, &data_), noErr);
    std::vector<std::string> items;
    for (toolkit::MenuItemIndex i = 1; i <= menu->count(); ++i) items.push_back(menu->item(i)->text);
    EXPECT_EQ(items, c.items) << "context " << c.context << (c.inserter ? " with" : " without") << " inserter";
    if (items.size() >= 5) {
      EXPECT_TRUE(menu->item(1)->submenu && menu->item(1)->submenu->count() > 5);
      EXPECT_FALSE(menu->item(4)->enabled);
    }
    if (items.size() == 6) {
      EXPECT_EQ(menu->item(6)->refCon, toolkit::URefCon{10});
    }
  }
}

TEST_F(StockMenus, CommandsChangeTheStockAndItsSummary) {
  usePrinter(true);
  data_.jobContext = kInsertStockContext;
  struct Step {
    toolkit::MenuCommand command;
    std::int32_t value;
    const char* summary;
  } steps[] = {
      {kStockSizeCommand, 4, "- A4"},
      {kStockTypeCommand, 2, "- A4\n- Clear\n- Transparency"},  // a transparency is clear
      {kStockSourceCommand, kPostPrintInserterSource, "- Post-Print Inserter"},
      {kStockColorCommand, 1, "- A4\n- White\n- Transparency"},  // a choice drops the source
      {kDefaultStockCommand, 0, "Use Job Setting"},
  };
  DefaultStock(&stock_, kInsertStockContext);
  stock_.setCustomName("Heavy blue");
  for (const Step& step : steps) {
    SCOPED_TRACE(step.summary);
    EXPECT_EQ(choose(step.command, static_cast<std::uint32_t>(step.value)), eventNotHandledErr);
    EXPECT_EQ(summary_->text(), step.summary);
    EXPECT_EQ(stock_.customName(), "") << "every choice but the source clears the name";
  }
  EXPECT_EQ(stock_.size(), kUnsetValue);

  // The job's own stock: Letter, White, Plain, shown without its size.
  data_.jobContext = kJobStockContext;
  EXPECT_EQ(choose(kDefaultStockCommand, 0), eventNotHandledErr);
  EXPECT_EQ(summary_->text(), "- White\n- Plain");
}

TEST_F(StockMenus, SummaryNamesAndCountsAsTheStockSays) {
  Stock named;
  named.setCustomName("Cover stock");
  named.setCustomNameOnly(1);
  Stock custom;
  custom.setType(6);
  custom.setCustomType("Synthetic");
  custom.setModulus(3);
  custom.setColor(10);
  custom.setCustomColor("Sea green");
  Stock tabs;
  tabs.setType(24);
  tabs.setModulus(5);
  struct Case {
    const Stock* stock;
    JobContext context;
    std::optional<std::string> summary;
  } cases[] = {
      {&named, kJobStockContext, "Stock Name: Cover stock"},
      {&custom, kExceptionStockContext, "Color: Sea green | - Synthetic (3)"},
      {&tabs, kJobStockContext, "- White | - Tab Stock (5)"},
      {nullptr, kJobStockContext, std::nullopt},
  };
  for (const Case& c : cases)
    EXPECT_EQ(GenerateStockSummary(bundle_, c.context, c.stock, " | "), c.summary);
  EXPECT_EQ(ShowStockSummary(nullptr, summary_.get(), &named, kJobStockContext), paramErr);
}

TEST_F(StockMenus, CustomSizeIsTypedWithinThePrintersLimits) {
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  // Too narrow for the printer (216 to 907 points wide): the dialog says so and stays open
  // until cancelled; the stock keeps its size, and the menu is told the command was handled.
  script.typeText(kWidthField, "100");
  script.typeText(kLengthField, "800");
  script.sendCommand(toolkit::kHICommandOK);
  script.sendCommand(toolkit::kHICommandCancel);
  stock_.setSize(4);
  stock_.setCustomName("old");
  EXPECT_EQ(choose(kStockSizeCommand, Stock::kCustomSize), noErr);
  EXPECT_EQ(toolkit::HeadlessAlerts().notices().size(), 1u);
  EXPECT_EQ(std::make_tuple(stock_.size(), stock_.customName()), std::make_tuple(4, std::string()));

  // In millimetres: 250 x 300 mm is 709 x 850 points.
  script.chooseMenuItem(kCustomStockUnitPopupID, 2);
  script.typeText(kWidthField, "250");
  script.typeText(kLengthField, "300");
  script.sendCommand(toolkit::kHICommandOK);
  EXPECT_EQ(choose(kStockSizeCommand, Stock::kCustomSize), eventNotHandledErr);
  EXPECT_EQ(std::make_tuple(stock_.size(), stock_.width(), stock_.length()),
            std::make_tuple(Stock::kCustomSize, 709, 850));
}

}  // namespace
}  // namespace varno::ui
