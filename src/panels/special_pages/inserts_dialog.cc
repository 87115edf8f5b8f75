// SPDX-License-Identifier: Apache-2.0
// The inserts dialog works on one private insert (its stock is what the stock menu
// changes); OK turns the typed pages into one insert each, all of that stock and quantity.
#include "panels/special_pages/inserts_dialog.h"

#include <charconv>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "panels/special_pages/page_ranges.h"
#include "panels/special_pages/special_page_dialog.h"
#include "panels/special_pages/special_pages_panel.h"
#include "platform/toolkit/character_set.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/window.h"
#include "ui/panel_ui.h"
#include "ui/stock_menus.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

namespace {

using model::Insert;
using toolkit::Control;

constexpr std::int32_t kMinQuantity = 1;
constexpr std::int32_t kMaxQuantity = 9999999;
constexpr const char* kInsertsHelpPage = "Special_Pages/Add_Inserts/m_add_inserts_page.htm";

struct InsertsDialog {
  bundle::BundleRef bundle;
  toolkit::Window* window = nullptr;
  std::int32_t mode = kSpecialPagesDialogAdd;
  Insert working;  // holds the stock the new inserts get
  const model::Stock* jobLevelStock = nullptr;
  model::InsertList* inserts = nullptr;
  Insert* edited = nullptr;
  Control* optionPopup = nullptr;
  Control* quantityField = nullptr;
  Control* quantitySpin = nullptr;
  Control* pagesField = nullptr;
  Control* pagesLabel = nullptr;
  Control* instructions = nullptr;
  Control* stockButton = nullptr;
  Control* summary = nullptr;
  ui::StockMenuCommandEventHandlerData menuData;
  std::int16_t result = kSpecialPageDialogCancelled;
};

// The number in the field, or nullopt when it is empty or too long for an int32 (the
// field takes digits only).
std::optional<std::int32_t> QuantityIn(const Control& field) {
  const std::string& text = field.text();
  std::int32_t quantity = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), quantity);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return quantity;
}

bool BeforePage1(const InsertsDialog& dialog) {
  return vocabulary::GetPopupButtonTicketValue(dialog.optionPopup) == kInsertBeforePage1;
}

// The field and the arrows show the same number, so what OK stores is what one reads.
void ShowQuantity(InsertsDialog& dialog, std::int32_t quantity) {
  dialog.quantitySpin->setValue(quantity);
  dialog.quantityField->setText(std::to_string(dialog.quantitySpin->value()));
}

// OK needs pages (unless the insert goes before page 1) and a quantity within the range.
void EnableOK(InsertsDialog& dialog) {
  Control* ok = dialog.window->defaultButton();
  if (!ok) return;
  const std::optional<std::int32_t> quantity = QuantityIn(*dialog.quantityField);
  const bool quantityValid = quantity && *quantity >= kMinQuantity && *quantity <= kMaxQuantity;
  ok->setEnabled(quantityValid && (BeforePage1(dialog) || !dialog.pagesField->text().empty()));
}

// Before page 1 there is no page to type, so the field is emptied and dimmed.
void ShowOption(InsertsDialog& dialog) {
  const bool pages = !BeforePage1(dialog);
  if (!pages) {
    if (dialog.window->focus() == dialog.pagesField) dialog.window->setFocus(nullptr);
    dialog.pagesField->setText({});
  }
  for (Control* control : {dialog.pagesField, dialog.pagesLabel, dialog.instructions})
    if (control) control->setEnabled(pages);
  EnableOK(dialog);
}

// Shows the working insert's stock with the other choices given.
void ShowInsert(InsertsDialog& dialog, std::int32_t option, std::string pages, std::int32_t quantity) {
  ui::ShowStockSummary(dialog.bundle, dialog.summary, &dialog.working.stock(), ui::kInsertStockContext);
  ShowQuantity(dialog, quantity);
  vocabulary::SetPopupButtonToTicketValue(dialog.optionPopup, option);
  dialog.pagesField->setText(std::move(pages));
  ShowOption(dialog);
}

void DefaultInserts(InsertsDialog& dialog) {
  dialog.working = Insert();
  // A new insert starts from the job's paper (its coating, finish and grain) and follows
  // the job's size, colour and type until the stock menu says otherwise.
  if (dialog.jobLevelStock) dialog.working.stock() = *dialog.jobLevelStock;
  ui::DefaultStock(&dialog.working.stock(), ui::kInsertStockContext);
  dialog.working.stock().setSource(vocabulary::kUnsetValue);
  ShowInsert(dialog, kInsertAfterPage, {}, kMinQuantity);
}

// The pages the new inserts follow; nullopt after telling the person what is wrong.
std::optional<std::vector<std::int32_t>> ChosenPages(InsertsDialog& dialog) {
  if (BeforePage1(dialog)) return std::vector<std::int32_t>{0};
  std::vector<PageRange> ranges;
  const OSStatus status = CreatePageRangesBySeparatingString(dialog.pagesField->text().c_str(), false, &ranges);
  if (status != noErr) {
    SpecialPagesUserNotification(status, dialog.bundle);
    dialog.window->setFocus(dialog.pagesField);
    return std::nullopt;
  }
  std::vector<std::int32_t> pages;
  for (const PageRange& range : ranges) pages.push_back(range.firstPage);
  return pages;
}

// Puts the new inserts into the panel's list; false (the dialog stays open) when the
// pages cannot be read.
bool Accept(InsertsDialog& dialog) {
  const std::optional<std::vector<std::int32_t>> pages = ChosenPages(dialog);
  if (!pages) return false;
  std::vector<Insert> made(pages->size(), dialog.working);
  std::vector<const model::SpecialPage*> added;
  for (std::size_t i = 0; i < made.size(); ++i) {
    made[i].setStartPage((*pages)[i]);
    made[i].setQuantity(dialog.quantitySpin->value());
    added.push_back(&made[i]);
  }
  if (specialPagesContext) SaveUndoState(specialPagesContext);
  if (dialog.mode == kSpecialPagesDialogEdit)
    dialog.inserts->update(*dialog.edited, added);
  else
    dialog.inserts->add(added);
  RebuildLiveSpecialPagesList();
  return true;
}

OSStatus InsertsEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event, void* dialogState) {
  auto* dialog = static_cast<InsertsDialog*>(dialogState);
  if (!dialog || !event) return eventNotHandledErr;
  if (event->eventClass() == ui::kPanelUICreator) {
    // A limited field changed: the arrows follow the quantity typed.
    if (event->control() == dialog->quantityField) {
      if (const std::optional<std::int32_t> quantity = QuantityIn(*dialog->quantityField))
        dialog->quantitySpin->setValue(*quantity);
    }
    EnableOK(*dialog);
    return eventNotHandledErr;
  }
  const std::optional<toolkit::HICommand> command = event->command();
  if (!command) return eventNotHandledErr;
  switch (command->commandID) {
    case kInsertOptionCommand:
      ShowOption(*dialog);
      return noErr;
    case kInsertQuantityCommand:
      ShowQuantity(*dialog, dialog->quantitySpin->value());
      EnableOK(*dialog);
      return noErr;
    case toolkit::kHICommandRevert:
      DefaultInserts(*dialog);
      return noErr;
    default:
      return HandleSpecialPageDialogButton(command->commandID, *dialog->window, dialog->bundle, kInsertsHelpPage,
                                           &dialog->result, [dialog] { return Accept(*dialog); })
          .value_or(eventNotHandledErr);
  }
}

OSStatus FindControls(InsertsDialog& dialog, std::string* error) {
  auto find = [&](std::int32_t id) { return dialog.window->findByID({kSpecialPagesSignature, id}); };
  dialog.optionPopup = find(kInsertOptionPopupID);
  dialog.quantitySpin = find(kInsertQuantitySpinID);
  dialog.quantityField = find(kInsertQuantityFieldID);
  dialog.pagesField = find(kInsertPagesFieldID);
  dialog.stockButton = find(kInsertStockButtonID);
  dialog.summary = find(kInsertStockSummaryID);
  dialog.pagesLabel = find(kInsertPagesLabelID);
  dialog.instructions = find(kInsertInstructionsLabelID);
  if (dialog.optionPopup && dialog.optionPopup->menu() && dialog.quantitySpin && dialog.quantityField &&
      dialog.pagesField && dialog.stockButton && dialog.stockButton->menu() && dialog.summary)
    return noErr;
  *error = "the window \"Inserts\" lacks one of the controls 2001 to 2006";
  return errUnknownControl;
}

void InitializeInsertsDialog(InsertsDialog& dialog) {
  toolkit::Window& window = *dialog.window;
  ui::SetLocalizedWindowTitle(dialog.bundle,
                              dialog.mode == kSpecialPagesDialogAdd ? "InsertsDialogTitleAdd" : "InsertsDialogTitleEdit",
                              &window);
  // Labels end where their fields begin, whatever the length of their translation.
  for (std::int32_t id : {kInsertOptionLabelID, kInsertPagesLabelID, kInsertQuantityLabelID, kInsertStockLabelID})
    ui::SetControlBestRect(window.findByID({kSpecialPagesSignature, id}), ui::kAlignRight | ui::kAlignTop, nullptr, nullptr);
  vocabulary::PopulatePopupButtonFromMap(dialog.bundle, dialog.optionPopup, vocabulary::InsertOptionMap, false,
                                         kInsertOptionCommand);
  static const toolkit::CharacterSet kDigits("0123456789");
  LimitToPageCharacters(dialog.pagesField);
  ui::LimitInputLengthAndCharacters(dialog.quantityField, 0, ui::CountDigits(kMaxQuantity), &kDigits);
  dialog.quantitySpin->setMinimum(kMinQuantity);
  dialog.quantitySpin->setMaximum(kMaxQuantity);
  dialog.quantitySpin->setCommand(kInsertQuantityCommand);

  InstallPageStockMenu(dialog.bundle, ui::kInsertStockContext, &dialog.working.stock(), dialog.stockButton, dialog.summary,
                       &dialog.menuData);

  if (dialog.mode == kSpecialPagesDialogEdit) {
    dialog.working = *dialog.edited;
    const std::int32_t page = dialog.edited->startPage();
    ShowInsert(dialog, page == 0 ? kInsertBeforePage1 : kInsertAfterPage, page == 0 ? "" : std::to_string(page),
               dialog.edited->quantity());
  } else {
    DefaultInserts(dialog);
  }
  InstallSpecialPageDialogHandler(window, InsertsEventHandler, &dialog);
  if (dialog.pagesField->isEnabled()) window.setFocus(dialog.pagesField);
}

}  // namespace

OSStatus RunModalInsertsDialog(const bundle::BundleRef& bundle, std::int32_t mode, const model::Stock* jobLevelStock,
                               model::InsertList* inserts, Insert* edited, std::int16_t* itemHit) {
  if (!bundle || !inserts || !itemHit || (mode != kSpecialPagesDialogAdd && mode != kSpecialPagesDialogEdit) ||
      (mode == kSpecialPagesDialogEdit && !edited))
    return paramErr;
  std::unique_ptr<toolkit::Window> window;
  OSStatus status = CreateSpecialPageWindow(bundle, "Inserts", "RunModalInsertsDialog", &window);
  InsertsDialog dialog;
  dialog.bundle = bundle;
  dialog.window = window.get();
  dialog.mode = mode;
  dialog.jobLevelStock = jobLevelStock;
  dialog.inserts = inserts;
  dialog.edited = edited;
  std::string error;
  if (status == noErr && (status = FindControls(dialog, &error)) != noErr)
    std::fprintf(stderr, "RunModalInsertsDialog() failed (%d): %s\n", status, error.c_str());
  if (status != noErr) {
    *itemHit = kSpecialPageDialogCancelled;
    return status;
  }
  InitializeInsertsDialog(dialog);
  window->setVisible(true);
  status = window->runModalLoop();
  *itemHit = dialog.result;
  return status;
}

}  // namespace varno::panels
