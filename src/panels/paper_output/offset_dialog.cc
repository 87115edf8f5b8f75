// SPDX-License-Identifier: Apache-2.0
#include "panels/paper_output/offset_dialog.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "host/dialog_host.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/character_set.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/window.h"
#include "ui/panel_ui.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

namespace {

using toolkit::Control;

// One run of the dialog.
struct OffsetDialog {
  PaperOutputContext* context = nullptr;
  toolkit::Window* window = nullptr;
  Control* popup = nullptr;
  Control* checkBox = nullptr;
  Control* field = nullptr;
  Control* spin = nullptr;
  // The pages per subset that turning subsets on shows again.
  std::int32_t rememberedPages = 1;
  // A stored offset the menu lacks shows as its first item and is kept unless another
  // item is chosen.
  bool offsetShown = true;
};

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  return bundle->localizedString(key, "Localizable", "STRING NOT FOUND");
}

bool InRange(std::int32_t pages) {
  return pages >= kMinPagesPerSubset && pages <= kMaxPagesPerSubset;
}

// The whole number in the field, or nullopt for an empty field or one with more digits
// than an int32 holds (the field takes digits only).
std::optional<std::int32_t> PagesIn(const Control& field) {
  const std::string& text = field.text();
  std::int32_t pages = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), pages);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return pages;
}

bool SubsetsOn(const OffsetDialog& dialog) { return dialog.checkBox->value() == 1; }

// The field and the arrows always show the same number, so what OK stores is what the
// person reads; while subsets are off the arrows stand at 0 and the field is empty.
void ShowPages(OffsetDialog& dialog, std::optional<std::int32_t> pages) {
  dialog.spin->setValue(pages.value_or(0));
  dialog.field->setText(pages ? std::to_string(*pages) : std::string());
}

void TurnSubsetsOn(OffsetDialog& dialog) {
  dialog.checkBox->setValue(1);
  dialog.field->setEnabled(true);
  dialog.spin->setEnabled(true);
  ShowPages(dialog, dialog.rememberedPages);
  dialog.window->setFocus(dialog.field);
}

void TurnSubsetsOff(OffsetDialog& dialog) {
  // An enabled field means subsets were on until now: its count is the one to bring back.
  if (dialog.field->isEnabled()) {
    if (std::optional<std::int32_t> pages = PagesIn(*dialog.field); pages && InRange(*pages))
      dialog.rememberedPages = *pages;
  }
  dialog.checkBox->setValue(0);
  // The focus leaves first: a disabled field must not keep the keys.
  if (dialog.window->focus() == dialog.field) dialog.window->setFocus(nullptr);
  ShowPages(dialog, std::nullopt);
  dialog.field->setEnabled(false);
  dialog.spin->setEnabled(false);
}

std::int32_t ChosenOffset(const OffsetDialog& dialog) {
  return vocabulary::GetPopupButtonTicketValue(dialog.popup);
}

// OK's check: subsets that are on need a page count within the limits; otherwise it
// says so and puts the focus where the fault is.
bool Acceptable(OffsetDialog& dialog) {
  if (!SubsetsOn(dialog)) return true;
  if (std::optional<std::int32_t> pages = PagesIn(*dialog.field); pages && InRange(*pages))
    return true;
  const bundle::BundleRef& bundle = dialog.context->bundle;
  toolkit::SysBeep(10);
  char limits[160];
  std::snprintf(limits, sizeof limits, Localized(bundle, "Offset Pages Limits").c_str(),
                kMinPagesPerSubset, kMaxPagesPerSubset);
  toolkit::CFUserNotificationDisplayNotice(0, toolkit::kCFUserNotificationCautionAlertLevel,
                                           Localized(bundle, "Offset Pages Outside"), limits);
  dialog.window->setFocus(dialog.field);
  return false;
}

void Accept(OffsetDialog& dialog) {
  PaperOutputContext& context = *dialog.context;
  if (dialog.offsetShown || dialog.popup->value() != 1) context.offset = ChosenOffset(dialog);
  context.offsetEnableSubset = SubsetsOn(dialog) ? 1 : 0;
  // With subsets off the stored count stays, so turning them on later brings it back.
  if (SubsetsOn(dialog)) context.offsetPagesPerSubset = dialog.spin->value();
}

// What one command of the dialog does; eventNotHandledErr for the commands it leaves to
// the toolkit.
OSStatus OffsetHandler(OffsetDialog& dialog, toolkit::MenuCommand command) {
  switch (command) {
    case kOffsetPopupCommand: {
      dialog.offsetShown = true;
      const std::int32_t offset = ChosenOffset(dialog);
      if (offset == kOffsetEachSet)
        TurnSubsetsOff(dialog);
      else if ((offset == kOffsetEachSubset || offset == kOffsetSetsAndSubsets) &&
               !SubsetsOn(dialog))
        TurnSubsetsOn(dialog);
      return noErr;
    }
    case kOffsetSubsetCommand:
      // The click has toggled the box already; the rest of the dialog follows it.
      if (SubsetsOn(dialog)) {
        TurnSubsetsOn(dialog);
      } else {
        TurnSubsetsOff(dialog);
        if (ChosenOffset(dialog) >= kOffsetEachSubset)
          vocabulary::SetPopupButtonToTicketValue(dialog.popup, kOffsetEachSet);
      }
      return noErr;
    case kOffsetSpinCommand: ShowPages(dialog, dialog.spin->value()); return noErr;
    case toolkit::kHICommandOK:
      if (Acceptable(dialog)) {
        Accept(dialog);
        dialog.window->quitModalLoop();
      }
      return noErr;
    case toolkit::kHICommandCancel: dialog.window->quitModalLoop(); return noErr;
    case kOffsetHelpCommand:
      host::DisplayHelp(dialog.context->bundle, kOffsetHelpPage, nullptr);
      return noErr;
    default: return eventNotHandledErr;
  }
}

OSStatus finishingOffsetEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                     void* dialogState) {
  auto* dialog = static_cast<OffsetDialog*>(dialogState);
  const std::optional<toolkit::HICommand> command = event ? event->command() : std::nullopt;
  if (!dialog || !command) return eventNotHandledErr;
  return OffsetHandler(*dialog, command->commandID);
}

// Typing into the field moves the arrows with it (an empty field stands them at 0).
OSStatus OffsetPagesInputEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                      void* dialogState) {
  auto* dialog = static_cast<OffsetDialog*>(dialogState);
  if (!dialog || !event) return eventNotHandledErr;
  dialog->spin->setValue(PagesIn(*dialog->field).value_or(0));
  return noErr;
}

void FillOffsetPopup(const bundle::BundleRef& bundle, Control& popup) {
  toolkit::Menu& menu = *popup.menu();
  for (const OffsetChoice& choice : kOffsetChoices) {
    const toolkit::MenuItemIndex item = menu.appendItem(Localized(bundle, choice.labelKey));
    menu.setItemRefCon(item,
                       static_cast<toolkit::URefCon>(static_cast<std::intptr_t>(choice.value)));
  }
  popup.setMaximum(static_cast<std::int32_t>(menu.count()));
}

void InitializeOffsetDialog(OffsetDialog& dialog) {
  const PaperOutputContext& context = *dialog.context;
  toolkit::Window& window = *dialog.window;
  FillOffsetPopup(context.bundle, *dialog.popup);
  dialog.popup->setValue(1);
  dialog.offsetShown = vocabulary::SetPopupButtonToTicketValue(dialog.popup, context.offset) == 1;

  static const toolkit::CharacterSet kDigits("0123456789");
  ui::LimitInputLengthAndCharacters(dialog.field, 0, ui::CountDigits(kMaxPagesPerSubset), &kDigits);
  dialog.spin->setMinimum(0);
  dialog.spin->setMaximum(kMaxPagesPerSubset);
  if (InRange(context.offsetPagesPerSubset)) dialog.rememberedPages = context.offsetPagesPerSubset;
  if (context.offsetEnableSubset) {
    dialog.checkBox->setValue(1);
    ShowPages(dialog, context.offsetPagesPerSubset);
  } else {
    dialog.field->setEnabled(false);  // nothing to remember from the layout's empty field
    TurnSubsetsOff(dialog);
  }

  static constexpr std::array<toolkit::EventTypeSpec, 1> kCommands{
      {{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}}};
  static constexpr std::array<toolkit::EventTypeSpec, 3> kFieldStates{{
      {ui::kPanelUICreator, ui::kInputStateEmpty},
      {ui::kPanelUICreator, ui::kInputStateTooShort},
      {ui::kPanelUICreator, ui::kInputStateLongEnough},
  }};
  window.installHandler(kCommands, finishingOffsetEventHandler, &dialog);
  dialog.field->installHandler(kFieldStates, OffsetPagesInputEventHandler, &dialog);
}

}  // namespace

OSStatus RunModalOffsetFinishingDialog(PaperOutputContext* context) {
  if (!context || !context->bundle) return paramErr;
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::unique_ptr<toolkit::Window> window;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(context->bundle, "OffsetSelection", &file, &error);
  if (status == noErr) status = file->createWindow("Offset", &window, &error);
  OffsetDialog dialog{context, window.get()};
  if (status == noErr) {
    dialog.popup = window->findByID(kOffsetPopupID);
    dialog.checkBox = window->findByID(kOffsetSubsetCheckBoxID);
    dialog.field = window->findByID(kOffsetPagesFieldID);
    dialog.spin = window->findByID(kOffsetPagesSpinID);
    if (!dialog.popup || !dialog.popup->menu() || !dialog.checkBox || !dialog.field ||
        !dialog.spin) {
      status = errUnknownControl;
      error = "the window \"Offset\" lacks one of the controls 1501 to 1504";
    }
  }
  if (status != noErr) {
    std::fprintf(stderr, "RunModalOffsetFinishingDialog() failed (%d): %s\n", status,
                 error.c_str());
    return status;
  }
  InitializeOffsetDialog(dialog);
  window->setVisible(true);
  window->runModalLoop();
  return noErr;
}

}  // namespace varno::panels
