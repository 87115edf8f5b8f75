// SPDX-License-Identifier: Apache-2.0
// Setting options whose value is given in a dialog of the finishing menu: booklet
// creation, offset/subset and custom finishing. Each is applied as a person would: the
// menu item is chosen, and the dialog is filled in and confirmed by script.
#pragma once

#include <string>
#include <string_view>

#include "dialog_settings.h"

namespace varno::cli {

// True for the options this file applies.
bool IsFinishingDialog(const SettingOption& option);
// What the option takes, as --list and messages show it.
std::string FinishingDialogSyntax(const SettingOption& option);
// Opens the option's dialog from the finishing menu `button` and fills it in with `value`.
ApplyResult ApplyFinishingDialog(toolkit::Control& button, const SettingOption& option,
                                 const PPDDefaults& ppd, std::string_view value, std::string* error);

}  // namespace varno::cli
