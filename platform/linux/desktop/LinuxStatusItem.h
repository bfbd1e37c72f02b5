// A status item in whichever bar the desktop has.
#pragma once

#include <QRect>
#include <QSystemTrayIcon>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/Observable.h"
#include "platform/StatusItem.h"
#include "platform/linux/desktop/TrayWatch.h"

namespace quillmont {

/// Comes up with the first bar that there is, whenever that is, and follows it when it restarts.
/// Main thread.
class LinuxStatusItem : public StatusItem, public StatusItemButton {
 public:
  /// `swallows` is asked at each click from a bar on the session bus whether it is to be dropped.
  explicit LinuxStatusItem(std::function<bool()> swallows);
  ~LinuxStatusItem() override;

  StatusItemButton* button() override { return this; }
  void setImage(const std::string& symbolName,
                const std::string& accessibilityDescription) override;
  void setAction(std::function<void(Sender)> action) override;

  /// As if the user had clicked it; also where no bar shows it.
  void click();

  /// Where it is, in global logical pixels; none where that is unknown. A bar on the session bus
  /// does not say it: then it is known only while the action runs, by the pointer's place.
  std::optional<QRect> screenRect() const;

 private:
  void appear();
  void activated(QSystemTrayIcon::ActivationReason reason);
  bool isWindowOfOurs() const;

  std::function<bool()> swallows_;
  std::function<void(Sender)> action_ = [](Sender) {};
  std::string symbolName_, description_;
  bool clickedByUser_ = false;
  std::unique_ptr<TrayWatch> watch_;
  std::unique_ptr<QSystemTrayIcon> icon_;  ///< null until there is a bar
  Subscription end_;
};

/// What stands for an item that was clicked at `pointer`: where the bar is what `available` leaves
/// of `screen`, the bar's whole breadth at that place, so that nothing is laid over the bar.
QRect barAnchor(const QPoint& pointer, const QRect& screen, const QRect& available);

}  // namespace quillmont
