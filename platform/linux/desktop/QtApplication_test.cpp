#include "platform/linux/desktop/QtApplication.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <QWidget>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include "platform/linux/desktop/ArrowWindow.h"
#include "platform/linux/desktop/LinuxDesktop.h"
#include "platform/linux/desktop/alert_dialog.h"
#include "platform/view/HostingController.h"
#include "platform/view/View.h"
#include "tests/support/Program.h"
#include "tests/support/SharedLog.h"
#include "tests/support/forked.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using testing::forked;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct Recorder : ApplicationDelegate {
  std::string events;
  std::function<void()> atLaunch = [] {};
  void applicationDidFinishLaunching() override {
    events += "launched ";
    atLaunch();
  }
  std::function<void()> atEnd = [] {};
  void applicationWillTerminate() override {
    events += "terminating ";
    atEnd();
  }
};

/// An application alone in a process, of which there can be one only. It draws nowhere.
struct Fixture {
  testing::SharedLog log;
  EventLoop loop;
  QtApplication application{loop, log};
  Recorder delegate;
  Fixture() { application.setDelegate(&delegate); }
};

const Alert kQuestion = {"?", "", AlertStyle::warning, {"Yes", "No"}};

TEST(QtApplication, LaunchesServesTheRunLoopAndTerminates) {
  EXPECT_EQ(forked([] {
              Fixture f;
              f.loop.async([&] {
                f.delegate.events += "task ";
                f.application.terminate();
                f.application.terminate();
              });
              f.application.run();
              EXPECT_EQ(f.delegate.events, "launched task terminating ");
            }),
            0);
}

TEST(QtApplication, TerminatedWhileItLaunchesServesNothing) {
  EXPECT_EQ(forked([] {
              Fixture f;
              f.loop.async([&] { f.delegate.events += "task "; });
              f.delegate.atLaunch = [&] { f.application.terminate(); };
              f.application.run();
              EXPECT_EQ(f.delegate.events, "launched terminating ");
            }),
            0);
}

TEST(QtApplication, EndsInOrderOnASignal) {
  EXPECT_EQ(forked([] {
              signal(SIGTERM, SIG_DFL);
              Fixture f;
              f.delegate.atLaunch = [] { kill(getpid(), SIGTERM); };
              f.application.run();
              EXPECT_EQ(f.delegate.events, "launched terminating ");
            }),
            0);
}

TEST(QtApplication, WhenQtEndsByItselfTheDelegateIsTold) {
  EXPECT_EQ(forked([] {
              Fixture f;
              f.loop.async([] { QApplication::exit(1); });
              f.application.run();
              EXPECT_EQ(f.delegate.events, "launched terminating ");
            }),
            0);
}

TEST(QtApplication, EndsForTheSessionManagerWhateverItsWindowsSay) {
  EXPECT_EQ(forked([] {
              Fixture f;
              ArrowWindow panel;
              panel.winId();
              f.loop.async([] { QCoreApplication::postEvent(qApp, new QEvent(QEvent::Quit)); });
              f.application.run();
              EXPECT_EQ(f.delegate.events, "launched terminating ");
            }),
            0);
}

TEST(QtApplication, WhenQtEndsTheProcessTheDelegateIsToldOnce) {
  const testing::TemporaryFolder folder;
  const auto note = folder.path() + "/told";
  EXPECT_EQ(forked([&] {
              Fixture f;
              f.delegate.atEnd = [&] { std::ofstream(note, std::ios::app) << "told "; };
              f.loop.async([] { exit(3); });
              f.application.run();
            }),
            3);
  std::string told;
  std::getline(std::ifstream(note), told);
  EXPECT_EQ(told, "told ");
}

TEST(QtApplication, TheRunLoopGoesOnWhileAnAlertIsOpen) {
  EXPECT_EQ(forked([] {
              Fixture f;
              std::unique_ptr<Timer> timer;
              f.loop.async([&] {
                timer = f.loop.scheduleRepeatingTimer(0.001, [&] {
                  f.delegate.events += "timer ";
                  timer->invalidate();
                  f.loop.async([] { QApplication::activeModalWidget()->close(); });
                });
                EXPECT_EQ(runAlertDialog(kQuestion, {}), 1001);
                f.application.terminate();
              });
              f.application.run();
              EXPECT_EQ(f.delegate.events, "launched timer terminating ");
            }),
            0);
}

TEST(QtApplication, TerminatingAbortsAnOpenAlert) {
  EXPECT_EQ(forked([] {
              Fixture f;
              f.loop.async([&] {
                f.loop.async([&] { f.application.terminate(); });
                EXPECT_EQ(runAlertDialog(kQuestion, {}), kAlertAborted);
                f.delegate.events += "aborted ";
              });
              f.application.run();
              EXPECT_EQ(f.delegate.events, "launched terminating aborted ");
            }),
            0);
}

TEST(QtApplication, ProgramThatLeavesAtItsLaunchSaysNothingOfTheDisplay) {
  EXPECT_EQ(forked([] {
              for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"}) {
                unsetenv(name);
              }
              Fixture f;
              f.delegate.atLaunch = [&] { f.application.terminate(); };
              f.application.run();
              EXPECT_THAT(f.log.lines(), IsEmpty());
            }),
            0);
}

TEST(QtApplication, WithoutADisplayItSaysSoOnceAndRuns) {
  for (const char* display : {"", "unix:/nowhere/at/all:0"}) {
    EXPECT_EQ(forked([display] {
                unsetenv("QT_QPA_PLATFORM");
                unsetenv("WAYLAND_DISPLAY");
                unsetenv("DISPLAY");
                if (*display) setenv("DISPLAY", display, 1);
                Fixture f;
                f.loop.async([&] { f.application.terminate(); });
                f.application.run();
                EXPECT_THAT(f.log.lines(), ElementsAre(HasSubstr("No display")));
              }),
              0)
        << display;
  }
}

TEST(QtApplication, APlatformOfTheUsersOwnChoiceIsNotCommentedOn) {
  EXPECT_EQ(forked([] {
              setenv("QT_QPA_PLATFORM", "offscreen", 1);
              Fixture f;
              EXPECT_THAT(f.log.lines(), IsEmpty());
            }),
            0);
}

TEST(QtApplication, WhatIsMadeOfQtMayGoAfterIt) {
  EXPECT_EQ(forked([] {
              Fixture f;
              LinuxDesktop desktop(f.application);
              const auto item = desktop.makeStatusItem(kVariableStatusItemLength);
              const auto popover = desktop.makePopover();
              popover->setContent(std::make_shared<HostingController>(
                  Fill(Color::red).frame({.width = 100, .height = 100}), f.loop));
              f.delegate.atLaunch = [&] { popover->show(*item->button(), RectEdge::minY); };
              f.loop.async([&] {
                EXPECT_TRUE(popover->isShown());
                f.application.terminate();
              });
              f.application.run();
              EXPECT_FALSE(popover->isShown());
              EXPECT_EQ(qApp, nullptr);
            }),
            0);
}

TEST(QtApplication, WhatQtComplainsAboutIsLogged) {
  EXPECT_EQ(forked([] {
              Fixture f;
              qWarning("out of colours");
              EXPECT_THAT(f.log.lines(), ElementsAre("Qt: out of colours"));
            }),
            0);
}

}  // namespace
}  // namespace quillmont
