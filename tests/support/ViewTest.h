// A panel on native views in memory, whose run loop turns when the test lets it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "platform/view/HostingController.h"
#include "tests/support/FakeMetrics.h"
#include "tests/support/FakeMount.h"
#include "tests/support/ManualTime.h"

namespace quillmont::testing {

class ViewTest : public ::testing::Test {
 protected:
  /// The view that `make` answers to every redraw.
  struct Asking {
    std::function<View()> make;
    std::function<void(StateScope&)> remember;
    void connect(StateScope& scope) {
      if (remember) remember(scope);
    }
    View body() const { return make(); }
  };

  void show(View view) {
    mount = FakeMount();
    panel = std::make_unique<HostingController>(std::move(view), loop);
    panel->mount(mount, metrics);
    panel->setVisible(true);
  }

  /// Shows what `make` answers; it is asked again after each redraw().
  void showAsking(std::function<View()> make) {
    show(Asking{std::move(make), [this](StateScope& scope) { scope.observe(model); }});
  }

  void change() { model.objectWillChange().send(); }
  void redraw() {
    change();
    loop.runTasks();
  }

  /// What the user does to the only view whose line contains `text`.
  void press(const std::string& text) { panel->press(mount.find(text)); }
  void hover(const std::string& text, bool isInside) { panel->hover(mount.find(text), isInside); }

  ObservableObject model;
  ManualClock clock;
  ManualRunLoop loop{clock};
  FakeMetrics metrics;
  FakeMount mount;
  std::unique_ptr<HostingController> panel;
};

/// A button named `name` that counts how often it was pressed.
struct Counter {
  std::string name;
  State<int> count{0};
  void connect(StateScope& scope) { scope.remember(count); }
  View body() const {
    return Button([count = count] { count.set(count.get() + 1); },
                  VerbatimText(name + "=" + std::to_string(count.get())));
  }
};

}  // namespace quillmont::testing
