// SPDX-License-Identifier: Apache-2.0
// The covers dialog, driven as a person would on the sample printer and the built
// plug-in's own window and strings.
#include "ui/covers_dialog.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/print/session.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/window.h"
#include "support/temp_dir.h"
#include "ui/stock_menus.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::ui {
namespace {

using model::Cover;
using toolkit::Control;
using toolkit::ControlID;
using toolkit::Window;
using vocabulary::kUnsetValue;

constexpr ControlID kFrontStock = CoverControlID(kFrontCoverGroupID, kCoverStockButtonOffset);
constexpr ControlID kFrontSummary = CoverControlID(kFrontCoverGroupID, kCoverStockSummaryOffset);
constexpr ControlID kFrontSource = CoverControlID(kFrontCoverGroupID, kCoverSourcePopupOffset);
constexpr ControlID kFrontSides = CoverControlID(kFrontCoverGroupID, kCoverSidesPopupOffset);
constexpr ControlID kBackStock = CoverControlID(kBackCoverGroupID, kCoverStockButtonOffset);
constexpr ControlID kBackSource = CoverControlID(kBackCoverGroupID, kCoverSourcePopupOffset);
constexpr ControlID kBackSides = CoverControlID(kBackCoverGroupID, kCoverSidesPopupOffset);

std::unique_ptr<Cover> CoverFrom(std::int32_t source, std::int32_t sides) {
  auto cover = std::make_unique<Cover>();
  cover->stock().setSource(source);
  cover->setSidesImaged(sides);
  return cover;
}

class CoversDialog : public ::testing::Test {
 protected:
  void SetUp() override {
    session_.setPrinterPPD(VARNO_SAMPLE_PPD);
    print::SetCurrentPrintSession(&session_);
    vocabulary::LoadInstallableOptions(vocabulary::PPDGetCurrent(), vocabulary::InstalledFeatures);
    ASSERT_TRUE(bundle_);
    jobStock_.setSize(4);
    jobStock_.setColor(2);
    jobStock_.setType(1);
  }
  void TearDown() override {
    vocabulary::UnloadInstallableOptions();
    vocabulary::PPDCloseCurrent();
    print::SetCurrentPrintSession(nullptr);
    script().clear();
    toolkit::HeadlessAlerts().clear();
  }
  static toolkit::AutomationScript& script() { return toolkit::Application::shared().script(); }
  // Queues choosing the item for `value` in the stock menu's submenu of `command`, as a
  // person does through "Other Size", "Other Color" or "Other Type".
  static void chooseStock(ControlID button, toolkit::MenuCommand command, std::int32_t value) {
    script().add("stock submenu", [=](Window& window) {
      Control* control = window.findByID(button);
      if (!control || !control->menu()) return paramErr;
      for (toolkit::MenuItemIndex i = 1; i <= control->menu()->count(); ++i) {
        const toolkit::MenuItem* item = control->menu()->item(i);
        if (item->command != command || !item->submenu) continue;
        const toolkit::MenuItemIndex chosen = item->submenu->findRefCon(static_cast<std::uint32_t>(value));
        return chosen ? toolkit::ChooseSubmenuItem(*control, i, chosen) : menuItemNotFoundErr;
      }
      return menuItemNotFoundErr;
    });
  }
  // Queues a look at the dialog at that point of the script.
  void peek(std::function<void(Window&)> look) {
    script().add("peek", [look](Window& window) {
      look(window);
      return noErr;
    });
  }
  OSStatus run(std::int32_t mode, std::int16_t* itemHit, CoversUndoState* undo = nullptr) {
    return RunModalCoversDialog(bundle_, mode, &jobStock_, &front_, &back_, itemHit, undo);
  }
  void expectNoScriptFailures() {
    EXPECT_TRUE(script().failures().empty()) << script().failures().front();
    script().clear();
  }

  print::Session session_;
  bundle::BundleRef bundle_ = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
  model::Stock jobStock_;
  std::unique_ptr<Cover> front_, back_;
};

TEST_F(CoversDialog, TheOptionDecidesWhichCoversAreKept) {
  struct Case {
    std::int32_t mode;
    std::int32_t option;  // 0: leave the pop-up as the dialog opens
    bool front, back;
  } cases[] = {
      {kCoversDialogEdit, 1, false, false},
      {kCoversDialogEdit, 2, true, false},
      {kCoversDialogEdit, 3, false, true},
      {kCoversDialogEdit, 5, true, true},
      {kCoversDialogAdd, 0, true, false},  // adding offers a front cover
      {kCoversDialogEdit, 0, false, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "mode " << c.mode << ", option " << c.option);
    front_.reset();
    back_.reset();
    if (c.option) script().chooseMenuItemByRefCon(kCoverOptionPopupID, static_cast<toolkit::URefCon>(c.option));
    bool frontReachable = false, backReachable = false;
    peek([&](Window& window) {
      frontReachable = window.findByID(kFrontSides)->isReachable();
      backReachable = window.findByID(kBackSides)->isReachable();
    });
    script().sendCommand(toolkit::kHICommandOK);
    std::int16_t itemHit = 0;
    ASSERT_EQ(run(c.mode, &itemHit), noErr);
    EXPECT_EQ(itemHit, 1);
    EXPECT_EQ(std::make_pair(frontReachable, backReachable), std::make_pair(c.front, c.back));
    ASSERT_EQ(front_ != nullptr, c.front);
    ASSERT_EQ(back_ != nullptr, c.back);
    // A new cover follows the job's stock, comes from "Auto" and is blank.
    for (const Cover* cover : {front_.get(), back_.get()}) {
      if (!cover) continue;
      EXPECT_EQ(std::make_tuple(cover->stock().size(), cover->stock().color(), cover->stock().type()),
                std::make_tuple(kUnsetValue, kUnsetValue, kUnsetValue));
      EXPECT_EQ(cover->stock().source(), 0);
      EXPECT_EQ(cover->sidesImaged(), kCoverSidesBlank);
    }
    expectNoScriptFailures();
  }
}

TEST_F(CoversDialog, EachCoversStockTrayAndSidesReachItsSlot) {
  chooseStock(kFrontStock, kStockSizeCommand, 4);  // A4
  script().chooseMenuItemByRefCon(kFrontSource, 2);
  script().chooseMenuItemByRefCon(kFrontSides, static_cast<toolkit::URefCon>(kCoverSidesBoth));
  script().chooseMenuItemByRefCon(kCoverOptionPopupID, 5);
  chooseStock(kBackStock, kStockColorCommand, 2);  // Blue
  script().chooseMenuItemByRefCon(kBackSource, 100);
  script().chooseMenuItemByRefCon(kBackSides, static_cast<toolkit::URefCon>(kCoverSidesFront));
  std::string summary;
  std::vector<std::int32_t> trays;
  peek([&](Window& window) {
    summary = window.findByID(kFrontSummary)->text();
    const toolkit::Menu* menu = window.findByID(kFrontSource)->menu();
    for (toolkit::MenuItemIndex i = 1; i <= menu->count(); ++i) trays.push_back(static_cast<std::int32_t>(menu->item(i)->refCon));
  });
  script().sendCommand(toolkit::kHICommandOK);
  std::int16_t itemHit = 0;
  ASSERT_EQ(run(kCoversDialogAdd, &itemHit), noErr);
  expectNoScriptFailures();
  ASSERT_EQ(itemHit, 1);
  ASSERT_TRUE(front_ && back_);
  EXPECT_EQ(summary, "- A4");
  // No "None" (that is no cover), and no tray the printer's set-up lacks.
  EXPECT_EQ(trays, (std::vector<std::int32_t>{0, 1, 2, 3, 4, 5, 100}));
  EXPECT_EQ(std::make_tuple(front_->stock().size(), front_->stock().color(), front_->stock().source(), front_->sidesImaged()),
            std::make_tuple(4, kUnsetValue, 2, kCoverSidesBoth));
  EXPECT_EQ(std::make_tuple(back_->stock().size(), back_->stock().color(), back_->stock().source(), back_->sidesImaged()),
            std::make_tuple(kUnsetValue, 2, 100, kCoverSidesFront));
}

TEST_F(CoversDialog, CancelKeepsTheSlotsAndRevertGoesBackToTheFirstRun) {
  front_ = CoverFrom(3, kCoverSidesBack);
  Cover* const original = front_.get();
  CoversUndoState undo;

  // Cancel after changing everything: the very same cover stays.
  script().chooseMenuItemByRefCon(kFrontSource, 1);
  script().chooseMenuItemByRefCon(kCoverOptionPopupID, 3);
  script().sendCommand(kCoversHelpCommand);
  script().sendCommand(toolkit::kHICommandCancel);
  std::int16_t itemHit = 0;
  ASSERT_EQ(run(kCoversDialogEdit, &itemHit, &undo), noErr);
  expectNoScriptFailures();
  EXPECT_EQ(itemHit, 2);
  EXPECT_EQ(front_.get(), original);
  EXPECT_FALSE(back_);
  EXPECT_EQ(front_->stock().source(), 3);
  ASSERT_EQ(toolkit::HeadlessAlerts().helpRequests().size(), 1u);
  EXPECT_EQ(toolkit::HeadlessAlerts().helpRequests()[0].page, kCoversHelpPage);

  // The covers are dropped, then the next run reverts to the cover of the first run.
  script().chooseMenuItemByRefCon(kCoverOptionPopupID, 1);
  script().sendCommand(toolkit::kHICommandOK);
  ASSERT_EQ(run(kCoversDialogEdit, &itemHit, &undo), noErr);
  ASSERT_FALSE(front_);
  script().sendCommand(toolkit::kHICommandRevert);
  script().sendCommand(toolkit::kHICommandOK);
  ASSERT_EQ(run(kCoversDialogEdit, &itemHit, &undo), noErr);
  expectNoScriptFailures();
  ASSERT_TRUE(front_);
  EXPECT_FALSE(back_);
  EXPECT_EQ(*front_, *CoverFrom(3, kCoverSidesBack));
  ASSERT_TRUE(undo.saved && undo.front);
  EXPECT_EQ(*undo.front, *CoverFrom(3, kCoverSidesBack));

  // Without an undo state, Revert goes back to the slots as given.
  back_ = CoverFrom(1, kCoverSidesBoth);
  script().chooseMenuItemByRefCon(kCoverOptionPopupID, 1);
  script().sendCommand(toolkit::kHICommandRevert);
  script().sendCommand(toolkit::kHICommandOK);
  ASSERT_EQ(run(kCoversDialogEdit, &itemHit), noErr);
  ASSERT_TRUE(front_ && back_);
  EXPECT_EQ(*back_, *CoverFrom(1, kCoverSidesBoth));
}

TEST_F(CoversDialog, AMissingInterfaceFileIsReportedAndChangesNothing) {
  testing::TempDir dir;
  dir.write("Bare.plugin/Contents/Info.plist", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>");
  bundle::BundleRef bare = bundle::Bundle::Open(dir / "Bare.plugin");
  ASSERT_TRUE(bare);
  front_ = CoverFrom(2, kCoverSidesFront);
  Cover* const original = front_.get();
  std::int16_t itemHit = 9;
  CoversUndoState undo;
  EXPECT_EQ(RunModalCoversDialog(bare, kCoversDialogEdit, &jobStock_, &front_, &back_, &itemHit, &undo),
            kInterfaceFileNotFound);
  EXPECT_EQ(std::make_tuple(front_.get(), back_.get(), itemHit, undo.saved),
            std::make_tuple(original, static_cast<Cover*>(nullptr), std::int16_t{9}, false));
  EXPECT_EQ(run(2, &itemHit), paramErr) << "no such mode";
}

}  // namespace
}  // namespace varno::ui
