// SPDX-License-Identifier: Apache-2.0
// The real plug-in bundle loaded by the framework driver into a headless Print dialog: a
// shown window with the parent pane the framework hands the plug-in, and a session.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "host/dialog_host.h"
#include "platform/print/framework_driver.h"
#include "platform/print/session.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/window.h"

namespace varno::testing {

inline const std::filesystem::path kBuiltPlugIn = VARNO_BUILT_PLUGIN;
inline const std::string kVarnoTestPPD = VARNO_TEST_DATA_DIR "/ppd/Varno-BookletFaxPunch.ppd";

class PlugInDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    window_ = toolkit::Window::create({0, 0, 700, 600}, "Print");
    window_->setVisible(true);  // the Print dialog is on screen
    parentPane_ = window_->embed(
        toolkit::Control::create(toolkit::ControlKind::UserPane, {0, 0, 500, 600}));
    ASSERT_NE(parentPane_, nullptr);
    session_ = std::make_unique<print::Session>();
    toolkit::Application::shared().script().clear();
    ASSERT_EQ(driver_.loadFromPath(kBuiltPlugIn), noErr) << driver_.error();
  }
  void TearDown() override { toolkit::Application::shared().script().clear(); }

  // Runs Prologue, Initialize and Open on the printer `ppd`.
  void OpenDialog(const std::string& ppd = kVarnoTestPPD) {
    session_->setPrinterPPD(ppd);
    ASSERT_EQ(driver_.prologue(), noErr) << driver_.error();
    ASSERT_EQ(driver_.initialize(session_.get(), parentPane_), noErr) << driver_.error();
    ASSERT_EQ(driver_.open(), noErr) << driver_.error();
  }

  // A panel's own entry points, from the getter the loaded bundle exports under `getter`,
  // as a panel table that is not our host's reaches them; null (after a failure) if none.
  std::unique_ptr<host::PanelInterface> PanelTable(const char* getter) {
    auto get = driver_.bundle()->function<host::PanelInterfaceGetter>(getter);
    host::PanelInterfaceHolder* holder = nullptr;
    EXPECT_TRUE(get && get(&holder) == noErr && holder) << getter;
    if (!holder) return nullptr;
    std::unique_ptr<host::PanelInterface> table(holder->interface);
    delete holder;
    return table;
  }

  // Declared before the driver, which terminates the plug-in while they still exist.
  std::unique_ptr<toolkit::Window> window_;
  toolkit::Control* parentPane_ = nullptr;
  std::unique_ptr<print::Session> session_;
  print::FrameworkDriver driver_;
};

}  // namespace varno::testing
