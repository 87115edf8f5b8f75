// SPDX-License-Identifier: Apache-2.0
#include "finishing_dialogs.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <vector>

#include "panels/paper_output/custom_finishing_dialog.h"
#include "panels/paper_output/finishing_menu.h"
#include "panels/paper_output/offset_dialog.h"
#include "paper_dialogs.h"
#include "platform/plist/text.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation.h"
#include "ui/booklet_creation_dialog.h"

namespace varno::cli {
namespace {

using toolkit::Control;

std::string_view Name(const SettingOption& option) { return option.name; }

std::optional<long> WholeNumber(std::string_view text) {
  long number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < 0) return std::nullopt;
  return number;
}

// A millimetre value with at most one decimal, in tenths.
std::optional<long> Tenths(std::string_view text) {
  const std::size_t point = text.find('.');
  if (point == std::string_view::npos) {
    std::optional<long> whole = WholeNumber(text);
    return whole ? std::optional<long>(*whole * 10) : std::nullopt;
  }
  std::optional<long> whole = WholeNumber(text.substr(0, point));
  std::optional<long> tenth = WholeNumber(text.substr(point + 1));
  if (!whole || !tenth || text.size() != point + 2) return std::nullopt;
  return *whole * 10 + *tenth;
}

ApplyResult Refuse(const SettingOption& option, std::string_view value, const std::string& why,
                   std::string* error) {
  if (error)
    *error = "--" + std::string(option.name) + ": \"" + std::string(value) + "\" is not " +
             FinishingDialogSyntax(option) + (why.empty() ? "" : "; " + why);
  return ApplyResult::UnknownChoice;
}

ApplyResult ApplyBooklet(Control& button, const SettingOption& option, const PPDDefaults& ppd,
                         std::string_view value, std::string* error) {
  const std::vector<std::string_view> parts = Split(value, ',');
  toolkit::ControlID finishing;
  if (plist::EqualCaseInsensitive(parts[0], "none"))
    finishing = ui::kBookletNoFoldRadioID;
  else if (plist::EqualCaseInsensitive(parts[0], "fold"))
    finishing = ui::kBookletFoldRadioID;
  else if (plist::EqualCaseInsensitive(parts[0], "fold-staple"))
    finishing = ui::kBookletFoldAndStapleRadioID;
  else
    return Refuse(option, value, "the booklet finishing is none, fold or fold-staple", error);
  bool layout = false, outlines = false;
  std::optional<std::string> gutter, creep, size;
  for (std::size_t i = 1; i < parts.size(); ++i) {
    const std::string_view part = parts[i];
    if (plist::EqualCaseInsensitive(part, "layout")) {
      layout = true;
    } else if (plist::EqualCaseInsensitive(part, "outlines")) {
      outlines = true;
    } else if (part.starts_with("gutter=")) {
      std::optional<long> points = WholeNumber(part.substr(7));
      if (!points || *points > ui::kBookletMaxGutter)
        return Refuse(option, value, "the gutter is 0 to 216 points", error);
      gutter = std::to_string(*points);
    } else if (part.starts_with("creep=")) {
      std::optional<long> tenths = Tenths(part.substr(6));
      if (!tenths || *tenths > ui::kBookletMaxCreep)
        return Refuse(option, value, "the creep is 0.0 to 10.0 mm", error);
      creep = std::string(part.substr(6));
    } else if (part.starts_with("size=")) {
      const std::string_view word = part.substr(5);
      if (plist::EqualCaseInsensitive(word, "off")) continue;
      size = ChoiceText(ppd, "PageSize", word, "--booklet size", error);
      if (!size) return ApplyResult::UnknownChoice;
    } else {
      return Refuse(option, value, "\"" + std::string(part) + "\" is none of layout, outlines, "
                                   "gutter=N, creep=N, size=SIZE", error);
    }
  }
  if (outlines && !layout) return Refuse(option, value, "outlines are drawn around imposed pages: add layout", error);
  // The dialog offers folds and layout only for a job without staples, covers or inserts.
  bool stapled = false;
  for (toolkit::MenuCommand staple :
       {panels::kSingleStapleCommand, panels::kDualStapleCommand, panels::kMultipleStapleCommand})
    if (const toolkit::MenuItemIndex item = ItemWithCommand(*button.menu(), staple))
      stapled = stapled || button.menu()->item(item)->checked;
  const std::string reason =
      stapled ? "a stapled job is not folded or laid out as a booklet; give --staple none first"
              : "the job has covers or inserts, which a booklet cannot take; remove them first";
  auto refused = std::make_shared<bool>(false);
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  script.clear();
  script.add("check that the booklet can be made", [refused, finishing, layout](toolkit::Window& window) {
    for (toolkit::ControlID id : {finishing, layout ? ui::kBookletLayoutRadioID : finishing}) {
      Control* control = window.findByID(id);
      if (control && !control->isEnabled()) {
        *refused = true;
        return toolkit::SendCommand(window, toolkit::kHICommandCancel);
      }
    }
    return noErr;
  });
  script.click(finishing);
  // Choosing a fold lays the pages out as a booklet; the command line says so itself.
  script.click(layout ? ui::kBookletLayoutRadioID : ui::kBookletLayoutNoneRadioID);
  if (layout) {
    script.add(outlines ? "draw outlines" : "no outlines", [outlines](toolkit::Window& window) {
      Control* box = window.findByID(ui::kBookletOutlinesCheckBoxID);
      if (!box) return errUnknownControl;
      return (box->value() != 0) == outlines ? noErr : toolkit::Click(*box);
    });
    if (gutter) ScriptRetype(script, ui::kBookletGutterFieldID, *gutter);
    if (creep) ScriptRetype(script, ui::kBookletCreepFieldID, *creep);
    if (size)
      script.chooseMenuItemByText(ui::kBookletNewSizePopupID, *size);
    else
      script.chooseMenuItem(ui::kBookletNewSizePopupID, 1);  // "Off"
  }
  script.sendCommand(toolkit::kHICommandOK);
  script.sendCommand(toolkit::kHICommandCancel);
  const ApplyResult result = ChooseAndRunDialog(button, panels::kBookletCreationCommand, 0, option, error);
  if (*refused) {
    if (error) *error = "--booklet " + std::string(value) + ": " + reason;
    return ApplyResult::Failed;
  }
  return result;
}

ApplyResult ApplyOffset(Control& button, const SettingOption& option, std::string_view value,
                        std::string* error) {
  const std::vector<std::string_view> parts = Split(value, ',');
  const panels::OffsetChoice* chosen = nullptr;
  for (const panels::OffsetChoice& choice : panels::kOffsetChoices)
    if (plist::EqualCaseInsensitive(parts[0], choice.word)) chosen = &choice;
  std::optional<long> pages;
  if (parts.size() == 2 && parts[1].starts_with("subset=")) pages = WholeNumber(parts[1].substr(7));
  const bool subsets = chosen && chosen->value >= panels::kOffsetEachSubset;
  if (!chosen || parts.size() > 2 || (parts.size() == 2 && (!pages || !subsets)))
    return Refuse(option, value,
                  chosen && !subsets && parts.size() == 2 ? "only subsets and sets-and-subsets take subset=N"
                                                          : "",
                  error);
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  script.clear();
  script.chooseMenuItemByRefCon(panels::kOffsetPopupID, static_cast<toolkit::URefCon>(chosen->value));
  if (pages) ScriptRetype(script, panels::kOffsetPagesFieldID, std::to_string(*pages));
  script.sendCommand(toolkit::kHICommandOK);
  script.sendCommand(toolkit::kHICommandCancel);
  return ChooseAndRunDialog(button, panels::kOffsetCommand, 0, option, error);
}

ApplyResult ApplyCustom(Control& button, const SettingOption& option, std::string_view value,
                        std::string* error) {
  if (value.empty()) {
    if (error) *error = "--custom-finishing: give the instruction for the operator";
    return ApplyResult::UnknownChoice;
  }
  // The field would stop typing at its limit; what it cut off is said rather than lost.
  const auto characters = std::count_if(value.begin(), value.end(),
                                        [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
  if (characters > panels::kMaxCustomFinishingLength) {
    if (error)
      *error = "--custom-finishing: \"" + std::string(value) + "\" has " + std::to_string(characters) +
               " characters; the printer takes at most " +
               std::to_string(panels::kMaxCustomFinishingLength) + ": shorten it";
    return ApplyResult::UnknownChoice;
  }
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  script.clear();
  ScriptRetype(script, panels::kCustomFinishingFieldID, std::string(value));
  script.sendCommand(toolkit::kHICommandOK);
  script.sendCommand(toolkit::kHICommandCancel);
  return ChooseAndRunDialog(button, panels::kCustomCommand, 0, option, error);
}

}  // namespace

bool IsFinishingDialog(const SettingOption& option) {
  return option.command == panels::kBookletCreationCommand || option.command == panels::kOffsetCommand ||
         option.command == panels::kCustomCommand;
}

std::string FinishingDialogSyntax(const SettingOption& option) {
  if (Name(option) == "booklet")
    return "none|fold|fold-staple[,layout][,outlines][,gutter=N][,creep=N][,size=SIZE]";
  if (Name(option) == "offset") {
    std::string words;
    for (const panels::OffsetChoice& choice : panels::kOffsetChoices)
      words += (words.empty() ? "" : "|") + std::string(choice.word);
    return words + "[,subset=N]";
  }
  return "TEXT";
}

ApplyResult ApplyFinishingDialog(Control& button, const SettingOption& option, const PPDDefaults& ppd,
                                 std::string_view value, std::string* error) {
  if (!button.menu() || !ItemWithCommand(*button.menu(), option.command)) {
    if (error) *error = "--" + std::string(option.name) + ": " + option.unavailable;
    return ApplyResult::UnknownChoice;
  }
  if (Name(option) == "booklet") return ApplyBooklet(button, option, ppd, value, error);
  if (Name(option) == "offset") return ApplyOffset(button, option, value, error);
  return ApplyCustom(button, option, value, error);
}

}  // namespace varno::cli
