// SPDX-License-Identifier: Apache-2.0
#include "paper_dialogs.h"

#include <charconv>
#include <cstddef>
#include <optional>
#include <vector>

#include "panels/paper_output/paper_output_panel.h"
#include "platform/plist/text.h"
#include "platform/status_text.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/text_editing.h"
#include "platform/toolkit/window.h"
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

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t start = 0;;) {
    const std::size_t end = text.find(separator, start);
    parts.push_back(text.substr(start, end == std::string_view::npos ? end : end - start));
    if (end == std::string_view::npos) return parts;
    start = end + 1;
  }
}

bool IsNumber(std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number > 0;
}

// Empties the field as a person does, with backspaces from the end, then types `text`.
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

// Chooses `subitem` of the submenu held by the item with `command`, then drops whatever
// the dialog left of the script; the new notice, if the dialog showed one, is its reason.
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

}  // namespace

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

ApplyResult ApplyPaperDialog(toolkit::Window&, Control& menuButton, const SettingOption& option,
                             std::string_view value, std::string* error) {
  if (!menuButton.menu()) {
    if (error) *error = "the paper menu has no items";
    return ApplyResult::Failed;
  }
  if (std::string_view(option.name) == "custom-size")
    return ApplyCustomSize(menuButton, option, value, error);
  // MERGE separators and covers
  if (error) *error = "--" + std::string(option.name) + " is not available yet";
  return ApplyResult::Failed;
}

}  // namespace varno::cli
