// SPDX-License-Identifier: Apache-2.0
#include "panels/paper_output/separators_dialog.h"

#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "host/dialog_host.h"
#include "model/separators.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/window.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

namespace {

using toolkit::Control;

constexpr const char* kOptionKeyword = "VNSlipSheetPrint";
constexpr const char* kSourceKeyword = "VNSlipSheetSource";
constexpr std::uint32_t kLabelAlignment = ui::kAlignTop | ui::kAlignLeft;

// One run of the dialog.
struct SeparatorsDialog {
  bundle::BundleRef bundle;
  toolkit::Window* window = nullptr;
  Control* optionPopup = nullptr;
  Control* sourcePopup = nullptr;
  Control* preview = nullptr;
  std::int32_t* option = nullptr;  // the caller's
  model::Stock* stock = nullptr;   // the caller's
  std::int16_t result = 2;
};

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  return bundle->localizedString(key, "Localizable", "STRING NOT FOUND");
}

void SetText(const bundle::BundleRef& bundle, Control* control, const char* key) {
  if (control) control->setText(Localized(bundle, key));
}

std::int32_t ChosenOption(const SeparatorsDialog& dialog) {
  return vocabulary::GetPopupButtonTicketValue(dialog.optionPopup);
}

void EnableSource(SeparatorsDialog& dialog) {
  if (dialog.sourcePopup) dialog.sourcePopup->setEnabled(ChosenOption(dialog) != model::kNoSeparators);
}

void Redraw(Control* view) {
  if (view) view->draw();
}

OSStatus DrawPreviewEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef, void* dialogState) {
  auto* dialog = static_cast<SeparatorsDialog*>(dialogState);
  // The colour pop-up is gone, so the separators are shown on white paper.
  if (dialog) ui::DrawImage(dialog->bundle, SeparatorPreviewPicture(ChosenOption(*dialog), 1), dialog->preview);
  return eventNotHandledErr;
}

OSStatus SeparatorsEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event, void* dialogState) {
  auto* dialog = static_cast<SeparatorsDialog*>(dialogState);
  const std::optional<toolkit::HICommand> command = event ? event->command() : std::nullopt;
  if (!dialog || !command) return eventNotHandledErr;
  switch (command->commandID) {
    case kSeparatorOptionCommand:
      EnableSource(*dialog);
      Redraw(dialog->preview);
      break;
    case kSeparatorSourceCommand:
      Redraw(dialog->preview);
      break;
    case toolkit::kHICommandRevert:
      dialog->optionPopup->setValue(1);
      if (dialog->sourcePopup) dialog->sourcePopup->setValue(1);
      EnableSource(*dialog);
      Redraw(dialog->preview);
      break;
    case toolkit::kHICommandOK:
      *dialog->option = ChosenOption(*dialog);
      if (*dialog->option != model::kNoSeparators && dialog->sourcePopup)
        dialog->stock->setSource(vocabulary::GetPopupButtonTicketValue(dialog->sourcePopup));
      dialog->result = 1;
      dialog->window->quitModalLoop();
      break;
    case toolkit::kHICommandCancel:
      dialog->result = 2;
      dialog->window->quitModalLoop();
      break;
    case kSeparatorHelpCommand:
      host::DisplayHelp(dialog->bundle, kSeparatorHelpPage, nullptr);
      break;
    default:
      break;
  }
  // Standard handling follows every command.
  return eventNotHandledErr;
}

void InitializeSeparatorDialog(SeparatorsDialog& dialog) {
  toolkit::Window& window = *dialog.window;
  ppd_file_t* ppd = vocabulary::PPDGetCurrent();
  Control* optionLabel = window.findByID(kSeparatorOptionLabelID);
  SetText(dialog.bundle, optionLabel, "Transparency Separator Option Label");
  ui::SetControlBestRect(optionLabel, kLabelAlignment, nullptr, nullptr);
  dialog.optionPopup = window.findByID(kSeparatorOptionPopupID);
  vocabulary::PPDPopulatePopupWithChoices(dialog.optionPopup, ppd, kOptionKeyword, false);
  vocabulary::SetPopupButtonToTicketValue(dialog.optionPopup, *dialog.option);
  // Separators take the transparencies' colour and no type of their own.
  for (toolkit::ControlID id : {kSeparatorColorLabelID, kSeparatorColorPopupID, kSeparatorTypeLabelID,
                                kSeparatorTypePopupID}) {
    if (Control* control = window.findByID(id)) control->dispose();
  }
  Control* sourceLabel = window.findByID(kSeparatorSourceLabelID);
  SetText(dialog.bundle, sourceLabel, "Transparency Separator Source Label");
  ui::SetControlBestRect(sourceLabel, kLabelAlignment, nullptr, nullptr);
  // Trays that clash with the printer's set-up are left out.
  dialog.sourcePopup = window.findByID(kSeparatorSourcePopupID);
  vocabulary::PPDPopulatePopupWithChoices(dialog.sourcePopup, ppd, kSourceKeyword, true);
  SetText(dialog.bundle, window.findByID(kSeparatorNoteID), "Transparency Separator Note");
  SetText(dialog.bundle, window.findByID(kSeparatorOKButtonID), "OK Command");
  SetText(dialog.bundle, window.findByID(kSeparatorCancelButtonID), "Cancel Command");
  SetText(dialog.bundle, window.findByID(kSeparatorDefaultsButtonID), "Defaults");
  if (ChosenOption(dialog) == model::kNoSeparators)
    EnableSource(dialog);
  else
    vocabulary::SetPopupButtonToTicketValue(dialog.sourcePopup, dialog.stock->source());

  static constexpr std::array<toolkit::EventTypeSpec, 1> kCommands{
      {{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}}};
  static constexpr std::array<toolkit::EventTypeSpec, 1> kDraw{{{toolkit::kEventClassControl, toolkit::kEventControlDraw}}};
  window.installHandler(kCommands, SeparatorsEventHandler, &dialog);
  dialog.preview = window.findByID(kSeparatorPreviewID);
  if (dialog.preview) {
    dialog.preview->installHandler(kDraw, DrawPreviewEventHandler, &dialog);
    Redraw(dialog.preview);
  }
}

}  // namespace

const char* SeparatorPreviewPicture(std::int32_t option, std::int32_t mediaColor) {
  struct Pictures {
    std::int32_t color;
    const char* blank;
    const char* printed;
  };
#define VARNO_SEPARATOR_PICTURES(word) \
  "Paper_TransparencySeparators_BlnkSeps-" word ".gif", "Paper_TransparencySeparators_PrntdSeps-" word ".gif"
  static constexpr Pictures kPictures[] = {
      {2, VARNO_SEPARATOR_PICTURES("Blue")},    {3, VARNO_SEPARATOR_PICTURES("Yellow")},
      {4, VARNO_SEPARATOR_PICTURES("Green")},   {5, VARNO_SEPARATOR_PICTURES("Pink")},
      {7, VARNO_SEPARATOR_PICTURES("Buff")},    {8, VARNO_SEPARATOR_PICTURES("Goldenrod")},
      {9, VARNO_SEPARATOR_PICTURES("Red")},     {11, VARNO_SEPARATOR_PICTURES("Ivory")},
      {12, VARNO_SEPARATOR_PICTURES("Gray")},   {13, VARNO_SEPARATOR_PICTURES("Orange")},
  };
  static constexpr Pictures kWhite{1, VARNO_SEPARATOR_PICTURES("White")};
#undef VARNO_SEPARATOR_PICTURES
  if (option == model::kNoSeparators) return "Paper_TransparencySeparators_NoSeps.gif";
  if (option != model::kBlankSeparators && option != model::kPrintedSeparators) return nullptr;
  const Pictures* pictures = &kWhite;
  for (const Pictures& entry : kPictures) {
    if (entry.color == mediaColor) pictures = &entry;
  }
  return option == model::kBlankSeparators ? pictures->blank : pictures->printed;
}

OSStatus RunModalSeparatorsDialog(const bundle::BundleRef& bundle, std::int32_t* option,
                                  model::Stock* stock, std::int16_t* result) {
  if (!bundle || !option || !stock || !result) return paramErr;
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::unique_ptr<toolkit::Window> window;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(bundle, "Separators", &file, &error);
  if (status == noErr) status = file->createWindow("Separators", &window, &error);
  if (status != noErr) {
    std::fprintf(stderr, "RunModalSeparatorsDialog() failed (%d): %s\n", status, error.c_str());
    return status;
  }
  SeparatorsDialog dialog{bundle, window.get()};
  dialog.option = option;
  dialog.stock = stock;
  InitializeSeparatorDialog(dialog);
  window->setVisible(true);
  window->runModalLoop();
  *result = dialog.result;
  return noErr;
}

}  // namespace varno::panels
