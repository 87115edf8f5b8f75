// SPDX-License-Identifier: Apache-2.0
// The panel's buttons:
//
//   100 covers dialog (add)          1300 delete the selected rows, after asking
//   200 inserts dialog (add)         1400 delete everything, after asking
//   300 exceptions dialog (add)      1500 undo the last change
//   1200 edit the selected row       1600 / 1700 move the selected inserts up / down
//   1800 help
//
// Every change but undo first keeps the one undo step; the list is rebuilt after each
// command unless a dialog was cancelled.
#include <vector>

#include "panels/special_pages/exceptions_dialog.h"
#include "panels/special_pages/inserts_dialog.h"
#include "panels/special_pages/special_pages_panel.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/event.h"
#include "ui/covers_dialog.h"
#include "ui/panel_ui.h"

namespace varno::panels {

namespace {

using model::SpecialPage;

constexpr const char* kNUpKey = "com.apple.print.PrintSettings.PMLayoutNUp";
constexpr const char* kSpecialPagesHelpPage = "Special_Pages/m_special_pages.htm";
// The framework's own help command, sent to the pane shown.
constexpr toolkit::MenuCommand kFrameworkHelpCommand = MakeOSType("help");
constexpr std::int16_t kCancelled = 2;

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  return bundle ? bundle->localizedString(key, "Localizable", "STRING NOT FOUND") : "STRING NOT FOUND";
}

// The two-button question before deleting; true only for the alternate "Yes".
bool ConfirmDeletion(const bundle::BundleRef& bundle, const char* messageKey) {
  toolkit::AlertStdCFStringAlertParamRec param;
  toolkit::GetStandardAlertDefaultParams(&param, 0);
  param.defaultText = Localized(bundle, "No Command");
  param.otherText = Localized(bundle, "Yes Command");
  toolkit::DialogRef alert = nullptr;
  if (toolkit::CreateStandardAlert(toolkit::kAlertCautionAlert, Localized(bundle, "Delete Special Pages Title"),
                                   Localized(bundle, messageKey), &param, &alert) != noErr)
    return false;
  toolkit::DialogItemIndex hit = 0;
  toolkit::RunStandardAlert(alert, nullptr, &hit);
  return hit == toolkit::kAlertStdAlertOtherButton;
}

std::vector<model::Insert*> SelectedInserts(const SpecialPagesContext* panel) {
  std::vector<model::Insert*> inserts;
  for (toolkit::DataBrowserItemID item : panel->list->selection())
    if (auto* insert = dynamic_cast<model::Insert*>(reinterpret_cast<SpecialPage*>(item))) inserts.push_back(insert);
  return inserts;
}

// N-up pages have no page numbers of their own to put inserts or exceptions at.
bool RefusedUnderNUp(SpecialPagesContext* panel, toolkit::Control* button) {
  if (!panel->ticket.boolean(kNUpKey).value_or(false)) return false;
  if (button) button->setEnabled(false);
  return true;
}

// Runs the command of control `id`. Returns whether the list is to be rebuilt, and the
// status for the caller in `*status`.
bool RunCommand(SpecialPagesContext* panel, std::int32_t id, OSStatus* status) {
  std::int16_t itemHit = 0;
  switch (id) {
    case kAddCoversButtonID:
      *status = ui::RunModalCoversDialog(panel->bundle, ui::kCoversDialogAdd, panel->jobLevelStock.get(),
                                         &panel->frontCover, &panel->backCover, &itemHit, nullptr);
      return itemHit != kCancelled;
    case kAddInsertsButtonID:
      if (RefusedUnderNUp(panel, panel->addInsertsButton)) return false;
      *status = RunModalInsertsDialog(panel->bundle, kSpecialPagesDialogAdd, panel->jobLevelStock.get(),
                                      panel->inserts.get(), nullptr, &itemHit);
      return itemHit != kCancelled;
    case kAddExceptionsButtonID:
      if (RefusedUnderNUp(panel, panel->addExceptionsButton)) return false;
      *status = RunModalExceptionsDialog(panel->bundle, kSpecialPagesDialogAdd, panel->jobLevelStock.get(),
                                         &panel->ticket, panel->exceptions.get(), nullptr, &itemHit);
      return itemHit != kCancelled;
    case kEditSpecialPageButtonID: {
      auto* page = reinterpret_cast<SpecialPage*>(panel->list->anchor());
      if (!page) return false;
      *status = EditSpecialPage(panel, page);
      return false;  // rebuilt there
    }
    case kDeleteSpecialPagesButtonID:
      // Kept before asking: "No" still replaces the earlier undo step.
      SaveUndoState(panel);
      if (ConfirmDeletion(panel->bundle, "Delete Selected Special Pages")) DeleteSelectedSpecialPages(panel);
      return true;
    case kDeleteAllSpecialPagesButtonID:
      SaveUndoState(panel);
      if (ConfirmDeletion(panel->bundle, "Delete All Special Pages")) DeleteAllSpecialPages(panel);
      return true;
    case kUndoSpecialPagesButtonID:
      *status = PerformUndo(panel);
      return true;
    case kMoveUpButtonID:
      SaveUndoState(panel);
      for (model::Insert* insert : SelectedInserts(panel)) panel->inserts->promote(insert);
      return true;
    case kMoveDownButtonID:
      SaveUndoState(panel);
      for (model::Insert* insert : SelectedInserts(panel)) panel->inserts->demote(insert);
      return true;
    case kSpecialPagesHelpButtonID:
      ui::DisplayHelpPage(panel->bundle, kSpecialPagesHelpPage);
      return false;
    default:
      *status = eventNotHandledErr;
      return false;
  }
}

void Rebuild(SpecialPagesContext* panel) {
  UpdateSpecialPagesSummary(panel->list, panel->frontCover.get(), panel->inserts.get(), panel->exceptions.get(),
                            panel->backCover.get());
}

}  // namespace

OSStatus EditSpecialPage(SpecialPagesContext* panel, SpecialPage* page) {
  if (!panel || !page) return paramErr;
  std::int16_t itemHit = 0;
  OSStatus status = noErr;
  if (dynamic_cast<model::Cover*>(page)) {
    status = ui::RunModalCoversDialog(panel->bundle, ui::kCoversDialogEdit, panel->jobLevelStock.get(),
                                      &panel->frontCover, &panel->backCover, &itemHit, nullptr);
  } else if (auto* insert = dynamic_cast<model::Insert*>(page)) {
    status = RunModalInsertsDialog(panel->bundle, kSpecialPagesDialogEdit, panel->jobLevelStock.get(),
                                   panel->inserts.get(), insert, &itemHit);
  } else if (auto* exception = dynamic_cast<model::ExceptionPage*>(page)) {
    status = RunModalExceptionsDialog(panel->bundle, kSpecialPagesDialogEdit, panel->jobLevelStock.get(),
                                      &panel->ticket, panel->exceptions.get(), exception, &itemHit);
  }
  if (itemHit != kCancelled) Rebuild(panel);
  return status;
}

OSStatus SpecialPagesEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event, void* panelContext) {
  auto* panel = static_cast<SpecialPagesContext*>(panelContext);
  // Events that reach a pane whose panel has ended find no live context.
  if (!panel || panel != specialPagesContext || !event) return eventNotHandledErr;
  if (event->is({toolkit::kEventClassControl, toolkit::kEventControlDraw}))
    return event->control() == panel->pane ? noErr : eventNotHandledErr;
  if (event->is({toolkit::kEventClassCommand, toolkit::kEventCommandProcess})) {
    const std::optional<toolkit::HICommand> command = event->command();
    if (!command || command->commandID != kFrameworkHelpCommand) return eventNotHandledErr;
    ui::DisplayHelpPage(panel->bundle, kSpecialPagesHelpPage);
    return noErr;
  }
  if (!event->is({toolkit::kEventClassControl, toolkit::kEventControlHit})) return eventNotHandledErr;
  toolkit::Control* control = event->control();
  if (!control || control->id().signature != kSpecialPagesSignature || !panel->list) return eventNotHandledErr;
  OSStatus status = noErr;
  if (RunCommand(panel, control->id().id, &status)) Rebuild(panel);
  return status;
}

}  // namespace varno::panels
