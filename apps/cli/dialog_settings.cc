// SPDX-License-Identifier: Apache-2.0
#include "dialog_settings.h"

#include <array>
#include <sstream>

#include "host/dialog_host.h"
#include "panels/image_options/advanced_panel.h"
#include "panels/image_options/image_options_panel.h"
#include "platform/plist/text.h"
#include "platform/status_text.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/menu.h"

namespace varno::cli {
namespace {

using toolkit::Control;

constexpr std::array<SettingOption, 7> kSettingOptions{{
    {"image-quality", "Image quality", {panels::kImageOptionsSignature, panels::kImageQualityPopupID},
     "VNOutputMode"},
    {"toner-saver", "Toner saver", {panels::kImageOptionsSignature, panels::kTonerSaverCheckBoxID},
     nullptr},
    {"negative-image", "Negative image",
     {panels::kImageOptionsSignature, panels::kNegativeCheckBoxID}, nullptr},
    {"mirror-image", "Mirror image", {panels::kImageOptionsSignature, panels::kMirrorCheckBoxID},
     nullptr},
    {"banner-sheet", "Banner sheet", {panels::kAdvancedSignature, panels::kBannerSheetPopupID},
     "JCLBanner"},
    {"request-offset", "Request offset",
     {panels::kAdvancedSignature, panels::kRequestOffsetPopupID}, "Jog"},
    {"feed-edge", "Bypass tray feed edge", {panels::kAdvancedSignature, panels::kFeedEdgePopupID},
     "VNFeedEdge"},
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

std::optional<SettingState> DialogSettings::state(const SettingOption& option,
                                                  std::string* error) const {
  Control* control = find(option, error);
  if (!control) return std::nullopt;
  SettingState state;
  if (!option.ppdKeyword) {
    state.choices.assign(kCheckBoxChoices.begin(), kCheckBoxChoices.end());
    state.current = control->value() != 0 ? 0 : 1;
    return state;
  }
  const toolkit::Menu* menu = control->menu();
  if (!menu) {
    if (error) *error = std::string("the control for --") + option.name + " has no menu";
    return std::nullopt;
  }
  const std::vector<PPDChoice>* ppdChoices = ppd_.choicesOf(option.ppdKeyword);
  for (toolkit::MenuItemIndex i = 1; i <= menu->count(); ++i) {
    const std::string& text = menu->item(i)->text;
    // The menu shows the PPD's texts; its keyword is what tickets and scripts use.
    std::string keyword = text;
    if (ppdChoices)
      for (const PPDChoice& choice : *ppdChoices)
        if (choice.text == text) keyword = choice.keyword;
    state.choices.push_back({std::move(keyword), text});
    if (control->value() == static_cast<std::int32_t>(i)) state.current = state.choices.size() - 1;
  }
  return state;
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
  if (!offered) return ApplyResult::Failed;
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
  Control* control = find(option, error);
  if (!showPanelOf(*control, error)) return ApplyResult::Failed;

  OSStatus status = noErr;
  if (option.ppdKeyword)
    status = toolkit::ChooseMenuItem(*control, static_cast<toolkit::MenuItemIndex>(*chosen + 1));
  else if (offered->current != chosen)
    status = toolkit::Click(*control);  // a check box toggles
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
    out << "    current: "
        << (state->current ? state->choices[*state->current].keyword : std::string("(none)"))
        << "\n    choices: " << ChoiceList(*state) << "\n";
  }
  return out.str();
}

}  // namespace varno::cli
