// SPDX-License-Identifier: Apache-2.0
#include "ui/advanced_stock_dialog.h"

#include <charconv>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "platform/toolkit/alerts.h"
#include "platform/toolkit/character_set.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/window.h"
#include "vocabulary/setting_maps.h"

namespace varno::ui {

namespace {

using toolkit::Control;
using vocabulary::kUnsetValue;
using vocabulary::SettingMap;

const SettingMap kPunchedMap[] = {
    {"StockNotPunched", kStockNotPunched, 0, nullptr, 0},
    {"StockPrePunched", kStockPrePunched, 0, nullptr, 0},
    {nullptr, 0, 0, nullptr, 0},
};
const SettingMap kSidesCoatedMap[] = {
    {"StockUncoated", kStockUncoated, 0, nullptr, 0},
    {"StockCoatedFront", kStockCoatedFront, 0, nullptr, 0},
    {"StockCoatedBack", kStockCoatedBack, 0, nullptr, 0},
    {"StockCoatedBoth", kStockCoatedBoth, 0, nullptr, 0},
    {nullptr, 0, 0, nullptr, 0},
};
const SettingMap kCoatingMap[] = {
    {"StockCoatingGloss", kStockCoatingGloss, 0, nullptr, 0},
    {"StockCoatingMatte", kStockCoatingMatte, 0, nullptr, 0},
    {"StockCoatingSilk", kStockCoatingSilk, 0, nullptr, 0},
    {nullptr, 0, 0, nullptr, 0},
};
const SettingMap kFinishMap[] = {
    {"StockFinishSmooth", kStockFinishSmooth, 0, nullptr, 0},
    {"StockFinishVellum", kStockFinishVellum, 0, nullptr, 0},
    {"StockFinishLaid", kStockFinishLaid, 0, nullptr, 0},
    {"StockFinishLinen", kStockFinishLinen, 0, nullptr, 0},
    {nullptr, 0, 0, nullptr, 0},
};

// One pop-up attribute of the stock and how it was shown.
struct PopupAttribute {
  toolkit::ControlID id;
  const SettingMap* map;
  std::int32_t (model::Stock::*get)() const;
  void (model::Stock::*set)(std::int32_t);
  // A value from elsewhere that the menu lacks shows as "Printer Default"; it is kept
  // unless the person chooses another item.
  bool shown = true;
  std::int32_t shownItem = 1;
};

struct NumberAttribute {
  toolkit::ControlID id;
  std::int32_t low, high;
  std::int32_t (model::Stock::*get)() const;
  void (model::Stock::*set)(std::int32_t);
};

struct TextAttribute {
  toolkit::ControlID id;
  std::int32_t maxLength;
  const std::string& (model::Stock::*get)() const;
  void (model::Stock::*set)(std::string);
};

const NumberAttribute kNumbers[] = {
    {kAdvancedStockWeightFieldID, kMinStockWeight, kMaxStockWeight, &model::Stock::weight,
     &model::Stock::setWeight},
    {kAdvancedStockTabsFieldID, kMinTabsPerSet, kMaxTabsPerSet, &model::Stock::modulus,
     &model::Stock::setModulus},
};

const TextAttribute kTexts[] = {
    {kAdvancedStockCustomTypeFieldID, kMaxStockNameLength, &model::Stock::customType,
     &model::Stock::setCustomType},
    {kAdvancedStockCustomColorFieldID, kMaxStockNameLength, &model::Stock::customColor,
     &model::Stock::setCustomColor},
    {kAdvancedStockDescriptionFieldID, kMaxStockNoteLength, &model::Stock::description,
     &model::Stock::setDescription},
    {kAdvancedStockCommentFieldID, kMaxStockNoteLength, &model::Stock::comment,
     &model::Stock::setComment},
};

struct DialogState {
  toolkit::Window* window;
  bundle::BundleRef bundle;
  PopupAttribute popups[5];
  bool confirmed = false;
};

// The number in the field: unset for an empty field, nullopt when it is no whole number
// within [low, high].
std::optional<std::int32_t> NumberIn(const Control* field, std::int32_t low, std::int32_t high) {
  const std::string text = field ? field->text() : std::string();
  if (text.empty()) return kUnsetValue;
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < low || value > high)
    return std::nullopt;
  return value;
}

void EnableCoating(DialogState& state) {
  Control* sides = state.window->findByID(kAdvancedStockSidesCoatedPopupID);
  Control* coating = state.window->findByID(kAdvancedStockCoatingPopupID);
  if (!sides || !coating) return;
  const std::int32_t value = vocabulary::GetPopupButtonTicketValue(sides);
  coating->setEnabled(value == kStockCoatedFront || value == kStockCoatedBack || value == kStockCoatedBoth);
}

// OK when every number field holds an acceptable number; otherwise says why and keeps
// the dialog open.
bool Acceptable(DialogState& state) {
  for (const NumberAttribute& number : kNumbers) {
    if (NumberIn(state.window->findByID(number.id), number.low, number.high)) continue;
    toolkit::SysBeep(10);
    toolkit::CFUserNotificationDisplayNotice(
        0, toolkit::kCFUserNotificationCautionAlertLevel,
        state.bundle->localizedString("AdvancedStockOutside", "Localizable", "STRING NOT FOUND"),
        state.window->findByID(kAdvancedStockLimitsTextID)->text());
    state.window->setFocus(state.window->findByID(number.id));
    return false;
  }
  return true;
}

OSStatus AdvancedStockEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event, void* dialogState) {
  auto* state = static_cast<DialogState*>(dialogState);
  const std::optional<toolkit::HICommand> command = event ? event->command() : std::nullopt;
  if (!state || !command) return eventNotHandledErr;
  switch (command->commandID) {
    case toolkit::kHICommandCancel:
      state->window->quitModalLoop();
      return noErr;
    case toolkit::kHICommandOK:
      if (Acceptable(*state)) {
        state->confirmed = true;
        state->window->quitModalLoop();
      }
      return noErr;
    case kAdvancedStockHelpCommand:
      DisplayHelpPage(state->bundle, kAdvancedStockHelpPage);
      return noErr;
    case kAdvancedStockCoatedSidesCommand:
      EnableCoating(*state);
      return eventNotHandledErr;
    default:
      return eventNotHandledErr;
  }
}

// Fills the pop-up from the map behind a first item for "not said" and selects the
// stock's value.
void ShowPopup(const bundle::BundleRef& bundle, Control* popup, PopupAttribute& attribute,
               std::int32_t value) {
  if (!popup || !popup->menu()) return;
  vocabulary::PopulatePopupButtonFromMap(bundle, popup, attribute.map, false, 0);
  toolkit::Menu& menu = *popup->menu();
  const toolkit::MenuItemIndex first =
      menu.insertItem(0, bundle->localizedString("PrinterDefault", "Localizable", "STRING NOT FOUND"));
  menu.setItemRefCon(first, static_cast<toolkit::URefCon>(static_cast<std::intptr_t>(kUnsetValue)));
  popup->setMaximum(static_cast<std::int32_t>(menu.count()));
  popup->setValue(1);
  attribute.shown = vocabulary::SetPopupButtonToTicketValue(popup, value) == 1;
  attribute.shownItem = popup->value();
}

void Store(DialogState& state, model::Stock& stock) {
  for (const NumberAttribute& number : kNumbers)
    (stock.*number.set)(*NumberIn(state.window->findByID(number.id), number.low, number.high));
  for (const PopupAttribute& attribute : state.popups) {
    Control* popup = state.window->findByID(attribute.id);
    if (!popup || (!attribute.shown && popup->value() == attribute.shownItem)) continue;
    (stock.*attribute.set)(vocabulary::GetPopupButtonTicketValue(popup));
  }
  for (const TextAttribute& text : kTexts)
    if (const Control* field = state.window->findByID(text.id)) (stock.*text.set)(field->text());
}

}  // namespace

OSStatus RunModalAdvancedStockDialog(const bundle::BundleRef& bundle, model::Stock* stock,
                                     void* /*reserved*/, bool* confirmed) {
  if (!bundle || !stock || !confirmed) return paramErr;
  *confirmed = false;
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::unique_ptr<toolkit::Window> window;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(bundle, "Utilities", &file, &error);
  if (status == noErr) status = file->createWindow("AdvancedStock", &window, &error);
  if (status != noErr) {
    std::fprintf(stderr, "RunModalAdvancedStockDialog() failed (%d): %s\n", status, error.c_str());
    return status;
  }
  DialogState state{window.get(), bundle, {
      {kAdvancedStockPunchedPopupID, kPunchedMap, &model::Stock::punched, &model::Stock::setPunched},
      {kAdvancedStockSidesCoatedPopupID, kSidesCoatedMap, &model::Stock::sidesCoated, &model::Stock::setSidesCoated},
      {kAdvancedStockCoatingPopupID, kCoatingMap, &model::Stock::coatingType, &model::Stock::setCoatingType},
      {kAdvancedStockFinishPopupID, kFinishMap, &model::Stock::finish, &model::Stock::setFinish},
      {kAdvancedStockGrainPopupID, vocabulary::GrainCompensationMap, &model::Stock::grain, &model::Stock::setGrain},
  }};
  static constexpr toolkit::EventTypeSpec kCommand[] = {{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}};
  window->installHandler(kCommand, AdvancedStockEventHandler, &state);

  static const toolkit::CharacterSet kDigits("0123456789");
  for (const NumberAttribute& number : kNumbers) {
    Control* field = window->findByID(number.id);
    LimitInputLengthAndCharacters(field, 0, CountDigits(number.high), &kDigits);
    const std::int32_t value = (stock->*number.get)();
    if (field && value != kUnsetValue) field->setText(std::to_string(value));
  }
  for (PopupAttribute& attribute : state.popups)
    ShowPopup(bundle, window->findByID(attribute.id), attribute, (stock->*attribute.get)());
  for (const TextAttribute& text : kTexts) {
    Control* field = window->findByID(text.id);
    LimitInputLengthAndCharacters(field, 0, text.maxLength, nullptr);
    if (field) field->setText((stock->*text.get)());
  }
  EnableCoating(state);
  SetLocalizedStaticText(bundle, "AdvancedStockLimits", window->findByID(kAdvancedStockLimitsTextID),
                         kMinStockWeight, kMaxStockWeight, kMinTabsPerSet, kMaxTabsPerSet);

  window->setVisible(true);
  window->setFocus(window->findByID(kAdvancedStockWeightFieldID));
  window->runModalLoop();
  if (state.confirmed) {
    Store(state, *stock);
    *confirmed = true;
  }
  return noErr;
}

}  // namespace varno::ui
