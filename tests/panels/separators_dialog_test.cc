// SPDX-License-Identifier: Apache-2.0
// The transparency separators dialog, driven as a person would on the sample printer and
// the built plug-in's own window, strings and pictures.
#include "panels/paper_output/separators_dialog.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/print/session.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/window.h"
#include "support/temp_dir.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {
namespace {

using toolkit::Window;

// What a step saw of the open dialog.
struct Seen {
  std::int32_t option = 0;
  bool sourceEnabled = false;
  std::string picture;
  std::vector<std::int32_t> sources;
};

class SeparatorsDialog : public ::testing::Test {
 protected:
  void SetUp() override {
    session_.setPrinterPPD(VARNO_SAMPLE_PPD);
    print::SetCurrentPrintSession(&session_);
    ASSERT_TRUE(bundle_);
  }
  void TearDown() override {
    vocabulary::PPDCloseCurrent();
    print::SetCurrentPrintSession(nullptr);
    script().clear();
    toolkit::HeadlessAlerts().clear();
  }
  static toolkit::AutomationScript& script() { return toolkit::Application::shared().script(); }
  // Queues a look at the dialog as it stands at that point of the script.
  void peek() {
    script().add("peek", [this](Window& window) {
      Seen seen;
      toolkit::Control* source = window.findByID(kSeparatorSourcePopupID);
      seen.option = vocabulary::GetPopupButtonTicketValue(window.findByID(kSeparatorOptionPopupID));
      seen.sourceEnabled = source->isEnabled();
      seen.picture = window.findByID(kSeparatorPreviewID)->pictureName();
      for (toolkit::MenuItemIndex i = 1; i <= source->menu()->count(); ++i)
        seen.sources.push_back(static_cast<std::int32_t>(source->menu()->item(i)->refCon));
      seen_.push_back(seen);
      return noErr;
    });
  }

  print::Session session_;
  bundle::BundleRef bundle_ = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
  std::vector<Seen> seen_;
};

TEST_F(SeparatorsDialog, OKStoresWhatThePopupsShowAndCancelNothing) {
  struct Case {
    const char* what;
    std::int32_t option, source;  // before
    std::function<void()> steps;
    std::int16_t result;
    std::int32_t optionAfter, sourceAfter;
  } cases[] = {
      {"blank from tray 1", 1, vocabulary::kUnsetValue,
       [] {
         script().chooseMenuItemByRefCon(kSeparatorOptionPopupID, 2);
         script().chooseMenuItemByRefCon(kSeparatorSourcePopupID, 1);
         script().click(kSeparatorOKButtonID);
       },
       1, 2, 1},
      {"cancel after changes", 2, 3,
       [] {
         script().chooseMenuItemByRefCon(kSeparatorOptionPopupID, 3);
         script().chooseMenuItemByRefCon(kSeparatorSourcePopupID, 100);
         script().click(kSeparatorCancelButtonID);
       },
       2, 2, 3},
      {"defaults then OK keeps the tray", 3, 2,
       [] {
         script().chooseMenuItemByRefCon(kSeparatorSourcePopupID, 5);
         script().click(kSeparatorDefaultsButtonID);
         script().click(kSeparatorOKButtonID);
       },
       1, 1, 2},
      {"none leaves the tray", 2, 4,
       [] {
         script().chooseMenuItemByRefCon(kSeparatorSourcePopupID, 1);
         script().chooseMenuItemByRefCon(kSeparatorOptionPopupID, 1);
         script().click(kSeparatorOKButtonID);
       },
       1, 1, 4},
      {"closed without an answer", 3, 1, [] {}, 2, 3, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::int32_t option = c.option;
    model::Stock stock;
    stock.setSource(c.source);
    std::int16_t result = 0;
    c.steps();
    ASSERT_EQ(RunModalSeparatorsDialog(bundle_, &option, &stock, &result), noErr);
    EXPECT_EQ(result, c.result);
    EXPECT_EQ(option, c.optionAfter);
    EXPECT_EQ(stock.source(), c.sourceAfter);
    EXPECT_TRUE(script().failures().empty()) << script().failures().front();
    script().clear();
  }
}

TEST_F(SeparatorsDialog, TheOptionDecidesTheTrayAndThePicture) {
  std::int32_t option = 2;
  model::Stock stock;
  stock.setSource(3);
  std::int16_t result = 0;
  peek();
  for (std::int32_t chosen : {1, 3, 2}) {
    script().chooseMenuItemByRefCon(kSeparatorOptionPopupID, static_cast<toolkit::URefCon>(chosen));
    peek();
  }
  script().click(kSeparatorDefaultsButtonID);
  peek();
  script().sendCommand(kSeparatorHelpCommand);
  script().click(kSeparatorCancelButtonID);
  ASSERT_EQ(RunModalSeparatorsDialog(bundle_, &option, &stock, &result), noErr);
  ASSERT_EQ(seen_.size(), 5u);
  struct Expected {
    std::int32_t option;
    bool sourceEnabled;
    const char* picture;
  } expected[] = {
      {2, true, "Paper_TransparencySeparators_BlnkSeps-White.gif"},
      {1, false, "Paper_TransparencySeparators_NoSeps.gif"},
      {3, true, "Paper_TransparencySeparators_PrntdSeps-White.gif"},
      {2, true, "Paper_TransparencySeparators_BlnkSeps-White.gif"},
      {1, false, "Paper_TransparencySeparators_NoSeps.gif"},  // Defaults
  };
  for (std::size_t i = 0; i < seen_.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(seen_[i].option, expected[i].option);
    EXPECT_EQ(seen_[i].sourceEnabled, expected[i].sourceEnabled);
    EXPECT_EQ(seen_[i].picture, expected[i].picture);
  }
  // Without the high-capacity feeder its tray clashes with the printer's set-up.
  EXPECT_EQ(seen_[0].sources, (std::vector<std::int32_t>{0, 1, 2, 3, 4, 5, 100}));
  ASSERT_EQ(toolkit::HeadlessAlerts().helpRequests().size(), 1u);
  EXPECT_EQ(toolkit::HeadlessAlerts().helpRequests()[0].page, kSeparatorHelpPage);
}

TEST_F(SeparatorsDialog, AMissingWindowIsReportedAndChangesNothing) {
  testing::TempDir dir;
  dir.write("Bare.plugin/Contents/Info.plist",
            "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>");
  dir.write("Bare.plugin/Contents/Resources/Separators.interface.plist",
            "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Windows</key><dict/></dict></plist>");
  bundle::BundleRef bare = bundle::Bundle::Open(dir / "Bare.plugin");
  ASSERT_TRUE(bare);
  std::int32_t option = 3;
  model::Stock stock;
  stock.setSource(2);
  std::int16_t result = 7;
  EXPECT_EQ(RunModalSeparatorsDialog(bare, &option, &stock, &result), kInterfaceObjectNotFound);
  EXPECT_EQ(std::make_tuple(option, stock.source(), result), std::make_tuple(3, 2, std::int16_t{7}));
  EXPECT_EQ(RunModalSeparatorsDialog(bundle_, nullptr, &stock, &result), paramErr);
}

}  // namespace
}  // namespace varno::panels
