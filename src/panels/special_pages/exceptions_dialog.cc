// SPDX-License-Identifier: Apache-2.0
// The exceptions dialog works on one private exception page (its stock and 2-sided
// printing); OK makes one exception of it per typed range and merges them into the
// panel's list, where a new range wins over the older ones it meets.
#include "panels/special_pages/exceptions_dialog.h"

#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "panels/special_pages/page_ranges.h"
#include "panels/special_pages/special_page_dialog.h"
#include "panels/special_pages/special_pages_panel.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/window.h"
#include "ui/panel_ui.h"
#include "ui/stock_menus.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

namespace {

using model::ExceptionPage;
using toolkit::Control;
using vocabulary::kUnsetValue;

constexpr const char* kExceptionsHelpPage = "Special_Pages/Add_Exceptions/m_add_exceptions_page.htm";

struct ExceptionsDialog {
  bundle::BundleRef bundle;
  toolkit::Window* window = nullptr;
  std::int32_t mode = kSpecialPagesDialogAdd;
  ExceptionPage working;  // what every new range is a copy of
  const model::Stock* jobLevelStock = nullptr;
  model::ExceptionPageList* exceptions = nullptr;
  ExceptionPage* edited = nullptr;
  Control* pagesField = nullptr;
  Control* plexPopup = nullptr;
  Control* stockButton = nullptr;
  Control* summary = nullptr;
  ui::StockMenuCommandEventHandlerData menuData;
  std::int16_t result = kSpecialPageDialogCancelled;
};

// OK needs a page range to read.
void EnableOK(ExceptionsDialog& dialog) {
  if (Control* ok = dialog.window->defaultButton()) ok->setEnabled(!dialog.pagesField->text().empty());
}

void ShowPlex(ExceptionsDialog& dialog) {
  if (!vocabulary::SetPopupButtonToTicketValue(dialog.plexPopup, dialog.working.plex()))
    vocabulary::SetPopupButtonToTicketValue(dialog.plexPopup, kUnsetValue);
}

void ShowException(ExceptionsDialog& dialog, std::string pages) {
  ui::ShowStockSummary(dialog.bundle, dialog.summary, &dialog.working.stock(), ui::kExceptionStockContext);
  ShowPlex(dialog);
  dialog.pagesField->setText(std::move(pages));
  EnableOK(dialog);
}

void DefaultExceptions(ExceptionsDialog& dialog) {
  dialog.working = ExceptionPage();
  // The pages start from the job's paper (its coating, finish and grain) and follow the
  // job's size, colour, type and 2-sided printing until set otherwise.
  if (dialog.jobLevelStock) dialog.working.stock() = *dialog.jobLevelStock;
  ui::DefaultStock(&dialog.working.stock(), ui::kExceptionStockContext);
  dialog.working.stock().setSource(kUnsetValue);
  ShowException(dialog, {});
}

std::string PagesText(const ExceptionPage& page) {
  std::string text = std::to_string(page.startPage());
  if (page.endPage() != page.startPage()) text += "-" + std::to_string(page.endPage());
  return text;
}

// The new exceptions, one per typed range; a status with its alert when the text cannot
// be read or a range starts before page 1.
OSStatus MakeExceptions(const ExceptionsDialog& dialog, std::vector<ExceptionPage>* made) {
  std::vector<PageRange> ranges;
  const OSStatus status = CreatePageRangesBySeparatingString(dialog.pagesField->text().c_str(), true, &ranges);
  if (status != noErr) return status;
  for (const PageRange& range : ranges) {
    if (range.firstPage < 1) return kInvalidPageNumbers;
    ExceptionPage& page = made->emplace_back(dialog.working);
    page.setStartPage(range.firstPage);
    page.setEndPage(range.firstPage + range.count - 1);
  }
  return noErr;
}

// Merges the new exceptions into the panel's list; false (the dialog stays open, the text
// as typed) after telling the person what is wrong. Nothing changes before all ranges
// are valid.
bool Accept(ExceptionsDialog& dialog) {
  std::vector<ExceptionPage> made;
  OSStatus status = MakeExceptions(dialog, &made);
  if (status == noErr) {
    std::vector<const model::SpecialPage*> added;
    for (const ExceptionPage& page : made) added.push_back(&page);
    if (specialPagesContext) SaveUndoState(specialPagesContext);
    status = dialog.mode == kSpecialPagesDialogEdit ? dialog.exceptions->update(*dialog.edited, added)
                                                    : dialog.exceptions->add(added);
  }
  if (status != noErr) {
    SpecialPagesUserNotification(status, dialog.bundle);
    dialog.window->setFocus(dialog.pagesField);
    return false;
  }
  RebuildLiveSpecialPagesList();
  return true;
}

OSStatus ExceptionsEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event, void* dialogState) {
  auto* dialog = static_cast<ExceptionsDialog*>(dialogState);
  if (!dialog || !event) return eventNotHandledErr;
  if (event->eventClass() == ui::kPanelUICreator) {
    EnableOK(*dialog);
    return eventNotHandledErr;
  }
  const std::optional<toolkit::HICommand> command = event->command();
  if (!command) return eventNotHandledErr;
  switch (command->commandID) {
    case kExceptionPlexCommand:
      dialog->working.setPlex(vocabulary::GetPopupButtonTicketValue(dialog->plexPopup));
      return noErr;
    case toolkit::kHICommandRevert:
      DefaultExceptions(*dialog);
      return noErr;
    default:
      return HandleSpecialPageDialogButton(command->commandID, *dialog->window, dialog->bundle, kExceptionsHelpPage,
                                           &dialog->result, [dialog] { return Accept(*dialog); })
          .value_or(eventNotHandledErr);
  }
}

OSStatus FindControls(ExceptionsDialog& dialog, std::string* error) {
  auto find = [&](std::int32_t id) { return dialog.window->findByID({kSpecialPagesSignature, id}); };
  dialog.pagesField = find(kExceptionPagesFieldID);
  dialog.stockButton = find(kExceptionStockButtonID);
  dialog.summary = find(kExceptionStockSummaryID);
  dialog.plexPopup = find(kExceptionPlexPopupID);
  if (dialog.pagesField && dialog.stockButton && dialog.stockButton->menu() && dialog.summary && dialog.plexPopup &&
      dialog.plexPopup->menu())
    return noErr;
  *error = "the window \"Exceptions\" lacks one of the controls 3004 to 3007";
  return errUnknownControl;
}

// The printer's 2-sided choices, after "Use Job Setting" (no 2-sided setting of its own).
void FillPlexPopup(ExceptionsDialog& dialog) {
  vocabulary::PPDPopulatePopupWithChoices(dialog.plexPopup, vocabulary::PPDGetCurrent(), "Duplex", false);
  toolkit::Menu& menu = *dialog.plexPopup->menu();
  const toolkit::MenuItemIndex item =
      menu.insertItem(0, dialog.bundle->localizedString("UseJobSetting", "Localizable", "STRING NOT FOUND"));
  menu.setItemRefCon(item, static_cast<toolkit::URefCon>(static_cast<std::intptr_t>(kUnsetValue)));
  dialog.plexPopup->setMaximum(static_cast<std::int32_t>(menu.count()));
  for (toolkit::MenuItemIndex i = 1; i <= menu.count(); ++i) menu.setItemCommand(i, kExceptionPlexCommand);
}

void InitializeExceptionsDialog(ExceptionsDialog& dialog) {
  toolkit::Window& window = *dialog.window;
  ui::SetLocalizedWindowTitle(dialog.bundle,
                              dialog.mode == kSpecialPagesDialogAdd ? "Add Exceptions Title" : "Edit Exceptions Title",
                              &window);
  // Labels end where their fields begin, whatever the length of their translation.
  for (std::int32_t id : {kExceptionPagesLabelID, kExceptionPlexLabelID, kExceptionStockLabelID})
    ui::SetControlBestRect(window.findByID({kSpecialPagesSignature, id}), ui::kAlignRight | ui::kAlignTop, nullptr, nullptr);
  FillPlexPopup(dialog);
  LimitToPageCharacters(dialog.pagesField);

  InstallPageStockMenu(dialog.bundle, ui::kExceptionStockContext, &dialog.working.stock(), dialog.stockButton, dialog.summary,
                       &dialog.menuData);

  if (dialog.mode == kSpecialPagesDialogEdit) {
    dialog.working = *dialog.edited;
    ShowException(dialog, PagesText(*dialog.edited));
  } else {
    DefaultExceptions(dialog);
  }
  InstallSpecialPageDialogHandler(window, ExceptionsEventHandler, &dialog);
  window.setFocus(dialog.pagesField);
}

}  // namespace

OSStatus RunModalExceptionsDialog(const bundle::BundleRef& bundle, std::int32_t mode,
                                  const model::Stock* jobLevelStock, const print::Ticket*,
                                  model::ExceptionPageList* exceptions, ExceptionPage* edited,
                                  std::int16_t* itemHit) {
  if (!bundle || !exceptions || !itemHit || (mode != kSpecialPagesDialogAdd && mode != kSpecialPagesDialogEdit) ||
      (mode == kSpecialPagesDialogEdit && !edited))
    return paramErr;
  std::unique_ptr<toolkit::Window> window;
  OSStatus status = CreateSpecialPageWindow(bundle, "Exceptions", "RunModalExceptionsDialog", &window);
  ExceptionsDialog dialog;
  dialog.bundle = bundle;
  dialog.window = window.get();
  dialog.mode = mode;
  dialog.jobLevelStock = jobLevelStock;
  dialog.exceptions = exceptions;
  dialog.edited = edited;
  std::string error;
  if (status == noErr && (status = FindControls(dialog, &error)) != noErr)
    std::fprintf(stderr, "RunModalExceptionsDialog() failed (%d): %s\n", status, error.c_str());
  if (status != noErr) {
    *itemHit = kSpecialPageDialogCancelled;
    return status;
  }
  InitializeExceptionsDialog(dialog);
  window->setVisible(true);
  status = window->runModalLoop();
  *itemHit = dialog.result;
  return status;
}

}  // namespace varno::panels
