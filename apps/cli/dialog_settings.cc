// SPDX-License-Identifier: Apache-2.0
#include "dialog_settings.h"

#include <array>
#include <sstream>

#include "host/dialog_host.h"
#include "panels/image_options/advanced_panel.h"
#include "panels/image_options/image_options_panel.h"
#include "panels/paper_output/finishing_menu.h"
#include "panels/paper_output/paper_output_panel.h"
#include "finishing_dialogs.h"
#include "job_type_setups.h"
#include "paper_dialogs.h"
#include "platform/plist/text.h"
#include "platform/status_text.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/menu.h"

namespace varno::cli {
namespace {

using toolkit::Control;

using panels::kPaperOutputSignature;

constexpr NamedChoice kJobTypes[] = {{"normal", 1}, {"secure", 6},  {"sample", 8},
                                     {"delayed", 7}, {"mailbox", 3}, {"fax", 5}};
constexpr NamedChoice kTwoSided[] = {{"one", 1}, {"long", 2}, {"short", 3}};

constexpr std::int32_t Command(toolkit::MenuCommand command) { return static_cast<std::int32_t>(command); }
constexpr NamedChoice kStaples[] = {{"none", Command(panels::kNoStapleCommand)},
                                    {"single", Command(panels::kSingleStapleCommand)},
                                    {"dual", Command(panels::kDualStapleCommand)},
                                    {"multiple", Command(panels::kMultipleStapleCommand)}};
constexpr NamedChoice kPunches[] = {{"none", Command(panels::kNoPunchCommand)},
                                    {"2", Command(panels::kDualPunchCommand)},
                                    {"3", Command(panels::kTriplePunchCommand)},
                                    {"4", Command(panels::kQuadruplePunchCommand)},
                                    {"generic", Command(panels::kGenericPunchCommand)}};
constexpr NamedChoice kFolds[] = {{"none", Command(panels::kNoFoldCommand)},
                                  {"c", Command(panels::kCFoldCommand)},
                                  {"z", Command(panels::kZFoldCommand)},
                                  {"z-half", Command(panels::kZFoldHalfSheetCommand)},
                                  {"bi", Command(panels::kBiFoldCommand)}};
constexpr toolkit::ControlID kFinishingMenuButton{kPaperOutputSignature, panels::kFinishingMenuButtonID};
// Where finishing choices may be: a booklet maker's one menu, or the two pop-ups.
constexpr toolkit::ControlID kFinishingControls[] = {
    kFinishingMenuButton,
    {kPaperOutputSignature, panels::kStaplePopupID},
    {kPaperOutputSignature, panels::kHolePunchPopupID}};

const std::array<SettingOption, 22> kSettingOptions{{
    {"image-quality", "Image quality", {panels::kImageOptionsSignature, panels::kImageQualityPopupID},
     "VNOutputMode"},
    {"toner-saver", "Toner saver", {panels::kImageOptionsSignature, panels::kTonerSaverCheckBoxID},
     nullptr, SettingKind::CheckBox},
    {"negative-image", "Negative image",
     {panels::kImageOptionsSignature, panels::kNegativeCheckBoxID}, nullptr, SettingKind::CheckBox},
    {"mirror-image", "Mirror image", {panels::kImageOptionsSignature, panels::kMirrorCheckBoxID},
     nullptr, SettingKind::CheckBox},
    {"banner-sheet", "Banner sheet", {panels::kAdvancedSignature, panels::kBannerSheetPopupID},
     "JCLBanner"},
    {"request-offset", "Request offset",
     {panels::kAdvancedSignature, panels::kRequestOffsetPopupID}, "Jog"},
    {"feed-edge", "Bypass tray feed edge", {panels::kAdvancedSignature, panels::kFeedEdgePopupID},
     "VNFeedEdge"},
    {"job-type", "Job type", {kPaperOutputSignature, panels::kJobTypePopupID}, nullptr,
     SettingKind::NamedPopup, kJobTypes},
    {"paper-size", "Paper size", {kPaperOutputSignature, panels::kStockMenuButtonID}, "PageSize",
     SettingKind::StockSubmenu, {}, ui::kStockSizeCommand},
    {"paper-color", "Paper color", {kPaperOutputSignature, panels::kStockMenuButtonID}, "MediaColor",
     SettingKind::StockSubmenu, {}, ui::kStockColorCommand},
    {"paper-type", "Paper type", {kPaperOutputSignature, panels::kStockMenuButtonID}, "MediaType",
     SettingKind::StockSubmenu, {}, ui::kStockTypeCommand},
    {"custom-size", "Custom paper size", {kPaperOutputSignature, panels::kStockMenuButtonID},
     nullptr, SettingKind::Dialog, {}, ui::kStockSizeCommand},
    {"two-sided", "2-sided printing", {kPaperOutputSignature, panels::kTwoSidedPopupID}, nullptr,
     SettingKind::NamedPopup, kTwoSided, 0,
     "this printer has no 2-sided printing (its PPD has no \"Duplex\" option)"},
    {"output-bin", "Output destination", {kPaperOutputSignature, panels::kOutputDestinationPopupID},
     "OutputBin"},
    {"separators", "Transparency separators", {kPaperOutputSignature, panels::kStockMenuButtonID},
     nullptr, SettingKind::Dialog, {}, panels::kSeparatorsCommand},
    {"covers", "Covers", {kPaperOutputSignature, panels::kStockMenuButtonID}, nullptr,
     SettingKind::Dialog, {}, panels::kCoversCommand},
    {"staple", "Staples", kFinishingMenuButton, nullptr, SettingKind::FinishingMenu, kStaples, 0,
     "this printer has no stapler installed"},
    {"punch", "Hole punch", kFinishingMenuButton, nullptr, SettingKind::FinishingMenu, kPunches, 0,
     "this printer has no hole punch installed"},
    {"fold", "Fold", kFinishingMenuButton, nullptr, SettingKind::FinishingMenu, kFolds, 0,
     "this printer has no folding unit installed"},
    {"booklet", "Booklet creation", kFinishingMenuButton, nullptr, SettingKind::Dialog, {},
     panels::kBookletCreationCommand, "this printer has no booklet maker installed"},
    {"offset", "Offset/subset", kFinishingMenuButton, nullptr, SettingKind::Dialog, {},
     panels::kOffsetCommand, "this printer's finisher cannot offset sets"},
    {"custom-finishing", "Custom finishing", kFinishingMenuButton, nullptr, SettingKind::Dialog, {},
     panels::kCustomCommand, "this printer has no finisher to take a custom instruction"},
}};

const std::array<SettingChoice, 2> kCheckBoxChoices{{{"on", "on"}, {"off", "off"}}};

std::string ChoiceList(const SettingState& state) {
  std::string text;
  for (const SettingChoice& choice : state.choices) {
    if (!text.empty()) text += ", ";
    text += choice.keyword;
    if (choice.text != choice.keyword) text += " (\"" + choice.text + "\")";
  }
  return text;
}

}  // namespace

std::span<const SettingOption> SettingOptions() { return kSettingOptions; }

const SettingOption* FindSettingOption(std::string_view name) {
  for (const SettingOption& option : kSettingOptions)
    if (name == option.name) return &option;
  return nullptr;
}

Control* DialogSettings::find(const SettingOption& option, std::string* error) const {
  Control* control = window_.findByID(option.control);
  if (!control && error)
    *error = std::string("the dialog shows no control for --") + option.name;
  return control;
}

std::optional<SettingState> DialogSettings::menuState(const SettingOption& option,
                                                      const toolkit::Menu& menu,
                                                      std::int32_t chosenItem) const {
  SettingState state;
  const std::vector<PPDChoice>* ppdChoices =
      option.ppdKeyword ? ppd_.choicesOf(option.ppdKeyword) : nullptr;
  for (toolkit::MenuItemIndex i = 1; i <= menu.count(); ++i) {
    const std::string& text = menu.item(i)->text;
    // The menu shows the PPD's texts; its keyword is what tickets and scripts use.
    std::string keyword = text;
    if (ppdChoices)
      for (const PPDChoice& choice : *ppdChoices)
        if (choice.text == text) keyword = choice.keyword;
    state.choices.push_back({std::move(keyword), text});
    if (chosenItem == static_cast<std::int32_t>(i)) state.current = state.choices.size() - 1;
  }
  return state;
}

std::optional<SettingState> DialogSettings::state(const SettingOption& option,
                                                  std::string* error) const {
  Control* control = find(option, error);
  if (!control) return std::nullopt;
  SettingState state;
  if (option.kind == SettingKind::CheckBox) {
    state.choices.assign(kCheckBoxChoices.begin(), kCheckBoxChoices.end());
    state.current = control->value() != 0 ? 0 : 1;
    return state;
  }
  if (option.kind == SettingKind::Dialog) {
    if (IsFinishingDialog(option)) {
      if (!control->menu() || !ItemWithCommand(*control->menu(), option.command)) {
        if (error) *error = "--" + std::string(option.name) + ": " + option.unavailable;
        return std::nullopt;
      }
      state.choices.push_back({FinishingDialogSyntax(option), FinishingDialogSyntax(option)});
      return state;
    }
    state.choices.push_back({PaperDialogSyntax(option), PaperDialogSyntax(option)});
    return state;
  }
  if (option.kind == SettingKind::FinishingMenu) {
    Control* holder = finishingControl(option);
    if (!holder) {
      if (error) *error = "--" + std::string(option.name) + ": " + option.unavailable;
      return std::nullopt;
    }
    const toolkit::Menu& menu = *holder->menu();
    for (const NamedChoice& word : option.words) {
      const toolkit::MenuItemIndex item = ItemWithCommand(menu, static_cast<toolkit::MenuCommand>(word.value));
      if (!item) continue;
      state.choices.push_back({word.word, menu.item(item)->text});
      const bool chosen = holder->kind() == toolkit::ControlKind::PopupButton
                              ? holder->value() == item
                              : menu.item(item)->checked;
      if (chosen) state.current = state.choices.size() - 1;
    }
    return state;
  }
  const toolkit::Menu* menu = control->menu();
  if (!menu || (option.kind == SettingKind::NamedPopup && !control->isEnabled())) {
    if (error)
      *error = "--" + std::string(option.name) + ": " +
               (option.unavailable ? option.unavailable : "its control has no menu");
    return std::nullopt;
  }
  if (option.kind == SettingKind::NamedPopup) {
    for (const NamedChoice& word : option.words) {
      const toolkit::MenuItemIndex item = menu->findRefCon(static_cast<toolkit::URefCon>(word.value));
      if (!item) continue;
      state.choices.push_back({word.word, menu->item(item)->text});
      if (control->value() == item) state.current = state.choices.size() - 1;
    }
    return state;
  }
  if (option.kind == SettingKind::StockSubmenu) {
    const toolkit::MenuItemIndex item = ItemWithCommand(*menu, option.command);
    const toolkit::Menu* submenu = item ? menu->item(item)->submenu.get() : nullptr;
    if (!submenu) {
      if (error) *error = std::string("the paper menu has no submenu for --") + option.name;
      return std::nullopt;
    }
    return menuState(option, *submenu, 0);
  }
  return menuState(option, *menu, control->value());
}

Control* DialogSettings::finishingControl(const SettingOption& option) const {
  for (toolkit::ControlID id : kFinishingControls) {
    Control* control = window_.findByID(id);
    if (!control || !control->menu() || !control->isVisible() || !control->isEnabled()) continue;
    for (const NamedChoice& word : option.words)
      if (ItemWithCommand(*control->menu(), static_cast<toolkit::MenuCommand>(word.value)))
        return control;
  }
  return nullptr;
}

bool DialogSettings::showPanelOf(Control& control, std::string* error) {
  Control* pane = control.parent();
  while (pane && pane->id().signature != host::kPanelPaneSignature) pane = pane->parent();
  Control* selector = window_.findByID({host::kHostSignature, host::kSelectorID});
  if (!pane || !selector) {
    if (error) *error = "the dialog has no panel selector for this setting";
    return false;
  }
  if (pane->isShown()) return true;
  const OSStatus status = toolkit::ChooseMenuItem(*selector, pane->id().id);
  if (status != noErr && error) *error = "the dialog could not show the panel: " + StatusMessage(status);
  return status == noErr;
}

ApplyResult DialogSettings::apply(const SettingOption& option, std::string_view value,
                                  std::string* error) {
  std::optional<SettingState> offered = state(option, error);
  // What the printer's finisher lacks is a wrong choice for this printer.
  if (!offered)
    return option.kind == SettingKind::FinishingMenu || IsFinishingDialog(option) ? ApplyResult::UnknownChoice
                                                                                 : ApplyResult::Failed;
  Control* control = option.kind == SettingKind::FinishingMenu ? finishingControl(option) : find(option, error);
  if (!showPanelOf(*control, error)) return ApplyResult::Failed;
  if (option.kind == SettingKind::Dialog)
    return IsFinishingDialog(option) ? ApplyFinishingDialog(*control, option, ppd_, value, error)
                                     : ApplyPaperDialog(*control, option, ppd_, value, error);

  std::optional<std::size_t> chosen;
  for (std::size_t i = 0; i < offered->choices.size() && !chosen; ++i) {
    const SettingChoice& choice = offered->choices[i];
    if (plist::EqualCaseInsensitive(value, choice.keyword) ||
        plist::EqualCaseInsensitive(value, choice.text))
      chosen = i;
  }
  if (!chosen) {
    if (error)
      *error = "--" + std::string(option.name) + ": no choice \"" + std::string(value) +
               "\"; the choices are: " + ChoiceList(*offered);
    return ApplyResult::UnknownChoice;
  }

  OSStatus status = noErr;
  switch (option.kind) {
    case SettingKind::PPDPopup:
      status = toolkit::ChooseMenuItem(*control, static_cast<toolkit::MenuItemIndex>(*chosen + 1));
      break;
    case SettingKind::CheckBox:
      if (offered->current != chosen) status = toolkit::Click(*control);  // a check box toggles
      break;
    case SettingKind::NamedPopup:
      for (const NamedChoice& word : option.words) {
        if (!plist::EqualCaseInsensitive(offered->choices[*chosen].keyword, word.word)) continue;
        // Choosing a job type with a set-up opens it at once: it is filled in on the way.
        if (std::string_view(option.name) == "job-type")
          return ApplyJobType(*control, word.value, setup_ ? *setup_ : JobSetup{}, error);
        status = toolkit::ChooseMenuItemByRefCon(*control, static_cast<toolkit::URefCon>(word.value));
      }
      break;
    case SettingKind::StockSubmenu:
      // The custom size item opens a dialog that needs the size itself.
      if (option.command == ui::kStockSizeCommand &&
          plist::EqualCaseInsensitive(offered->choices[*chosen].keyword, "Custom")) {
        if (error) *error = "--paper-size: give a custom size with --custom-size WIDTHxLENGTH[pt|mm|in]";
        return ApplyResult::UnknownChoice;
      }
      status = toolkit::ChooseSubmenuItem(*control, ItemWithCommand(*control->menu(), option.command),
                                          static_cast<toolkit::MenuItemIndex>(*chosen + 1));
      break;
    case SettingKind::FinishingMenu: {
      for (const NamedChoice& word : option.words) {
        if (!plist::EqualCaseInsensitive(offered->choices[*chosen].keyword, word.word)) continue;
        const toolkit::MenuItemIndex item =
            ItemWithCommand(*control->menu(), static_cast<toolkit::MenuCommand>(word.value));
        if (!control->menu()->item(item)->enabled) {
          if (error)
            *error = "--" + std::string(option.name) + " " + word.word +
                     ": the printer cannot do this with the job's other choices (its PPD's "
                     "constraints forbid it, for example for this paper type or with booklet "
                     "layout); change those first";
          return ApplyResult::Failed;
        }
        status = toolkit::ChooseMenuItem(*control, item);
      }
      break;
    }
    case SettingKind::Dialog:
      break;
  }
  if (status != noErr) {
    if (error)
      *error = "--" + std::string(option.name) + ": the dialog refused the choice: " +
               StatusMessage(status);
    return ApplyResult::Failed;
  }
  return ApplyResult::Applied;
}

std::string DialogSettings::list() const {
  std::ostringstream out;
  for (const SettingOption& option : kSettingOptions) {
    std::string error;
    std::optional<SettingState> state = this->state(option, &error);
    out << "--" << option.name << "  (" << option.label << ")\n";
    if (!state) {
      out << "    not offered: " << error << "\n";
      continue;
    }
    if (option.kind == SettingKind::StockSubmenu || option.kind == SettingKind::Dialog)
      out << "    current: shown by --summary\n";
    else
      out << "    current: "
          << (state->current ? state->choices[*state->current].keyword : std::string("(none)")) << "\n";
    out << "    " << (option.kind == SettingKind::Dialog ? "value: " : "choices: ") << ChoiceList(*state)
        << "\n";
  }
  return out.str();
}

}  // namespace varno::cli
