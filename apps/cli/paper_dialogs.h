// SPDX-License-Identifier: Apache-2.0
// Setting options whose value is given in a dialog that the paper menu opens: the custom
// paper size, transparency separators and covers. Each is applied as a person would: the
// menu item is chosen, and the dialog is filled in and confirmed by script.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dialog_settings.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/menu.h"

namespace varno::cli {

// What the option takes, as --list and messages show it.
std::string PaperDialogSyntax(const SettingOption& option);
// Opens the option's dialog from `menuButton` and fills it in with `value`. UnknownChoice
// for a value that does not parse or names nothing the printer has; Failed, with the
// dialog's own words, when the dialog refuses it.
ApplyResult ApplyPaperDialog(toolkit::Control& menuButton, const SettingOption& option,
                             const PPDDefaults& ppd, std::string_view value, std::string* error);
// The item of `menu` whose command is `command`, or 0.
toolkit::MenuItemIndex ItemWithCommand(const toolkit::Menu& menu, toolkit::MenuCommand command);

// Chooses the item with `command` of `button`'s menu (`subitem` of its submenu when not 0),
// which opens a dialog that the script queued before fills in. Failed, with the dialog's
// notice or the step that could not be taken, when the dialog refused.
ApplyResult ChooseAndRunDialog(toolkit::Control& button, toolkit::MenuCommand command,
                               toolkit::MenuItemIndex subitem, const SettingOption& option,
                               std::string* error);
// A script step that empties `field` as a person does, with backspaces, then types `text`.
void ScriptRetype(toolkit::AutomationScript& script, toolkit::ControlID field, std::string text);
// `text` split at every `separator`.
std::vector<std::string_view> Split(std::string_view text, char separator);
// The text the printer shows for `word`, a choice keyword or text of PPD option
// `keyword`; nullopt, with the choices in `error`, when it has no such choice.
std::optional<std::string> ChoiceText(const PPDDefaults& ppd, const char* keyword,
                                      std::string_view word, const std::string& what,
                                      std::string* error);

}  // namespace varno::cli
