// What the user did to native views, as text.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/view/ViewActions.h"

namespace quillmont::testing {

/// Writes down what it is told.
class RecordedActions : public ViewActions {
 public:
  void press(ViewId button) override { add("press " + std::to_string(button)); }
  void toggle(ViewId control, bool isOn) override {
    add("toggle " + std::to_string(control) + (isOn ? " on" : " off"));
  }
  void select(ViewId segments, std::size_t index) override {
    add("select " + std::to_string(segments) + " " + std::to_string(index));
  }
  void hover(ViewId view, bool isInside) override {
    add((isInside ? "enter " : "leave ") + std::to_string(view));
  }
  void dismiss(ViewId popover) override { add("dismiss " + std::to_string(popover)); }

  std::vector<std::string> take() { return std::exchange(story_, {}); }

  std::function<void()> onAction = [] {};

 private:
  void add(std::string line) {
    story_.push_back(std::move(line));
    onAction();
  }

  std::vector<std::string> story_;
};

}  // namespace quillmont::testing
