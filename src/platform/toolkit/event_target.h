// SPDX-License-Identifier: Apache-2.0
// Event targets and handler chains.
//
// Controls (windows included) and the application are targets. A handler is installed on
// a target for a list of event types. Sending an event to a target calls the handlers
// that take its type, newest first, then those of the next target (a control's parent,
// up to the window, then the application), then the standard behaviour of the target the
// event was sent to. A handler returns a status; eventNotHandledErr (-9874) passes the
// event on, anything else ends it and becomes the result.
//
// A handler may pass the event on itself with CallNextEventHandler, which runs the rest
// of the chain (standard behaviour included) and returns its status. Whatever the
// handler returns afterwards is the result; the rest of the chain never runs twice.
//
// Handlers live as long as their target; removing one after its target has gone is an
// error. A handler removed, or whose target goes, while an event is on its way is not
// called any more.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "platform/toolkit/event.h"

namespace varno::toolkit {

class HandlerCall;    // where a handler stands in the chain of one event
class HandlerRecord;  // one installed handler
class Dispatch;       // one event on its way through the chain
using EventHandlerCallRef = HandlerCall*;
using EventHandlerRef = HandlerRecord*;
using EventRef = Event*;
// A handler as a procedure with the caller's data, as the panels write them.
using EventHandlerProcPtr = OSStatus (*)(EventHandlerCallRef call, EventRef event,
                                         void* userData);
using EventHandlerUPP = EventHandlerProcPtr;
using EventHandlerFunction = std::function<OSStatus(EventHandlerCallRef call, Event& event)>;

// Option of send(): only the target's own handlers and standard behaviour run.
inline constexpr std::uint32_t kEventTargetDontPropagate = 1;

class EventTarget {
 public:
  EventTarget(const EventTarget&) = delete;
  EventTarget& operator=(const EventTarget&) = delete;
  virtual ~EventTarget();

  // Installs a handler for `types` and returns its reference.
  EventHandlerRef installHandler(std::vector<EventTypeSpec> types, EventHandlerFunction handler);
  EventHandlerRef installHandler(std::span<const EventTypeSpec> types, EventHandlerProcPtr proc,
                                 void* userData);
  // Removes a handler installed here; paramErr when it is not.
  OSStatus removeHandler(EventHandlerRef handler);

  // Sends `event` through the chain described above and returns its result.
  OSStatus send(Event& event, std::uint32_t options = 0);

  // A token that expires when the target goes: code that sends several events in a row
  // checks it, as a handler may dispose of the target.
  std::weak_ptr<const char> watch() const { return alive_; }

  // The target that hears what this one passes on; null at the end of the chain.
  virtual EventTarget* nextTarget() const = 0;

 protected:
  EventTarget() = default;
  // What happens when every handler passed; eventNotHandledErr when nothing does.
  virtual OSStatus standardBehaviour(Event&) { return eventNotHandledErr; }

 private:
  friend class Dispatch;
  std::vector<std::shared_ptr<HandlerRecord>> handlers_;  // oldest first
  // Watched by events on their way, which must not reach a target that has gone.
  std::shared_ptr<char> alive_ = std::make_shared<char>();
};

// Runs the rest of the chain after the calling handler and returns its status. A second
// call from the same handler returns the first call's status without running it again.
OSStatus CallNextEventHandler(EventHandlerCallRef call, EventRef event);

// Removes an installed handler; paramErr for null.
OSStatus RemoveEventHandler(EventHandlerRef handler);

}  // namespace varno::toolkit
