// SPDX-License-Identifier: Apache-2.0
// Change notification: how a renderer hears of every visible change of a control or menu.
//
// A signal keeps a list of callbacks; subscribing returns a Subscription that removes
// its callback when it goes. Either side may go first: a subscription that outlives its
// signal does nothing when it ends.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace varno::toolkit {

// One subscriber's place in a signal; ends the subscription when destroyed or reset.
class Subscription {
 public:
  Subscription() = default;
  explicit Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;
  Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, {})) {}
  Subscription& operator=(Subscription&& other) noexcept {
    if (this != &other) {
      reset();
      cancel_ = std::exchange(other.cancel_, {});
    }
    return *this;
  }
  ~Subscription() { reset(); }

  // Ends the subscription now.
  void reset() {
    if (auto cancel = std::exchange(cancel_, {})) cancel();
  }
  bool active() const { return static_cast<bool>(cancel_); }

 private:
  std::function<void()> cancel_;
};

template <typename Notice>
class ChangeSignal {
 public:
  using Callback = std::function<void(const Notice&)>;

  ChangeSignal() = default;
  ChangeSignal(const ChangeSignal&) = delete;
  ChangeSignal& operator=(const ChangeSignal&) = delete;
  // Moving drops the old subscribers: their subscriptions then end quietly.
  ChangeSignal(ChangeSignal&&) noexcept = default;
  ChangeSignal& operator=(ChangeSignal&&) noexcept = default;

  [[nodiscard]] Subscription subscribe(Callback callback) {
    if (!slots_) slots_ = std::make_shared<Slots>();
    std::uint64_t id = ++slots_->lastID;
    slots_->list.emplace_back(id, std::move(callback));
    std::weak_ptr<Slots> slots = slots_;
    return Subscription([slots, id] {
      if (auto alive = slots.lock()) {
        std::erase_if(alive->list, [id](const auto& slot) { return slot.first == id; });
      }
    });
  }

  // Calls every subscriber. One that unsubscribes meanwhile is not called any more; one
  // that subscribes meanwhile hears from the next notice on.
  void emit(const Notice& notice) const {
    if (!slots_ || slots_->list.empty()) return;
    std::shared_ptr<Slots> keep = slots_;  // a callback may replace this signal
    std::vector<std::uint64_t> ids;
    for (const auto& slot : keep->list) ids.push_back(slot.first);
    for (std::uint64_t id : ids) {
      auto it = std::find_if(keep->list.begin(), keep->list.end(),
                             [id](const auto& s) { return s.first == id; });
      if (it == keep->list.end()) continue;
      Callback callback = it->second;  // the list may change while it runs
      callback(notice);
    }
  }

 private:
  struct Slots {
    std::uint64_t lastID = 0;
    std::vector<std::pair<std::uint64_t, Callback>> list;
  };
  std::shared_ptr<Slots> slots_ = std::make_shared<Slots>();
};

}  // namespace varno::toolkit
