// SPDX-License-Identifier: Apache-2.0
// The Offset/Subset, Custom finishing and Coil Binding dialogs, driven as a person would
// on the sample printer and the built plug-in's own windows, strings and pictures.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "panels/paper_output/coil_binding_dialog.h"
#include "panels/paper_output/custom_finishing_dialog.h"
#include "panels/paper_output/offset_dialog.h"
#include "platform/print/session.h"
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

// Backspaces enough to empty any field of these dialogs.
const std::string kClear(8, '\b');

toolkit::AutomationScript& script() { return toolkit::Application::shared().script(); }
void Choose(toolkit::ControlID popup, std::int32_t value) {
  script().chooseMenuItemByRefCon(popup, static_cast<toolkit::URefCon>(value));
}
// Queues a look at the open dialog; what `see` returns is added to `seen`.
template <typename Seen, typename See>
void Peek(std::vector<Seen>& seen, See see) {
  script().add("peek", [&seen, see](Window& window) {
    seen.push_back(see(window));
    return noErr;
  });
}

class FinishingDialogs : public ::testing::Test {
 protected:
  void SetUp() override {
    session_.setPrinterPPD(VARNO_SAMPLE_PPD);
    print::SetCurrentPrintSession(&session_);
    ASSERT_TRUE(bundle_);
    context_.bundle = bundle_;
  }
  void TearDown() override {
    vocabulary::PPDCloseCurrent();
    print::SetCurrentPrintSession(nullptr);
    script().clear();
    toolkit::HeadlessAlerts().clear();
  }

  // The context's offset, whether subsets are offset, and the pages per subset.
  auto offsetStored() {
    return std::tie(context_.offset, context_.offsetEnableSubset, context_.offsetPagesPerSubset);
  }

  print::Session session_;
  bundle::BundleRef bundle_ = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
  PaperOutputContext context_;
};

// --- Offset/Subset ----------------------------------------------------------------------

// Offset, subsets box, pages field, arrows, whether field and arrows are enabled, and
// whether the field holds the focus.
using OffsetSeen = std::tuple<std::int32_t, std::int32_t, std::string, std::int32_t, bool, bool>;

OffsetSeen SeeOffset(Window& window) {
  toolkit::Control* field = window.findByID(kOffsetPagesFieldID);
  toolkit::Control* spin = window.findByID(kOffsetPagesSpinID);
  EXPECT_EQ(field->isEnabled(), spin->isEnabled()) << "the field and its arrows go together";
  return std::make_tuple(vocabulary::GetPopupButtonTicketValue(window.findByID(kOffsetPopupID)),
                         window.findByID(kOffsetSubsetCheckBoxID)->value(), field->text(),
                         spin->value(), field->isEnabled(), window.focus() == field);
}

TEST_F(FinishingDialogs, OffsetChoicesKeepSubsetsInStepAndRememberThePages) {
  context_.offset = kOffsetNone;
  context_.offsetEnableSubset = 0;
  context_.offsetPagesPerSubset = 25;
  std::vector<OffsetSeen> seen;
  const auto look = [&] { Peek(seen, SeeOffset); };
  look();
  script().typeText(kOffsetPagesFieldID, "3");  // refused: the field is dimmed
  Choose(kOffsetPopupID, kOffsetEachSubset);
  look();
  script().typeText(kOffsetPagesFieldID, kClear + "7");
  look();
  script().click(kOffsetPagesSpinID, toolkit::kControlUpButtonPart);
  look();
  for (int i = 0; i < 2; ++i) {
    script().click(kOffsetSubsetCheckBoxID);
    look();
  }
  for (std::int32_t offset : {kOffsetEachSet, kOffsetSetsAndSubsets, kOffsetPrinterDefault}) {
    Choose(kOffsetPopupID, offset);
    look();
  }
  script().typeText(kOffsetPagesFieldID, kClear + "0");  // Cancel does not check the count
  script().sendCommand(toolkit::kHICommandCancel);
  ASSERT_EQ(RunModalOffsetFinishingDialog(&context_), noErr);
  EXPECT_EQ(script().failures().size(), 1u);
  EXPECT_TRUE(toolkit::HeadlessAlerts().notices().empty());
  EXPECT_EQ(seen, (std::vector<OffsetSeen>{
                      {kOffsetNone, 0, "", 0, false, false},
                      {kOffsetEachSubset, 1, "25", 25, true, true},  // the stored count comes back
                      {kOffsetEachSubset, 1, "7", 7, true, true},    // the arrows follow the typing
                      {kOffsetEachSubset, 1, "8", 8, true, true},    // and the field the arrows
                      {kOffsetEachSet, 0, "", 0, false, false},      // box off: no subset offset
                      {kOffsetEachSet, 1, "8", 8, true, true},       // box on: the last count again
                      {kOffsetEachSet, 0, "", 0, false, false},
                      {kOffsetSetsAndSubsets, 1, "8", 8, true, true},
                      {kOffsetPrinterDefault, 1, "8", 8, true, true},  // the box stays as it was
                  }));
  EXPECT_EQ(offsetStored(), std::make_tuple(kOffsetNone, 0, 25)) << "Cancel changes nothing";
}

TEST_F(FinishingDialogs, OffsetOKStoresWhatItShowsWithinTheLimits) {
  using Stored = std::tuple<std::int32_t, std::int32_t, std::int32_t>;  // offset, subsets, pages
  const std::int32_t deflt = kOffsetPrinterDefault, sets = kOffsetEachSet,
                     subsets = kOffsetEachSubset, both = kOffsetSetsAndSubsets;
  const struct Case {
    const char* what;
    Stored before;
    bool clickBox;        // first click the subsets box,
    const char* typed;    // then type the pages (null: don't),
    std::int32_t chosen;  // then choose an offset (0: don't), then OK.
    Stored after;         // {}: OK is refused
  } cases[] = {
      {"count out of range: 1", {deflt, 0, 0}, false, nullptr, both, {both, 1, 1}},
      {"largest count", {deflt, 0, 1}, true, "99999", 0, {deflt, 1, 99999}},
      {"no sixth digit", {subsets, 1, 4}, false, "123456", 0, {subsets, 1, 12345}},
      {"smallest count", {subsets, 1, 5}, false, "1", 0, {subsets, 1, 1}},
      {"sets only keep the stored count", {both, 1, 12}, false, "40", sets, {sets, 0, 12}},
      {"an offset the menu lacks stays", {9, 0, 3}, false, nullptr, 0, {9, 0, 3}},
      {"zero pages refused", {subsets, 1, 5}, false, "0", 0, {}},
      {"an empty field refused", {subsets, 1, 5}, false, "", 0, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    toolkit::HeadlessAlerts().clear();
    offsetStored() = c.before;
    if (c.clickBox) script().click(kOffsetSubsetCheckBoxID);
    if (c.typed) script().typeText(kOffsetPagesFieldID, kClear + c.typed);
    if (c.chosen) Choose(kOffsetPopupID, c.chosen);
    script().sendCommand(toolkit::kHICommandOK);
    script().sendCommand(toolkit::kHICommandCancel);  // reached only when OK was refused
    const bool refused = c.after == Stored{};
    ASSERT_EQ(RunModalOffsetFinishingDialog(&context_), noErr);
    EXPECT_EQ(script().pending(), refused ? 0u : 1u);
    EXPECT_EQ(toolkit::HeadlessAlerts().notices().size(), refused ? 1u : 0u);
    EXPECT_EQ(offsetStored(), refused ? c.before : c.after);
    script().clear();
  }
}

// --- Custom finishing -------------------------------------------------------------------

// The field's text, whether OK can be clicked, whether the field holds the focus.
using CustomSeen = std::tuple<std::string, bool, bool>;

TEST_F(FinishingDialogs, CustomOKNeedsTextOfAtMostThirtyCharacters) {
  std::string thirty;
  for (int i = 0; i < 30; ++i) thirty += "Ä";  // two bytes, one character
  const auto see = [](Window& window) {
    toolkit::Control* field = window.findByID(kCustomFinishingFieldID);
    return CustomSeen{field->text(), window.findByID(kCustomFinishingOKButtonID)->isEnabled(),
                      window.focus() == field};
  };
  // Emptied, OK is refused until something is typed, and the 31st character is refused.
  context_.finishingOptions = 7;
  context_.customFinishing = "Fold";
  std::vector<CustomSeen> seen;
  Peek(seen, see);
  script().typeText(kCustomFinishingFieldID, kClear);
  Peek(seen, see);
  script().click(kCustomFinishingOKButtonID);   // dimmed: the click fails
  script().sendCommand(toolkit::kHICommandOK);  // a key equivalent is refused
  script().typeText(kCustomFinishingFieldID, thirty + "ÄB");
  Peek(seen, see);
  script().sendCommand(toolkit::kHICommandOK);
  ASSERT_EQ(RunModalCustomFinishingDialog(&context_), noErr);
  EXPECT_EQ(seen, (std::vector<CustomSeen>{
                      {"Fold", true, true}, {"", false, true}, {thirty, true, true}}));
  EXPECT_EQ(script().failures().size(), 1u);
  EXPECT_EQ(std::tie(context_.finishingOptions, context_.customFinishing),
            std::make_tuple(kCustomFinishingOptions, thirty));
  script().clear();

  // An empty instruction starts without OK; Cancel keeps what was stored.
  context_.finishingOptions = 7;
  context_.customFinishing = "";
  seen.clear();
  Peek(seen, see);
  script().typeText(kCustomFinishingFieldID, "Tape bind");
  Peek(seen, see);
  script().sendCommand(toolkit::kHICommandCancel);
  ASSERT_EQ(RunModalCustomFinishingDialog(&context_), noErr);
  EXPECT_EQ(seen, (std::vector<CustomSeen>{{"", false, true}, {"Tape bind", true, true}}));
  EXPECT_EQ(std::tie(context_.finishingOptions, context_.customFinishing),
            std::make_tuple(7, std::string()));
}

// --- Coil binding -----------------------------------------------------------------------

TEST_F(FinishingDialogs, CoilOKTakesTheChoicesAndAMarginWithinTheLimits) {
  // The margin typed, and what OK stores of it (nullopt: refused). "12345": a fifth
  // character cannot be typed, so 1234 is refused.
  const std::pair<const char*, std::optional<std::int32_t>> cases[] = {
      {"3.4", {}},  {"3.5", 35}, {"6.5", 65}, {"6.6", {}},  {"5", 50},    {"4,50", 45},
      {"4.55", {}}, {"", {}},    {".", {}},   {"4.5.", {}}, {"12345", {}}};
  const auto see = [](Window& window) {  // the margin field and the picture
    return std::make_tuple(window.findByID(kCoilMarginFieldID)->text(),
                           window.findByID(kCoilPictureID)->pictureName());
  };
  for (const auto& [typed, margin] : cases) {
    SCOPED_TRACE(typed);
    toolkit::HeadlessAlerts().clear();
    CoilBinding coil;
    std::vector<std::tuple<std::string, std::string>> seen;
    Peek(seen, see);
    Choose(kCoilEdgePopupID, kCoilTopEdge);
    Choose(kCoilPitchPopupID, kCoilPitch5mm);
    script().typeText(kCoilMarginFieldID, kClear + typed);
    Peek(seen, see);
    script().sendCommand(toolkit::kHICommandOK);
    script().sendCommand(toolkit::kHICommandCancel);  // reached only when OK was refused
    EXPECT_EQ(RunModalCoilBindingDialog(bundle_, &coil), margin.has_value());
    EXPECT_TRUE(script().failures().empty());
    EXPECT_EQ(script().pending(), margin ? 1u : 0u) << "a refused OK keeps the dialog open";
    EXPECT_EQ(toolkit::HeadlessAlerts().notices().size(), margin ? 0u : 1u);
    EXPECT_EQ(coil, (margin ? CoilBinding{kCoilTopEdge, kCoilPitch5mm, *margin} : CoilBinding{}));
    EXPECT_EQ(std::get<1>(seen.at(1)), "Finishing_CoilBinding_TopEdge.gif");
    EXPECT_EQ(seen.at(0), std::make_tuple("4.5", "Finishing_CoilBinding_LeftEdge.gif"));
    script().clear();
  }
  EXPECT_EQ(CoilBindingSummary(bundle_, CoilBinding{kCoilTopEdge, kCoilPitch5mm, 40}),
            "Coil Binding: Top Edge, 5 mm Pitch");
}

// --- All three --------------------------------------------------------------------------

// Texts of the tree that the code looked up and did not find.
void CollectMissingTexts(const toolkit::Control& control, std::vector<std::string>& missing) {
  const auto check = [&](const std::string& text) {
    if (text.find("STRING NOT FOUND") != std::string::npos) missing.push_back(text);
  };
  check(control.text());
  if (const toolkit::Menu* menu = control.menu())
    for (toolkit::MenuItemIndex i = 1; i <= menu->count(); ++i) check(menu->item(i)->text);
  for (std::size_t i = 0; i < control.childCount(); ++i)
    CollectMissingTexts(*control.child(i), missing);
}

TEST_F(FinishingDialogs, EachDialogOpensItsOwnHelpPageAndFindsAllItsTexts) {
  CoilBinding coil;
  const std::pair<const char*, std::function<bool()>> dialogs[] = {
      {kOffsetHelpPage, [this] { return RunModalOffsetFinishingDialog(&context_) == noErr; }},
      {kCustomFinishingHelpPage,
       [this] { return RunModalCustomFinishingDialog(&context_) == noErr; }},
      {kCoilHelpPage, [&] { return !RunModalCoilBindingDialog(bundle_, &coil); }},  // cancelled
  };
  for (const auto& [page, run] : dialogs) {
    SCOPED_TRACE(page);
    toolkit::HeadlessAlerts().clear();
    std::vector<std::string> missing;
    script().add("look for missing texts", [&missing](Window& window) {
      CollectMissingTexts(window, missing);
      return noErr;
    });
    script().sendCommand(MakeOSType("Vhlp"));
    script().sendCommand(toolkit::kHICommandCancel);
    EXPECT_TRUE(run());
    EXPECT_TRUE(script().failures().empty());
    EXPECT_EQ(script().pending(), 0u);
    EXPECT_EQ(missing, std::vector<std::string>{});
    ASSERT_EQ(toolkit::HeadlessAlerts().helpRequests().size(), 1u);
    EXPECT_EQ(toolkit::HeadlessAlerts().helpRequests()[0].page, page);
  }
}

TEST_F(FinishingDialogs, AMissingWindowIsReportedAndChangesNothing) {
  testing::TempDir dir;
  dir.write("Bare.plugin/Contents/Info.plist",
            "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>");
  dir.write("Bare.plugin/Contents/Resources/Finishing.interface.plist",
            "<?xml version=\"1.0\"?><plist "
            "version=\"1.0\"><dict><key>Windows</key><dict/></dict></plist>");
  context_.bundle = bundle::Bundle::Open(dir / "Bare.plugin");
  ASSERT_TRUE(context_.bundle);
  context_.offset = kOffsetEachSet;
  context_.customFinishing = "Fold";
  EXPECT_EQ(RunModalOffsetFinishingDialog(&context_), kInterfaceFileNotFound);
  EXPECT_EQ(RunModalCustomFinishingDialog(&context_), kInterfaceObjectNotFound);
  CoilBinding coil{kCoilRightEdge, kCoilPitch5mm, 50};
  EXPECT_FALSE(RunModalCoilBindingDialog(context_.bundle, &coil));
  EXPECT_EQ(std::tie(context_.offset, context_.customFinishing, context_.finishingOptions),
            std::make_tuple(kOffsetEachSet, std::string("Fold"), 0));
  EXPECT_EQ(coil, (CoilBinding{kCoilRightEdge, kCoilPitch5mm, 50}));
  EXPECT_EQ(RunModalOffsetFinishingDialog(nullptr), paramErr);
  EXPECT_EQ(RunModalCustomFinishingDialog(nullptr), paramErr);
  EXPECT_FALSE(RunModalCoilBindingDialog(bundle_, nullptr));
}

}  // namespace
}  // namespace varno::panels
