// SPDX-License-Identifier: Apache-2.0
#include "ui/stock_menus.h"

#include <cstdio>
#include <vector>

#include "platform/toolkit/control.h"
#include "platform/toolkit/event.h"
#include "ui/advanced_stock_dialog.h"
#include "ui/custom_stock_size_dialog.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::ui {

namespace {

using model::Stock;
using vocabulary::kUnsetValue;

constexpr std::int32_t kUnspecifiedColor = 22;
constexpr std::int32_t kSystemDefaultType = 23;
constexpr std::int32_t kUnspecifiedType = 34;
constexpr std::int32_t kCustomColor = 10;
constexpr std::int32_t kPrecutTabType = 4;
constexpr std::int32_t kCustomTypeWithModulus = 6;
constexpr std::int32_t kCustomType = 7;
constexpr std::int32_t kTabStockType = 24;
constexpr std::int32_t kTabStockType2 = 33;

bool FollowsJob(JobContext jobContext) { return jobContext >= 2 && jobContext <= 4; }

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  return bundle ? bundle->localizedString(key, "Localizable", "STRING NOT FOUND") : "STRING NOT FOUND";
}

// The text of the printer's choice for a ticket value, or nothing.
std::string ChoiceText(const char* keyword, std::int32_t value) {
  const char* choice = vocabulary::PPDChoiceForTicketValue(keyword, value);
  if (!choice) return {};
  return vocabulary::PPDCopyChoiceText(vocabulary::PPDGetCurrent(), keyword, choice).value_or(choice);
}

std::string WithCount(const std::string& text, std::int32_t count) {
  return text + " (" + std::to_string(count) + ")";
}

void InsertUseJobSetting(toolkit::Menu* menu, const bundle::BundleRef& bundle, toolkit::MenuCommand command) {
  const toolkit::MenuItemIndex item = menu->insertItem(0, Localized(bundle, "UseJobSetting"), command);
  menu->setItemRefCon(item, static_cast<toolkit::URefCon>(static_cast<std::uint32_t>(kUnsetValue)));
}

void DeleteItemsWithValue(toolkit::Menu* menu, std::int32_t value, bool firstOnly) {
  for (toolkit::MenuItemIndex item = menu->count(); item >= 1; --item) {
    if (static_cast<std::int32_t>(menu->item(item)->refCon) != value) continue;
    menu->deleteItem(item);
    if (firstOnly) return;
  }
}

std::int32_t ChosenValue(const toolkit::HICommand& command) {
  const toolkit::MenuItem* item = command.menu ? command.menu->item(command.menuItemIndex) : nullptr;
  return item ? static_cast<std::int32_t>(item->refCon) : kUnsetValue;
}

void ClearName(Stock* stock) {
  stock->setCustomName({});
  stock->setCustomNameOnly(0);
}

}  // namespace

OSStatus PopulateStockSizeMenu(toolkit::Menu* menu, const bundle::BundleRef& bundle, JobContext jobContext) {
  if (!menu) return paramErr;
  vocabulary::PPDPopulateMenuWithChoices(menu, vocabulary::PPDGetCurrent(), "PageSize", kStockSizeCommand, false);
  if (FollowsJob(jobContext)) InsertUseJobSetting(menu, bundle, kStockSizeCommand);
  return noErr;
}

OSStatus PopulateStockColorMenu(toolkit::Menu* menu, const bundle::BundleRef& bundle, JobContext jobContext) {
  if (!menu) return paramErr;
  vocabulary::PPDPopulateMenuWithChoices(menu, vocabulary::PPDGetCurrent(), "MediaColor", kStockColorCommand, false);
  if (FollowsJob(jobContext)) {
    InsertUseJobSetting(menu, bundle, kStockColorCommand);
    DeleteItemsWithValue(menu, kUnspecifiedColor, true);
  }
  return noErr;
}

OSStatus PopulateStockTypeMenu(toolkit::Menu* menu, const bundle::BundleRef& bundle, JobContext jobContext) {
  if (!menu) return paramErr;
  vocabulary::PPDPopulateMenuWithChoices(menu, vocabulary::PPDGetCurrent(), "MediaType", kStockTypeCommand, false);
  if (FollowsJob(jobContext)) {
    // Following the job takes the place of the printer's own default.
    DeleteItemsWithValue(menu, kSystemDefaultType, true);
    InsertUseJobSetting(menu, bundle, kStockTypeCommand);
    DeleteItemsWithValue(menu, kUnspecifiedType, false);
  }
  return noErr;
}

OSStatus PopulateStockMenu(toolkit::Menu* menu, const bundle::BundleRef& bundle, JobContext jobContext,
                           StockMenuCommandEventHandlerData* handlerData) {
  if (!menu) return paramErr;
  menu->deleteAllItems();
  menu->setRefCon(reinterpret_cast<toolkit::URefCon>(handlerData));
  if (jobContext != kJobStockContext) {
    struct Submenu {
      const char* key;
      toolkit::MenuCommand command;
      OSStatus (*populate)(toolkit::Menu*, const bundle::BundleRef&, JobContext);
    };
    static constexpr Submenu kSubmenus[] = {{"OtherSize", kStockSizeCommand, PopulateStockSizeMenu},
                                            {"OtherColor", kStockColorCommand, PopulateStockColorMenu},
                                            {"OtherType", kStockTypeCommand, PopulateStockTypeMenu}};
    for (const Submenu& entry : kSubmenus) {
      const toolkit::MenuItemIndex item = menu->appendItem(Localized(bundle, entry.key), entry.command);
      toolkit::MenuPtr submenu = toolkit::Menu::create();
      entry.populate(submenu.get(), bundle, jobContext);
      menu->setItemSubmenu(item, std::move(submenu));
    }
    for (int i = 0; i < 2; ++i) menu->setItemEnabled(menu->appendItem("-"), false);
  }
  if ((jobContext == 2 || jobContext == kInsertStockContext) &&
      vocabulary::getInstalledFeature(kPostPrintInserterFeature)) {
    const toolkit::MenuItemIndex item = menu->appendItem(
        vocabulary::CopyLocalizedStringForInstalledFeatureFromPlugin(kPostPrintInserterFeature, bundle)
            .value_or("STRING NOT FOUND"),
        kStockSourceCommand);
    menu->setItemRefCon(item, kPostPrintInserterSource);
  }
  return noErr;
}

OSStatus StockMenuCommandEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event, void* handlerData) {
  auto* data = static_cast<StockMenuCommandEventHandlerData*>(handlerData);
  if (!event) return eventNotHandledErr;
  if (event->is({toolkit::kEventClassMenu, toolkit::kEventMenuEnableItems})) return noErr;
  if (!event->is({toolkit::kEventClassCommand, toolkit::kEventCommandProcess}) || !data || !data->stock)
    return eventNotHandledErr;
  const std::optional<toolkit::HICommand> command = event->command();
  if (!command) return eventNotHandledErr;
  Stock* stock = data->stock;
  const std::int32_t value = ChosenValue(*command);
  OSStatus result = eventNotHandledErr;
  switch (command->commandID) {
    case kStockSizeCommand:
      stock->setSource(kUnsetValue);
      if (value == Stock::kCustomSize) {
        std::int32_t width = stock->width(), length = stock->length();
        bool confirmed = false;
        RunModalCustomStockSizeDialog(data->bundle, &width, &length, &confirmed);
        if (confirmed) {
          stock->setSize(Stock::kCustomSize);
          stock->setWidth(width);
          stock->setLength(length);
        } else {
          result = noErr;  // the menu keeps showing the stock as it was
        }
      } else {
        stock->setSize(value);
      }
      ClearName(stock);
      break;
    case kStockColorCommand:
      stock->setSource(kUnsetValue);
      stock->setColor(value);
      ClearName(stock);
      break;
    case kStockTypeCommand:
      stock->setSource(kUnsetValue);
      stock->setType(value);  // a transparency becomes Clear there
      ClearName(stock);
      break;
    case kStockSourceCommand:
      stock->setSource(value);
      break;
    case kDefaultStockCommand:
      DefaultStock(stock, data->jobContext);
      break;
    case kAdvancedStockCommand: {
      bool confirmed = false;
      RunModalAdvancedStockDialog(data->bundle, stock, data->reserved, &confirmed);
      if (confirmed) ClearName(stock);
      break;
    }
    default:
      return eventNotHandledErr;
  }
  ShowStockSummary(data->bundle, data->summaryView, stock, data->jobContext);
  if (data->redrawControl) data->redrawControl->draw();
  return result;
}

void DefaultStock(Stock* stock, JobContext jobContext) {
  if (!stock) return;
  const bool job = jobContext == kJobStockContext;
  stock->setSize(job ? 1 : kUnsetValue);
  stock->setColor(job ? Stock::kWhiteColor : kUnsetValue);
  stock->setType(job ? 1 : kUnsetValue);
  stock->setPunched(kUnsetValue);
  stock->setWeight(kUnsetValue);
  stock->setModulus(kUnsetValue);
  stock->setSidesCoated(kUnsetValue);
  stock->setCustomType({});
  stock->setCustomColor({});
  stock->setDescription({});
  ClearName(stock);
}

std::optional<std::string> GenerateStockSummary(const bundle::BundleRef& bundle, JobContext jobContext,
                                                const Stock* stock, std::string_view separator) {
  if (!stock) return std::nullopt;
  std::vector<std::string> parts;
  const bool job = jobContext == kJobStockContext;
  if (stock->source() != kUnsetValue) {
    if (stock->source() == kPostPrintInserterSource)
      parts.push_back("- " + vocabulary::CopyLocalizedStringForInstalledFeatureFromPlugin(kPostPrintInserterFeature, bundle)
                                 .value_or("STRING NOT FOUND"));
  } else {
    if (!stock->customName().empty())
      parts.push_back(Localized(bundle, "StockName") + Localized(bundle, ":") + stock->customName());
    if (!stock->customNameOnly()) {
      if (stock->size() != kUnsetValue && !job) parts.push_back("- " + ChoiceText("PageSize", stock->size()));
      if (stock->color() != kUnsetValue || job) {
        if (stock->color() == kCustomColor)
          parts.push_back(Localized(bundle, "StockColor") + Localized(bundle, ":") + stock->customColor());
        else
          parts.push_back("- " + ChoiceText("MediaColor", stock->color()));
      }
      if (stock->type() != kUnsetValue || job) {
        std::string text;
        switch (stock->type()) {
          case kCustomTypeWithModulus: text = WithCount(stock->customType(), stock->modulus()); break;
          case kPrecutTabType: text = WithCount(Localized(bundle, "StockTypePrecutTab"), stock->modulus()); break;
          case kCustomType: text = stock->customType(); break;
          case kTabStockType:
          case kTabStockType2:
            text = ChoiceText("MediaType", stock->type());
            if (stock->modulus() > 0) text = WithCount(text, stock->modulus());  // unset is negative
            break;
          default: text = ChoiceText("MediaType", stock->type()); break;
        }
        parts.push_back("- " + text);
      }
    }
  }
  std::string summary;
  for (const std::string& part : parts) summary += (summary.empty() ? "" : std::string(separator)) + part;
  return summary;
}

OSStatus ShowStockSummary(const bundle::BundleRef& bundle, toolkit::Control* view, const Stock* stock,
                          JobContext jobContext) {
  if (!bundle || !view) return paramErr;
  std::string text = GenerateStockSummary(bundle, jobContext, stock, "\n").value_or("");
  if (stock && text.empty())
    text = Localized(bundle, jobContext == kJobStockContext ? "PrinterDefault" : "UseJobSetting");
  view->setText(std::move(text));
  view->draw();
  return noErr;
}

}  // namespace varno::ui
