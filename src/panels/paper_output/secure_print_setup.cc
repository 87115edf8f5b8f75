// SPDX-License-Identifier: Apache-2.0
#include "panels/paper_output/secure_print_setup.h"

#include <cstdio>
#include <initializer_list>
#include <memory>

#include "host/dialog_host.h"
#include "panels/paper_output/made_up_passcode.h"
#include "platform/plist/text.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/character_set.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"

namespace varno::panels {

namespace {

using toolkit::Control;

// A passcode the dialog makes up: four digits, easy to note and to type at the printer.

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  return bundle->localizedString(key, "Localizable", "STRING NOT FOUND");
}

void Accept(SecurePrintSetupDialog& dialog) {
  dialog.result = 1;
  dialog.window->quitModalLoop();
}

// OK: equal fields are taken, two empty ones get a made-up passcode that the person is
// told, fields that differ are refused and the dialog stays.
void ConfirmPasscode(SecurePrintSetupDialog& dialog) {
  const std::string& passcode = dialog.passcodeField->text();
  const std::string& confirmation = dialog.confirmField->text();
  const bundle::BundleRef& bundle = dialog.bundle;
  if (passcode.empty() && confirmation.empty()) {
    const std::string made = MakeUpPasscode();
    dialog.passcodeField->setText(made);
    dialog.confirmField->setText(made);
    toolkit::CFUserNotificationDisplayNotice(
        0, toolkit::kCFUserNotificationNoteAlertLevel,
        Localized(bundle, "Passcode Required Header"),
        ui::FormatNumbers(Localized(bundle, "Passcode Required Message"),
                      {kMinSecurePasscodeLength, kMaxSecurePasscodeLength, std::stoll(made)}));
    Accept(dialog);
    return;
  }
  if (plist::EqualCaseInsensitive(passcode, confirmation)) {
    Accept(dialog);
    return;
  }
  toolkit::CFUserNotificationDisplayNotice(
      0, toolkit::kCFUserNotificationCautionAlertLevel,
      Localized(bundle, "Invalid Secure Print Passcode Header"),
      ui::FormatNumbers(Localized(bundle, "Invalid Secure Print Passcode Message"),
                    {kMinSecurePasscodeLength, kMaxSecurePasscodeLength}));
  dialog.window->setFocus(dialog.passcodeField);
}

OSStatus HandleCommand(SecurePrintSetupDialog& dialog, toolkit::MenuCommand command) {
  switch (command) {
    case toolkit::kHICommandOK: ConfirmPasscode(dialog); return noErr;
    case toolkit::kHICommandCancel:
      dialog.result = 2;
      dialog.window->quitModalLoop();
      return noErr;
    case kSecureHelpCommand: return host::DisplayHelp(dialog.bundle, kSecureHelpPage, nullptr);
    default: return eventNotHandledErr;
  }
}

}  // namespace

OSStatus SecurePrintEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                 void* dialogState) {
  auto* dialog = static_cast<SecurePrintSetupDialog*>(dialogState);
  if (!dialog || !event) return eventNotHandledErr;
  if (event->eventClass() == ui::kPanelUICreator) {
    // Only the passcode field's own states: the confirm field announces its states too.
    if (event->control() != dialog->passcodeField) return eventNotHandledErr;
    dialog->confirmField->setEnabled(event->kind() == ui::kInputStateLongEnough);
    return eventNotHandledErr;
  }
  const std::optional<toolkit::HICommand> command = event->command();
  return command ? HandleCommand(*dialog, command->commandID) : eventNotHandledErr;
}

OSStatus InitializeSecurePrintSetup(SecurePrintSetupDialog* dialog,
                                    const std::optional<std::string>& passcode) {
  if (!dialog || !dialog->window || !dialog->bundle) return paramErr;
  toolkit::Window& window = *dialog->window;
  dialog->passcodeField = window.findByID(kSecurePasscodeFieldID);
  dialog->confirmField = window.findByID(kSecureConfirmFieldID);
  dialog->okButton = window.findByID(kSecureOKButtonID);
  dialog->icon = window.findByID(kSecureIconID);
  if (!dialog->passcodeField || !dialog->confirmField) return errUnknownControl;

  for (toolkit::ControlID note : {kSecurePasscodeNoteID, kSecureConfirmNoteID}) {
    ui::SetLocalizedStaticText(dialog->bundle, "Min-Max Digits", window.findByID(note),
                               kMinSecurePasscodeLength, kMaxSecurePasscodeLength);
  }
  static const toolkit::CharacterSet kDigits("0123456789");
  for (Control* field : {dialog->passcodeField, dialog->confirmField}) {
    ui::LimitInputLengthAndCharacters(field, kMinSecurePasscodeLength, kMaxSecurePasscodeLength,
                                      &kDigits);
  }
  const bool known = passcode && !passcode->empty();
  if (known) {
    dialog->passcodeField->setText(*passcode);
    dialog->confirmField->setText(*passcode);
  }
  dialog->confirmField->setEnabled(known);
  Control* const buttons[] = {window.findByID(kSecureCancelButtonID), dialog->okButton};
  ui::SetButtonsToSameWidth(buttons);
  if (dialog->icon) ui::DrawImage(dialog->bundle, kSecurePrintPicture, dialog->icon);

  static constexpr std::array<toolkit::EventTypeSpec, 1> kCommands{
      {{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}}};
  static constexpr std::array<toolkit::EventTypeSpec, 3> kFieldStates{{
      {ui::kPanelUICreator, ui::kInputStateEmpty},
      {ui::kPanelUICreator, ui::kInputStateTooShort},
      {ui::kPanelUICreator, ui::kInputStateLongEnough},
  }};
  dialog->handlers = {window.installHandler(kCommands, SecurePrintEventHandler, dialog),
                      dialog->passcodeField->installHandler(kFieldStates,
                                                            SecurePrintEventHandler, dialog)};
  window.setFocus(dialog->passcodeField);
  return noErr;
}

void FinalizeSecurePrintSetup(SecurePrintSetupDialog* dialog) {
  if (!dialog) return;
  for (toolkit::EventHandlerRef& handler : dialog->handlers) {
    if (handler) toolkit::RemoveEventHandler(handler);
    handler = nullptr;
  }
}

OSStatus RunModalSecurePrintSetup(const bundle::BundleRef& bundle,
                                  std::optional<std::string>* passcode) {
  if (!bundle || !passcode) return paramErr;
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::unique_ptr<toolkit::Window> window;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(bundle, "SecurePrint", &file, &error);
  if (status == noErr) status = file->createWindow("SecurePrint", &window, &error);
  SecurePrintSetupDialog dialog{bundle, window.get()};
  if (status == noErr) {
    status = InitializeSecurePrintSetup(&dialog, *passcode);
    if (status != noErr) error = "the window \"SecurePrint\" lacks the field 20001 or 20004";
  }
  if (status != noErr) {
    std::fprintf(stderr, "RunModalSecurePrintSetup() failed (%d): %s\n", status, error.c_str());
    return status;
  }
  window->setVisible(true);
  window->runModalLoop();
  FinalizeSecurePrintSetup(&dialog);
  if (dialog.result == 1) *passcode = dialog.passcodeField->text();
  return noErr;
}

}  // namespace varno::panels
