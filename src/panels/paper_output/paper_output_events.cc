// SPDX-License-Identifier: Apache-2.0
// What the panel does when a person uses it: control hits, the stock menu's commands and
// the pictures that follow the choices.
#include "fax/lan_fax_setup.h"
#include "panels/paper_output/delayed_print_setup.h"
#include "panels/paper_output/finishing_menu.h"
#include "panels/paper_output/paper_output_panel.h"
#include "panels/paper_output/saved_job_dialog.h"
#include "panels/paper_output/secure_print_setup.h"
#include "panels/paper_output/separators_dialog.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/event.h"
#include "ui/panel_ui.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

using toolkit::Control;
using vocabulary::GetPopupButtonTicketValue;

namespace {

void RunJobTypeSetup(PaperOutputContext* panel) {
  switch (panel->jobType) {
    case kSavedJob:
      RunModalSavedJobDialog(panel);
      break;
    case kFaxJob:
      if (!panel->faxOptions) panel->faxOptions = plist::Dictionary{};
      if (!panel->recipients) panel->recipients = std::make_unique<fax::FaxRecipientList>();
      fax::RunModalLANFaxSetup(panel->bundle, *panel->faxOptions, panel->recipients.get());
      break;
    case kSecurePrintJob:
      RunModalSecurePrintSetup(panel->bundle, &panel->passcode);
      panel->hasPasscode = panel->passcode ? 1 : 0;
      break;
    case kDelayedPrintJob:
      RunModalDelayedPrintSetup(panel->bundle, &panel->delayedPrintTime);
      break;
    default:
      // Codes 4 and 9 come only from tickets: the button is enabled and does nothing.
      break;
  }
}

void ControlHit(PaperOutputContext* panel, Control& control) {
  switch (control.id().id) {
    case kJobTypePopupID:
      panel->jobType = GetPopupButtonTicketValue(&control);
      EnableDisableJobTypeSetupButton(panel);
      if (panel->jobTypeIcon) panel->jobTypeIcon->draw();
      // Choosing a job type that needs details opens its set-up at once.
      if (panel->jobTypeSetupButton && panel->jobTypeSetupButton->isEnabled())
        toolkit::Click(*panel->jobTypeSetupButton);
      break;
    case kJobTypeSetupButtonID:
      RunJobTypeSetup(panel);
      break;
    case kTwoSidedPopupID:
      panel->duplex = panel->duplexPopupValue = GetPopupButtonTicketValue(&control);
      if (panel->twoSidedIcon) panel->twoSidedIcon->draw();
      break;
    case kStaplePopupID: {
      panel->singleStaple = panel->dualStaple = panel->multipleStaple = 1;
      const std::int32_t staple = GetPopupButtonTicketValue(&control);
      if (staple == 5 || staple == 6) panel->singleStaple = staple;
      else if (staple == 10 || staple == 12) panel->dualStaple = staple;
      else if (staple == 54) panel->multipleStaple = staple;
      else if (staple != 1) panel->finishingDialogFlags[0] = 0;
      if (panel->finishingIcon) panel->finishingIcon->draw();
      break;
    }
    case kHolePunchPopupID:
      panel->holePunch = GetPopupButtonTicketValue(&control);
      if (panel->finishingIcon) panel->finishingIcon->draw();
      break;
    case kFinishingMenuButtonID:
      if (panel->finishingIcon) panel->finishingIcon->draw();
      break;
    case kOutputDestinationPopupID:
      panel->outputBin = GetPopupButtonTicketValue(&control);
      break;
    default:
      break;
  }
}

void MenuCommand(PaperOutputContext* panel, const toolkit::HICommand& hiCommand) {
  const toolkit::MenuCommand command = hiCommand.commandID;
  if (RunFinishingCommand(panel, hiCommand)) {
    // FinishingChanged below follows every command.
  } else if (command == kCoversCommand) {
    if (!panel->coversUndo) panel->coversUndo = std::make_unique<ui::CoversUndoState>();
    const bool anyCover = panel->frontCover || panel->backCover;
    std::int16_t itemHit = 0;
    ui::RunModalCoversDialog(panel->bundle, anyCover ? ui::kCoversDialogEdit : ui::kCoversDialogAdd,
                             panel->jobLevelStock.get(), &panel->frontCover, &panel->backCover,
                             &itemHit, panel->coversUndo.get());
  } else if (command == kSeparatorsCommand) {
    std::int16_t result = 0;
    RunModalSeparatorsDialog(panel->bundle, &panel->separatorOption, panel->separatorStock.get(),
                             &result);
    if (result == 1) ShowPaperSummary(panel);
  } else if (command == ui::kStockTypeCommand) {
    // The stock menus have shown the stock; a transparency adds its separators.
    ShowPaperSummary(panel);
  }
  FinishingChanged(panel);
}

}  // namespace

OSStatus dialogHostPaperOutputEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                           void* context) {
  auto* panel = static_cast<PaperOutputContext*>(context);
  if (!panel || !event) return eventNotHandledErr;
  // The stock may have changed since the last event: a coil or square fold it cannot take
  // goes now.
  CheckFinisherAgainstStock(panel);
  if (event->is({toolkit::kEventClassControl, toolkit::kEventControlHit})) {
    Control* control = event->control();
    if (control && control->id().signature == kPaperOutputSignature &&
        control->id().id >= 102 && control->id().id <= 126)
      ControlHit(panel, *control);
  } else if (event->is({toolkit::kEventClassCommand, toolkit::kEventCommandProcess})) {
    if (std::optional<toolkit::HICommand> command = event->command())
      MenuCommand(panel, *command);
  }
  // The host and the standard behaviours still need every event.
  return eventNotHandledErr;
}

OSStatus PaperOutputDrawEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                     void* context) {
  auto* panel = static_cast<PaperOutputContext*>(context);
  Control* picture = event ? event->control() : nullptr;
  if (!panel || !picture) return eventNotHandledErr;
  if (picture == panel->jobTypeIcon)
    return ui::DrawImage(panel->bundle, JobTypePictureName(panel->jobType), picture);
  if (picture == panel->twoSidedIcon)
    // A booklet is printed two-sided whatever the pop-up held before.
    return ui::DrawImage(panel->bundle,
                         TwoSidedPictureName(panel->bookletLayout == kBookletOn ? kLongEdgeDuplex
                                                                                : panel->duplexPopupValue),
                         picture);
  return eventNotHandledErr;
}

}  // namespace varno::panels
