#include "platform/linux/desktop/TrayWatch.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <memory>

#include "tests/support/PrivateBus.h"
#include "tests/support/forked.h"

namespace quillmont {
namespace {

using testing::forked;

constexpr char kWatcher[] = "org.kde.StatusNotifierWatcher";
constexpr char kPath[] = "/StatusNotifierWatcher";

/// A program on a platform that could show an icon; alone in its process.
struct Program {
  explicit Program(const std::string& bus, const char* platform = "minimal") {
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.c_str(), 1);
    setenv("QT_QPA_PLATFORM", platform, 1);
    application = std::make_unique<QApplication>(count, arguments);
  }

  template <class Condition>
  void serveUntil(Condition condition) {
    while (!condition()) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }

  char name[5] = "test";
  char* arguments[2] = {name, nullptr};
  int count = 1;
  std::unique_ptr<QApplication> application;
};

/// What bars register with, on a connection of its own.
class FakeWatcher : public QDBusVirtualObject {
 public:
  explicit FakeWatcher(const std::string& bus)
      : bus_(QDBusConnection::connectToBus(QString::fromStdString(bus), "watcher")) {
    bus_.registerVirtualObject(kPath, this);
    EXPECT_TRUE(bus_.registerService(kWatcher));
  }

  void registerHost() {
    hasHost = true;
    bus_.send(QDBusMessage::createSignal(kPath, kWatcher, "StatusNotifierHostRegistered"));
  }

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override {
    ++questions;
    return connection.send(call.createReply(QVariant::fromValue(QDBusVariant(hasHost))));
  }

  bool hasHost = false;
  int questions = 0;

 private:
  QDBusConnection bus_;
};

struct TrayWatchTest : ::testing::Test {
  void SetUp() override {
    if (!testing::PrivateBus::available()) GTEST_SKIP() << "no message bus daemon";
    bus = std::make_unique<testing::PrivateBus>();
  }
  std::unique_ptr<testing::PrivateBus> bus;
};

TEST_F(TrayWatchTest, FindsABarThatIsThere) {
  EXPECT_EQ(forked([this] {
              Program program(bus->address());
              FakeWatcher watcher(bus->address());
              watcher.hasHost = true;
              bool found = false;
              const TrayWatch watch([&] { found = true; });
              EXPECT_FALSE(found);
              program.serveUntil([&] { return found; });
            }),
            0);
}

TEST_F(TrayWatchTest, FindsABarThatComesLater) {
  EXPECT_EQ(forked([this] {
              Program program(bus->address());
              bool found = false;
              const TrayWatch watch([&] { found = true; });
              FakeWatcher watcher(bus->address());
              program.serveUntil([&] { return watcher.questions > 0; });
              EXPECT_FALSE(found);
              watcher.registerHost();
              program.serveUntil([&] { return found; });
            }),
            0);
}

TEST_F(TrayWatchTest, TellsOnceAndMayBeDestroyedByIt) {
  EXPECT_EQ(forked([this] {
              Program program(bus->address());
              FakeWatcher watcher(bus->address());
              int found = 0;
              std::unique_ptr<TrayWatch> watch;
              watch = std::make_unique<TrayWatch>([&] {
                ++found;
                watch = nullptr;
              });
              watcher.registerHost();
              watcher.registerHost();
              program.serveUntil([&] { return found > 0; });
              program.serveUntil([&] { return watcher.questions > 0; });
              QApplication::processEvents();
              EXPECT_EQ(found, 1);
            }),
            0);
}

TEST_F(TrayWatchTest, AProgramThatDrawsNowhereAsksNobody) {
  EXPECT_EQ(forked([this] {
              Program program(bus->address(), "offscreen");
              FakeWatcher watcher(bus->address());
              watcher.hasHost = true;
              bool found = false;
              const TrayWatch watch([&] { found = true; });
              const auto ping = QDBusMessage::createMethodCall(
                  kWatcher, kPath, "org.freedesktop.DBus.Properties", "Get");
              QDBusConnection::sessionBus().send(ping);
              program.serveUntil([&] { return watcher.questions > 0; });
              EXPECT_EQ(watcher.questions, 1);
              EXPECT_FALSE(found);
            }),
            0);
}

}  // namespace
}  // namespace quillmont
