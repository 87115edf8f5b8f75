// SPDX-License-Identifier: Apache-2.0
#include "paper_dialogs.h"

#include <charconv>
#include <cstddef>
#include <optional>
#include <vector>

#include "panels/paper_output/paper_output_panel.h"
#include "panels/paper_output/separators_dialog.h"
#include "platform/plist/text.h"
#include "platform/status_text.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/text_editing.h"
#include "platform/toolkit/window.h"
#include "ui/covers_dialog.h"
#include "ui/custom_stock_size_dialog.h"
#include "ui/stock_menus.h"

namespace varno::cli {
namespace {

using toolkit::Control;

constexpr std::int32_t kCustomSizeValue = 75;

struct Unit {
  const char* suffix;
  toolkit::MenuItemIndex popupItem;  // the custom size dialog's unit pop-up
};
constexpr Unit kUnits[] = {{"pt", 1}, {"mm", 2}, {"in", 3}};

bool IsNumber(std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number > 0;
}

ApplyResult ApplyCustomSize(Control& button, const SettingOption& option, std::string_view value,
                            std::string* error) {
  std::string_view numbers = value;
  const Unit* unit = &kUnits[0];
  for (const Unit& candidate : kUnits)
    if (numbers.ends_with(candidate.suffix)) {
      unit = &candidate;
      numbers.remove_suffix(std::string_view(candidate.suffix).size());
    }
  const std::vector<std::string_view> sides = Split(numbers, 'x');
  if (sides.size() != 2 || !IsNumber(sides[0]) || !IsNumber(sides[1])) {
    if (error)
      *error = "--custom-size: \"" + std::string(value) + "\" is not a size; give " +
               PaperDialogSyntax(option) + ", as 210x297mm";
    return ApplyResult::UnknownChoice;
  }
  const toolkit::MenuItemIndex sizes = ItemWithCommand(*button.menu(), ui::kStockSizeCommand);
  const toolkit::Menu* submenu = sizes ? button.menu()->item(sizes)->submenu.get() : nullptr;
  const toolkit::MenuItemIndex custom =
      submenu ? submenu->findRefCon(static_cast<toolkit::URefCon>(kCustomSizeValue)) : 0;
  if (!custom) {
    if (error) *error = "--custom-size: this printer takes no custom paper size; use --paper-size";
    return ApplyResult::Failed;
  }
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  script.clear();
  script.chooseMenuItem(ui::kCustomStockUnitPopupID, unit->popupItem);
  ScriptRetype(script, ui::kCustomStockWidthFieldID, std::string(sides[0]));
  ScriptRetype(script, ui::kCustomStockLengthFieldID, std::string(sides[1]));
  script.sendCommand(toolkit::kHICommandOK);
  // Reached only when the dialog stayed open after OK: it refused the size.
  script.sendCommand(toolkit::kHICommandCancel);
  return ChooseAndRunDialog(button, ui::kStockSizeCommand, custom, option, error);
}

// The reference value of `word` in `words`, or nullopt.
std::optional<std::int32_t> WordValue(std::span<const NamedChoice> words, std::string_view word) {
  for (const NamedChoice& named : words)
    if (plist::EqualCaseInsensitive(word, named.word)) return named.value;
  return std::nullopt;
}

std::string Words(std::span<const NamedChoice> words) {
  std::string text;
  for (const NamedChoice& named : words) text += (text.empty() ? "" : ", ") + std::string(named.word);
  return text;
}

ApplyResult ApplySeparators(Control& button, const SettingOption& option, const PPDDefaults& ppd,
                            std::string_view value, std::string* error) {
  static constexpr NamedChoice kOptions[] = {{"none", 1}, {"blank", 2}, {"printed", 3}};
  const std::vector<std::string_view> parts = Split(value, ':');
  const std::optional<std::int32_t> chosen = WordValue(kOptions, parts[0]);
  if (!chosen || parts.size() > 2 || (parts.size() == 2 && *chosen == 1)) {
    if (error)
      *error = "--separators: \"" + std::string(value) + "\" is not " + PaperDialogSyntax(option) +
               (chosen && *chosen == 1 ? " (no separators come from no tray)" : "");
    return ApplyResult::UnknownChoice;
  }
  std::optional<std::string> tray;
  if (parts.size() == 2 &&
      !(tray = ChoiceText(ppd, "VNSlipSheetSource", parts[1], "--separators", error)))
    return ApplyResult::UnknownChoice;
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  script.clear();
  script.chooseMenuItemByRefCon(panels::kSeparatorOptionPopupID, static_cast<toolkit::URefCon>(*chosen));
  if (tray) script.chooseMenuItemByText(panels::kSeparatorSourcePopupID, *tray);
  script.sendCommand(toolkit::kHICommandOK);
  script.sendCommand(toolkit::kHICommandCancel);
  const ApplyResult result = ChooseAndRunDialog(button, panels::kSeparatorsCommand, 0, option, error);
  if (result == ApplyResult::Failed && tray && error)
    *error += " (the printer cannot feed separators from " + std::string(parts[1]) +
              " as it is set up now)";
  return result;
}

// Chooses the item showing `text` in the submenu of `button`'s item with `command`, as a
// script step (the button is in the covers dialog, open only while the script runs).
void ScriptChooseStock(toolkit::AutomationScript& script, toolkit::ControlID buttonID,
                       toolkit::MenuCommand command, std::string text) {
  script.add("choose " + text, [buttonID, command, text](toolkit::Window& window) {
    Control* button = window.findByID(buttonID);
    if (!button || !button->menu()) return errUnknownControl;
    const toolkit::MenuItemIndex item = ItemWithCommand(*button->menu(), command);
    const toolkit::Menu* submenu = item ? button->menu()->item(item)->submenu.get() : nullptr;
    const toolkit::MenuItemIndex sub = submenu ? submenu->findText(text) : 0;
    if (!sub) return menuItemNotFoundErr;
    return toolkit::ChooseSubmenuItem(*button, item, sub);
  });
}

ApplyResult ApplyCovers(Control& button, const SettingOption& option, const PPDDefaults& ppd,
                        std::string_view value, std::string* error) {
  static constexpr NamedChoice kOptions[] = {{"none", 1}, {"front", 2}, {"back", 3}, {"both", 5}};
  static constexpr NamedChoice kSides[] = {
      {"blank", ui::kCoverSidesBlank}, {"front", ui::kCoverSidesFront},
      {"back", ui::kCoverSidesBack}, {"both", ui::kCoverSidesBoth}};
  const std::vector<std::string_view> parts = Split(value, ':');
  const std::optional<std::int32_t> chosen = WordValue(kOptions, parts[0]);
  if (!chosen || parts.size() > 3 || (*chosen == 1 && parts.size() > 1)) {
    if (error)
      *error = "--covers: \"" + std::string(value) + "\" is not " + PaperDialogSyntax(option) +
               "; covers are " + Words(kOptions);
    return ApplyResult::UnknownChoice;
  }
  // The stock part, then the sides part; a lone part that names sides is the sides.
  std::string_view stockPart, sidesPart;
  if (parts.size() == 3) {
    stockPart = parts[1];
    sidesPart = parts[2];
  } else if (parts.size() == 2) {
    (WordValue(kSides, parts[1]) ? sidesPart : stockPart) = parts[1];
  }
  std::optional<std::int32_t> sides;
  if (!sidesPart.empty() && !(sides = WordValue(kSides, sidesPart))) {
    if (error) *error = "--covers: no printed sides \"" + std::string(sidesPart) + "\"; they are " + Words(kSides);
    return ApplyResult::UnknownChoice;
  }
  struct StockPart {
    const char* keyword;
    toolkit::MenuCommand command;
  };
  static constexpr StockPart kStockParts[] = {{"PageSize", ui::kStockSizeCommand},
                                              {"MediaColor", ui::kStockColorCommand},
                                              {"MediaType", ui::kStockTypeCommand}};
  const std::vector<std::string_view> stock = stockPart.empty() ? std::vector<std::string_view>{}
                                                                : Split(stockPart, ',');
  if (stock.size() > 3) {
    if (error) *error = "--covers: give the cover's paper as SIZE,COLOR,TYPE";
    return ApplyResult::UnknownChoice;
  }
  std::vector<std::pair<toolkit::MenuCommand, std::string>> stockChoices;
  for (std::size_t i = 0; i < stock.size(); ++i) {
    if (stock[i].empty()) continue;  // follows the job
    std::optional<std::string> text = ChoiceText(ppd, kStockParts[i].keyword, stock[i], "--covers", error);
    if (!text) return ApplyResult::UnknownChoice;
    stockChoices.emplace_back(kStockParts[i].command, *text);
  }

  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  script.clear();
  script.chooseMenuItemByRefCon(ui::kCoverOptionPopupID, static_cast<toolkit::URefCon>(*chosen));
  std::vector<toolkit::ControlID> covers;
  if (*chosen == 2 || *chosen == 5) covers.push_back(ui::kFrontCoverGroupID);
  if (*chosen == 3 || *chosen == 5) covers.push_back(ui::kBackCoverGroupID);
  for (toolkit::ControlID group : covers) {
    for (const auto& [command, text] : stockChoices)
      ScriptChooseStock(script, ui::CoverControlID(group, ui::kCoverStockButtonOffset), command, text);
    if (sides)
      script.chooseMenuItemByRefCon(ui::CoverControlID(group, ui::kCoverSidesPopupOffset),
                                    static_cast<toolkit::URefCon>(*sides));
  }
  script.sendCommand(toolkit::kHICommandOK);
  script.sendCommand(toolkit::kHICommandCancel);
  return ChooseAndRunDialog(button, panels::kCoversCommand, 0, option, error);
}

}  // namespace

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t start = 0;;) {
    const std::size_t end = text.find(separator, start);
    parts.push_back(text.substr(start, end == std::string_view::npos ? end : end - start));
    if (end == std::string_view::npos) return parts;
    start = end + 1;
  }
}

void ScriptRetype(toolkit::AutomationScript& script, toolkit::ControlID field, std::string text) {
  script.add("clear the field", [field](toolkit::Window& window) {
    Control* control = window.findByID(field);
    if (!control) return errUnknownControl;
    if (OSStatus status = toolkit::SetFocus(*control)) return status;
    for (std::size_t i = control->text().size(); i > 0; --i)
      toolkit::PressKey(window, toolkit::kBackspaceCharCode);
    return noErr;
  });
  script.typeText(field, std::move(text));
}

ApplyResult ChooseAndRunDialog(Control& button, toolkit::MenuCommand command,
                               toolkit::MenuItemIndex subitem, const SettingOption& option,
                               std::string* error) {
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  const std::size_t noticesBefore = toolkit::HeadlessAlerts().notices().size();
  const toolkit::MenuItemIndex item = ItemWithCommand(*button.menu(), command);
  const OSStatus status = subitem ? toolkit::ChooseSubmenuItem(button, item, subitem)
                                  : toolkit::ChooseMenuItem(button, item);
  const std::vector<std::string> failures = script.failures();
  script.clear();
  const auto& notices = toolkit::HeadlessAlerts().notices();
  if (notices.size() > noticesBefore) {
    const toolkit::NoticeRequest& notice = notices.back();
    if (error) *error = "--" + std::string(option.name) + ": " + notice.header + ". " + notice.message;
    return ApplyResult::Failed;
  }
  if (status != noErr || !failures.empty()) {
    if (error)
      *error = "--" + std::string(option.name) + ": the dialog refused the choice: " +
               (status != noErr ? StatusMessage(status) : failures.front());
    return ApplyResult::Failed;
  }
  return ApplyResult::Applied;
}

std::optional<std::string> ChoiceText(const PPDDefaults& ppd, const char* keyword, std::string_view word,
                                      const std::string& what, std::string* error) {
  const std::vector<PPDChoice>* choices = ppd.choicesOf(keyword);
  std::string listed;
  for (const PPDChoice& choice : choices ? *choices : std::vector<PPDChoice>{}) {
    if (plist::EqualCaseInsensitive(word, choice.keyword) || plist::EqualCaseInsensitive(word, choice.text))
      return choice.text;
    listed += (listed.empty() ? "" : ", ") + choice.keyword;
  }
  if (error)
    *error = what + ": the printer has no choice \"" + std::string(word) + "\"" +
             (listed.empty() ? std::string() : "; the choices are: " + listed);
  return std::nullopt;
}

toolkit::MenuItemIndex ItemWithCommand(const toolkit::Menu& menu, toolkit::MenuCommand command) {
  for (toolkit::MenuItemIndex i = 1; i <= menu.count(); ++i)
    if (menu.item(i)->command == command) return i;
  return 0;
}

std::string PaperDialogSyntax(const SettingOption& option) {
  const std::string_view name = option.name;
  if (name == "custom-size") return "WIDTHxLENGTH[pt|mm|in]";
  if (name == "separators") return "none|blank|printed[:SOURCE]";
  return "none|front|back|both[:SIZE,COLOR,TYPE][:SIDES]";
}

ApplyResult ApplyPaperDialog(Control& menuButton, const SettingOption& option, const PPDDefaults& ppd,
                             std::string_view value, std::string* error) {
  if (!menuButton.menu()) {
    if (error) *error = "the paper menu has no items";
    return ApplyResult::Failed;
  }
  if (std::string_view(option.name) == "custom-size")
    return ApplyCustomSize(menuButton, option, value, error);
  if (std::string_view(option.name) == "separators")
    return ApplySeparators(menuButton, option, ppd, value, error);
  return ApplyCovers(menuButton, option, ppd, value, error);
}

}  // namespace varno::cli
