// Light or dark, as the desktop has it.
#pragma once

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <memory>
#include <optional>

#include "platform/Observable.h"

namespace quillmont {

class DBusSignal;

/// The colour scheme of the desktop's portal where there is one that has a preference, else what
/// the desktop's palette looks like. Main thread, with a QApplication whose palette is left to the
/// desktop.
class Appearance {
 public:
  /// The palette's answer holds until the portal's has come, which is not waited for. The portal is
  /// not started for it; one that starts later is asked then.
  Appearance();
  ~Appearance();
  Appearance(const Appearance&) = delete;
  Appearance& operator=(const Appearance&) = delete;

  bool isDark() const { return dark_; }

  /// Sent after a change, with the new isDark().
  Signal<bool>& didChange() { return didChange_; }

 private:
  class PaletteWatcher;

  void askPortal();
  void takeAnswer(const QDBusMessage& answer);
  void takeSetting(const QDBusMessage& signal);
  void takeColorScheme(const QVariant& scheme);
  void update();

  std::optional<bool> portalDark_;  ///< none: it is silent, or has no preference
  bool dark_ = false;
  Signal<bool> didChange_;
  std::unique_ptr<PaletteWatcher> palette_;
  std::unique_ptr<QDBusServiceWatcher> portal_;
  std::unique_ptr<DBusSignal> settingChanged_;
};

}  // namespace quillmont
