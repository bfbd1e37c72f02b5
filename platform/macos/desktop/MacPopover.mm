#include "platform/macos/desktop/MacPopover.h"

#import <AppKit/AppKit.h>

#include <utility>

#include "platform/macos/Retained.h"
#include "platform/macos/desktop/MacStatusItem.h"
#include "platform/macos/desktop/Panel.h"
#include "platform/macos/desktop/keyboard.h"

@interface QMPopoverDelegate : NSObject <NSPopoverDelegate> {
 @public
  std::function<void()> willClose_, didClose_;
}
@end

@implementation QMPopoverDelegate

- (void)popoverWillClose:(NSNotification*)notification {
  (void)notification;
  const auto willClose = willClose_;
  willClose();
}

- (void)popoverDidClose:(NSNotification*)notification {
  (void)notification;
  const auto didClose = didClose_;
  didClose();
}

@end

namespace quillmont {
namespace {

NSRectEdge nativeEdge(RectEdge edge) {
  switch (edge) {
    case RectEdge::minX:
      return NSMinXEdge;
    case RectEdge::minY:
      return NSMinYEdge;
    case RectEdge::maxX:
      return NSMaxXEdge;
    case RectEdge::maxY:
      return NSMaxYEdge;
  }
  return NSMinYEdge;
}

NSView* viewOf(StatusItemButton& button) {
  const auto* const item = dynamic_cast<const MacStatusItem*>(&button);
  return item ? static_cast<NSView*>(item->view()) : nil;
}

}  // namespace

/// AppKit keeps neither a hidden popover nor a delegate.
class MacPopover::Native : public std::enable_shared_from_this<Native> {
 public:
  explicit Native(std::function<void()> onClosing)
      : onClosing_(std::move(onClosing)),
        popover_(adopt([[NSPopover alloc] init])),
        delegate_(adopt([[QMPopoverDelegate alloc] init])) {}
  ~Native() { [popover_ setDelegate:nil]; }

  /// For what needs to know itself by a weak reference.
  void connect() {
    delegate_.get()->willClose_ = [weak = weak_from_this()] {
      if (const auto self = weak.lock()) self->willClose();
    };
    delegate_.get()->didClose_ = [weak = weak_from_this()] {
      if (const auto self = weak.lock()) self->didClose();
    };
    [popover_ setDelegate:delegate_];
  }

  NSPopover* popover() const { return popover_; }
  bool isShown() const { return [popover_ isShown]; }

  void setContent(std::shared_ptr<HostingController> content) {
    close();
    [popover_ setContentViewController:nil];
    panel_ = nullptr;
    if (!content) return;
    panel_ = std::make_unique<Panel>(std::move(content));
    panel_->view()->onEscape_ = [weak = weak_from_this()] {
      if (const auto self = weak.lock()) self->escape();
    };
    [popover_ setContentViewController:panel_->controller()];
  }

  void show(NSView* anchor, NSRectEdge edge) {
    if (!panel_ || [anchor window] == nil) return;
    closing_ = false;
    panel_->prepare();
    // The last closing hid the program, and the system may refuse to activate it.
    [NSApp unhideWithoutActivation];
    // Or else the panel would not get the keyboard, and not learn of clicks in other programs.
    [NSApp activateIgnoringOtherApps:YES];
    [popover_ showRelativeToRect:[anchor bounds] ofView:anchor preferredEdge:edge];
    isShown() ? panel_->appeared() : panel_->disappears();
  }

  /// AppKit refuses to close one from which another popover hangs, unless it is told outright.
  void performClose() {
    if (!isShown() || closing_) return;
    [popover_ performClose:nil];
    if (!closing_) [popover_ close];
  }

  void close() {
    if (isShown()) [popover_ close];
  }

 private:
  void escape() {
    if ([popover_ behavior] == NSPopoverBehaviorTransient) performClose();
  }

  void willClose() {
    if (std::exchange(closing_, true)) return;
    if (panel_) panel_->disappears();
    onClosing_();
  }

  /// The end of a closing may come after the next opening.
  void didClose() {
    if (closing_) giveKeyboardBack();
  }

  const std::function<void()> onClosing_;
  const Retained<NSPopover*> popover_;
  const Retained<QMPopoverDelegate*> delegate_;
  std::unique_ptr<Panel> panel_;
  bool closing_ = false;
};

MacPopover::MacPopover(std::function<void()> onClosing) {
  @autoreleasepool {
    native_ = std::make_shared<Native>(std::move(onClosing));
    native_->connect();
  }
}

MacPopover::~MacPopover() {
  @autoreleasepool {
    native_->setContent(nullptr);
    native_ = nullptr;
  }
}

void MacPopover::setContent(std::shared_ptr<HostingController> content) {
  @autoreleasepool {
    native_->setContent(std::move(content));
  }
}

void MacPopover::setBehavior(PopoverBehavior behavior) {
  [native_->popover() setBehavior:behavior == PopoverBehavior::transient
                                      ? NSPopoverBehaviorTransient
                                      : NSPopoverBehaviorApplicationDefined];
}

bool MacPopover::isShown() const {
  return native_->isShown();
}

void MacPopover::show(StatusItemButton& button, RectEdge edge) {
  native_->show(viewOf(button), nativeEdge(edge));
}

void MacPopover::performClose(Sender) {
  native_->performClose();
}

void* MacPopover::popover() const {
  return native_->popover();
}

}  // namespace quillmont
