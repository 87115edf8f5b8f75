// SPDX-License-Identifier: Apache-2.0
#include "ui/panel_ui.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/image_manager.h"
#include "platform/print/session.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/text_editing.h"
#include "platform/toolkit/toolkit_test_support.h"
#include "support/bundle_folder.h"
#include "support/temp_dir.h"
#include "vocabulary/ppd_access.h"

namespace varno::ui {

using vocabulary::PPDCloseCurrent;

namespace {

using namespace varno::toolkit;
using testing::TempDir;

const std::filesystem::path kResources = VARNO_TEST_DATA_DIR "/../../resources";

// A field limited by the code under test, with every state event it announces recorded.
class LimitedFieldTest : public testing::ToolkitTest {
 protected:
  LimitedFieldTest() : field(add(ControlKind::EditText, 1)) { Record(field); }

  void Record(Control& control) {
    static constexpr EventTypeSpec kStates[] = {{kPanelUICreator, kInputStateEmpty},
                                                {kPanelUICreator, kInputStateTooShort},
                                                {kPanelUICreator, kInputStateLongEnough}};
    control.installHandler({std::begin(kStates), std::end(kStates)},
                           [this, &control](EventHandlerCallRef, Event& event) {
                             EXPECT_EQ(event.control(), &control);
                             states.push_back(OSTypeString(event.kind()));
                             return eventNotHandledErr;
                           });
  }
  std::vector<std::int16_t> beeps() const { return HeadlessAlerts().beeps(); }

  Control& field;
  std::vector<std::string> states;
};

TEST_F(LimitedFieldTest, MaximumLengthDropsTheKeystrokeThatWouldExceedItButCountsTheSelection) {
  LimitInputLengthAndCharacters(&field, 0, 4, nullptr);
  ASSERT_EQ(TypeText(field, "1234"), noErr);
  states.clear();

  TypeText(field, "5");
  EXPECT_EQ(field.text(), "1234");
  EXPECT_EQ(beeps(), std::vector<std::int16_t>{10});
  EXPECT_TRUE(states.empty()) << "a dropped keystroke changes nothing, so announces nothing";
  PasteText(field, "99");
  EXPECT_EQ(beeps().size(), 2u);

  field.setSelection({0, 2});
  TypeText(field, "ab");
  EXPECT_EQ(field.text(), "ab34");
  EXPECT_EQ(beeps().size(), 2u);
}

TEST_F(LimitedFieldTest, CharactersOutsideTheSetAreDroppedButEditingKeysAlwaysPass) {
  const CharacterSet digits = CharacterSet::Range(U'0', U'9');
  LimitInputLengthAndCharacters(&field, 0, 3, &digits);
  TypeText(field, "1a2");
  EXPECT_EQ(field.text(), "12");
  EXPECT_EQ(beeps().size(), 1u);
  PasteText(field, "3x");
  EXPECT_EQ(field.text(), "12") << "a paste with one stranger goes as a whole";
  TypeText(field, "3");
  EXPECT_EQ(field.text(), "123");

  // At the maximum and with a set that holds no control character, backspace still edits.
  PressKey(*window, kBackspaceCharCode);
  EXPECT_EQ(field.text(), "12");
  PressKey(*window, kLeftArrowCharCode);
  PressKey(*window, kBackspaceCharCode);
  EXPECT_EQ(field.text(), "2");
  EXPECT_EQ(beeps().size(), 2u);

  // Characters beyond ASCII are checked as whole characters.
  const CharacterSet accents("éü");
  LimitInputLengthAndCharacters(&field, 0, 0, &accents);
  field.setText("");
  TypeText(field, "üeé");
  EXPECT_EQ(field.text(), "üé");

  // Limiting again without a set lifts the restriction.
  LimitInputLengthAndCharacters(&field, 0, 0, nullptr);
  TypeText(field, "x");
  EXPECT_EQ(field.text(), "üéx");
}

TEST_F(LimitedFieldTest, EachEditAnnouncesWhetherTheTextIsEmptyShortOrLongEnoughOnce) {
  LimitInputLengthAndCharacters(&field, 3, 0, nullptr);
  LimitInputLengthAndCharacters(&field, 3, 0, nullptr);  // a second call adds no handler
  TypeText(field, "abc");
  PressKey(*window, kBackspaceCharCode);
  PressKey(*window, kBackspaceCharCode);
  PressKey(*window, kBackspaceCharCode);
  EXPECT_EQ(states, (std::vector<std::string>{"ICfw", "ICfw", "ICso", "ICfw", "ICfw", "ICno"}));

  // Without a minimum, one character is enough.
  states.clear();
  LimitInputLengthAndCharacters(&field, 0, 0, nullptr);
  TypeText(field, "a");
  EXPECT_EQ(states, std::vector<std::string>{"ICso"});
}

TEST_F(LimitedFieldTest, AComboBoxListChoiceAnnouncesLongEnough) {
  Control& combo = add(ControlKind::ComboBox, 2);
  MenuPtr menu = Menu::create();
  menu->appendItem("A4");
  ASSERT_EQ(combo.setMenu(menu), noErr);
  Record(combo);
  LimitInputLengthAndCharacters(&combo, 5, 0, nullptr);
  ASSERT_EQ(ChooseMenuItem(combo, 1), noErr);
  EXPECT_EQ(combo.text(), "A4") << "the choice still reaches the standard behaviour";
  EXPECT_EQ(states, std::vector<std::string>{"ICso"});
}

TEST_F(LimitedFieldTest, DisposalDropsTheAllowedSet) {
  Control& other = add(ControlKind::EditText, 2);
  bool hadSetWhenOlderHandlerRan = true;
  static constexpr EventTypeSpec kDispose[] = {{kEventClassControl, kEventControlDispose}};
  other.installHandler({std::begin(kDispose), std::end(kDispose)},
                       [&](EventHandlerCallRef, Event&) {
                         hadSetWhenOlderHandlerRan =
                             other.property(kPanelUICreator, kLimitCharactersTag) != nullptr;
                         return eventNotHandledErr;
                       });
  const CharacterSet set("ab");
  LimitInputLengthAndCharacters(&other, 0, 0, &set);
  ASSERT_NE(other.property(kPanelUICreator, kLimitCharactersTag), nullptr);
  ASSERT_EQ(other.dispose(), noErr);
  EXPECT_FALSE(hadSetWhenOlderHandlerRan);
}

TEST(CountDigits, CountsDigitsOfTheMagnitudeAndExactPowersOfTenDoNotFallShort) {
  EXPECT_EQ(CountDigits(0), 1);
  EXPECT_EQ(CountDigits(-7), 1);
  EXPECT_EQ(CountDigits(99999999999999), 14);
  EXPECT_EQ(CountDigits(999999999999999), 15) << "where log10 in doubles rounds up";
  EXPECT_EQ(CountDigits(INT64_MIN), 19);
  EXPECT_EQ(CountDigits(-100000000000000), 15);
}

TEST(LocalizedNumbers, UseTheLocalesSeparatorAndExactlyTheDecimalsAsked) {
  EXPECT_EQ(CreateLocalizedCFStringFromNumberWithDecimals(1.5, 2, "de_DE"), "1,50");
  EXPECT_EQ(CreateLocalizedCFStringFromNumberWithDecimals(1234.56, 1, "en_US"), "1234.6");
  EXPECT_EQ(CreateLocalizedCFStringFromNumberWithDecimals(2.4, 0, "en_US"), "2");
  EXPECT_EQ(CreateLocalizedCFStringFromNumberWithDecimals(1.0, -1, "en_US"), "");
}

TEST(MediaLimits, ComeFromTheSharedPPDOrTheFixedDefaults) {
  float minW = 0, minH = 0, maxW = 0, maxH = 0;
  GetMediaLimits(&minW, &minH, &maxW, &maxH);
  EXPECT_EQ((std::vector<float>{minW, minH, maxW, maxH}), (std::vector<float>{432, 432, 864, 864}));

  print::Session session;
  session.setPrinterPPD((kResources / "ppd/Varno-AT120A.ppd").string());
  print::SetCurrentPrintSession(&session);
  GetMediaLimits(&minW, &minH, &maxW, &maxH);
  PPDCloseCurrent();
  print::SetCurrentPrintSession(nullptr);
  EXPECT_EQ((std::vector<float>{minW, minH, maxW, maxH}), (std::vector<float>{216, 360, 907, 1368}));
}

// The dialog runs from a test bundle that holds the product's interface file.
class CustomValueDialogTest : public testing::ToolkitTest {
 protected:
  CustomValueDialogTest() {
    testing::WriteBundleFolder(dir, {{"Custom", "Custom"}});
    dir.write("Test.plugin/Contents/Info.plist",
              "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>"
              "<key>CFBundleIdentifier</key><string>com.varno.test.ui</string>"
              "<key>CFBundleHelpBookName</key><string>Test Help</string></dict></plist>");
    std::filesystem::copy_file(kResources / "interfaces/Utilities.interface.plist",
                               dir / "Test.plugin/Contents/Resources/Utilities.interface.plist");
    bundle = bundle::Bundle::Open(dir / "Test.plugin");
  }

  TempDir dir;
  bundle::BundleRef bundle;
  AutomationScript& script = Application::shared().script();
  std::optional<std::string> text;
  std::uint16_t result = 0;
};

// OK returns the preset text as edited, within the maximum; Cancel or a script that ends
// without a command gives no text. Help opens the page of the bundle's book.
TEST_F(CustomValueDialogTest, OKReturnsTheEditedTextAndCancelOrAnEndedScriptNone) {
  ASSERT_NE(bundle, nullptr);
  script.sendCommand(kCustomValueHelpCommand);
  const struct {
    std::optional<std::string> preset;
    const char* typed;
    MenuCommand command;  // 0: the script ends
    std::int16_t maximum;
    std::optional<std::string> text;
    std::uint16_t result;
  } cases[] = {{std::nullopt, "12345", kHICommandOK, 4, "1234", 1},
               {"ab", "c", kHICommandOK, 10, "abc", 1},
               {"abc", "d", kHICommandCancel, 10, std::nullopt, 2},
               {"left alone", "x", 0, 10, std::nullopt, 2}};
  for (const auto& c : cases) {
    text = c.preset;
    result = 0;
    script.typeText(kCustomValueFieldID, c.typed);
    if (c.command) script.sendCommand(c.command);
    ASSERT_EQ(RunModalCustomValueDialog(bundle, 1, c.maximum, &text, &result), noErr) << c.typed;
    EXPECT_EQ(text, c.text) << c.typed;
    EXPECT_EQ(result, c.result) << c.typed;
    if (&c == cases) {
      EXPECT_EQ(HeadlessAlerts().beeps().size(), 1u) << "the fifth character";
    }
  }
  EXPECT_TRUE(script.failures().empty());
  ASSERT_EQ(HeadlessAlerts().helpRequests().size(), 1u);
  EXPECT_EQ(HeadlessAlerts().helpRequests()[0],
            (HelpRequest{"Test Help", "image_options/db_custom_color_d.htm", ""}));
}

TEST_F(CustomValueDialogTest, AMissingInterfaceFileIsReportedAndNothingTouched) {
  std::filesystem::remove(dir / "Test.plugin/Contents/Resources/Utilities.interface.plist");
  text = "kept";
  EXPECT_EQ(RunModalCustomValueDialog(bundle, 1, 4, &text, &result), kInterfaceFileNotFound);
  EXPECT_EQ(text, "kept");
  EXPECT_EQ(result, 0);
}

TEST_F(CustomValueDialogTest, LocalizedTitlesFormatTheTableTextWithTheArguments) {
  bundle = testing::MakeBundle(dir, {{"Copies", "%d of %s"}, {"Pct", "%d%%"}});
  ASSERT_NE(bundle, nullptr);
  Control& label = add(ControlKind::StaticText, 1);
  Control& button = add(ControlKind::PushButton, 2);
  SetLocalizedStaticText(bundle, "Copies", &label, 3, "ten");
  EXPECT_EQ(label.text(), "3 of ten");
  SetLocalizedControlTitle(bundle, "Pct", &button, 50);
  EXPECT_EQ(button.text(), "50%");
  SetLocalizedWindowTitle(bundle, "Missing", window.get());
  EXPECT_EQ(window->text(), "STRING NOT FOUND");
}

// Pictures are shown by name only when the bundle has them, so a renderer never paints
// a stale or missing file.
TEST(Pictures, AViewNamesOnlyAPictureTheBundleHas) {
  testing::TempDir dir;
  testing::WriteBundleFolder(dir, {});
  dir.write("Test.plugin/Contents/Resources/Up.png", "picture");
  bundle::BundleRef bundle = bundle::Bundle::Open(dir / "Test.plugin");
  ASSERT_NE(bundle, nullptr);
  std::unique_ptr<toolkit::Window> window = toolkit::Window::create({0, 0, 100, 100}, "w");
  toolkit::Control* view =
      window->embed(toolkit::Control::create(toolkit::ControlKind::ImageView, {0, 0, 20, 20}));

  EXPECT_EQ(DrawImage(bundle, "Up.png", view), noErr);
  EXPECT_EQ(view->pictureName(), "Up.png");
  EXPECT_EQ(DrawImage(bundle, "Gone.png", view), fnfErr);
  EXPECT_EQ(view->pictureName(), "") << "a missing picture leaves the view blank";

  // A picture that disappears is dropped when the view is next drawn.
  ASSERT_EQ(InitializeIcon(view, "Up.png"), noErr);
  const toolkit::EventTypeSpec draw{toolkit::kEventClassControl, toolkit::kEventControlDraw};
  view->installHandler(std::span(&draw, 1), DrawIconEventHandler, bundle.get());
  view->draw();
  EXPECT_EQ(view->pictureName(), "Up.png");
  std::filesystem::remove(dir / "Test.plugin/Contents/Resources/Up.png");
  view->draw();
  EXPECT_EQ(view->pictureName(), "");

  // The host's image manager finds files of the folder by name, and nothing outside it.
  dir.write("Test.plugin/Contents/Resources/Down.png", "picture");
  host::ImageManager images(bundle->resourcesPath());
  EXPECT_EQ(images.picture("Down.png"), bundle->resourcesPath() / "Down.png");
  EXPECT_EQ(images.picture("../Info.plist"), std::nullopt);
  EXPECT_EQ(images.picture("en.lproj"), std::nullopt) << "a folder is no picture";
}

}  // namespace
}  // namespace varno::ui
