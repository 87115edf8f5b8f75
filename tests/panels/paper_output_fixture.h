// SPDX-License-Identifier: Apache-2.0
// The Paper/Output panel inside the real plug-in bundle, loaded by the framework driver into
// a headless dialog and used through the automation API, as a person uses it.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "panels/paper_output/paper_output_panel.h"
#include "platform/print/framework_keys.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/automation.h"
#include "support/plugin_dialog.h"

namespace varno::panels {

using toolkit::Control;
using testing::kVarnoTestPPD;

inline const std::string kSamplePPD = VARNO_SAMPLE_PPD;
inline std::string TestPPD(const char* name) { return VARNO_TEST_DATA_DIR "/ppd/" + std::string(name); }

inline constexpr const char* kJobTypeKey = "com.varno.print.JobType";

class PaperOutputPanel : public testing::PlugInDialogTest {
 protected:
  // Opens the dialog on a print-settings ticket holding `items` and PPD `choices`.
  void OpenWith(const plist::Dictionary& items, const plist::Dictionary& choices = {},
                std::int32_t orientation = 1, const std::string& ppd = kVarnoTestPPD) {
    print::Ticket settings;
    for (const auto& [key, value] : items) settings.setValue(key, value, "test");
    for (const auto& [keyword, choice] : choices)
      settings.ppdDictionary().set(keyword, choice);
    session_->setDataItem(print::kPrintSettingsTicket, settings);
    print::Ticket format;
    format.setValue(print::kOrientationKey, plist::Value(orientation), "test");
    session_->setDataItem(print::kPageFormatTicket, format);
    toolkit::HeadlessAlerts().clear();
    OpenDialog(ppd);
  }

  Control* Panel(std::int32_t id) { return window_->findByID({kPaperOutputSignature, id}); }
  void Choose(std::int32_t popupID, const std::string& text) {
    ASSERT_NE(Panel(popupID), nullptr);
    ASSERT_EQ(toolkit::ChooseMenuItemByText(*Panel(popupID), text), noErr) << text;
  }
  // Chooses `text` from the paper menu's submenu whose item has `command`.
  void ChooseStock(toolkit::MenuCommand command, const std::string& text) {
    Control* button = Panel(kStockMenuButtonID);
    ASSERT_TRUE(button && button->menu());
    const toolkit::Menu& menu = *button->menu();
    for (toolkit::MenuItemIndex i = 1; i <= menu.count(); ++i) {
      if (menu.item(i)->command != command) continue;
      const toolkit::MenuItemIndex sub = menu.item(i)->submenu->findText(text);
      ASSERT_NE(sub, 0) << text;
      ASSERT_EQ(toolkit::ChooseSubmenuItem(*button, i, sub), noErr);
      return;
    }
    FAIL() << "no submenu for the command";
  }
  print::Ticket Written() {
    EXPECT_EQ(driver_.sync(false), noErr) << driver_.error();
    return session_->printSettings();
  }
  plist::Dictionary JobTypeOf(const print::Ticket& ticket) {
    return ticket.dictionary(kJobTypeKey).value_or(plist::Dictionary{});
  }
  std::string Choice(const print::Ticket& ticket, const char* keyword) {
    return ticket.ppdDictionary().getString(keyword).value_or("-");
  }
};

}  // namespace varno::panels
