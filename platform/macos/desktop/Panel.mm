#include "platform/macos/desktop/Panel.h"

#include <utility>

#include "platform/macos/views/mounted_views.h"

namespace quillmont {

/// Hands on to the real mount, and tells the panel's size.
class Panel::SizedMount : public NativeMount {
 public:
  SizedMount(NativeMount& mount, std::function<void(Size)> onSize)
      : mount_(mount), onSize_(std::move(onSize)) {}

  void apply(const std::vector<ViewChange>& changes, Size size) override {
    mount_.apply(changes, size);
    onSize_(size);
  }

 private:
  NativeMount& mount_;
  const std::function<void(Size)> onSize_;
};

Panel::Panel(std::shared_ptr<HostingController> content)
    : content_(std::move(content)),
      mount_(*content_),
      metrics_(&mount_),
      sizedMount_(std::make_unique<SizedMount>(mount_, [this](Size size) { take(size); })),
      view_(adopt([[QMPanelView alloc] initWithFrame:NSZeroRect])),
      controller_(adopt([[NSViewController alloc] initWithNibName:nil bundle:nil])) {
  [controller_ setView:view_];
  [view_ addSubview:panelView(mount_)];
  view_.get()->onAppearance_ = [this] { mount_.appearanceDidChange(); };
  view_.get()->onScale_ = [this] { content_->metricsDidChange(); };
  content_->mount(*sizedMount_, metrics_);
}

/// AppKit may hold the view for longer than that.
Panel::~Panel() {
  view_.get()->onEscape_ = view_.get()->onAppearance_ = view_.get()->onScale_ = nullptr;
  content_->unmount();
  [panelView(mount_) removeFromSuperview];
}

void Panel::prepare() {
  content_->setVisible(true);
}

void Panel::appeared() {
  mount_.setVisible(true);
  NSWindow* const window = [view_ window];
  // A program of the menu bar is hardly ever the active one.
  [window setAllowsToolTipsWhenApplicationIsInactive:YES];
  [window makeKeyWindow];
  [window makeFirstResponder:view_];
}

void Panel::disappears() {
  mount_.setVisible(false);
  content_->setVisible(false);
}

/// A popover follows its view controller's preferred size.
void Panel::take(Size size) {
  const NSSize native = NSMakeSize(size.width, size.height);
  if (NSEqualSizes([controller_ preferredContentSize], native)) return;
  if ([view_ window] == nil) [view_ setFrameSize:native];
  [controller_ setPreferredContentSize:native];
}

}  // namespace quillmont
