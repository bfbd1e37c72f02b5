// Which views the pointer is in, and which of them have been told so.
#pragma once

#include <functional>
#include <memory>
#include <unordered_map>

#include "platform/view/ViewActions.h"

namespace quillmont {

/// A view that is left is told before one that is come to. Main thread.
class HoverStates {
 public:
  /// `later` runs what it is given at the next turn of the run loop. `actions` must outlive the
  /// states.
  HoverStates(ViewActions& actions, std::function<void(std::function<void()>)> later);
  HoverStates(const HoverStates&) = delete;
  HoverStates& operator=(const HoverStates&) = delete;

  /// The pointer is not in a new one; one that is known stays as it is.
  void track(ViewId view) { states_.try_emplace(view); }
  /// Nothing more is told of the view, not even that it has been left.
  void forget(ViewId view) { states_.erase(view); }

  /// Nothing is told by this alone.
  void set(ViewId view, bool isInside);

  /// Between these two, nothing is told; what has happened by then is told soon after.
  void hold() { held_ = true; }
  void release();

  /// Tells what has changed; what is told may be the end of the states.
  void tell();
  void tellSoon();

 private:
  struct State {
    bool isInside = false;
    bool toldInside = false;
  };

  void tellThose(bool areInside);

  ViewActions& actions_;
  const std::function<void(std::function<void()>)> later_;
  std::unordered_map<ViewId, State> states_;
  bool held_ = false;
  bool scheduled_ = false;
  const std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace quillmont
