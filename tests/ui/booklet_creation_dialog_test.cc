// SPDX-License-Identifier: Apache-2.0
// The booklet creation dialog, driven as a person would on the built plug-in's own window
// and strings, on printers with and without a booklet maker.
#include "ui/booklet_creation_dialog.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "model/special_pages_ticket.h"
#include "platform/print/session.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/text_editing.h"
#include "platform/toolkit/window.h"
#include "support/temp_dir.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/ppd_access.h"

namespace varno::ui {
namespace {

using toolkit::ControlID;
using toolkit::Window;

constexpr const char* kBookletMakerPPD = VARNO_TEST_DATA_DIR "/ppd/Varno-BookletFaxPunch.ppd";
constexpr std::int32_t kA3 = 5;
const std::string kErase(3, toolkit::kBackspaceCharCode);

class BookletCreation : public ::testing::Test {
 protected:
  void SetUp() override {
    usePrinter(VARNO_SAMPLE_PPD);
    ASSERT_TRUE(bundle_);
    params_.bundle = bundle_;
    panel_.ticket = &ticket_;
    panel_.squareFold = &squareFold_;
    panel_.trim = &trim_;
    panel_.trimWidth = &trimWidth_;
    panel_.finishingMenu = menu_.get();
    for (toolkit::MenuCommand command :
         {MakeOSType("Stp1"), MakeOSType("Stp2"), MakeOSType("Stp4"), MakeOSType("Bkcr")})
      menu_->setItemEnabled(menu_->appendItem(toolkit::OSTypeString(command), command), false);
  }
  void TearDown() override {
    vocabulary::UnloadInstallableOptions();
    vocabulary::PPDCloseCurrent();
    print::SetCurrentPrintSession(nullptr);
    script().clear();
    toolkit::HeadlessAlerts().clear();
  }
  void usePrinter(const char* ppd) {
    vocabulary::UnloadInstallableOptions();
    vocabulary::PPDCloseCurrent();
    session_.setPrinterPPD(ppd);
    print::SetCurrentPrintSession(&session_);
    vocabulary::LoadInstallableOptions(vocabulary::PPDGetCurrent(), vocabulary::InstalledFeatures);
  }
  static toolkit::AutomationScript& script() { return toolkit::Application::shared().script(); }
  void peek(std::function<void(Window&)> look) {
    script().add("peek", [look](Window& window) {
      look(window);
      return noErr;
    });
  }
  // Queues a look at whether a person can reach each control.
  void peekReachable(std::vector<ControlID> ids, std::vector<bool>* reachable) {
    peek([ids, reachable](Window& window) {
      for (ControlID id : ids)
        reachable->push_back(window.findByID(id) && window.findByID(id)->isReachable());
    });
  }
  int run() { return RunModalBookletCreationDialog(&params_, &panel_); }
  int runOK() {
    script().sendCommand(toolkit::kHICommandOK);
    const int status = run();
    EXPECT_TRUE(script().failures().empty()) << script().failures().front();
    script().clear();
    return status;
  }
  bool stapleItemsEnabled() const {
    for (toolkit::MenuItemIndex i = 1; i <= 3; ++i) {
      if (!menu_->item(i)->enabled) return false;
    }
    return true;
  }

  print::Session session_;
  bundle::BundleRef bundle_ = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
  print::Ticket ticket_;
  toolkit::MenuPtr menu_ = toolkit::Menu::create();
  std::uint8_t squareFold_ = 0, trim_ = 0;
  std::int32_t trimWidth_ = kBookletDefaultTrimWidth;
  BookletCreationParameters params_;
  BookletPanelState panel_;
};

const std::vector<ControlID> kBookletChoices = {kBookletFoldRadioID, kBookletFoldAndStapleRadioID,
                                                kBookletLayoutRadioID};

TEST_F(BookletCreation, AFoldTurnsTheLayoutOnAndNoFoldTurnsItOff) {
  struct Case {
    std::vector<ControlID> clicks;
    std::int32_t fold, layout;
  } cases[] = {
      {{kBookletFoldRadioID}, kBookletFold, kBookletLayoutOn},
      {{kBookletFoldAndStapleRadioID}, kBookletFoldAndStaple, kBookletLayoutOn},
      {{kBookletFoldAndStapleRadioID, kBookletNoFoldRadioID}, kBookletNoFold, kBookletLayoutOff},
      {{kBookletFoldRadioID, kBookletLayoutNoneRadioID}, kBookletFold, kBookletLayoutOff},
      {{kBookletLayoutRadioID}, kBookletNoFold, kBookletLayoutOn},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "last click " << c.clicks.back().id);
    params_.fold = kBookletNoFold;
    params_.bookletLayout = kBookletLayoutOff;
    for (ControlID id : c.clicks) script().click(id);
    ASSERT_EQ(runOK(), noErr);
    EXPECT_EQ(std::make_pair(params_.fold, params_.bookletLayout),
              std::make_pair(c.fold, c.layout));
  }
}

TEST_F(BookletCreation, SpecialPagesDecideWhetherABookletCanBeChosen) {
  const plist::Value page(plist::Dictionary{{"PageNumber", 3}});
  const plist::Value pages(plist::Array{page});
  struct Case {
    const char* what;
    std::vector<std::pair<const char*, plist::Value>> items;
    bool allowed;
  } cases[] = {
      {"no special pages", {}, true},
      {"a front cover", {{model::kFrontCoverKey, page}}, false},
      {"an insert", {{model::kInsertListKey, pages}}, false},
      {"a back cover", {{model::kBackCoverKey, page}}, false},
      {"an exception and a back cover",
       {{model::kExceptionListKey, pages}, {model::kBackCoverKey, page}},
       true},
      {"an exception and a front cover",
       {{model::kExceptionListKey, pages}, {model::kFrontCoverKey, page}},
       false},
      // The front cover is there, so it decides, and the inserts are not looked at.
      {"an empty front cover and inserts",
       {{model::kFrontCoverKey, plist::Dictionary{}}, {model::kInsertListKey, pages}},
       true},
      {"an empty back cover", {{model::kBackCoverKey, plist::Dictionary{}}}, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ticket_ = print::Ticket();
    for (const auto& [key, value] : c.items)
      ASSERT_EQ(ticket_.setValue(key, value, "com.varno.print"), noErr);
    std::vector<bool> reachable;
    peekReachable(kBookletChoices, &reachable);
    ASSERT_EQ(runOK(), noErr);
    EXPECT_EQ(reachable, std::vector<bool>(3, c.allowed));
  }
  // The booklet options read the ticket they are given.
  ticket_ = print::Ticket();
  ASSERT_EQ(ticket_.setValue(model::kFrontCoverKey, page, "com.varno.print"), noErr);
  std::vector<bool> reachable;
  peekReachable({kBookletLayoutRadioID}, &reachable);
  script().sendCommand(toolkit::kHICommandOK);
  ASSERT_EQ(RunModalBookletOptionsDialog(&params_, &ticket_), noErr);
  EXPECT_EQ(reachable, std::vector<bool>{false});
}

TEST_F(BookletCreation, AChosenStapleRulesOutABookletAndNoBookletFreesTheStaples) {
  struct Case {
    const char* what;
    bool stapleChosen;
    std::int32_t fold, layout;
    ControlID click;  // {} for none
    bool ok;
    bool choicesReachable, staplesFreed;
  } cases[] = {
      {"staple chosen", true, kBookletNoFold, kBookletLayoutOff, {}, true, false, true},
      {"a fold kept", false, kBookletFold, kBookletLayoutOn, {}, true, true, false},
      {"the layout kept", false, kBookletNoFold, kBookletLayoutOn, {}, true, true, false},
      {"the fold taken off", false, kBookletFoldAndStaple, kBookletLayoutOn, kBookletNoFoldRadioID,
       true, true, true},
      {"cancelled", false, kBookletFold, kBookletLayoutOn, kBookletNoFoldRadioID, false, true,
       false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    for (toolkit::MenuItemIndex i = 1; i <= menu_->count(); ++i) menu_->setItemEnabled(i, false);
    panel_.stapleChosen = c.stapleChosen;
    params_.fold = c.fold;
    params_.bookletLayout = c.layout;
    std::vector<bool> reachable;
    peekReachable(kBookletChoices, &reachable);
    if (c.click.id) script().click(c.click);
    script().sendCommand(c.ok ? toolkit::kHICommandOK : toolkit::kHICommandCancel);
    EXPECT_EQ(run(), c.ok ? noErr : -1);
    EXPECT_TRUE(script().failures().empty());
    EXPECT_EQ(reachable, std::vector<bool>(3, c.choicesReachable));
    EXPECT_EQ(stapleItemsEnabled(), c.staplesFreed);
    EXPECT_FALSE(menu_->item(4)->enabled) << "only the staple items";
  }
}

TEST_F(BookletCreation, ThePreviewFollowsTheChoices) {
  const struct Step {
    ControlID click;
    const char* picture;
  } steps[] = {
      {kBookletLayoutRadioID, "BookletCreation_Booklet.gif"},
      {kBookletOutlinesCheckBoxID, "BookletCreation_Booklet-Outlines.gif"},
      {kBookletFoldRadioID, "BookletCreation_Booklet-Fold-Outlines.gif"},
      {kBookletOutlinesCheckBoxID, "BookletCreation_Booklet-Fold.gif"},
      {kBookletLayoutNoneRadioID, "BookletCreation_Fold.gif"},
      {kBookletFoldAndStapleRadioID, "BookletCreation_Booklet-Fold-Staple.gif"},
      {kBookletOutlinesCheckBoxID, "BookletCreation_Booklet-Fold-Staple-Outlines.gif"},
      {kBookletLayoutNoneRadioID, "BookletCreation_Fold-Staple.gif"},
      {kBookletNoFoldRadioID, "BookletCreation_None.gif"},
  };
  std::vector<std::string> shown, expected;
  peek([&](Window& window) { shown.push_back(window.findByID(kBookletPreviewID)->pictureName()); });
  expected.push_back("BookletCreation_None.gif");
  for (const Step& step : steps) {
    script().click(step.click);
    peek([&](Window& window) {
      shown.push_back(window.findByID(kBookletPreviewID)->pictureName());
    });
    expected.push_back(step.picture);
  }
  ASSERT_EQ(runOK(), noErr);
  EXPECT_EQ(shown, expected);
}

TEST_F(BookletCreation, CancelKeepsTheParametersAndOkReturnsWhatWasChosen) {
  panel_.squareFoldAvailable = true;
  const auto queueChoices = [] {
    script().click(kBookletFoldAndStapleRadioID);
    script().click(kBookletOutlinesCheckBoxID);
    script().chooseMenuItemByRefCon(kBookletNewSizePopupID, kA3);
    script().typeText(kBookletGutterFieldID, kErase + "36");
    script().typeText(kBookletCreepFieldID, kErase + "2.5");
    script().click(kBookletSquareFoldCheckBoxID);
    script().click(kBookletTrimCheckBoxID);
    script().typeText(kBookletTrimWidthFieldID, kErase + "7,5");
  };
  queueChoices();
  script().sendCommand(kBookletHelpCommand);
  script().sendCommand(toolkit::kHICommandCancel);
  EXPECT_EQ(run(), -1);
  EXPECT_TRUE(script().failures().empty()) << script().failures().front();
  script().clear();
  EXPECT_EQ(std::make_tuple(params_.fold, params_.bookletLayout, params_.drawOutlines,
                            params_.paperSize, params_.gutter, params_.creep),
            std::make_tuple(1, 2, 1, kBookletNoNewSize, 24, 0));
  EXPECT_EQ(std::make_tuple(squareFold_, trim_, trimWidth_),
            std::make_tuple(0, 0, kBookletDefaultTrimWidth));
  ASSERT_EQ(toolkit::HeadlessAlerts().helpRequests().size(), 1u);
  EXPECT_EQ(toolkit::HeadlessAlerts().helpRequests()[0].page, kBookletHelpPage);

  queueChoices();
  script().click(kBookletCreepSpinID, toolkit::kControlUpButtonPart);  // 2.6 mm
  std::string creepShown;
  peek([&](Window& window) { creepShown = window.findByID(kBookletCreepFieldID)->text(); });
  ASSERT_EQ(runOK(), noErr);
  EXPECT_EQ(creepShown, "2.6");
  EXPECT_EQ(std::make_tuple(params_.fold, params_.bookletLayout, params_.drawOutlines,
                            params_.paperSize, params_.gutter, params_.creep),
            std::make_tuple(53, 1, 2, kA3, 36, 26));
  EXPECT_EQ(std::make_tuple(squareFold_, trim_, trimWidth_), std::make_tuple(1, 1, 75));
}

TEST_F(BookletCreation, ANumberOutsideItsLimitsKeepsTheDialogOpen) {
  params_.bookletLayout = kBookletLayoutOn;
  script().typeText(kBookletGutterFieldID, kErase + "300");
  script().sendCommand(toolkit::kHICommandOK);
  bool stillOpen = false, focused = false;
  peek([&](Window& window) {
    stillOpen = window.inModalLoop();
    focused = window.findByID(kBookletGutterFieldID)->hasFocus();
  });
  script().typeText(kBookletGutterFieldID, kErase + "216");
  ASSERT_EQ(runOK(), noErr);
  EXPECT_TRUE(stillOpen && focused);
  ASSERT_EQ(toolkit::HeadlessAlerts().notices().size(), 1u);
  EXPECT_EQ(toolkit::HeadlessAlerts().notices()[0].header,
            "The gutter must be a whole number of points from 0 to 216.");
  EXPECT_EQ(params_.gutter, 216);
}

TEST_F(BookletCreation, SquareFoldAndTrimNeedTheTrimmerAndAFold) {
  const std::vector<ControlID> trimmer = {kBookletSquareFoldCheckBoxID, kBookletTrimCheckBoxID,
                                          kBookletTrimWidthFieldID};
  struct Case {
    bool available;
    std::int32_t fold;
    std::uint8_t trim;
    std::vector<bool> shown, reachable;
  } cases[] = {
      {false, kBookletFold, 1, {false, false, false}, {false, false, false}},
      {true, kBookletNoFold, 1, {true, true, true}, {false, false, false}},
      {true, kBookletFold, 0, {true, true, true}, {true, true, false}},
      {true, kBookletFoldAndStaple, 1, {true, true, true}, {true, true, true}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.available << " " << c.fold << " " << int{c.trim});
    panel_.squareFoldAvailable = c.available;
    params_.fold = c.fold;
    trim_ = c.trim;
    squareFold_ = 7;  // what the dialog hands back is 0 or 1, or nothing without a trimmer
    std::vector<bool> shown, reachable;
    peek([&](Window& window) {
      for (ControlID id : trimmer) shown.push_back(window.findByID(id)->isShown());
    });
    peekReachable(trimmer, &reachable);
    ASSERT_EQ(runOK(), noErr);
    EXPECT_EQ(shown, c.shown);
    EXPECT_EQ(reachable, c.reachable);
    EXPECT_EQ(squareFold_, c.available ? 1 : 7);
  }
}

TEST_F(BookletCreation, ThePrintersFinisherNamesTheFoldAndPicksTheOptionsWindow) {
  struct Case {
    const char* ppd;
    const char* fold;
    bool optionsHaveFinishing;
  } cases[] = {
      {VARNO_SAMPLE_PPD, "Booklet Fold", false},
      {kBookletMakerPPD, "Booklet Crease", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.ppd);
    usePrinter(c.ppd);
    std::string title, fold;
    peek([&](Window& window) {
      title = window.text();
      fold = window.findByID(kBookletFoldRadioID)->text();
    });
    ASSERT_EQ(runOK(), noErr);
    EXPECT_EQ(std::make_pair(title, fold),
              std::make_pair(std::string("Booklet Creation"), std::string(c.fold)));

    params_.fold = kBookletFold;
    bool finishing = false, trimmer = true;
    peek([&](Window& window) {
      title = window.text();
      finishing = window.findByID(kBookletFoldRadioID) != nullptr;
      trimmer = window.findByID(kBookletSquareFoldCheckBoxID) != nullptr;
    });
    script().click(kBookletLayoutRadioID);
    script().sendCommand(toolkit::kHICommandOK);
    ASSERT_EQ(RunModalBookletOptionsDialog(&params_, nullptr), noErr);
    EXPECT_EQ(title, "Booklet Options");
    EXPECT_EQ(finishing, c.optionsHaveFinishing);
    EXPECT_FALSE(trimmer);
    // Without finishing choices the fold stays as it was given.
    EXPECT_EQ(std::make_pair(params_.fold, params_.bookletLayout),
              std::make_pair(kBookletFold, kBookletLayoutOn));
  }
}

TEST_F(BookletCreation, AMissingInterfaceFileIsReportedAndChangesNothing) {
  testing::TempDir dir;
  dir.write("Bare.plugin/Contents/Info.plist",
            "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>");
  params_.bundle = bundle::Bundle::Open(dir / "Bare.plugin");
  ASSERT_TRUE(params_.bundle);
  params_.gutter = 50;
  EXPECT_EQ(run(), kInterfaceFileNotFound);
  EXPECT_EQ(RunModalBookletOptionsDialog(&params_, nullptr), kInterfaceFileNotFound);
  EXPECT_EQ(params_.gutter, 50);
  EXPECT_EQ(RunModalBookletCreationDialog(nullptr, &panel_), paramErr);
}

}  // namespace
}  // namespace varno::ui
