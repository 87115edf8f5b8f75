// SPDX-License-Identifier: Apache-2.0
// The whole headless Print dialog fed a hostile ticket: the built plug-in bundle is loaded
// through the framework driver, the fuzzed property list becomes the print-settings ticket
// of a session on the sample PPD, and the dialog runs through every stage the framework
// calls. Any status is fine; a crash, a hang or a leak is not.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "platform/plist/file.h"
#include "platform/print/framework_driver.h"
#include "platform/print/session.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/window.h"
#include "support.h"

using namespace varno;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // Stores and preferences the plug-in touches stay in the scratch folder.
  ::setenv("VARNO_SUPPORT_DIR", fuzz::ScratchDir().c_str(), 1);
  ::setenv("XDG_CONFIG_HOME", fuzz::ScratchDir().c_str(), 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::optional<plist::Value> value = plist::Parse(fuzz::AsText(data, size));
  if (!value || !value->isDictionary()) return 0;
  std::optional<print::Ticket> ticket = print::Ticket::fromPropertyList(*value->asDictionary());
  if (!ticket) return 0;

  // Declared before the driver, which terminates the plug-in while they still exist.
  std::unique_ptr<toolkit::Window> window = toolkit::Window::create({0, 0, 700, 600}, "Print");
  window->setVisible(true);
  toolkit::Control* pane =
      window->embed(toolkit::Control::create(toolkit::ControlKind::UserPane, {0, 0, 500, 600}));
  print::Session session;
  session.setPrinterPPD(VARNO_SAMPLE_PPD);
  session.setDataItem(print::kPrintSettingsTicket, *ticket);
  toolkit::Application::shared().script().clear();

  print::FrameworkDriver driver;
  fuzz::Check(driver.loadFromPath(VARNO_BUILT_PLUGIN) == noErr,
              "cannot load the built plug-in bundle; build the VarnoFeatures target");
  if (driver.prologue() != noErr) return 0;
  if (driver.initialize(&session, pane) == noErr) {
    driver.sync(false);
    if (driver.open() == noErr) {
      driver.sync(true);
      driver.close();
    }
  }
  driver.terminate(noErr);
  return 0;
}
