#include "platform/macos/desktop/AppKitApplication.h"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "platform/macos/MainRunLoop.h"
#include "platform/macos/desktop/MacDesktop.h"

namespace quillmont {
namespace {

/// An application that ends its process, and at the very end writes what was told to it.
struct Life : ApplicationDelegate {
  static std::string& told() {
    static auto& text = *new std::string;
    return text;
  }

  explicit Life(std::function<void(Life&)> atLaunch) : atLaunch_(std::move(atLaunch)) {
    std::atexit([] { std::fprintf(stderr, "<%s>", told().c_str()); });
    application.setDelegate(this);
  }

  void applicationDidFinishLaunching() override {
    told() += "launched ";
    atLaunch_(*this);
  }
  void applicationWillTerminate() override {
    told() += application.isTerminating() ? "ending " : "surprised ";
    application.terminate();
    atEnd();
  }

  MainRunLoop loop;
  AppKitApplication application{loop};
  MacDesktop desktop{application};
  std::function<void()> atEnd = [] {};

 private:
  std::function<void(Life&)> atLaunch_;
};

const Alert kQuestion = {"Really?", "", AlertStyle::warning, {"Go", "Stay"}};

/// AppKit is no friend of fork(): each life has a process that is started anew.
class AppKitApplicationDeathTest : public ::testing::Test {
 protected:
  AppKitApplicationDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  static void live(std::function<void(Life&)> atLaunch) {
    Life life(std::move(atLaunch));
    life.application.run();
    std::fputs("run() has returned", stderr);
    std::_Exit(3);
  }
};

constexpr char kWholeLife[] = "<launched ending >";

TEST_F(AppKitApplicationDeathTest, TellsItsDelegateOnceOfLaunchAndEnd) {
  EXPECT_EXIT(live([](Life& life) {
                life.application.terminate();
                life.application.terminate();
              }),
              ::testing::ExitedWithCode(0), kWholeLife);
}

TEST_F(AppKitApplicationDeathTest, EndsLaterThanItsLaunchToo) {
  EXPECT_EXIT(live([](Life& life) { life.loop.async([&] { life.application.terminate(); }); }),
              ::testing::ExitedWithCode(0), kWholeLife);
}

TEST_F(AppKitApplicationDeathTest, TellsItsDelegateWhenAppKitIsAskedByOthers) {
  EXPECT_EXIT(live([](Life&) { [NSApp terminate:nil]; }), ::testing::ExitedWithCode(0), kWholeLife);
}

TEST_F(AppKitApplicationDeathTest, TakesSignalsForRequestsToTerminate) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    EXPECT_EXIT(live([number](Life&) { kill(getpid(), number); }), ::testing::ExitedWithCode(0),
                kWholeLife);
  }
}

TEST_F(AppKitApplicationDeathTest, LeavesASignalIgnoredThatWasWhenItStarted) {
  EXPECT_EXIT(signal(SIGHUP, SIG_IGN); live([](Life& life) {
                                         kill(getpid(), SIGHUP);
                                         Life::told() += "spared ";
                                         life.application.terminate();
                                       }),
                                       ::testing::ExitedWithCode(0), "<launched spared ending >");
}

TEST_F(AppKitApplicationDeathTest, EndsFromWithinAnAlert) {
  EXPECT_EXIT(live([](Life& life) {
                life.loop.async([&] { life.application.terminate(); });
                life.desktop.runModal(kQuestion);
              }),
              ::testing::ExitedWithCode(0), kWholeLife);
}

TEST_F(AppKitApplicationDeathTest, ASignalEndsAnAlertToo) {
  EXPECT_EXIT(live([](Life& life) {
                life.loop.async([] { kill(getpid(), SIGTERM); });
                life.desktop.runModal(kQuestion);
              }),
              ::testing::ExitedWithCode(0), kWholeLife);
}

TEST_F(AppKitApplicationDeathTest, AsksNothingAnyMoreWhileItEnds) {
  EXPECT_EXIT(live([](Life& life) {
                life.atEnd = [&] {
                  Life::told() += std::to_string(life.desktop.runModal(kQuestion));
                };
                life.application.terminate();
              }),
              ::testing::ExitedWithCode(0), "<launched ending -1001>");
}

TEST_F(AppKitApplicationDeathTest, IsAProgramOfTheMenuBarWithoutABundleToo) {
  EXPECT_EXIT(live([](Life& life) {
                if ([NSApp activationPolicy] == NSApplicationActivationPolicyAccessory) {
                  Life::told() += "accessory ";
                }
                life.application.terminate();
              }),
              ::testing::ExitedWithCode(0), "<launched accessory ending >");
}

}  // namespace
}  // namespace quillmont
