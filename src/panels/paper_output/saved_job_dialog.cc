// SPDX-License-Identifier: Apache-2.0
#include "panels/paper_output/saved_job_dialog.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/dialog_host.h"
#include "panels/paper_output/made_up_passcode.h"
#include "platform/plist/text.h"
#include "platform/system/console_log.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/character_set.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/text_editing.h"
#include "platform/toolkit/window.h"
#include "ui/history_combo_box.h"
#include "ui/panel_ui.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

namespace {

using toolkit::Control;

// The job-name box's "Use Document Name" entry, as the ticket and the job-name map write it.
constexpr std::int64_t kUseJobNameValue = static_cast<std::int32_t>(MakeOSType("Vujn"));
// The passcode range the passcode mismatch message names: the one secure print uses too.
constexpr std::int32_t kSecurePrintMaxPasscodeLength = 12;

// One run of the dialog.
struct SavedJobDialog {
  toolkit::Window* window = nullptr;
  bundle::BundleRef bundle;
  Control* jobNameBox = nullptr;
  Control* secureCheckBox = nullptr;
  // The passcode label, field and note, then the confirm label, field and note.
  std::array<Control*, 6> passcodeControls{};
  Control* folderLabel = nullptr;
  Control* folderBox = nullptr;
  Control* okButton = nullptr;
  Control* cancelButton = nullptr;
  std::array<Control*, 3> icons{};
  std::int32_t jobType = kSavedJob;
  std::int32_t secure = 0;     // from and to the panel's hasPasscode
  std::uint8_t cancelled = 1;  // cleared on accept
  PaperOutputContext* context = nullptr;
  toolkit::EventHandlerRef handler = nullptr;

  Control* passcodeField() const { return passcodeControls[1]; }
  Control* confirmField() const { return passcodeControls[4]; }
};

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  return bundle->localizedString(key, "Localizable", "STRING NOT FOUND");
}

void Notice(const SavedJobDialog& dialog, toolkit::CFOptionFlags level, const char* headerKey,
            const char* messageKey, std::initializer_list<long long> numbers) {
  toolkit::CFUserNotificationDisplayNotice(
      0, level, Localized(dialog.bundle, headerKey),
      ui::FormatNumbers(Localized(dialog.bundle, messageKey), numbers));
}

void SetLabel(const SavedJobDialog& dialog, toolkit::ControlID id, const char* key,
              std::initializer_list<long long> numbers = {}) {
  if (Control* label = dialog.window->findByID(id)) {
    label->setText(ui::FormatNumbers(Localized(dialog.bundle, key), numbers));
    label->draw();
  }
}

void EnableAll(std::initializer_list<Control*> controls, bool enabled) {
  for (Control* control : controls)
    if (control) control->setEnabled(enabled);
}

void EnableConfirm(SavedJobDialog& dialog, bool enabled) {
  EnableAll({dialog.passcodeControls[3], dialog.passcodeControls[4], dialog.passcodeControls[5]},
            enabled);
}

// A name or "Use Document Name", and a folder number: what OK needs.
bool BothBoxesHoldSomething(const SavedJobDialog& dialog) {
  std::optional<plist::Value> name, folder;
  ui::VComboBoxCopyValue(dialog.jobNameBox, &name);
  ui::VComboBoxCopyValue(dialog.folderBox, &folder);
  const bool named = name && ((name->asString() && !name->asString()->empty()) ||
                              name->asInteger() == kUseJobNameValue);
  return named && folder && folder->asString() && !folder->asString()->empty();
}

void EnableOK(SavedJobDialog& dialog) {
  if (dialog.okButton) dialog.okButton->setEnabled(BothBoxesHoldSomething(dialog));
}

// Folder numbers are digits; a longer number (leading zeros aside) is the larger one.
bool FolderAboveMaximum(std::string_view folder) {
  if (folder.empty() || !std::all_of(folder.begin(), folder.end(),
                                     [](char c) { return c >= '0' && c <= '9'; }))
    return false;
  folder.remove_prefix(std::min(folder.find_first_not_of('0'), folder.size()));
  const std::string maximum = std::to_string(kMaxSavedJobFolder);
  return folder.size() != maximum.size() ? folder.size() > maximum.size() : folder > maximum;
}

// --- Moving values between the panel and the dialog ---------------------------------------

void RestoreUIValuesFromData(SavedJobDialog& dialog) {
  const PaperOutputContext& panel = *dialog.context;
  const plist::Value name = panel.useJobName ? plist::Value(kUseJobNameValue)
                                             : plist::Value(panel.savedJobName);
  ui::VComboBoxSetValue(dialog.jobNameBox, &name);
  if (!panel.noLocation && panel.savedJobLocation) {
    const plist::Value folder(*panel.savedJobLocation);
    ui::VComboBoxSetValue(dialog.folderBox, &folder);
  }
  dialog.secure = panel.hasPasscode;
  dialog.secureCheckBox->setValue(dialog.secure ? 1 : 0);
  if (panel.passcode) {
    dialog.passcodeField()->setText(*panel.passcode);
    dialog.confirmField()->setText(*panel.passcode);
  }
  for (Control* control : dialog.passcodeControls) control->setEnabled(dialog.secure != 0);
  EnableOK(dialog);
  sys::ConsoleLog("Values restored.");
}

void SaveUIValuesToData(SavedJobDialog& dialog) {
  PaperOutputContext& panel = *dialog.context;
  std::optional<plist::Value> name, folder;
  if (ui::VComboBoxCopyValue(dialog.jobNameBox, &name) == noErr) {
    if (const std::string* text = name->asString()) {
      panel.savedJobName = *text;
      panel.useJobName = 0;
    } else if (name->asInteger() == kUseJobNameValue) {
      panel.useJobName = 1;
    }
  }
  ui::VComboBoxCopyValue(dialog.folderBox, &folder);
  if (const std::string* text = folder ? folder->asString() : nullptr) {
    panel.savedJobLocation = *text;
    panel.noLocation = 0;
  } else {
    panel.noLocation = 1;
  }
  panel.hasPasscode = dialog.secure;
  if (dialog.secure) panel.passcode = dialog.passcodeField()->text();
}

// --- What the person does -------------------------------------------------------------------

void SecureChanged(SavedJobDialog& dialog) {
  dialog.secure = dialog.secureCheckBox->value() == 1 ? 1 : 0;
  if (!dialog.secure) {
    // The focus leaves the fields that go dim with it.
    if (dialog.window->focus() == dialog.passcodeField() ||
        dialog.window->focus() == dialog.confirmField())
      dialog.window->setFocus(dialog.jobNameBox);
    for (Control* control : dialog.passcodeControls) control->setEnabled(false);
    return;
  }
  EnableAll({dialog.passcodeControls[0], dialog.passcodeControls[1], dialog.passcodeControls[2]},
            true);
  EnableConfirm(dialog, toolkit::CountCharacters(dialog.passcodeField()->text()) >=
                            kSavedJobConfirmAfterLength);
  dialog.window->setFocus(dialog.passcodeField());
}

void Accept(SavedJobDialog& dialog) {
  SaveUIValuesToData(dialog);
  dialog.cancelled = 0;
  dialog.window->quitModalLoop();
}

// OK's checks; each refusal says what is wrong and keeps the dialog open.
void ConfirmDialog(SavedJobDialog& dialog) {
  if (!BothBoxesHoldSomething(dialog)) {
    toolkit::SysBeep(10);  // a command sent while OK is dimmed
    return;
  }
  if (FolderAboveMaximum(dialog.folderBox->text())) {
    Notice(dialog, toolkit::kCFUserNotificationCautionAlertLevel, "Invalid Mailbox Headline",
           "Invalid Mailbox Number Error", {kMinSavedJobFolder, kMaxSavedJobFolder});
    dialog.window->setFocus(dialog.folderBox);
    return;
  }
  if (!dialog.secure) return Accept(dialog);
  Control& passcode = *dialog.passcodeField();
  Control& confirm = *dialog.confirmField();
  if (passcode.text().empty()) {
    // A stored job with a passcode needs one: make one up and tell the person.
    const std::string made = MakeUpPasscode();
    passcode.setText(made);
    confirm.setText(made);
    Notice(dialog, toolkit::kCFUserNotificationNoteAlertLevel, "Passcode Required Header",
           "Passcode Required Message",
           {kMinSavedJobPasscodeLength, kMaxSavedJobPasscodeLength, std::stoll(made)});
    return Accept(dialog);
  }
  if (!plist::EqualCaseInsensitive(passcode.text(), confirm.text())) {
    Notice(dialog, toolkit::kCFUserNotificationCautionAlertLevel,
           "Invalid Secure Print Passcode Header", "Invalid Secure Print Passcode Message",
           {kMinSavedJobPasscodeLength, kSecurePrintMaxPasscodeLength});
    if (confirm.isEnabled()) dialog.window->setFocus(&confirm);
    return;
  }
  Accept(dialog);
}

void InputStateChanged(SavedJobDialog& dialog, const Control* field, std::uint32_t state) {
  if (field == dialog.passcodeField()) {
    EnableConfirm(dialog, state == ui::kInputStateLongEnough);
  } else if (field == dialog.jobNameBox || field == dialog.folderBox) {
    if (state == ui::kInputStateEmpty) dialog.okButton->setEnabled(false);
    else EnableOK(dialog);
  }
}

OSStatus savedJobEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                              void* dialogState) {
  auto* dialog = static_cast<SavedJobDialog*>(dialogState);
  if (!dialog || !event) return eventNotHandledErr;
  if (event->eventClass() == ui::kPanelUICreator) {
    InputStateChanged(*dialog, event->control(), event->kind());
    return eventNotHandledErr;
  }
  const std::optional<toolkit::HICommand> command = event->command();
  if (!command) return eventNotHandledErr;
  switch (command->commandID) {
    case kSavedJobSecureCommand: SecureChanged(*dialog); return noErr;
    case toolkit::kHICommandOK: ConfirmDialog(*dialog); return noErr;
    case toolkit::kHICommandCancel: dialog->window->quitModalLoop(); return noErr;
    case kSavedJobHelpCommand:
      host::DisplayHelp(dialog->bundle, kSavedJobHelpPage, nullptr);
      return noErr;
    default: return eventNotHandledErr;
  }
}

// --- Setting up and taking down ------------------------------------------------------------

// OK and Cancel as wide as the wider of them, OK keeping its right edge and Cancel its gap.
void MakeButtonsSameWidth(SavedJobDialog& dialog) {
  Control* ok = dialog.okButton;
  Control* cancel = dialog.cancelButton;
  if (!ok || !cancel) return;
  const toolkit::Rect okBounds = ok->bounds(), cancelBounds = cancel->bounds();
  const std::int32_t width = std::max({okBounds.width(), cancelBounds.width(),
                                       ui::GetBestControlRect(*ok).width(),
                                       ui::GetBestControlRect(*cancel).width()});
  const std::int32_t gap = okBounds.left - cancelBounds.right;
  ok->setBounds({okBounds.top, okBounds.right - width, okBounds.bottom, okBounds.right});
  const std::int32_t cancelRight = okBounds.right - width - gap;
  cancel->setBounds({cancelBounds.top, cancelRight - width, cancelBounds.bottom, cancelRight});
}

void InitializeSavedJobDialogInterface(SavedJobDialog& dialog) {
  toolkit::Window& window = *dialog.window;
  // Folders are numbered here; the named-folder controls of the layout are not used.
  for (toolkit::ControlID id : {kSavedJobFolderNameLabelID, kSavedJobFolderNamePopupID})
    if (Control* control = window.findByID(id)) control->dispose();

  ui::SetLocalizedWindowTitle(dialog.bundle, "Store File in Folder Title", &window);
  SetLabel(dialog, kSavedJobNameLabelID, "Job Name:");
  SetLabel(dialog, kSavedJobFolderLabelID, "Folder Number Label",
           {kMinSavedJobFolder, kMaxSavedJobFolder});
  SetLabel(dialog, kSavedJobPasscodeLabelID, "Passcode:");
  SetLabel(dialog, kSavedJobPasscodeNoteID, "Min-Max Digits",
           {kMinSavedJobPasscodeLength, kMaxSavedJobPasscodeLength});
  SetLabel(dialog, kSavedJobConfirmLabelID, "ConfirmPasscode:");
  SetLabel(dialog, kSavedJobConfirmNoteID, "Min-Max Digits",
           {kMinSavedJobPasscodeLength, kMaxSavedJobPasscodeLength});
  ui::SetLocalizedControlTitle(dialog.bundle, "SecureStoredJob:", dialog.secureCheckBox);
  ui::SetLocalizedControlTitle(dialog.bundle, "OK Command", dialog.okButton);
  ui::SetLocalizedControlTitle(dialog.bundle, "Cancel Command", dialog.cancelButton);
  MakeButtonsSameWidth(dialog);

  static const char* const kPictures[] = {"JobType_NormalPrint.gif", "JobType_SavedJob.gif",
                                          "JobType_SecurePrint.gif"};
  for (std::size_t i = 0; i < dialog.icons.size(); ++i)
    if (dialog.icons[i]) ui::DrawImage(dialog.bundle, kPictures[i], dialog.icons[i]);

  ui::VComboBoxOptions name;
  name.kind = ui::kVComboBoxText;
  name.bundle = dialog.bundle;
  name.map = vocabulary::JobNameMap;
  name.historyKey = kSavedJobNameHistoryKey;
  name.historyLimit = kSavedJobHistorySize;
  name.minLength = 1;
  name.maxLength = kMaxSavedJobNameLength;
  name.allowedCharacters = toolkit::CharacterSet::Range(32, 126);
  ui::VComboBoxInitializeWithMapAndHistory(dialog.jobNameBox, &name);

  ui::VComboBoxOptions folder = name;
  folder.map = nullptr;
  folder.historyKey = kSavedJobFolderHistoryKey;
  folder.maxLength = kMaxSavedJobFolderLength;
  folder.allowedCharacters = std::string("0123456789");
  ui::VComboBoxInitializeWithMapAndHistory(dialog.folderBox, &folder);

  const toolkit::CharacterSet digits = toolkit::CharacterSet::Range(U'0', U'9');
  for (Control* field : {dialog.passcodeField(), dialog.confirmField()})
    ui::LimitInputLengthAndCharacters(field, kMinSavedJobPasscodeLength,
                                      kMaxSavedJobPasscodeLength, &digits);

  static constexpr std::array<toolkit::EventTypeSpec, 4> kEvents{{
      {toolkit::kEventClassCommand, toolkit::kEventCommandProcess},
      {ui::kPanelUICreator, ui::kInputStateLongEnough},
      {ui::kPanelUICreator, ui::kInputStateTooShort},
      {ui::kPanelUICreator, ui::kInputStateEmpty},
  }};
  dialog.handler = window.installHandler(kEvents, savedJobEventHandler, &dialog);
}

// The histories keep what was typed only when the dialog was accepted.
void FinalizeSavedJobDialogInterface(SavedJobDialog& dialog) {
  const bool accepted = dialog.cancelled == 0;
  ui::VComboBoxFinalize(dialog.jobNameBox, accepted);
  ui::VComboBoxFinalize(dialog.folderBox, accepted);
  if (dialog.handler) dialog.window->removeHandler(dialog.handler);
  dialog.handler = nullptr;
}

}  // namespace

OSStatus RunModalSavedJobDialog(PaperOutputContext* context) {
  if (!context || !context->bundle) return paramErr;
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::unique_ptr<toolkit::Window> window;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(context->bundle, "SavedJob", &file, &error);
  if (status == noErr) status = file->createWindow("withPasscode", &window, &error);
  SavedJobDialog dialog;
  if (status == noErr) {
    dialog.window = window.get();
    dialog.jobNameBox = window->findByID(kSavedJobNameBoxID);
    dialog.secureCheckBox = window->findByID(kSavedJobSecureCheckBoxID);
    dialog.passcodeControls = {window->findByID(kSavedJobPasscodeLabelID),
                               window->findByID(kSavedJobPasscodeFieldID),
                               window->findByID(kSavedJobPasscodeNoteID),
                               window->findByID(kSavedJobConfirmLabelID),
                               window->findByID(kSavedJobConfirmFieldID),
                               window->findByID(kSavedJobConfirmNoteID)};
    dialog.folderLabel = window->findByID(kSavedJobFolderLabelID);
    dialog.folderBox = window->findByID(kSavedJobFolderBoxID);
    dialog.okButton = window->findByID(kSavedJobOKButtonID);
    dialog.cancelButton = window->findByID(kSavedJobCancelButtonID);
    dialog.icons = {window->findByID(kSavedJobNameIconID), window->findByID(kSavedJobFolderIconID),
                    window->findByID(kSavedJobPasscodeIconID)};
    const bool whole = dialog.jobNameBox && dialog.secureCheckBox && dialog.folderBox &&
                       dialog.okButton &&
                       std::none_of(dialog.passcodeControls.begin(), dialog.passcodeControls.end(),
                                    [](const Control* control) { return control == nullptr; });
    if (!whole) {
      status = kInterfaceObjectNotFound;
      error = "the window lacks one of the saved job controls";
    }
  }
  if (status != noErr) {
    std::fprintf(stderr, "RunModalSavedJobDialog() failed (%d): %s\n", status, error.c_str());
    return status;
  }
  dialog.bundle = context->bundle;
  dialog.context = context;
  dialog.jobType = context->jobType;
  InitializeSavedJobDialogInterface(dialog);
  RestoreUIValuesFromData(dialog);
  window->setVisible(true);
  window->setFocus(dialog.jobNameBox);
  window->runModalLoop();
  FinalizeSavedJobDialogInterface(dialog);
  return noErr;
}

}  // namespace varno::panels
