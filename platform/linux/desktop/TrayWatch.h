// Waits for a desktop that shows status items.
#pragma once

#include <QDBusServiceWatcher>
#include <QSocketNotifier>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/linux/desktop/DBusSignal.h"
#include "platform/linux/desktop/x11.h"

namespace quillmont {

/// There are two kinds of bars: an X11 one that takes windows in, and one on the session bus. Qt
/// asks for the latter once in a process, at the first use of its tray icon, and keeps the answer
/// for good. So no tray icon may be made before a bar is there; this tells when. Main thread.
class TrayWatch {
 public:
  /// Calls `onTray` once, from the main loop, when the first bar is there. It may destroy the
  /// watch.
  explicit TrayWatch(std::function<void()> onTray);
  ~TrayWatch();

 private:
  void watchBus();
  void askBus();
  void watchX11();
  void readX11();
  void checkX11();
  void found();

  std::function<void()> onTray_;
  bool found_ = false;
  std::unique_ptr<QDBusServiceWatcher> service_;
  std::unique_ptr<DBusSignal> hostRegistered_;
  X11Connection x11_;
  std::unique_ptr<QSocketNotifier> x11Ready_;
};

}  // namespace quillmont
