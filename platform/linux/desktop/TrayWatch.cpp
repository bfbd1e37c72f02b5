#include "platform/linux/desktop/TrayWatch.h"

#include <stdlib.h>
#include <xcb/xcb.h>

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <utility>

namespace quillmont {
namespace {

constexpr char kWatcher[] = "org.kde.StatusNotifierWatcher";
constexpr char kWatcherPath[] = "/StatusNotifierWatcher";
constexpr char kTraySelection[] = "_NET_SYSTEM_TRAY_S";

bool saysYes(const QDBusMessage& answer) {
  if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return false;
  return answer.arguments().front().value<QDBusVariant>().variant().toBool();
}

}  // namespace

TrayWatch::TrayWatch(std::function<void()> onTray)
    : onTray_(std::move(onTray)), service_(std::make_unique<QDBusServiceWatcher>()) {
  // A program that draws nowhere has no icon either.
  if (QGuiApplication::platformName() == "offscreen") return;
  watchBus();
  if (qtX11Connection()) watchX11();
}

TrayWatch::~TrayWatch() = default;

void TrayWatch::watchBus() {
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  hostRegistered_ =
      std::make_unique<DBusSignal>(kWatcher, kWatcherPath, kWatcher, "StatusNotifierHostRegistered",
                                   [this](const QDBusMessage&) { askBus(); });
  service_->setConnection(bus);
  service_->setWatchMode(QDBusServiceWatcher::WatchForRegistration);
  service_->addWatchedService(kWatcher);
  QObject::connect(service_.get(), &QDBusServiceWatcher::serviceRegistered, service_.get(),
                   [this] { askBus(); });
  askBus();
}

void TrayWatch::askBus() {
  auto call = QDBusMessage::createMethodCall(kWatcher, kWatcherPath,
                                             "org.freedesktop.DBus.Properties", "Get");
  call.setArguments({QString(kWatcher), QString("IsStatusNotifierHostRegistered")});
  call.setAutoStartService(false);
  auto* const pending =
      new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), service_.get());
  QObject::connect(pending, &QDBusPendingCallWatcher::finished, pending, [this, pending] {
    pending->deleteLater();
    if (saysYes(pending->reply())) found();
  });
}

/// A new bar announces itself on the root window, with its selection. Not by Qt's connection, whose
/// choice of events is Qt's own.
void TrayWatch::watchX11() {
  x11_ = connectToX11();
  if (!x11_) return;
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  const auto* const setup = xcb_get_setup(x11_.get());
  for (auto screen = xcb_setup_roots_iterator(setup); screen.rem > 0; xcb_screen_next(&screen)) {
    xcb_change_window_attributes(x11_.get(), screen.data->root, XCB_CW_EVENT_MASK, &events);
  }
  xcb_flush(x11_.get());
  x11Ready_ =
      std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(x11_.get()), QSocketNotifier::Read);
  QObject::connect(x11Ready_.get(), &QSocketNotifier::activated, x11Ready_.get(),
                   [this] { readX11(); });
  // What came in while the owner was asked for waits in the connection, not in the socket.
  QMetaObject::invokeMethod(
      x11Ready_.get(), [this] { checkX11(); }, Qt::QueuedConnection);
}

/// Whatever has happened on the root window: the owner is what counts.
void TrayWatch::readX11() {
  bool announced = false;
  while (auto* const event = xcb_poll_for_event(x11_.get())) {
    announced |= (event->response_type & 0x7f) == XCB_CLIENT_MESSAGE;
    free(event);
  }
  if (xcb_connection_has_error(x11_.get())) return x11Ready_->setEnabled(false);
  if (announced) checkX11();
}

void TrayWatch::checkX11() {
  const bool owned = screenSelectionIsOwned(x11_.get(), kTraySelection);
  if (owned) return found();
  // Asking has read the socket: a message that came with the answer must not wait for the next.
  while (auto* const event = xcb_poll_for_queued_event(x11_.get())) {
    const bool announcement = (event->response_type & 0x7f) == XCB_CLIENT_MESSAGE;
    free(event);
    if (announcement) return checkX11();
  }
}

void TrayWatch::found() {
  if (std::exchange(found_, true)) return;
  // What is found may be found out by an object that the answer destroys.
  QMetaObject::invokeMethod(
      service_.get(),
      [this] {
        const auto onTray = std::move(onTray_);
        onTray();
      },
      Qt::QueuedConnection);
}

}  // namespace quillmont
