// A hosting controller's panel, in the hands of AppKit.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <memory>

#include "platform/macos/Retained.h"
#include "platform/macos/desktop/PanelView.h"
#include "platform/macos/views/AppKitMetrics.h"
#include "platform/macos/views/AppKitMount.h"
#include "platform/view/HostingController.h"

namespace quillmont {

/// A view controller that shows the content, in the size of its own layout, and mounts it for as
/// long as the panel lives. Main thread.
class Panel {
 public:
  explicit Panel(std::shared_ptr<HostingController> content);
  ~Panel();
  Panel(const Panel&) = delete;
  Panel& operator=(const Panel&) = delete;

  NSViewController* controller() const { return controller_; }
  QMPanelView* view() const { return view_; }

  /// Told before it comes up, so that it comes up in its size; `appeared` once it is there.
  void prepare();
  void appeared();
  void disappears();

 private:
  class SizedMount;
  void take(Size size);

  const std::shared_ptr<HostingController> content_;
  AppKitMount mount_;
  const AppKitMetrics metrics_;
  const std::unique_ptr<SizedMount> sizedMount_;
  const Retained<QMPanelView*> view_;
  const Retained<NSViewController*> controller_;
};

}  // namespace quillmont
