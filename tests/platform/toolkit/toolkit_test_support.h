// SPDX-License-Identifier: Apache-2.0
// What the toolkit tests share: a shown window with controls added by kind and ID, and a
// clean slate of process-wide scripting and recordings for each test.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/window.h"

namespace varno::testing {

using namespace varno::toolkit;

inline constexpr OSType kTestSignature = MakeOSType("Test");

class ToolkitTest : public ::testing::Test {
 protected:
  ToolkitTest() : window(Window::create({0, 0, 400, 600}, "Test")) {
    window->setVisible(true);
    Clear();
  }
  ~ToolkitTest() override { Clear(); }
  static void Clear() {
    Application::shared().script().clear();
    HeadlessAlerts().clear();
  }

  // A new control of `kind` with ID ('Test', id) inside `parent` (the window by default).
  Control& add(ControlKind kind, std::int32_t id, Control* parent = nullptr,
               std::string text = {}) {
    Control* control = (parent ? parent : window.get())
                           ->embed(Control::create(kind, {0, 0, 20, 100}, std::move(text)));
    control->setID({kTestSignature, id});
    return *control;
  }

  std::unique_ptr<Window> window;
};

}  // namespace varno::testing
