#include "platform/linux/desktop/Appearance.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QPalette>
#include <functional>
#include <utility>

#include "platform/linux/desktop/DBusSignal.h"

namespace quillmont {
namespace {

constexpr char kPortal[] = "org.freedesktop.portal.Desktop";
constexpr char kPath[] = "/org/freedesktop/portal/desktop";
constexpr char kSettings[] = "org.freedesktop.portal.Settings";
constexpr char kNamespace[] = "org.freedesktop.appearance";
constexpr char kKey[] = "color-scheme";

enum ColorScheme : unsigned { kPreferDark = 1, kPreferLight = 2 };

}  // namespace

class Appearance::PaletteWatcher : public QObject {
 public:
  explicit PaletteWatcher(std::function<void()> onChange) : onChange_(std::move(onChange)) {
    qApp->installEventFilter(this);
  }
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) onChange_();
    return false;
  }

 private:
  std::function<void()> onChange_;
};

Appearance::Appearance()
    : palette_(std::make_unique<PaletteWatcher>([this] { update(); })),
      portal_(std::make_unique<QDBusServiceWatcher>()) {
  update();
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  settingChanged_ =
      std::make_unique<DBusSignal>(kPortal, kPath, kSettings, "SettingChanged",
                                   [this](const QDBusMessage& signal) { takeSetting(signal); });
  portal_->setConnection(bus);
  portal_->setWatchMode(QDBusServiceWatcher::WatchForRegistration);
  portal_->addWatchedService(kPortal);
  QObject::connect(portal_.get(), &QDBusServiceWatcher::serviceRegistered, portal_.get(),
                   [this] { askPortal(); });
  askPortal();
}

Appearance::~Appearance() = default;

void Appearance::askPortal() {
  auto call = QDBusMessage::createMethodCall(kPortal, kPath, kSettings, "Read");
  call.setArguments({QString(kNamespace), QString(kKey)});
  call.setAutoStartService(false);
  auto* const pending =
      new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), portal_.get());
  QObject::connect(pending, &QDBusPendingCallWatcher::finished, pending, [this, pending] {
    pending->deleteLater();
    takeAnswer(pending->reply());
  });
}

void Appearance::takeAnswer(const QDBusMessage& answer) {
  const auto values = answer.arguments();
  if (answer.type() == QDBusMessage::ReplyMessage && !values.isEmpty()) {
    takeColorScheme(values.front());
  }
}

void Appearance::takeSetting(const QDBusMessage& signal) {
  const auto values = signal.arguments();
  if (values.size() == 3 && values[0].toString() == kNamespace && values[1].toString() == kKey) {
    takeColorScheme(values[2]);
  }
}

/// The answer to a question is wrapped twice, the value of a signal once.
void Appearance::takeColorScheme(const QVariant& scheme) {
  QVariant value = scheme;
  while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  portalDark_ = std::nullopt;
  if (value.toUInt() == kPreferDark) portalDark_ = true;
  if (value.toUInt() == kPreferLight) portalDark_ = false;
  update();
}

void Appearance::update() {
  const bool paletteDark = QApplication::palette().color(QPalette::Window).lightnessF() < 0.5F;
  const bool dark = portalDark_.value_or(paletteDark);
  if (std::exchange(dark_, dark) != dark) didChange_.send(dark);
}

}  // namespace quillmont
