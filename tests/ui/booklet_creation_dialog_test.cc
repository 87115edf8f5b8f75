// SPDX-License-Identifier: Apache-2.0
// The booklet creation dialog, driven as a person would on the built plug-in's own window.
#include "ui/booklet_creation_dialog.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "model/special_pages_ticket.h"
#include "platform/print/session.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation_script.h"
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
const std::string kErase(3, '\b');
const plist::Value kPage(plist::Dictionary{{"PageNumber", 3}});

// For each control: '1' a person can reach it, '0' shown but out of reach, '-' hidden or absent.
std::string Reachable(Window& window, const std::vector<ControlID>& ids) {
  std::string seen;
  for (ControlID id : ids) {
    const toolkit::Control* control = window.findByID(id);
    seen += !control || !control->isShown() ? '-' : control->isReachable() ? '1' : '0';
  }
  return seen;
}

class BookletCreation : public ::testing::Test {
 protected:
  void SetUp() override {
    usePrinter(VARNO_SAMPLE_PPD);
    ASSERT_TRUE(bundle_);
    // The panel lends its ticket, no staple, no trimmer, its trimmer settings and its menu.
    panel_ = {&ticket_, false, false, &squareFold_, &trim_, &trimWidth_, menu_.get()};
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
  int run() { return RunModalBookletCreationDialog(&params_, &panel_); }
  int runOK() {
    script().sendCommand(toolkit::kHICommandOK);
    const int status = run();
    EXPECT_TRUE(script().failures().empty()) << script().failures().front();
    script().clear();
    return status;
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

TEST_F(BookletCreation, PagesStaplesAndTrimmerDecideWhatCanBeChosenAndOkTakesTheClicks) {
  const char *front = model::kFrontCoverKey, *back = model::kBackCoverKey,
             *inserts = model::kInsertListKey, *exceptions = model::kExceptionListKey;
  const plist::Value none = plist::Dictionary{}, list = plist::Array{kPage};
  const ControlID fold = kBookletFoldRadioID, staple = kBookletFoldAndStapleRadioID,
                  noFold = kBookletNoFoldRadioID, layout = kBookletLayoutRadioID,
                  noLayout = kBookletLayoutNoneRadioID, outlines = kBookletOutlinesCheckBoxID,
                  trim = kBookletTrimCheckBoxID;
  const std::int32_t flat = kBookletNoFold, folded = kBookletFold, stapled = kBookletFoldAndStaple,
                     on = kBookletLayoutOn, off = kBookletLayoutOff;
  const struct Case {
    std::vector<std::pair<const char*, plist::Value>> pages;  // the special pages
    const char* panel;              // a "staple" chosen, a "trimmer", or neither
    std::vector<ControlID> clicks;  // then OK
    const char* reachable;          // fold, fold and staple, layout; square fold, trim, trim width
    std::int32_t fold, layout;
    const char* preview;  // BookletCreation_*.gif
    bool staplesFreed;    // the panel's staple items enabled again
  } cases[] = {
      {{}, "", {}, "111---", flat, off, "None", true},
      {{}, "", {fold}, "111---", folded, on, "Booklet-Fold", false},
      {{}, "", {staple}, "111---", stapled, on, "Booklet-Fold-Staple", false},
      {{}, "", {staple, noFold}, "111---", flat, off, "None", true},
      {{}, "", {fold, noLayout}, "111---", folded, off, "Fold", false},
      {{}, "", {staple, noLayout}, "111---", stapled, off, "Fold-Staple", false},
      {{}, "", {layout}, "111---", flat, on, "Booklet", false},
      {{}, "", {layout, outlines}, "111---", flat, on, "Booklet-Outlines", false},
      {{}, "", {staple, outlines}, "111---", stapled, on, "Booklet-Fold-Staple-Outlines", false},
      {{}, "staple", {}, "000---", flat, off, "None", true},  // no staple through a booklet
      {{{front, kPage}}, "", {}, "000---", flat, off, "None", true},
      {{{inserts, list}}, "", {}, "000---", flat, off, "None", true},
      {{{back, kPage}}, "", {}, "000---", flat, off, "None", true},
      {{{exceptions, list}, {back, kPage}}, "", {}, "111---", flat, off, "None", true},
      {{{exceptions, list}, {front, kPage}}, "", {}, "000---", flat, off, "None", true},
      // A front cover that is there decides, even when empty: the inserts are not looked at.
      {{{front, none}, {inserts, list}}, "", {}, "111---", flat, off, "None", true},
      {{{back, none}}, "", {}, "111---", flat, off, "None", true},
      {{}, "trimmer", {}, "111000", flat, off, "None", true},
      {{}, "trimmer", {fold, outlines}, "111110", folded, on, "Booklet-Fold-Outlines", false},
      {{}, "trimmer", {staple, trim}, "111111", stapled, on, "Booklet-Fold-Staple", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "case " << &c - cases);
    ticket_ = print::Ticket();
    for (const auto& [key, value] : c.pages)
      ASSERT_EQ(ticket_.setValue(key, value, "com.varno.print"), noErr);
    panel_.stapleChosen = c.panel == std::string("staple");
    panel_.squareFoldAvailable = c.panel == std::string("trimmer");
    params_ = {.bundle = bundle_};
    // A trimmer's square fold comes back as 0 or 1, and its trim width as it came.
    std::tie(squareFold_, trimWidth_) = std::make_tuple(7, 120);
    for (toolkit::MenuItemIndex i = 1; i <= 4; ++i) menu_->setItemEnabled(i, false);
    for (ControlID id : c.clicks) script().click(id);
    std::string reachable, preview, staples;  // "Stp1", "Stp2", "Stp4", an item that stays
    peek([&](Window& window) {
      reachable = Reachable(window, {fold, staple, layout, kBookletSquareFoldCheckBoxID, trim,
                                     kBookletTrimWidthFieldID});
      preview = window.findByID(kBookletPreviewID)->pictureName();
    });
    ASSERT_EQ(runOK(), noErr);
    for (toolkit::MenuItemIndex i = 1; i <= 4; ++i) staples += menu_->item(i)->enabled ? '1' : '0';
    EXPECT_EQ(std::tie(reachable, params_.fold, params_.bookletLayout, staples),
              std::make_tuple(c.reachable, c.fold, c.layout, c.staplesFreed ? "1110" : "0000"));
    EXPECT_EQ(preview, std::string("BookletCreation_") + c.preview + ".gif");
    EXPECT_EQ(std::tie(squareFold_, trimWidth_),
              std::make_tuple(panel_.squareFoldAvailable ? 1 : 7, 120));
  }
}

TEST_F(BookletCreation, OkStoresTheChoicesWithinTheLimitsAndCancelNothing) {
  const ControlID gutter = kBookletGutterFieldID, creep = kBookletCreepFieldID,
                  width = kBookletTrimWidthFieldID;
  const struct Case {
    ControlID field;
    const char* typed;
    std::optional<std::int32_t> value;  // what OK stores; nullopt: OK is refused, then Cancel
  } cases[] = {
      {gutter, "216", 216}, {gutter, "217", {}}, {gutter, "", {}},    {creep, "2,5", 25},
      {creep, "10", 100},   {creep, "10.1", {}}, {creep, "1.25", {}}, {width, "2", 20},
      {width, "20.0", 200}, {width, "1,9", {}},  {width, "20.1", {}},
  };
  panel_.squareFoldAvailable = true;
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.field.id << " \"" << c.typed << "\"");
    toolkit::HeadlessAlerts().clear();
    params_ = {.bundle = bundle_};
    std::tie(squareFold_, trim_, trimWidth_) = std::make_tuple(0, 0, kBookletDefaultTrimWidth);
    script().click(kBookletFoldAndStapleRadioID);
    script().click(kBookletOutlinesCheckBoxID);
    script().chooseMenuItemByRefCon(kBookletNewSizePopupID, kA3);
    script().click(kBookletCreepSpinID, toolkit::kControlUpButtonPart);  // 0.1 mm
    std::string creepShown;  // the arrows rewrite the field
    peek([&](Window& window) { creepShown = window.findByID(kBookletCreepFieldID)->text(); });
    script().click(kBookletSquareFoldCheckBoxID);
    script().click(kBookletTrimCheckBoxID);
    script().sendCommand(kBookletHelpCommand);
    script().typeText(c.field, kErase + c.typed);
    script().sendCommand(toolkit::kHICommandOK);
    script().click(kBookletNoFoldRadioID);  // when OK is refused: no booklet, then Cancel
    script().sendCommand(toolkit::kHICommandCancel);
    EXPECT_EQ(run(), c.value ? noErr : -1);
    EXPECT_TRUE(script().failures().empty()) << script().failures().front();
    EXPECT_EQ(script().pending(), c.value ? 2u : 0u) << "a refused OK keeps the dialog open";
    EXPECT_FALSE(menu_->item(1)->enabled) << "a folded booklet and Cancel keep the staples out";
    script().clear();
    EXPECT_EQ(creepShown, "0.1");
    EXPECT_EQ(toolkit::HeadlessAlerts().notices().size(), c.value ? 0u : 1u);
    ASSERT_EQ(toolkit::HeadlessAlerts().helpRequests().size(), 1u);
    EXPECT_EQ(toolkit::HeadlessAlerts().helpRequests()[0].page, kBookletHelpPage);
    std::int32_t numbers[] = {24, 1, kBookletDefaultTrimWidth};  // gutter, creep, trim width
    if (c.value) numbers[c.field == gutter ? 0 : c.field == creep ? 1 : 2] = *c.value;
    EXPECT_EQ(std::tie(params_.fold, params_.bookletLayout, params_.drawOutlines, params_.paperSize,
                       params_.gutter, params_.creep, squareFold_, trim_, trimWidth_),
              c.value ? std::make_tuple(53, 1, 2, kA3, numbers[0], numbers[1], 1, 1, numbers[2])
                      : std::make_tuple(1, 2, 1, kBookletNoNewSize, 24, 0, 0, 0, 50));
  }
}

TEST_F(BookletCreation, ThePrintersFinisherNamesTheFoldAndPicksTheOptionsWindow) {
  // The options read the ticket they are given: its front cover rules a booklet out.
  ASSERT_EQ(ticket_.setValue(model::kFrontCoverKey, kPage, "com.varno.print"), noErr);
  const std::vector<ControlID> looked = {kBookletFoldRadioID, kBookletLayoutRadioID,
                                         kBookletSquareFoldCheckBoxID};
  for (const auto& [ppd, foldName, options] :  // options: fold, layout, square fold
       {std::make_tuple(VARNO_SAMPLE_PPD, "Booklet Fold", "-0-"),
        std::make_tuple(kBookletMakerPPD, "Booklet Crease", "00-")}) {
    SCOPED_TRACE(ppd);
    usePrinter(ppd);
    params_ = {.bundle = bundle_, .fold = kBookletFold, .bookletLayout = kBookletLayoutOn};
    std::string fold, seen;
    peek([&](Window& window) { fold = window.findByID(kBookletFoldRadioID)->text(); });
    ASSERT_EQ(runOK(), noErr);
    peek([&](Window& window) { seen = Reachable(window, looked); });
    script().click(kBookletLayoutNoneRadioID);
    script().sendCommand(toolkit::kHICommandOK);
    ASSERT_EQ(RunModalBookletOptionsDialog(&params_, &ticket_), noErr);
    // Without finishing choices the fold stays as it was given.
    EXPECT_EQ(std::tie(fold, seen, params_.fold, params_.bookletLayout),
              std::make_tuple(foldName, options, kBookletFold, kBookletLayoutOff));
  }
}

TEST_F(BookletCreation, AMissingInterfaceFileIsReportedAndChangesNothing) {
  testing::TempDir dir;
  dir.write("Bare.plugin/Contents/Info.plist",
            "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>");
  params_.bundle = bundle::Bundle::Open(dir / "Bare.plugin");
  params_.gutter = 50;
  EXPECT_EQ(run(), kInterfaceFileNotFound);
  EXPECT_EQ(RunModalBookletOptionsDialog(&params_, nullptr), kInterfaceFileNotFound);
  EXPECT_EQ(params_.gutter, 50);
  EXPECT_EQ(RunModalBookletCreationDialog(nullptr, &panel_), paramErr);
}

}  // namespace
}  // namespace varno::ui
