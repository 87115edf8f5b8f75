// SPDX-License-Identifier: Apache-2.0
// The second process of the input history's concurrency tests: confirms COUNT entries
// "TAG-0" ... "TAG-<COUNT-1>" one after the other in a history combo box under KEY, each in
// a box of its own, as a person confirming one dialog after another would, with a short
// pause between them so that the two writers' saves interleave rather than queue. The
// history file comes from XDG_CONFIG_HOME, as for every program of the product.
//
//   history_combo_worker KEY TAG COUNT   exits 0, or 1 when a confirmation was not saved
#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

#include "platform/toolkit/control.h"
#include "platform/toolkit/window.h"
#include "ui/history_combo_box.h"

int main(int argc, char** argv) {
  using namespace varno;
  if (argc != 4) return 2;
  ui::VComboBoxOptions options;
  options.kind = ui::kVComboBoxText;
  options.historyKey = argv[1];
  options.historyLimit = 10;
  options.minLength = 1;
  options.maxLength = 24;
  for (int i = 0, count = std::atoi(argv[3]); i < count; ++i) {
    std::unique_ptr<toolkit::Window> window = toolkit::Window::create();
    toolkit::Control* combo =
        window->embed(toolkit::Control::create(toolkit::ControlKind::ComboBox));
    if (!combo || ui::VComboBoxInitializeWithMapAndHistory(combo, &options) != noErr) return 1;
    combo->setText(std::string(argv[2]) + "-" + std::to_string(i));
    if (ui::VComboBoxFinalize(combo, true) != noErr) return 1;
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
  return 0;
}
