// SPDX-License-Identifier: Apache-2.0
// The settings varno-print can change, and how it changes them: on the open (headless)
// Print dialog, by the control event a person would cause, after showing the panel that
// holds the control. Choices are named by PPD choice keyword or shown text, in any case.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/ppd_defaults.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/window.h"

namespace varno::cli {

using hosts::PPDChoice;
using hosts::PPDDefaults;

// How an option reaches its control.
enum class SettingKind {
  PPDPopup,      // a pop-up showing a PPD option's choices
  CheckBox,      // on|off
  NamedPopup,    // a pop-up whose items are named by `words` (item reference values)
  StockSubmenu,  // a submenu of the paper menu button, whose item `command` holds it
  Dialog,        // a menu item (`command`) whose dialog paper_dialogs.h or
                 // finishing_dialogs.h fills in
  FinishingMenu, // an item of the finishing menu or the staple or punch pop-up, whose
                 // command `words` name (the words' values are the commands)
};

// A word the command line takes for the item whose reference value is `value`.
struct NamedChoice {
  const char* word;
  std::int32_t value;
};

struct SettingOption {
  const char* name;        // the command-line option without its leading "--"
  const char* label;       // for --list and messages
  toolkit::ControlID control;
  const char* ppdKeyword;  // the PPD option whose choices the menu shows, if any
  SettingKind kind = SettingKind::PPDPopup;
  std::span<const NamedChoice> words = {};
  toolkit::MenuCommand command = 0;
  const char* unavailable = nullptr;  // why a printer may not offer it, for messages
};

// Every setting option, in the order --list shows them.
std::span<const SettingOption> SettingOptions();
// The option called `name` (without "--"), or null.
const SettingOption* FindSettingOption(std::string_view name);

struct SettingChoice {
  std::string keyword;  // PPD choice keyword, or "on"/"off" for a check box
  std::string text;     // as the dialog shows it
};

// What the dialog offers for a setting and which of it is chosen now.
struct SettingState {
  std::vector<SettingChoice> choices;
  std::optional<std::size_t> current;  // index into choices; none when nothing is chosen
};

enum class ApplyResult { Applied, UnknownChoice, Failed };

class DialogSettings {
 public:
  DialogSettings(toolkit::Window& window, const PPDDefaults& ppd) : window_(window), ppd_(ppd) {}

  // nullopt, with a message, when the dialog has no such control.
  std::optional<SettingState> state(const SettingOption& option, std::string* error) const;
  // Shows the control's panel and chooses `value` on it. UnknownChoice: `error` names the
  // valid choices; Failed: the dialog refused.
  ApplyResult apply(const SettingOption& option, std::string_view value, std::string* error);
  // Every setting with its current value and its choices, one per line.
  std::string list() const;
  // What choosing a job type fills its set-up with.
  void setJobSetup(const struct JobSetup* setup) { setup_ = setup; }

 private:
  toolkit::Control* find(const SettingOption& option, std::string* error) const;
  std::optional<SettingState> menuState(const SettingOption& option, const toolkit::Menu& menu,
                                        std::int32_t chosenItem) const;
  bool showPanelOf(toolkit::Control& control, std::string* error);
  // The control whose menu holds the finishing choices of `option`, or null.
  toolkit::Control* finishingControl(const SettingOption& option) const;

  toolkit::Window& window_;
  const PPDDefaults& ppd_;
  const struct JobSetup* setup_ = nullptr;
};

}  // namespace varno::cli
