// A desktop in memory: its status bar, popovers, pointer and alerts do what a test tells them.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Desktop.h"
#include "platform/view/HostingController.h"

namespace quillmont::testing {

class FakeStatusItemButton : public StatusItemButton {
 public:
  void setImage(const std::string& symbolName, const std::string& description) override {
    symbol = symbolName;
    accessibilityDescription = description;
  }
  void setAction(std::function<void(Sender)> action_) override { action = std::move(action_); }

  void click() { action(this); }

  std::string symbol, accessibilityDescription;
  std::function<void(Sender)> action;
};

/// A popover's story is written down in `story`.
class FakePopover : public Popover {
 public:
  explicit FakePopover(std::vector<std::string>& story) : story_(story) {}

  void setContent(std::shared_ptr<HostingController> content_) override {
    content = std::move(content_);
  }
  void setBehavior(PopoverBehavior behavior_) override { behavior = behavior_; }
  bool isShown() const override { return shown; }
  void show(StatusItemButton& button, RectEdge edge_) override {
    story_.emplace_back("popover shown");
    anchor = &button;
    edge = edge_;
    shown = true;
  }
  void performClose(Sender sender_) override {
    story_.emplace_back("popover closed");
    sender = sender_;
    shown = false;
  }

  std::shared_ptr<HostingController> content;
  PopoverBehavior behavior = PopoverBehavior::applicationDefined;
  StatusItemButton* anchor = nullptr;
  RectEdge edge = RectEdge::minX;
  Sender sender = nullptr;
  bool shown = false;

 private:
  std::vector<std::string>& story_;
};

class FakeDesktop : public Desktop {
 public:
  std::unique_ptr<StatusItem> makeStatusItem(double length) override {
    lengths.push_back(length);
    if (!hasStatusBar) return nullptr;
    return std::make_unique<Item>(*this);
  }

  std::unique_ptr<Popover> makePopover() override {
    auto made = std::make_unique<FakePopover>(story);
    popover = made.get();
    return made;
  }

  std::optional<EventMonitorToken> addGlobalEventMonitor(EventMask mask,
                                                         EventHandler handler) override {
    if (!hasPointer) return std::nullopt;
    story.emplace_back("monitor added");
    monitors.emplace(++lastToken_, std::pair(mask, std::move(handler)));
    return lastToken_;
  }

  void removeEventMonitor(EventMonitorToken token) override {
    story.emplace_back("monitor removed");
    monitors.erase(token);
  }

  /// The pointer presses a button in another program.
  void clickElsewhere(EventType type) {
    const Event event{type};
    const auto installed = monitors;
    for (const auto& [token, monitor] : installed) {
      if ((monitor.first & eventMaskOf(type)) != 0) monitor.second(&event);
    }
  }

  std::int64_t runModal(const Alert& alert) override {
    alerts.push_back(alert);
    if (duringAlert) duringAlert();
    return alertAnswer;
  }

  bool hasStatusBar = true, buttonExists = true, hasPointer = true;
  std::vector<double> lengths;  ///< of the status items that were asked for
  FakeStatusItemButton button;
  FakePopover* popover = nullptr;  ///< the last one made
  std::map<EventMonitorToken, std::pair<EventMask, EventHandler>> monitors;
  std::vector<Alert> alerts;
  std::int64_t alertAnswer = kAlertFirstButtonReturn;
  std::function<void()> duringAlert;
  std::vector<std::string> story;

 private:
  class Item : public StatusItem {
   public:
    explicit Item(FakeDesktop& desktop) : desktop_(desktop) {}
    StatusItemButton* button() override {
      return desktop_.buttonExists ? &desktop_.button : nullptr;
    }

   private:
    FakeDesktop& desktop_;
  };

  EventMonitorToken lastToken_ = 0;
};

}  // namespace quillmont::testing
