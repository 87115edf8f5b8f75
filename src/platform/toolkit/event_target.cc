// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/event_target.h"

#include <algorithm>
#include <utility>

namespace varno::toolkit {

class HandlerRecord {
 public:
  HandlerRecord(std::vector<EventTypeSpec> types, EventHandlerFunction function, EventTarget* owner)
      : types(std::move(types)), function(std::move(function)), owner(owner) {}

  bool takes(const Event& event) const {
    return std::any_of(types.begin(), types.end(), [&](EventTypeSpec t) { return event.is(t); });
  }

  std::vector<EventTypeSpec> types;
  EventHandlerFunction function;
  EventTarget* owner;  // null once removed
};

class HandlerCall {
 public:
  HandlerCall(Dispatch* dispatch, std::size_t index) : dispatch(dispatch), index(index) {}

  Dispatch* dispatch;
  std::size_t index;  // of the handler being called
  bool passedOn = false;
  OSStatus passedStatus = eventNotHandledErr;
};

// One event on its way. The chain is fixed when the event is sent: a handler installed
// meanwhile hears the next event, one removed meanwhile is skipped.
class Dispatch {
 public:
  Dispatch(EventTarget& first, Event& event, std::uint32_t options)
      : event_(event), first_(&first), firstAlive_(first.alive_) {
    bool propagate = (options & kEventTargetDontPropagate) == 0;
    for (EventTarget* t = &first; t; t = propagate ? t->nextTarget() : nullptr) {
      for (auto it = t->handlers_.rbegin(); it != t->handlers_.rend(); ++it) {
        if ((*it)->takes(event)) chain_.push_back(*it);
      }
    }
  }

  // Calls the handlers from `index` on, then the standard behaviour.
  OSStatus runFrom(std::size_t index) {
    for (; index < chain_.size(); ++index) {
      HandlerRecord& record = *chain_[index];
      if (!record.owner) continue;
      HandlerCall call(this, index);
      OSStatus status = record.function(&call, event_);
      if (call.passedOn || status != eventNotHandledErr) return status;
    }
    if (firstAlive_.expired()) return eventNotHandledErr;
    return first_->standardBehaviour(event_);
  }

 private:
  Event& event_;
  EventTarget* first_;
  std::weak_ptr<char> firstAlive_;
  std::vector<std::shared_ptr<HandlerRecord>> chain_;
};

EventTarget::~EventTarget() {
  for (const auto& record : handlers_) record->owner = nullptr;
}

EventHandlerRef EventTarget::installHandler(std::vector<EventTypeSpec> types,
                                            EventHandlerFunction handler) {
  if (!handler) return nullptr;
  handlers_.push_back(std::make_shared<HandlerRecord>(std::move(types), std::move(handler), this));
  return handlers_.back().get();
}

EventHandlerRef EventTarget::installHandler(std::span<const EventTypeSpec> types,
                                            EventHandlerProcPtr proc, void* userData) {
  if (!proc) return nullptr;
  return installHandler(std::vector<EventTypeSpec>(types.begin(), types.end()),
                        [proc, userData](EventHandlerCallRef call, Event& event) {
                          return proc(call, &event, userData);
                        });
}

OSStatus EventTarget::removeHandler(EventHandlerRef handler) {
  auto it = std::find_if(handlers_.begin(), handlers_.end(),
                         [handler](const auto& record) { return record.get() == handler; });
  if (it == handlers_.end()) return paramErr;
  (*it)->owner = nullptr;
  handlers_.erase(it);
  return noErr;
}

OSStatus EventTarget::send(Event& event, std::uint32_t options) {
  Dispatch dispatch(*this, event, options);
  return dispatch.runFrom(0);
}

OSStatus CallNextEventHandler(EventHandlerCallRef call, EventRef) {
  if (!call) return paramErr;
  if (!call->passedOn) {
    call->passedOn = true;
    call->passedStatus = call->dispatch->runFrom(call->index + 1);
  }
  return call->passedStatus;
}

OSStatus RemoveEventHandler(EventHandlerRef handler) {
  if (!handler || !handler->owner) return paramErr;
  return handler->owner->removeHandler(handler);
}

}  // namespace varno::toolkit
