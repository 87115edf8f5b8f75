// SPDX-License-Identifier: Apache-2.0
// Handler chains, the standard behaviours, focus, typing, disposal and modal loops, driven
// through the automation API as a person's actions would be.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/toolkit/automation.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/event_target.h"
#include "platform/toolkit/text_editing.h"
#include "toolkit_test_support.h"

namespace varno::testing {
namespace {

using ::testing::ElementsAre;

constexpr EventTypeSpec kHit{kEventClassControl, kEventControlHit};
constexpr EventTypeSpec kCommand{kEventClassCommand, kEventCommandProcess};
constexpr EventTypeSpec kText{kEventClassTextInput, kEventTextInputUnicodeForKeyEvent};
constexpr EventTypeSpec kFocus{kEventClassControl, kEventControlSetFocusPart};
constexpr EventTypeSpec kDispose{kEventClassControl, kEventControlDispose};

// Installs a handler that records `name` and answers `status`.
EventHandlerRef Record(EventTarget& target, std::vector<EventTypeSpec> types,
                       std::vector<std::string>& log, std::string name,
                       OSStatus status = eventNotHandledErr) {
  return target.installHandler(std::move(types), [&log, name, status](EventHandlerCallRef, Event&) {
    log.push_back(name);
    return status;
  });
}

// Records the commands that reach the window.
void CommandsReaching(Window& window, std::vector<std::string>& log) {
  window.installHandler({kCommand}, [&log](EventHandlerCallRef, Event& event) {
    log.push_back(OSTypeString(event.command()->commandID));
    return eventNotHandledErr;
  });
}

using HandlerChain = ToolkitTest;

TEST_F(HandlerChain, NewestFirstThenParentThenApplicationAndAnyOtherStatusStops) {
  Control& pane = add(ControlKind::UserPane, 1);
  Control& button = add(ControlKind::PushButton, 2, &pane);
  std::vector<std::string> log;
  Record(button, {kHit}, log, "older");
  Record(button, {kHit}, log, "newer");
  Record(pane, {kHit}, log, "pane");
  Record(*window, {kHit}, log, "window");
  EventHandlerRef app = Record(*GetApplicationEventTarget(), {kHit}, log, "application");
  Record(button, {kCommand}, log, "not for clicks");

  EXPECT_EQ(Click(button), noErr);
  EXPECT_THAT(log, ElementsAre("newer", "older", "pane", "window", "application"));
  EXPECT_EQ(RemoveEventHandler(app), noErr);

  log.clear();
  Record(pane, {kHit}, log, "stopper", noErr);
  Click(button);
  EXPECT_THAT(log, ElementsAre("newer", "older", "stopper"));

  // Events of the host's own class travel the same way, unless told not to propagate.
  constexpr EventTypeSpec kEnoughInput{MakeOSType("VPDE"), MakeOSType("ICso")};
  log.clear();
  Record(button, {kEnoughInput}, log, "button heard");
  Record(*window, {kEnoughInput}, log, "window heard", noErr);
  Event event(kEnoughInput.eventClass, kEnoughInput.eventKind);
  event.set<Control*>(kEventParamDirectObject, typeControlRef, &button);
  EXPECT_EQ(button.send(event), noErr);
  EXPECT_THAT(log, ElementsAre("button heard", "window heard"));
  EXPECT_EQ(button.send(event, kEventTargetDontPropagate), eventNotHandledErr);
}

TEST_F(HandlerChain, CallNextEventHandlerRunsTheRestOnceAndTheCallerDecides) {
  Control& field = add(ControlKind::EditText, 1);
  std::vector<std::string> log;
  Record(*window, {kText}, log, "window");
  field.installHandler({kText}, [&](EventHandlerCallRef call, Event& event) {
    log.push_back("before:" + field.text());
    OSStatus passed = CallNextEventHandler(call, &event);
    log.push_back("after:" + field.text());
    EXPECT_EQ(CallNextEventHandler(call, &event), passed);  // not run a second time
    return noErr;
  });

  TypeText(field, "a");
  EXPECT_THAT(log, ElementsAre("before:", "window", "after:a"));
}

TEST_F(HandlerChain, RemovedHandlersAreSkippedEvenWhileAnEventIsOnItsWay) {
  Control& button = add(ControlKind::PushButton, 1);
  std::vector<std::string> log;
  EventHandlerRef second = Record(button, {kHit}, log, "second");
  button.installHandler({kHit}, [&](EventHandlerCallRef, Event&) {
    log.push_back("first");
    if (second) {
      EXPECT_EQ(RemoveEventHandler(std::exchange(second, nullptr)), noErr);
    }
    return eventNotHandledErr;
  });

  Click(button);
  Click(button);
  EXPECT_THAT(log, ElementsAre("first", "first"));
  EXPECT_EQ(RemoveEventHandler(nullptr), paramErr);
}

using StandardBehaviour = ToolkitTest;

TEST_F(StandardBehaviour, PopupChoiceSetsTheValueBeforeTheItemsCommandIsSent) {
  Control& popup = add(ControlKind::PopupButton, 1);
  popup.menu()->appendItem("Normal", MakeOSType("Jnrm"));
  MenuItemIndex secure = popup.menu()->appendItem("Secure Print", MakeOSType("Jsec"));
  popup.menu()->setItemRefCon(secure, 6);
  std::vector<std::string> log;
  window->installHandler({kCommand}, [&](EventHandlerCallRef, Event& event) {
    log.push_back(OSTypeString(event.command()->commandID) + " value " +
                  std::to_string(popup.value()));
    return noErr;
  });

  EXPECT_EQ(ChooseMenuItemByRefCon(popup, 6), noErr);
  EXPECT_EQ(ChooseMenuItemByText(popup, "Normal"), noErr);
  EXPECT_THAT(log, ElementsAre("Jsec value 2", "Jnrm value 1"));
  EXPECT_EQ(ChooseMenuItemByText(popup, "Missing"), menuItemNotFoundErr);

  popup.menu()->setItemEnabled(secure, false);
  EXPECT_EQ(ChooseMenuItem(popup, secure), errControlHiddenOrDisabled);
  EXPECT_EQ(popup.value(), 1);
}

TEST_F(StandardBehaviour, ButtonsSendCommandsAndBoxesToggleUnlessAHandlerTakesTheClick) {
  Control& ok = add(ControlKind::PushButton, 1, nullptr, "OK");
  ok.setCommand(kHICommandOK);
  Control& box = add(ControlKind::CheckBox, 2);
  Control& radioA = add(ControlKind::RadioButton, 3);
  Control& radioB = add(ControlKind::RadioButton, 4);
  Control& spin = add(ControlKind::SpinControl, 5);
  std::vector<std::string> commands;
  CommandsReaching(*window, commands);

  for (Control* c : {&ok, &box, &radioA, &radioB}) Click(*c);
  for (ControlPartCode part : {kControlUpButtonPart, kControlUpButtonPart, kControlDownButtonPart})
    Click(spin, part);
  EXPECT_THAT(commands, ElementsAre("ok  "));
  EXPECT_EQ(box.value(), 1);
  EXPECT_EQ(radioA.value(), 0);
  EXPECT_EQ(radioB.value(), 1);
  EXPECT_EQ(spin.value(), 1);

  box.installHandler({{kEventClassControl, kEventControlTrack}},
                     [](EventHandlerCallRef, Event&) { return noErr; });
  Click(box);
  EXPECT_EQ(box.value(), 1);

  ok.setEnabled(false);
  EXPECT_EQ(Click(ok), errControlHiddenOrDisabled);
  window->setVisible(false);
  EXPECT_EQ(Click(box), errControlHiddenOrDisabled);
  EXPECT_THAT(commands, ElementsAre("ok  "));
}

TEST_F(StandardBehaviour, TypingReplacesTheSelectionAndKeysMoveFocusOrPressButtons) {
  Control& field = add(ControlKind::EditText, 1, nullptr, "12345");
  Control& second = add(ControlKind::EditText, 2);
  Control& ok = add(ControlKind::PushButton, 3);
  ok.setCommand(kHICommandOK);
  window->setDefaultButton(&ok);
  std::vector<std::string> commands;
  CommandsReaching(*window, commands);

  SetFocus(field);
  field.setSelection({1, 3});
  PasteText(field, "ab");
  EXPECT_EQ(field.text(), "1ab45");
  EXPECT_EQ(field.selection(), (TextRange{3, 3}));
  TypeText(field, std::string(1, kBackspaceCharCode) + "é");
  EXPECT_EQ(field.text(), "1aé45");

  PressKey(*window, kTabCharCode);
  EXPECT_EQ(window->focus(), &second);
  PressKey(*window, kReturnCharCode);
  EXPECT_THAT(commands, ElementsAre("ok  "));
  EXPECT_EQ(TypeText(ok, "x"), errControlDoesntSupportFocus);
}

TEST_F(StandardBehaviour, ComboBoxListChoiceFillsTheTextAndSendsItsOwnEvent) {
  Control& combo = add(ControlKind::ComboBox, 1);
  combo.menu()->appendItem("001");
  combo.menu()->appendItem("002");
  std::vector<std::string> log;
  Record(combo, {{kEventClassHIComboBox, kEventComboBoxListItemSelected}}, log, "selected");
  Record(combo, {kHit}, log, "hit");

  EXPECT_EQ(ChooseMenuItem(combo, 2), noErr);
  EXPECT_EQ(combo.text(), "002");
  EXPECT_THAT(log, ElementsAre("selected"));
  EXPECT_EQ(ChooseMenuItem(combo, 3), menuItemNotFoundErr);
}

TEST_F(StandardBehaviour, SettingAClockChangesItBeforeItsHandlersHearTheHitUnlessRefused) {
  Control& field = add(ControlKind::EditText, 1);
  Control& clock = add(ControlKind::Clock, 2);
  clock.setCommand(MakeOSType("Tclk"));
  clock.setDateTime(100);
  std::vector<std::string> log;
  clock.installHandler({kHit}, [&](EventHandlerCallRef, Event&) {
    log.push_back("hit at " + std::to_string(clock.dateTime()));
    return eventNotHandledErr;
  });
  CommandsReaching(*window, log);
  SetFocus(field);

  constexpr LongDateTime kNoonOn2Jan2024 = 3787041600;
  EXPECT_EQ(SetDateTime(clock, kNoonOn2Jan2024), noErr);
  EXPECT_EQ(clock.dateTime(), kNoonOn2Jan2024);
  EXPECT_EQ(window->focus(), &clock);
  EXPECT_THAT(log, ElementsAre("hit at 3787041600", "Tclk"));
  const plist::Dictionary state = ReadControlState(clock);
  EXPECT_EQ(state.getNumber<std::int64_t>("DateTime"), kNoonOn2Jan2024);

  // What a person cannot reach stays as it is, and nobody hears of it.
  log.clear();
  clock.setEnabled(false);
  EXPECT_EQ(SetDateTime(clock, 5), errControlHiddenOrDisabled);
  clock.setEnabled(true);
  window->setVisible(false);
  EXPECT_EQ(SetDateTime(clock, 5), errControlHiddenOrDisabled);
  window->setVisible(true);
  EXPECT_EQ(SetDateTime(field, 5), paramErr);
  EXPECT_THAT(log, ElementsAre());
  EXPECT_EQ(clock.dateTime(), kNoonOn2Jan2024);

  // A handler that takes the change keeps the old time; the hit still follows.
  clock.installHandler({{kEventClassControl, kEventControlTrack}},
                       [](EventHandlerCallRef, Event&) { return noErr; });
  EXPECT_EQ(SetDateTime(clock, 7), noErr);
  EXPECT_EQ(clock.dateTime(), kNoonOn2Jan2024);
  EXPECT_THAT(log, ElementsAre("hit at 3787041600", "Tclk"));
}

using FocusAndDisposal = ToolkitTest;

TEST_F(FocusAndDisposal, LeavingAFieldTellsItBeforeTheNextFieldHearsOfIt) {
  Control& first = add(ControlKind::EditText, 1);
  Control& second = add(ControlKind::ComboBox, 2);
  Control& label = add(ControlKind::StaticText, 3);
  std::vector<std::string> log;
  for (Control* c : {&first, &second}) {
    c->installHandler({kFocus}, [&log, c](EventHandlerCallRef, Event& event) {
      auto part = event.get<ControlPartCode>(kEventParamControlPart, typeControlPartCode);
      log.push_back(std::to_string(c->id().id) + (part == kControlFocusNoPart ? " leaves" : " enters"));
      return eventNotHandledErr;
    });
  }

  SetFocus(first);
  Click(second);
  SetFocus(second);  // no move, no events
  EXPECT_EQ(SetFocus(label), errControlDoesntSupportFocus);
  window->setFocus(nullptr);
  EXPECT_THAT(log, ElementsAre("1 enters", "1 leaves", "2 enters", "2 leaves"));
}

TEST_F(FocusAndDisposal, DisposalReachesEveryControlChildrenFirstAndForgetsTheFocus) {
  Control& pane = add(ControlKind::UserPane, 1);
  Control& field = add(ControlKind::EditText, 2, &pane);
  add(ControlKind::CheckBox, 3, &pane);
  std::vector<std::string> log;
  for (int id : {1, 2, 3})
    Record(*window->findByID({kTestSignature, id}), {kDispose}, log, std::to_string(id));
  Record(*window, {kDispose}, log, "window must not hear its children's disposal");
  SetFocus(field);

  EXPECT_EQ(pane.dispose(), noErr);
  EXPECT_THAT(log, ElementsAre("2", "3", "1"));
  EXPECT_EQ(window->focus(), nullptr);
  EXPECT_EQ(window->findByID({kTestSignature, 2}), nullptr);
  EXPECT_EQ(window->dispose(), paramErr);
  window.reset();  // while `log` still lives: the window's handler hears its own disposal
}

TEST_F(FocusAndDisposal, EmbedAndShowMovesAControlAndRefusesImpossibleTrees) {
  Control& pane = add(ControlKind::UserPane, 1);
  Control& inner = add(ControlKind::UserPane, 2, &pane);
  Control& button = add(ControlKind::PushButton, 3);
  button.setVisible(false);

  EXPECT_EQ(EmbedAndShowControl(&button, &inner), noErr);
  EXPECT_TRUE(button.parent() == &inner && button.isShown());
  EXPECT_EQ(EmbedAndShowControl(&pane, &inner), errCantEmbedIntoSelf);
  EXPECT_EQ(EmbedAndShowControl(&inner, &button), errControlIsNotEmbedder);
  EXPECT_EQ(EmbedAndShowControl(window.get(), &pane), errCantEmbedRoot);
  EXPECT_EQ(inner.parent(), &pane);
}

using ModalLoop = ToolkitTest;

TEST_F(ModalLoop, EndsWhenAHandlerQuitsOnACommand) {
  Control& field = add(ControlKind::EditText, 1);
  int result = 0;
  window->installHandler({kCommand}, [&](EventHandlerCallRef, Event& event) {
    MenuCommand command = event.command()->commandID;
    if (command != kHICommandOK && command != kHICommandCancel) return eventNotHandledErr;
    result = command == kHICommandOK ? 1 : 2;
    window->quitModalLoop();
    return noErr;
  });
  AutomationScript& script = Application::shared().script();
  script.typeText({kTestSignature, 1}, "42");
  script.click({kTestSignature, 99});  // no such control: reported, the loop goes on
  script.sendCommand(kHICommandOK);
  script.sendCommand(MakeOSType("rvrt"));  // never reached

  EXPECT_EQ(window->runModalLoop(), noErr);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(field.text(), "42");
  EXPECT_EQ(script.pending(), 1u);
  ASSERT_EQ(script.failures().size(), 1u);
  EXPECT_NE(script.failures()[0].find(std::to_string(errUnknownControl)), std::string::npos);
  EXPECT_FALSE(window->inModalLoop());
}

TEST_F(ModalLoop, AnExhaustedScriptCancelsThroughTheCancelButtonOrTheWindow) {
  std::vector<std::string> commands;
  CommandsReaching(*window, commands);
  EXPECT_EQ(window->runModalLoop(), userCanceledErr);  // no handler ends it: still ends

  Control& cancel = add(ControlKind::PushButton, 2);
  cancel.setCommand(MakeOSType("Vcnl"));
  window->setCancelButton(&cancel);
  EXPECT_EQ(window->runModalLoop(), userCanceledErr);
  EXPECT_THAT(commands, ElementsAre("not!", "Vcnl"));
  EXPECT_EQ(window->quitModalLoop(), paramErr);
}

TEST(Alerts, HeadlessPresenterRecordsAndAnswersAsScripted) {
  HeadlessPresenter& alerts = HeadlessAlerts();
  alerts.clear();
  AlertStdCFStringAlertParamRec params;
  GetStandardAlertDefaultParams(&params, 1);
  params.defaultText = "No";
  params.otherText = "Yes";
  params.cancelText = "Cancel";
  params.cancelButton = kAlertStdAlertCancelButton;

  DialogItemIndex hit = 0;
  DialogRef alert = nullptr;
  ASSERT_EQ(CreateStandardAlert(kAlertCautionAlert, "Delete?", "All pages", &params, &alert), noErr);
  RunStandardAlert(alert, nullptr, &hit);
  EXPECT_EQ(hit, kAlertStdAlertCancelButton);  // unscripted: dismissed

  AnswerNextAlert(kAlertStdAlertOtherButton);
  CreateStandardAlert(kAlertCautionAlert, "Delete?", "Selected", &params, &alert);
  RunStandardAlert(alert, nullptr, &hit);
  EXPECT_EQ(hit, kAlertStdAlertOtherButton);

  CFUserNotificationDisplayNotice(0, kCFUserNotificationCautionAlertLevel, "Header", "Text");
  SysBeep(10);
  AHGotoPage("Help", "image_options/db_custom_color_d.htm", "");
  ASSERT_EQ(alerts.alerts().size(), 2u);
  EXPECT_EQ(alerts.alerts()[1].alert.message, "Selected");
  ASSERT_EQ(alerts.notices().size(), 1u);
  EXPECT_EQ(alerts.notices()[0].header + "/" + alerts.notices()[0].message, "Header/Text");
  EXPECT_THAT(alerts.beeps(), ElementsAre(10));
  EXPECT_THAT(alerts.helpRequests(),
              ElementsAre(HelpRequest{"Help", "image_options/db_custom_color_d.htm", ""}));
  alerts.clear();
}

}  // namespace
}  // namespace varno::testing
