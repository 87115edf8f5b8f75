// SPDX-License-Identifier: Apache-2.0
#include "ui/covers_dialog.h"

#include <array>
#include <cstdio>
#include <string>

#include "platform/toolkit/alerts.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/window.h"
#include "ui/stock_menus.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::ui {

namespace {

using model::Cover;
using toolkit::Control;

// A cover's stock may follow the job's, as any special page's may.
constexpr JobContext kCoverStockContext = 2;
constexpr std::int32_t kAutoSource = 0;
// Values of CoverOptionMap.
constexpr std::int32_t kNoCovers = 1;
constexpr std::int32_t kFrontCoverOnly = 2;
constexpr std::int32_t kBackCoverOnly = 3;
constexpr std::int32_t kFrontAndBackCovers = 5;

bool HasFront(std::int32_t option) { return option == kFrontCoverOnly || option == kFrontAndBackCovers; }
bool HasBack(std::int32_t option) { return option == kBackCoverOnly || option == kFrontAndBackCovers; }

std::int32_t OptionFor(const Cover* front, const Cover* back) {
  if (front && back) return kFrontAndBackCovers;
  if (front) return kFrontCoverOnly;
  return back ? kBackCoverOnly : kNoCovers;
}

std::unique_ptr<Cover> Clone(const Cover* cover) {
  return cover ? std::make_unique<Cover>(*cover) : nullptr;
}

// The controls and the working copy of one cover.
struct CoverPane {
  toolkit::ControlID group{};
  const char* sourceKeyword = nullptr;
  Control* pane = nullptr;
  Control* stockButton = nullptr;
  Control* summary = nullptr;
  Control* sourcePopup = nullptr;
  Control* sidesPopup = nullptr;
  Cover cover;
  StockMenuCommandEventHandlerData menuData;
};

struct CoversDialog {
  bundle::BundleRef bundle;
  toolkit::Window* window = nullptr;
  const model::Stock* jobLevelStock = nullptr;
  Control* optionPopup = nullptr;
  std::array<CoverPane, 2> panes;  // front, back
  // What Revert goes back to.
  const Cover* revertFront = nullptr;
  const Cover* revertBack = nullptr;
  std::int16_t result = 2;
};

// A cover the slots did not have: the job's stock, following the job, from "Auto".
Cover NewCover(const model::Stock* jobLevelStock) {
  Cover cover;
  if (jobLevelStock) cover.stock() = *jobLevelStock;
  DefaultStock(&cover.stock(), kCoverStockContext);
  cover.stock().setSource(kAutoSource);
  return cover;
}

bool FromInserter(const CoverPane& pane) { return pane.cover.stock().source() == kPostPrintInserterSource; }

// The inserter feeds a cover by itself, so its tray is not asked for.
void EnableSource(CoverPane& pane) {
  if (pane.sourcePopup) pane.sourcePopup->setEnabled(!FromInserter(pane));
}

void SelectValue(Control* popup, std::int32_t value, std::int32_t fallback) {
  if (!vocabulary::SetPopupButtonToTicketValue(popup, value) && !vocabulary::SetPopupButtonToTicketValue(popup, fallback) && popup)
    popup->setValue(1);
}

void ShowCover(CoversDialog& dialog, CoverPane& pane) {
  ShowStockSummary(dialog.bundle, pane.summary, &pane.cover.stock(), kCoverStockContext);
  SelectValue(pane.sourcePopup, pane.cover.stock().source(), kAutoSource);
  SelectValue(pane.sidesPopup, pane.cover.sidesImaged(), kCoverSidesBlank);
  EnableSource(pane);
}

// Only the covers of the chosen option can be set.
void EnablePanes(CoversDialog& dialog) {
  const std::int32_t option = vocabulary::GetPopupButtonTicketValue(dialog.optionPopup);
  const bool shown[] = {HasFront(option), HasBack(option)};
  for (std::size_t i = 0; i < dialog.panes.size(); ++i) {
    if (dialog.panes[i].pane) dialog.panes[i].pane->setEnabled(shown[i]);
  }
}

// Puts the dialog's controls back to the covers `front` and `back`.
void ShowCovers(CoversDialog& dialog, const Cover* front, const Cover* back) {
  const Cover* covers[] = {front, back};
  for (std::size_t i = 0; i < dialog.panes.size(); ++i) {
    dialog.panes[i].cover = covers[i] ? *covers[i] : NewCover(dialog.jobLevelStock);
    ShowCover(dialog, dialog.panes[i]);
  }
  SelectValue(dialog.optionPopup, OptionFor(front, back), kNoCovers);
  EnablePanes(dialog);
}

// The pane's cover as the controls set it.
Cover ChosenCover(CoverPane& pane) {
  Cover cover = pane.cover;
  if (!FromInserter(pane)) cover.stock().setSource(vocabulary::GetPopupButtonTicketValue(pane.sourcePopup));
  cover.setSidesImaged(vocabulary::GetPopupButtonTicketValue(pane.sidesPopup));
  return cover;
}

bool IsStockCommand(toolkit::MenuCommand command) {
  switch (command) {
    case kStockSizeCommand:
    case kStockColorCommand:
    case kStockTypeCommand:
    case kStockSourceCommand:
    case kDefaultStockCommand:
    case kAdvancedStockCommand:
      return true;
    default:
      return false;
  }
}

OSStatus CoversEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event, void* dialogState) {
  auto* dialog = static_cast<CoversDialog*>(dialogState);
  const std::optional<toolkit::HICommand> command = event ? event->command() : std::nullopt;
  if (!dialog || !command) return eventNotHandledErr;
  switch (command->commandID) {
    case kCoverOptionCommand:
      EnablePanes(*dialog);
      return noErr;
    case toolkit::kHICommandRevert:
      ShowCovers(*dialog, dialog->revertFront, dialog->revertBack);
      return noErr;
    case toolkit::kHICommandOK:
      dialog->result = 1;
      dialog->window->quitModalLoop();
      return noErr;
    case toolkit::kHICommandCancel:
      dialog->result = 2;
      dialog->window->quitModalLoop();
      return noErr;
    case kCoversHelpCommand:
      DisplayHelpPage(dialog->bundle, kCoversHelpPage);
      return noErr;
    default:
      break;
  }
  // The stock menu's own handler has changed the stock by now; the inserter may have
  // taken the tray's place, or given it back.
  if (IsStockCommand(command->commandID)) {
    for (CoverPane& pane : dialog->panes) {
      if (command->control && command->control == pane.stockButton) EnableSource(pane);
    }
  }
  return eventNotHandledErr;
}

void InitializePane(CoversDialog& dialog, CoverPane& pane) {
  toolkit::Window& window = *dialog.window;
  pane.pane = window.findByID(pane.group);
  pane.stockButton = window.findByID(CoverControlID(pane.group, kCoverStockButtonOffset));
  pane.summary = window.findByID(CoverControlID(pane.group, kCoverStockSummaryOffset));
  pane.sourcePopup = window.findByID(CoverControlID(pane.group, kCoverSourcePopupOffset));
  pane.sidesPopup = window.findByID(CoverControlID(pane.group, kCoverSidesPopupOffset));
  // "None" has no tray value, so only the trays are offered; trays that clash with the
  // printer's set-up are left out.
  // "None" is no cover, which the option pop-up says.
  vocabulary::PPDPopulatePopupWithChoices(pane.sourcePopup, vocabulary::PPDGetCurrent(), pane.sourceKeyword,
                                          true, "None");
  pane.menuData = {dialog.bundle, &pane.cover.stock(), nullptr, kCoverStockContext, pane.summary, pane.stockButton};
  if (pane.stockButton) {
    PopulateStockMenu(pane.stockButton->menu(), dialog.bundle, kCoverStockContext, &pane.menuData);
    static constexpr std::array<toolkit::EventTypeSpec, 2> kMenuEvents{{
        {toolkit::kEventClassCommand, toolkit::kEventCommandProcess},
        {toolkit::kEventClassMenu, toolkit::kEventMenuEnableItems},
    }};
    pane.stockButton->installHandler(kMenuEvents, StockMenuCommandEventHandler, &pane.menuData);
  }
}

}  // namespace

OSStatus RunModalCoversDialog(const bundle::BundleRef& bundle, std::int32_t mode,
                              const model::Stock* jobLevelStock, std::unique_ptr<Cover>* front,
                              std::unique_ptr<Cover>* back, std::int16_t* itemHit, CoversUndoState* undo) {
  if (!bundle || !front || !back || !itemHit || (mode != kCoversDialogAdd && mode != kCoversDialogEdit))
    return paramErr;
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::unique_ptr<toolkit::Window> window;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(bundle, "Covers", &file, &error);
  if (status == noErr) status = file->createWindow("Covers", &window, &error);
  if (status != noErr) {
    std::fprintf(stderr, "RunModalCoversDialog() failed (%d): %s\n", status, error.c_str());
    return status;
  }
  if (undo && !undo->saved) {
    undo->front = Clone(front->get());
    undo->back = Clone(back->get());
    undo->saved = true;
  }
  CoversDialog dialog;
  dialog.bundle = bundle;
  dialog.window = window.get();
  dialog.jobLevelStock = jobLevelStock;
  dialog.revertFront = undo ? undo->front.get() : front->get();
  dialog.revertBack = undo ? undo->back.get() : back->get();
  SetLocalizedWindowTitle(bundle, mode == kCoversDialogAdd ? "Add Covers Title" : "Edit Covers Title", window.get());
  dialog.optionPopup = window->findByID(kCoverOptionPopupID);
  vocabulary::PopulatePopupButtonFromMap(bundle, dialog.optionPopup, vocabulary::CoverOptionMap, false, 0);
  dialog.panes[0].group = kFrontCoverGroupID;
  dialog.panes[0].sourceKeyword = "VNFrontCoverSheet";
  dialog.panes[1].group = kBackCoverGroupID;
  dialog.panes[1].sourceKeyword = "VNBackCoverSheet";
  for (CoverPane& pane : dialog.panes) InitializePane(dialog, pane);
  ShowCovers(dialog, front->get(), back->get());
  // Adding to a job without covers: the front cover is the likely wish.
  if (mode == kCoversDialogAdd && !*front && !*back) {
    SelectValue(dialog.optionPopup, kFrontCoverOnly, kNoCovers);
    EnablePanes(dialog);
  }
  static constexpr std::array<toolkit::EventTypeSpec, 1> kCommands{
      {{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}}};
  window->installHandler(kCommands, CoversEventHandler, &dialog);
  window->setVisible(true);
  window->runModalLoop();
  *itemHit = dialog.result;
  if (dialog.result != 1) return noErr;
  const std::int32_t option = vocabulary::GetPopupButtonTicketValue(dialog.optionPopup);
  *front = HasFront(option) ? std::make_unique<Cover>(ChosenCover(dialog.panes[0])) : nullptr;
  *back = HasBack(option) ? std::make_unique<Cover>(ChosenCover(dialog.panes[1])) : nullptr;
  return noErr;
}

}  // namespace varno::ui
