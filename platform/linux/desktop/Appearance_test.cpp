#include "platform/linux/desktop/Appearance.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QPalette>
#include <memory>
#include <vector>

#include "tests/support/PrivateBus.h"
#include "tests/support/forked.h"

namespace quillmont {
namespace {

using testing::forked;

constexpr char kPortal[] = "org.freedesktop.portal.Desktop";
constexpr char kPath[] = "/org/freedesktop/portal/desktop";
constexpr char kSettings[] = "org.freedesktop.portal.Settings";

/// A program of a desktop that is light, unless told otherwise; alone in its process.
struct Program {
  explicit Program(const std::string& bus) {
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.empty() ? "unix:path=/nowhere" : bus.c_str(), 1);
    application = std::make_unique<QApplication>(count, arguments);
  }

  /// Serves the loop until `condition` holds; the test's own end limits it.
  template <class Condition>
  void serveUntil(Condition condition) {
    while (!condition()) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }

  char name[5] = "test";
  char* arguments[2] = {name, nullptr};
  int count = 1;
  std::unique_ptr<QApplication> application;
};

/// The desktop's portal, on a connection of its own.
class FakePortal : public QDBusVirtualObject {
 public:
  explicit FakePortal(const std::string& bus)
      : bus_(QDBusConnection::connectToBus(QString::fromStdString(bus), "portal")) {
    bus_.registerVirtualObject(kPath, this);
    EXPECT_TRUE(bus_.registerService(kPortal));
  }

  void change(const QString& key, unsigned value) {
    scheme = value;
    auto signal = QDBusMessage::createSignal(kPath, kSettings, "SettingChanged");
    signal.setArguments({"org.freedesktop.appearance", key, wrapped(value)});
    bus_.send(signal);
  }

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override {
    ++questions;
    return connection.send(call.createReply(wrapped(wrapped(scheme))));
  }

  unsigned scheme = 0;
  int questions = 0;

 private:
  static QVariant wrapped(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(value));
  }

  QDBusConnection bus_;
};

QPalette paletteOf(Qt::GlobalColor window) {
  QPalette palette;
  palette.setColor(QPalette::Window, window);
  return palette;
}

TEST(Appearance, FollowsThePaletteWithoutABus) {
  EXPECT_EQ(forked([] {
              Program program("");
              Appearance appearance;
              std::vector<bool> changes;
              const auto observation =
                  appearance.didChange().subscribe([&](bool dark) { changes.push_back(dark); });
              EXPECT_FALSE(appearance.isDark());
              QApplication::setPalette(paletteOf(Qt::black));
              program.serveUntil([&] { return appearance.isDark(); });
              QApplication::setPalette(paletteOf(Qt::darkBlue));
              QApplication::setPalette(paletteOf(Qt::white));
              program.serveUntil([&] { return !appearance.isDark(); });
              EXPECT_EQ(changes, (std::vector{true, false}));
            }),
            0);
}

struct PortalTest : ::testing::Test {
  void SetUp() override {
    if (!testing::PrivateBus::available()) GTEST_SKIP() << "no message bus daemon";
    bus = std::make_unique<testing::PrivateBus>();
  }
  std::unique_ptr<testing::PrivateBus> bus;
};

TEST_F(PortalTest, ItsPreferenceStandsAboveThePalette) {
  EXPECT_EQ(forked([this] {
              Program program(bus->address());
              FakePortal portal(bus->address());
              portal.scheme = 1;
              Appearance appearance;
              program.serveUntil([&] { return appearance.isDark(); });
              portal.change("color-scheme", 2);
              program.serveUntil([&] { return !appearance.isDark(); });
              QApplication::setPalette(paletteOf(Qt::black));
              EXPECT_FALSE(appearance.isDark());
              portal.change("color-scheme", 0);
              program.serveUntil([&] { return appearance.isDark(); });
            }),
            0);
}

TEST_F(PortalTest, OtherSettingsAreNotTakenForIt) {
  EXPECT_EQ(forked([this] {
              Program program(bus->address());
              FakePortal portal(bus->address());
              Appearance appearance;
              int changes = 0;
              const auto observation = appearance.didChange().subscribe([&](bool) { ++changes; });
              portal.change("accent-color", 1);
              portal.scheme = 0;
              portal.change("color-scheme", 1);
              program.serveUntil([&] { return appearance.isDark(); });
              EXPECT_EQ(changes, 1);
            }),
            0);
}

TEST_F(PortalTest, OneThatStartsLaterIsAsked) {
  EXPECT_EQ(forked([this] {
              Program program(bus->address());
              Appearance appearance;
              FakePortal portal(bus->address());
              portal.scheme = 1;
              program.serveUntil([&] { return appearance.isDark(); });
              EXPECT_GE(portal.questions, 1);
            }),
            0);
}

}  // namespace
}  // namespace quillmont
