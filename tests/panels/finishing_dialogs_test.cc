// SPDX-License-Identifier: Apache-2.0
// The Offset/Subset, Custom finishing and Coil Binding dialogs, driven as a person would
// on the sample printer and the built plug-in's own windows, strings and pictures.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "panels/paper_output/coil_binding_dialog.h"
#include "panels/paper_output/custom_finishing_dialog.h"
#include "panels/paper_output/offset_dialog.h"
#include "platform/plist/file.h"
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

// Backspaces enough to empty any field of these dialogs.
const std::string kClear(8, '\b');

toolkit::URefCon Ref(std::int32_t value) {
  return static_cast<toolkit::URefCon>(static_cast<std::intptr_t>(value));
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
  static toolkit::AutomationScript& script() { return toolkit::Application::shared().script(); }
  // Queues a look at the open dialog; `see` writes what it saw into `seen`.
  template <typename Seen>
  void peek(std::vector<Seen>& seen, std::function<Seen(Window&)> see) {
    script().add("peek", [&seen, see](Window& window) {
      seen.push_back(see(window));
      return noErr;
    });
  }
  void expectScriptRan(std::size_t failures = 0) {
    EXPECT_EQ(script().failures().size(), failures);
    EXPECT_EQ(script().pending(), 0u);
    script().clear();
  }

  print::Session session_;
  bundle::BundleRef bundle_ = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
  PaperOutputContext context_;
};

// --- Offset/Subset ----------------------------------------------------------------------

struct OffsetSeen {
  std::int32_t offset;
  std::int32_t checked;
  std::string pages;
  std::int32_t spin;
  bool enabled;  // field and arrows alike
  bool focused;  // the field holds the focus
  bool operator==(const OffsetSeen&) const = default;
};

std::ostream& operator<<(std::ostream& out, const OffsetSeen& s) {
  return out << "{offset " << s.offset << ", checked " << s.checked << ", \"" << s.pages
             << "\", spin " << s.spin << (s.enabled ? ", enabled" : ", disabled")
             << (s.focused ? ", focused}" : "}");
}

OffsetSeen SeeOffset(Window& window) {
  toolkit::Control* field = window.findByID(kOffsetPagesFieldID);
  toolkit::Control* spin = window.findByID(kOffsetPagesSpinID);
  EXPECT_EQ(field->isEnabled(), spin->isEnabled()) << "the field and its arrows go together";
  return {vocabulary::GetPopupButtonTicketValue(window.findByID(kOffsetPopupID)),
          window.findByID(kOffsetSubsetCheckBoxID)->value(),
          field->text(),
          spin->value(),
          field->isEnabled(),
          window.focus() == field};
}

TEST_F(FinishingDialogs, OffsetChoicesKeepSubsetsInStepAndRememberThePages) {
  context_.offset = kOffsetNone;
  context_.offsetEnableSubset = 0;
  context_.offsetPagesPerSubset = 25;
  std::vector<OffsetSeen> seen;
  const auto look = [&] { peek<OffsetSeen>(seen, SeeOffset); };
  look();
  script().typeText(kOffsetPagesFieldID, "3");  // refused: the field is dimmed
  script().chooseMenuItemByRefCon(kOffsetPopupID, Ref(kOffsetEachSubset));
  look();
  script().typeText(kOffsetPagesFieldID, kClear + "7");
  look();
  script().click(kOffsetPagesSpinID, toolkit::kControlUpButtonPart);
  look();
  script().click(kOffsetSubsetCheckBoxID);
  look();
  script().click(kOffsetSubsetCheckBoxID);
  look();
  script().chooseMenuItemByRefCon(kOffsetPopupID, Ref(kOffsetEachSet));
  look();
  script().chooseMenuItemByRefCon(kOffsetPopupID, Ref(kOffsetSetsAndSubsets));
  look();
  script().chooseMenuItemByRefCon(kOffsetPopupID, Ref(kOffsetPrinterDefault));
  look();
  script().sendCommand(toolkit::kHICommandCancel);
  ASSERT_EQ(RunModalOffsetFinishingDialog(&context_), noErr);
  expectScriptRan(1);

  const std::vector<OffsetSeen> expected = {
      {kOffsetNone, 0, "", 0, false, false},
      {kOffsetEachSubset, 1, "25", 25, true, true},  // the stored count comes back
      {kOffsetEachSubset, 1, "7", 7, true, true},    // the arrows follow the typing
      {kOffsetEachSubset, 1, "8", 8, true, true},    // and the field the arrows
      {kOffsetEachSet, 0, "", 0, false, false},      // box off: subsets no longer offset
      {kOffsetEachSet, 1, "8", 8, true, true},       // box on: the last count again
      {kOffsetEachSet, 0, "", 0, false, false},
      {kOffsetSetsAndSubsets, 1, "8", 8, true, true},
      {kOffsetPrinterDefault, 1, "8", 8, true, true},  // the box stays as it was
  };
  EXPECT_EQ(seen, expected);
  EXPECT_EQ(std::tie(context_.offset, context_.offsetEnableSubset, context_.offsetPagesPerSubset),
            std::make_tuple(kOffsetNone, 0, 25))
      << "Cancel changes nothing";
}

TEST_F(FinishingDialogs, OffsetOKStoresWhatItShowsWithinTheLimits) {
  struct Case {
    const char* what;
    std::int32_t offset, enabled, pages;  // before
    std::function<void()> steps;
    std::size_t notices;
    std::int32_t offsetAfter, enabledAfter, pagesAfter;
  } cases[] = {
      {"a new job's subsets start at one page", kOffsetPrinterDefault, 0, 1,
       [] { script().chooseMenuItemByRefCon(kOffsetPopupID, Ref(kOffsetSetsAndSubsets)); }, 0,
       kOffsetSetsAndSubsets, 1, 1},
      {"typed pages", kOffsetPrinterDefault, 0, 1,
       [] {
         script().click(kOffsetSubsetCheckBoxID);
         script().typeText(kOffsetPagesFieldID, kClear + "99999");
       },
       0, kOffsetPrinterDefault, 1, 99999},
      {"a sixth digit cannot be typed", kOffsetEachSubset, 1, 4,
       [] { script().typeText(kOffsetPagesFieldID, kClear + "123456"); }, 0, kOffsetEachSubset, 1,
       12345},
      {"sets only keeps the stored pages", kOffsetSetsAndSubsets, 1, 12,
       [] {
         script().typeText(kOffsetPagesFieldID, kClear + "40");
         script().chooseMenuItemByRefCon(kOffsetPopupID, Ref(kOffsetEachSet));
       },
       0, kOffsetEachSet, 0, 12},
      {"zero pages refused, then fixed", kOffsetEachSubset, 1, 5,
       [] {
         script().typeText(kOffsetPagesFieldID, kClear + "0");
         script().sendCommand(toolkit::kHICommandOK);
         script().typeText(kOffsetPagesFieldID, kClear + "3");
       },
       1, kOffsetEachSubset, 1, 3},
      {"an empty field refused", kOffsetEachSubset, 1, 5,
       [] {
         script().typeText(kOffsetPagesFieldID, kClear);
         script().sendCommand(toolkit::kHICommandOK);
         script().sendCommand(toolkit::kHICommandCancel);
       },
       1, kOffsetEachSubset, 1, 5},
      {"a stored offset the menu lacks stays", 9, 0, 3, [] {}, 0, 9, 0, 3},
      {"Cancel after changes", kOffsetEachSet, 0, 6,
       [] {
         script().chooseMenuItemByRefCon(kOffsetPopupID, Ref(kOffsetEachSubset));
         script().typeText(kOffsetPagesFieldID, "0");
         script().sendCommand(toolkit::kHICommandCancel);
       },
       0, kOffsetEachSet, 0, 6},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    toolkit::HeadlessAlerts().clear();
    context_.offset = c.offset;
    context_.offsetEnableSubset = c.enabled;
    context_.offsetPagesPerSubset = c.pages;
    c.steps();
    script().sendCommand(toolkit::kHICommandOK);
    ASSERT_EQ(RunModalOffsetFinishingDialog(&context_), noErr);
    EXPECT_EQ(toolkit::HeadlessAlerts().notices().size(), c.notices);
    EXPECT_EQ(std::tie(context_.offset, context_.offsetEnableSubset, context_.offsetPagesPerSubset),
              std::tie(c.offsetAfter, c.enabledAfter, c.pagesAfter));
    script().clear();
  }
}

// --- Custom finishing -------------------------------------------------------------------

struct CustomSeen {
  std::string text;
  bool okEnabled;
  bool focused;
  bool operator==(const CustomSeen&) const = default;
};

std::ostream& operator<<(std::ostream& out, const CustomSeen& s) {
  return out << "{\"" << s.text << "\"" << (s.okEnabled ? ", OK" : ", no OK")
             << (s.focused ? ", focused}" : "}");
}

CustomSeen SeeCustom(Window& window) {
  toolkit::Control* field = window.findByID(kCustomFinishingFieldID);
  return {field->text(), window.findByID(kCustomFinishingOKButtonID)->isEnabled(),
          window.focus() == field};
}

TEST_F(FinishingDialogs, CustomOKNeedsTextOfAtMostThirtyCharacters) {
  const std::string thirty = [] {
    std::string text;
    for (int i = 0; i < 30; ++i) text += "Ä";  // two bytes, one character
    return text;
  }();
  struct Case {
    const char* what;
    std::string before;
    std::function<void(const std::function<void()>& look)> steps;  // OK follows them
    std::vector<CustomSeen> seen;  // at the start, then at each look
    std::size_t failures;
    std::int32_t optionsAfter;
    std::string textAfter;
  } cases[] = {
      {"typed into an empty field",
       "",
       [](const auto& look) {
         script().typeText(kCustomFinishingFieldID, "Tape bind");
         look();
       },
       {{"", false, true}, {"Tape bind", true, true}},
       0,
       kCustomFinishingOptions,
       "Tape bind"},
      {"the 31st character is refused",
       "",
       [&](const auto& look) {
         script().typeText(kCustomFinishingFieldID, thirty + "ÄB");
         look();
       },
       {{"", false, true}, {thirty, true, true}},
       0,
       kCustomFinishingOptions,
       thirty},
      {"emptied: OK is refused until something is typed",
       "Fold",
       [](const auto& look) {
         script().typeText(kCustomFinishingFieldID, kClear);
         look();
         script().click(kCustomFinishingOKButtonID);   // dimmed: the click fails
         script().sendCommand(toolkit::kHICommandOK);  // a key equivalent is refused
         look();
         script().typeText(kCustomFinishingFieldID, "Trim");
         look();
       },
       {{"Fold", true, true}, {"", false, true}, {"", false, true}, {"Trim", true, true}},
       1,
       kCustomFinishingOptions,
       "Trim"},
      {"Cancel keeps the instruction",
       "Fold",
       [](const auto& look) {
         script().typeText(kCustomFinishingFieldID, "ed");
         look();
         script().sendCommand(toolkit::kHICommandCancel);
       },
       {{"Fold", true, true}, {"Folded", true, true}},
       0,
       7,
       "Fold"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    context_.finishingOptions = 7;
    context_.customFinishing = c.before;
    std::vector<CustomSeen> seen;
    const auto look = [&] { peek<CustomSeen>(seen, SeeCustom); };
    look();
    c.steps(look);
    script().sendCommand(toolkit::kHICommandOK);
    ASSERT_EQ(RunModalCustomFinishingDialog(&context_), noErr);
    EXPECT_EQ(seen, c.seen);
    EXPECT_EQ(script().failures().size(), c.failures);
    EXPECT_EQ(context_.finishingOptions, c.optionsAfter);
    EXPECT_EQ(context_.customFinishing, c.textAfter);
    script().clear();
  }
}

// --- Coil binding -----------------------------------------------------------------------

TEST_F(FinishingDialogs, CoilOKCopiesTheChoicesAndThePictureFollowsTheEdge) {
  CoilBinding coil;
  std::vector<std::tuple<std::string, std::string>> seen;  // margin field, picture
  const auto look = [&] {
    peek<std::tuple<std::string, std::string>>(seen, [](Window& window) {
      return std::make_tuple(window.findByID(kCoilMarginFieldID)->text(),
                             window.findByID(kCoilPictureID)->pictureName());
    });
  };
  look();
  script().chooseMenuItemByRefCon(kCoilEdgePopupID, Ref(kCoilTopEdge));
  script().chooseMenuItemByRefCon(kCoilPitchPopupID, Ref(kCoilPitch5mm));
  script().typeText(kCoilMarginFieldID, kClear + "5,5");
  look();
  script().sendCommand(toolkit::kHICommandOK);
  ASSERT_TRUE(RunModalCoilBindingDialog(bundle_, &coil));
  expectScriptRan();
  EXPECT_EQ(coil, (CoilBinding{kCoilTopEdge, kCoilPitch5mm, 55}));
  using Seen = std::tuple<std::string, std::string>;
  EXPECT_EQ(seen, (std::vector<Seen>{{"4.5", "Finishing_CoilBinding_LeftEdge.gif"},
                                     {"5,5", "Finishing_CoilBinding_TopEdge.gif"}}));

  const CoilBinding before{kCoilRightEdge, kCoilPitch4To1, 60};
  coil = before;
  script().chooseMenuItemByRefCon(kCoilEdgePopupID, Ref(kCoilLeftEdge));
  script().typeText(kCoilMarginFieldID, kClear + "4");
  script().sendCommand(toolkit::kHICommandCancel);
  EXPECT_FALSE(RunModalCoilBindingDialog(bundle_, &coil));
  EXPECT_EQ(coil, before) << "Cancel changes nothing";

  EXPECT_EQ(CoilBindingSummary(bundle_, CoilBinding{}), "Coil Binding: Left Edge, 4:1 Pitch");
  EXPECT_EQ(CoilBindingSummary(bundle_, before), "Coil Binding: Right Edge, 4:1 Pitch");
  EXPECT_EQ(CoilBindingSummary(bundle_, CoilBinding{kCoilTopEdge, kCoilPitch5mm, 40}),
            "Coil Binding: Top Edge, 5 mm Pitch");
}

TEST_F(FinishingDialogs, CoilMarginsOutsideTheLimitsAreRefused) {
  struct Case {
    const char* typed;
    std::optional<std::int32_t> margin;  // nullopt: refused
  } cases[] = {
      {"3.4", std::nullopt},
      {"3.5", 35},
      {"6.5", 65},
      {"6.6", std::nullopt},
      {"5", 50},
      {"4,50", 45},
      {"4.55", std::nullopt},
      {"", std::nullopt},
      {".", std::nullopt},
      {"4.5.", std::nullopt},
      {"12345", std::nullopt},  // a fifth character cannot be typed: 1234
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.typed);
    toolkit::HeadlessAlerts().clear();
    CoilBinding coil{kCoilTopEdge, kCoilPitch5mm, 40};
    script().typeText(kCoilMarginFieldID, kClear + c.typed);
    script().sendCommand(toolkit::kHICommandOK);
    script().sendCommand(toolkit::kHICommandCancel);  // reached only when OK was refused
    EXPECT_EQ(RunModalCoilBindingDialog(bundle_, &coil), c.margin.has_value());
    EXPECT_EQ(toolkit::HeadlessAlerts().notices().size(), c.margin ? 0u : 1u);
    EXPECT_EQ(coil, (CoilBinding{kCoilTopEdge, kCoilPitch5mm, c.margin.value_or(40)}));
    script().clear();
  }
}

// --- All three --------------------------------------------------------------------------

// The "TitleKey" strings of an interface file, at any depth.
void CollectTitleKeys(const plist::Value& value, std::vector<std::string>& keys) {
  if (const plist::Dictionary* d = value.asDictionary()) {
    for (const auto& [key, entry] : *d) {
      if (key == "TitleKey" && entry.asString()) keys.push_back(*entry.asString());
      CollectTitleKeys(entry, keys);
    }
  } else if (const plist::Array* a = value.asArray()) {
    for (std::size_t i = 0; i < a->size(); ++i) CollectTitleKeys((*a)[i], keys);
  }
}

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
  const std::vector<std::tuple<const char*, std::function<void()>>> dialogs = {
      {kOffsetHelpPage, [this] { EXPECT_EQ(RunModalOffsetFinishingDialog(&context_), noErr); }},
      {kCustomFinishingHelpPage,
       [this] { EXPECT_EQ(RunModalCustomFinishingDialog(&context_), noErr); }},
      {kCoilHelpPage,
       [this] {
         CoilBinding coil;
         EXPECT_FALSE(RunModalCoilBindingDialog(bundle_, &coil));
       }},
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
    run();
    expectScriptRan();
    EXPECT_EQ(missing, std::vector<std::string>{});
    ASSERT_EQ(toolkit::HeadlessAlerts().helpRequests().size(), 1u);
    EXPECT_EQ(toolkit::HeadlessAlerts().helpRequests()[0].page, page);
  }
  // A key the layouts name but the table lacks would show as the key itself.
  for (const char* file : {"OffsetSelection", "Finishing"}) {
    SCOPED_TRACE(file);
    std::optional<std::filesystem::path> path =
        bundle_->resourcePath(std::string(file) + ".interface.plist");
    ASSERT_TRUE(path);
    std::optional<plist::Dictionary> layout = plist::ReadDictionaryFile(*path);
    ASSERT_TRUE(layout);
    std::vector<std::string> keys;
    CollectTitleKeys(plist::Value(*layout), keys);
    EXPECT_GE(keys.size(), 5u);
    for (const std::string& key : keys)
      EXPECT_NE(bundle_->localizedString(key, "Localizable", "?"), "?") << key;
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
