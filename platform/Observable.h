// Objects that tell before they change, and streams of a property's values.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace quillmont {

/// Ends its observation when it is destroyed. Holds the observed signal weakly.
class [[nodiscard]] Subscription {
 public:
  Subscription() = default;
  Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, {})) {}
  explicit Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
  Subscription& operator=(Subscription&& other) noexcept {
    std::swap(cancel_, other.cancel_);
    return *this;
  }
  ~Subscription() {
    if (cancel_) cancel_();
  }

 private:
  std::function<void()> cancel_;
};

/// Calls its observers in the order in which they subscribed. One thread only. An observer may
/// subscribe and cancel during a call: a cancelled one is not called any more, a new one first at
/// the next send().
template <class... Arguments>
class Signal {
 public:
  using Observer = std::function<void(Arguments...)>;

  Subscription subscribe(Observer observer) {
    const auto key = state_->nextKey++;
    state_->observers.emplace(key, std::make_shared<Observer>(std::move(observer)));
    return Subscription([state = std::weak_ptr(state_), key] {
      if (const auto alive = state.lock()) alive->observers.erase(key);
    });
  }

  void send(Arguments... arguments) const {
    const auto state = state_;
    const auto end = state->nextKey;
    for (auto next = state->observers.begin();
         next != state->observers.end() && next->first < end;) {
      const auto key = next->first;
      const auto observer = next->second;
      (*observer)(arguments...);
      next = state->observers.upper_bound(key);
    }
  }

 private:
  struct State {
    std::map<std::uint64_t, std::shared_ptr<Observer>> observers;
    std::uint64_t nextKey = 0;
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

/// An object with one signal that says "about to change", whichever property it is.
class ObservableObject {
 public:
  Signal<>& objectWillChange() { return objectWillChange_; }

 private:
  Signal<> objectWillChange_;
};

/// A property of an observable object. Written by one thread, on which its observers are told;
/// read with get() from any.
template <class T>
class Published {
 public:
  Published(ObservableObject& owner, T initial)
      : owner_(owner), value_(std::make_shared<const T>(std::move(initial))) {}

  T get() const {
    const std::lock_guard guard(lock_);
    return *value_;
  }

  /// The value itself. Only on the thread that writes it, and only until it is written again.
  const T& value() const { return *value_; }

  /// Runs `read` on the value under its lock, without a copy. Any thread; `read` stays short.
  template <class Read>
  auto with(Read read) const {
    const std::lock_guard guard(lock_);
    return read(*value_);
  }

  /// Tells that the object will change, stores, and sends the new value on the stream; an
  /// unchanged value goes the same way.
  void set(T value) {
    owner_.objectWillChange().send();
    // Held until all are told: an observer may set the next one.
    const auto assigned = std::make_shared<const T>(std::move(value));
    auto replaced = assigned;
    {
      const std::lock_guard guard(lock_);
      value_.swap(replaced);
    }
    values_.send(*assigned);
  }

  /// The value held now at once, then every one that is assigned.
  Subscription observe(std::function<void(const T&)> observer) {
    observer(get());
    return values_.subscribe(std::move(observer));
  }

 private:
  ObservableObject& owner_;
  mutable std::mutex lock_;
  std::shared_ptr<const T> value_;
  Signal<const T&> values_;
};

}  // namespace quillmont
