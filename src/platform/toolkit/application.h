// SPDX-License-Identifier: Apache-2.0
// The application: the last event target of every chain, and the owner of the source of
// user actions that modal loops run on.
//
// Process-wide state: one Application per process (Application::shared()), created on
// first use and used from the main thread only, as everything in the toolkit is.
#pragma once

#include <memory>

#include "platform/toolkit/event_source.h"
#include "platform/toolkit/event_target.h"

namespace varno::toolkit {

class AutomationScript;

class Application final : public EventTarget {
 public:
  // The application of this process.
  static Application& shared();
  ~Application() override;

  // Nothing follows the application.
  EventTarget* nextTarget() const override { return nullptr; }

  // The source that modal loops take user actions from: the headless script unless a
  // host has set another.
  EventSource& eventSource() const;
  // Makes `source` the event source (null: the headless script again). The caller keeps
  // it alive while it is set.
  void setEventSource(EventSource* source) { source_ = source; }
  // The headless script, where tests and varno-print queue user actions.
  AutomationScript& script() { return *script_; }

 private:
  Application();

  std::unique_ptr<AutomationScript> script_;
  EventSource* source_ = nullptr;
};

// The application as an event target.
inline EventTarget* GetApplicationEventTarget() { return &Application::shared(); }

}  // namespace varno::toolkit
