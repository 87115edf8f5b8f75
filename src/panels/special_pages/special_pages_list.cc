// SPDX-License-Identifier: Apache-2.0
// The panel's list and what acts on it: the rows and their texts, the command buttons,
// deleting, one level of undo.
#include <algorithm>
#include <string>
#include <vector>

#include "model/covers_sync.h"
#include "panels/special_pages/special_pages_panel.h"
#include "platform/print/framework_keys.h"
#include "ui/panel_ui.h"
#include "ui/stock_menus.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

namespace {

using model::Cover;
using model::ExceptionPage;
using model::Insert;
using model::SpecialPage;
using toolkit::DataBrowserItemID;
using vocabulary::kUnsetValue;

constexpr const char* kNUpKey = "com.apple.print.PrintSettings.PMLayoutNUp";
constexpr const char* kDuplexingKey = "com.apple.print.PrintSettings.PMDuplexing";
constexpr std::int32_t kStockTypeCustom = 6;
constexpr std::int32_t kStockTypePrecutTab = 4;
constexpr std::int32_t kStockTypeCustomName = 7;
constexpr std::int32_t kCustomColor = 10;

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  return bundle ? bundle->localizedString(key, "Localizable", "STRING NOT FOUND") : "STRING NOT FOUND";
}

DataBrowserItemID ItemOf(const void* page) { return reinterpret_cast<DataBrowserItemID>(page); }
SpecialPage* PageOf(DataBrowserItemID item) { return reinterpret_cast<SpecialPage*>(item); }

// The PPD's text for the choice a ticket value stands for; empty when there is none.
std::string ChoiceText(const char* keyword, std::int32_t value) {
  const char* choice = vocabulary::PPDChoiceForTicketValue(keyword, value);
  if (!choice) return {};
  return vocabulary::PPDCopyChoiceText(vocabulary::PPDGetCurrent(), keyword, choice).value_or(choice);
}

// Which sides of a cover are printed: what the numbers mean depends on whether the job is
// 2-sided, which the live panel's ticket says.
std::string CoverSidesText(const Cover& cover, const bundle::BundleRef& bundle) {
  const vocabulary::SettingMap* map = vocabulary::CoverSidesImagedMap;
  if (specialPagesContext) {
    const std::optional<std::int32_t> duplexing = specialPagesContext->ticket.number<std::int32_t>(kDuplexingKey);
    if (!duplexing) return {};
    map = *duplexing == 2 || *duplexing == 3 ? vocabulary::CoverSidesDuplexImagedMap
                                             : vocabulary::CoverSidesSimplexImagedMap;
  }
  const char* key = vocabulary::LocalizedKeyForTicketValue(map, cover.sidesImaged());
  return key ? Localized(bundle, key) : std::string();
}

std::string TypeText(const bundle::BundleRef& bundle, const model::Stock& stock) {
  auto withModulus = [&](const std::string& name) { return name + " (" + std::to_string(stock.modulus()) + ")"; };
  switch (stock.type()) {
    case kStockTypeCustom: return withModulus(stock.customType());
    case kStockTypePrecutTab: return withModulus(Localized(bundle, "StockTypePrecutTab"));
    case kStockTypeCustomName: return stock.customType();
    case 24:
    case 33:
      if (stock.modulus() > 0) return withModulus(ChoiceText("MediaType", stock.type()));
      [[fallthrough]];
    default: return ChoiceText("MediaType", stock.type());
  }
}

void AddPart(std::vector<std::string>& parts, std::string part) {
  if (!part.empty()) parts.push_back(std::move(part));
}

std::string Joined(const std::vector<std::string>& parts, std::string_view separator) {
  std::string text;
  for (const std::string& part : parts) {
    if (!text.empty()) text += separator;
    text += part;
  }
  return text;
}

std::string PageColumnText(const SpecialPagesContext* panel, const SpecialPage* page) {
  const bundle::BundleRef& bundle = panel->bundle;
  if (page == panel->frontCover.get()) return Localized(bundle, "SpecialPageSummaryFront");
  if (page == panel->backCover.get()) return Localized(bundle, "SpecialPageSummaryBack");
  if (const auto* exception = dynamic_cast<const ExceptionPage*>(page)) {
    if (exception->startPage() == exception->endPage()) return std::to_string(exception->startPage());
    return std::to_string(exception->startPage()) + "-" + std::to_string(exception->endPage());
  }
  if (page->startPage() == 0) return Localized(bundle, "SpecialPageSummaryBefore1");
  return std::to_string(page->startPage());
}

std::string TypeColumnText(const bundle::BundleRef& bundle, const SpecialPage* page) {
  if (dynamic_cast<const Cover*>(page)) return Localized(bundle, "SpecialPageSummaryCover");
  if (dynamic_cast<const Insert*>(page)) return Localized(bundle, "SpecialPageSummaryInsert");
  return Localized(bundle, "SpecialPageSummaryException");
}

OSStatus CellText(toolkit::ListView&, DataBrowserItemID item, toolkit::DataBrowserPropertyID property,
                  std::string* text) {
  const SpecialPagesContext* panel = specialPagesContext;
  if (!panel) return errDataBrowserItemNotFound;
  const SpecialPage* page = PageOf(item);
  switch (property) {
    case kPageColumn: *text = PageColumnText(panel, page); return noErr;
    case kTypeColumn: *text = TypeColumnText(panel->bundle, page); return noErr;
    case kAttributesColumn: *text = CopySpecialPageSummary(page, panel->bundle); return noErr;
    default: return errDataBrowserPropertyNotSupported;
  }
}

void ListNotification(toolkit::ListView&, DataBrowserItemID item, toolkit::DataBrowserItemNotification message) {
  if (message == toolkit::kDataBrowserSelectionSetChanged) UpdateSpecialPagesCommandButtons();
  // A double click edits the row, as the Edit button does.
  if (message == toolkit::kDataBrowserItemDoubleClicked && specialPagesContext && item)
    EditSpecialPage(specialPagesContext, PageOf(item));
}

template <typename List>
std::unique_ptr<List> CloneList(const List* list) {
  return list ? std::make_unique<List>(*list) : nullptr;
}

std::unique_ptr<Cover> CloneCover(const Cover* cover) {
  return cover ? std::make_unique<Cover>(*cover) : nullptr;
}

}  // namespace

std::string CopySpecialPageSummary(const SpecialPage* page, const bundle::BundleRef& bundle) {
  if (!page) return {};
  const model::Stock& stock = page->stock();
  std::vector<std::string> parts;
  if (!stock.customName().empty()) AddPart(parts, Localized(bundle, "Paper Name Label") + " " + stock.customName());
  if (const auto* cover = dynamic_cast<const Cover*>(page)) {
    AddPart(parts, CoverSidesText(*cover, bundle));
  } else if (const auto* insert = dynamic_cast<const Insert*>(page)) {
    AddPart(parts, Localized(bundle, "InsertSummaryQuantity") + " [" + std::to_string(insert->quantity()) + "]");
  } else if (const auto* exception = dynamic_cast<const ExceptionPage*>(page)) {
    if (exception->plex() != kUnsetValue) {
      const char* key = vocabulary::LocalizedKeyForTicketValue(vocabulary::PlexMap, exception->plex());
      if (key) AddPart(parts, Localized(bundle, key));
    }
  }
  // A page fed from a tray or the inserter shows only where it comes from.
  if (stock.source() != kUnsetValue) {
    if (stock.source() == ui::kPostPrintInserterSource)
      AddPart(parts, vocabulary::CopyLocalizedStringForInstalledFeatureFromPlugin(ui::kPostPrintInserterFeature, bundle)
                         .value_or(""));
    return Joined(parts, "; ");
  }
  if (stock.size() != kUnsetValue) AddPart(parts, ChoiceText("PageSize", stock.size()));
  if (stock.color() != kUnsetValue)
    AddPart(parts, stock.color() == kCustomColor ? stock.customColor() : ChoiceText("MediaColor", stock.color()));
  if (stock.type() != kUnsetValue) AddPart(parts, TypeText(bundle, stock));
  return Joined(parts, "; ");
}

std::string CreateInsertAttributesDescription(const bundle::BundleRef& bundle, const Insert& insert) {
  std::vector<std::string> parts{Localized(bundle, "InsertSummaryQuantity") + " " + std::to_string(insert.quantity())};
  AddPart(parts, ui::GenerateStockSummary(bundle, ui::kInsertStockContext, &insert.stock(), ", ").value_or(""));
  return Joined(parts, ";  ");
}

std::string CreateExceptionAttributesDescription(const bundle::BundleRef& bundle, const ExceptionPage& exception) {
  std::vector<std::string> parts;
  if (exception.plex() != kUnsetValue) {
    if (const char* key = vocabulary::LocalizedKeyForTicketValue(vocabulary::PlexMap, exception.plex()))
      AddPart(parts, Localized(bundle, key));
  }
  AddPart(parts, ui::GenerateStockSummary(bundle, ui::kExceptionStockContext, &exception.stock(), ", ").value_or(""));
  return Joined(parts, ";  ");
}

void InstallSpecialPagesListCallbacks(toolkit::ListView* list) {
  if (list) list->setCallbacks(CellText, ListNotification);
}

void UpdateSpecialPagesSummary(toolkit::ListView* list, const Cover* front, const model::InsertList* inserts,
                               const model::ExceptionPageList* exceptions, const Cover* back) {
  if (!list) return;
  const std::vector<DataBrowserItemID> selected = list->selection();
  list->removeItems({});
  std::vector<DataBrowserItemID> rows;
  rows.reserve((inserts ? inserts->count() : 0) + (exceptions ? exceptions->count() : 0) + 2);
  if (front) rows.push_back(ItemOf(front));
  const std::int32_t insertCount = inserts ? inserts->count() : 0;
  const std::int32_t exceptionCount = exceptions ? exceptions->count() : 0;
  std::int32_t i = 0, e = 0;
  while (i < insertCount || e < exceptionCount) {
    const SpecialPage* insert = i < insertCount ? inserts->pageAtIndex(i) : nullptr;
    const SpecialPage* exception = e < exceptionCount ? exceptions->pageAtIndex(e) : nullptr;
    // An exception goes before an insert after its first page.
    if (exception && (!insert || exception->startPage() <= insert->startPage())) {
      rows.push_back(ItemOf(exception));
      ++e;
    } else {
      rows.push_back(ItemOf(insert));
      ++i;
    }
  }
  if (back) rows.push_back(ItemOf(back));
  list->addItems(rows);
  std::vector<DataBrowserItemID> kept;
  for (DataBrowserItemID item : selected)
    if (list->containsItem(item)) kept.push_back(item);
  if (!kept.empty()) list->setSelection(kept, toolkit::kDataBrowserItemsAssign);
  UpdateSpecialPagesCommandButtons();
}

void UpdateSpecialPagesCommandButtons() {
  SpecialPagesContext* panel = specialPagesContext;
  if (!panel || !panel->list) return;
  const std::vector<DataBrowserItemID>& selection = panel->list->selection();
  auto enable = [](toolkit::Control* button, bool on) {
    if (button) button->setEnabled(on);
  };
  enable(panel->editButton, selection.size() == 1);
  enable(panel->deleteButton, !selection.empty());
  enable(panel->deleteAllButton, !panel->list->items().empty());
  // The last selected row decides, so only it is asked (finding an insert in its list
  // walks the list); covers and exceptions never move.
  const auto* insert = selection.empty() ? nullptr : dynamic_cast<const Insert*>(PageOf(selection.back()));
  enable(panel->moveUpButton, insert && panel->inserts->canPromote(insert));
  enable(panel->moveDownButton, insert && panel->inserts->canDemote(insert));
  enable(panel->undoButton, panel->undoExceptions || panel->undoInserts || panel->undoFrontCover ||
                                panel->undoBackCover);
}

void UpdateSpecialPagesUI(SpecialPagesContext* panel) {
  if (!panel) return;
  const bool nUp = panel->ticket.boolean(kNUpKey).value_or(false);
  const bool booklet = panel->ticket.boolean(model::kBookletLayoutKey).value_or(false);
  const bool available = !nUp && !booklet;
  for (toolkit::Control* control :
       {panel->addInsertsButton, panel->addExceptionsButton, panel->addInsertsLabel, panel->addExceptionsLabel})
    if (control) control->setEnabled(available);
  // Says why, so the greyed buttons are not a puzzle.
  if (panel->unavailableNote) panel->unavailableNote->setVisible(!available);
}

void SaveUndoState(SpecialPagesContext* panel) {
  if (!panel) return;
  panel->undoFrontCover = CloneCover(panel->frontCover.get());
  panel->undoBackCover = CloneCover(panel->backCover.get());
  panel->undoInserts = CloneList(panel->inserts.get());
  panel->undoExceptions = CloneList(panel->exceptions.get());
}

OSStatus PerformUndo(SpecialPagesContext* panel) {
  if (!panel) return paramErr;
  if (!panel->undoInserts && !panel->undoExceptions && !panel->undoFrontCover && !panel->undoBackCover)
    return noErr;
  if (panel->list) panel->list->removeItems({});
  panel->frontCover = std::move(panel->undoFrontCover);
  panel->backCover = std::move(panel->undoBackCover);
  // The panel always has lists; an empty snapshot slot means an empty list.
  panel->inserts = panel->undoInserts ? std::move(panel->undoInserts) : std::make_unique<model::InsertList>();
  panel->exceptions =
      panel->undoExceptions ? std::move(panel->undoExceptions) : std::make_unique<model::ExceptionPageList>();
  return noErr;
}

void DeleteSelectedSpecialPages(SpecialPagesContext* panel) {
  if (!panel || !panel->list) return;
  const std::vector<DataBrowserItemID> selection = panel->list->selection();
  // The rows go first, so nothing refers to a deleted page.
  panel->list->removeItems(selection);
  for (DataBrowserItemID item : selection) {
    SpecialPage* page = PageOf(item);
    if (page == panel->frontCover.get()) {
      panel->frontCover.reset();
    } else if (page == panel->backCover.get()) {
      panel->backCover.reset();
    } else if (dynamic_cast<Insert*>(page)) {
      panel->inserts->remove(page);
    } else {
      panel->exceptions->remove(page);
    }
  }
}

void DeleteAllSpecialPages(SpecialPagesContext* panel) {
  if (!panel) return;
  if (panel->list) panel->list->removeItems({});
  panel->frontCover.reset();
  panel->inserts->clear();
  panel->exceptions->clear();
  panel->backCover.reset();
}

}  // namespace varno::panels
