// The panel of a program on a system in memory.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/view/HostingController.h"
#include "tests/support/FakeMetrics.h"
#include "tests/support/FakeMount.h"
#include "tests/support/TestHost.h"
#include "ui/MainView.h"

namespace quillmont::testing {

class MainViewTest : public ::testing::Test {
 protected:
  void show() {
    panel.mount(mount, metrics);
    panel.setVisible(true);
  }

  /// The line of the only view whose line contains `text`.
  std::string line(const std::string& text) { return mount.line(mount.find(text)); }

  void press(const std::string& text) {
    panel.press(mount.find(text));
    system.settle();
  }

  TestHost system;
  FakeDiskImages images{system};
  ConfigManager config{system.host()};
  std::shared_ptr<QuillmontDaemon> daemon = QuillmontDaemon::make(system.host(), config);
  FakeMetrics metrics;
  FakeMount mount;
  HostingController panel{MainView(system.host(), *daemon, config), system.runLoop};
};

}  // namespace quillmont::testing
