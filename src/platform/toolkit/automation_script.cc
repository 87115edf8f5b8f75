// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/automation_script.h"

#include <cstdio>

#include "platform/toolkit/automation.h"
#include "platform/toolkit/window.h"

namespace varno::toolkit {
namespace {

std::string Describe(const char* action, ControlID id) {
  return std::string(action) + " '" + OSTypeString(id.signature) + "' " + std::to_string(id.id);
}

}  // namespace

void AutomationScript::add(std::string description, Step step) {
  steps_.emplace_back(std::move(description), std::move(step));
}

void AutomationScript::addForControl(std::string description, ControlID id,
                                     std::function<OSStatus(Control&)> act) {
  add(std::move(description), [id, act = std::move(act)](Window& window) {
    Control* control = window.findByID(id);
    return control ? act(*control) : errUnknownControl;
  });
}

void AutomationScript::click(ControlID id, ControlPartCode part) {
  addForControl(Describe("click", id), id, [part](Control& c) { return Click(c, part); });
}

void AutomationScript::chooseMenuItem(ControlID id, MenuItemIndex item) {
  addForControl(Describe("choose item", id) + " #" + std::to_string(item), id,
                [item](Control& c) { return ChooseMenuItem(c, item); });
}

void AutomationScript::chooseMenuItemByText(ControlID id, std::string text) {
  addForControl(Describe("choose item", id) + " \"" + text + "\"", id,
                [text](Control& c) { return ChooseMenuItemByText(c, text); });
}

void AutomationScript::chooseMenuItemByRefCon(ControlID id, URefCon refCon) {
  addForControl(Describe("choose item", id) + " with reference " + std::to_string(refCon), id,
                [refCon](Control& c) { return ChooseMenuItemByRefCon(c, refCon); });
}

void AutomationScript::setFocus(ControlID id) {
  addForControl(Describe("focus", id), id, [](Control& c) { return SetFocus(c); });
}

void AutomationScript::typeText(ControlID id, std::string text) {
  // The text itself stays out of the description: it may be a passcode.
  addForControl(Describe("type into", id), id, [text](Control& c) { return TypeText(c, text); });
}

void AutomationScript::setDateTime(ControlID id, LongDateTime value) {
  addForControl(Describe("set the clock", id) + " to " + std::to_string(value), id,
                [value](Control& c) { return SetDateTime(c, value); });
}

void AutomationScript::sendCommand(MenuCommand command) {
  add("command '" + OSTypeString(command) + "'",
      [command](Window& window) { return SendCommand(window, command); });
}

void AutomationScript::clear() {
  steps_.clear();
  failures_.clear();
}

bool AutomationScript::dispatchNext(Window& window) {
  if (steps_.empty()) return false;
  auto [description, step] = std::move(steps_.front());
  steps_.pop_front();
  if (OSStatus status = step(window)) {
    std::string failure = description + ": " + std::to_string(status);
    std::fprintf(stderr, "automation: %s\n", failure.c_str());
    failures_.push_back(std::move(failure));
  }
  return true;
}

}  // namespace varno::toolkit
