// SPDX-License-Identifier: Apache-2.0
#include "panels/paper_output/custom_finishing_dialog.h"

#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/dialog_host.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/text_editing.h"
#include "platform/toolkit/window.h"

namespace varno::panels {

namespace {

using toolkit::Control;

// One run of the dialog.
struct CustomFinishingDialog {
  PaperOutputContext* context = nullptr;
  toolkit::Window* window = nullptr;
  Control* field = nullptr;
  Control* okButton = nullptr;
};

// The first kMaxCustomFinishingLength characters: a longer text from elsewhere is shown
// as the field could hold it, so OK never stores more than can be typed.
std::string Clipped(std::string_view text) {
  const std::vector<std::string_view> characters = toolkit::SplitCharacters(text);
  if (characters.size() <= static_cast<std::size_t>(kMaxCustomFinishingLength))
    return std::string(text);
  const std::string_view last = characters[kMaxCustomFinishingLength - 1];
  return std::string(
      text.substr(0, static_cast<std::size_t>(last.data() + last.size() - text.data())));
}

void EnableOK(CustomFinishingDialog& dialog) {
  dialog.okButton->setEnabled(!dialog.field->text().empty());
}

// What one command does; eventNotHandledErr for those left to the toolkit.
OSStatus CustomHandler(CustomFinishingDialog& dialog, toolkit::MenuCommand command) {
  switch (command) {
    case toolkit::kHICommandOK:
      // A key equivalent reaches here even while the button is dimmed.
      if (dialog.field->text().empty()) {
        toolkit::SysBeep(10);
        return noErr;
      }
      dialog.context->finishingOptions = kCustomFinishingOptions;
      dialog.context->customFinishing = dialog.field->text();
      dialog.window->quitModalLoop();
      return noErr;
    case toolkit::kHICommandCancel: dialog.window->quitModalLoop(); return noErr;
    case kCustomFinishingHelpCommand:
      host::DisplayHelp(dialog.context->bundle, kCustomFinishingHelpPage, nullptr);
      return noErr;
    default: return eventNotHandledErr;
  }
}

OSStatus finishingCustomEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                     void* dialogState) {
  auto* dialog = static_cast<CustomFinishingDialog*>(dialogState);
  const std::optional<toolkit::HICommand> command = event ? event->command() : std::nullopt;
  if (!dialog || !command) return eventNotHandledErr;
  return CustomHandler(*dialog, command->commandID);
}

// The limited field says after each edit whether it is empty; OK follows.
OSStatus CustomFinishingTextInputEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                              void* dialogState) {
  auto* dialog = static_cast<CustomFinishingDialog*>(dialogState);
  if (!dialog || !event) return eventNotHandledErr;
  EnableOK(*dialog);
  return noErr;
}

}  // namespace

OSStatus RunModalCustomFinishingDialog(PaperOutputContext* context) {
  if (!context || !context->bundle) return paramErr;
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::unique_ptr<toolkit::Window> window;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(context->bundle, "Finishing", &file, &error);
  if (status == noErr) status = file->createWindow("Custom", &window, &error);
  CustomFinishingDialog dialog{context, window.get()};
  if (status == noErr) {
    dialog.field = window->findByID(kCustomFinishingFieldID);
    dialog.okButton = window->findByID(kCustomFinishingOKButtonID);
    if (!dialog.field || !dialog.okButton) {
      status = errUnknownControl;
      error = "the window \"Custom\" lacks its field 1401 or its OK button 1400";
    }
  }
  if (status != noErr) {
    std::fprintf(stderr, "RunModalCustomFinishingDialog() failed (%d): %s\n", status,
                 error.c_str());
    return status;
  }

  // Any character may be typed: the instruction is read by a person, not the printer.
  ui::LimitInputLengthAndCharacters(dialog.field, 0, kMaxCustomFinishingLength, nullptr);
  dialog.field->setText(Clipped(context->customFinishing));
  EnableOK(dialog);
  static constexpr std::array<toolkit::EventTypeSpec, 1> kCommands{
      {{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}}};
  static constexpr std::array<toolkit::EventTypeSpec, 3> kFieldStates{{
      {ui::kPanelUICreator, ui::kInputStateEmpty},
      {ui::kPanelUICreator, ui::kInputStateTooShort},
      {ui::kPanelUICreator, ui::kInputStateLongEnough},
  }};
  window->installHandler(kCommands, finishingCustomEventHandler, &dialog);
  dialog.field->installHandler(kFieldStates, CustomFinishingTextInputEventHandler, &dialog);

  window->setVisible(true);
  window->setFocus(dialog.field);
  window->runModalLoop();
  return noErr;
}

}  // namespace varno::panels
