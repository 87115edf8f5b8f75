// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/application.h"

#include "platform/toolkit/automation_script.h"

namespace varno::toolkit {

Application& Application::shared() {
  static Application application;
  return application;
}

Application::Application() : script_(std::make_unique<AutomationScript>()) {}

Application::~Application() = default;

EventSource& Application::eventSource() const {
  return source_ ? *source_ : static_cast<EventSource&>(*script_);
}

}  // namespace varno::toolkit
