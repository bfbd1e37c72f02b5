// A signal on the session bus, told to a function.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>
#include <utility>

namespace quillmont {

/// Listens for as long as it lives. Main thread.
class DBusSignal : public QObject {
  Q_OBJECT

 public:
  using Handler = std::function<void(const QDBusMessage&)>;

  /// `service` may be absent, come and go: it is the one that owns the name when it sends.
  DBusSignal(const QString& service, const QString& path, const QString& interface,
             const QString& name, Handler handler)
      : handler_(std::move(handler)) {
    QDBusConnection::sessionBus().connect(service, path, interface, name, this,
                                          SLOT(receive(QDBusMessage)));
  }

 private slots:
  void receive(const QDBusMessage& message) { handler_(message); }

 private:
  Handler handler_;
};

}  // namespace quillmont
