// SPDX-License-Identifier: Apache-2.0
// Setting options whose value is given in a dialog that the paper menu opens: the custom
// paper size, transparency separators and covers. Each is applied as a person would: the
// menu item is chosen, and the dialog is filled in and confirmed by script.
#pragma once

#include <string>
#include <string_view>

#include "dialog_settings.h"
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

}  // namespace varno::cli
