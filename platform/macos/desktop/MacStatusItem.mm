#include "platform/macos/desktop/MacStatusItem.h"

#import <AppKit/AppKit.h>

#include <utility>

#include "platform/macos/Call.h"
#include "platform/macos/Retained.h"
#include "platform/macos/strings.h"

namespace quillmont {

struct MacStatusItem::State {
  std::function<bool()> swallows;
  std::function<void(Sender)> action = [](Sender) {};

  /// On copies: the action may replace itself. An alert is answered first.
  void click(Sender sender) const {
    if ([NSApp modalWindow] != nil || swallows()) return;
    const auto run = action;
    run(sender);
  }
};

/// The bar does not keep its items, nor a button its target.
class MacStatusItem::Native {
 public:
  Native(double length, const std::function<void()>& onClick)
      : item_(share([[NSStatusBar systemStatusBar] statusItemWithLength:length])),
        click_(adopt([[QMCall alloc] initWithFunction:onClick])) {
    [button() setTarget:click_];
    [button() setAction:@selector(fire:)];
    [button() sendActionOn:NSEventMaskLeftMouseDown];
  }
  ~Native() {
    [button() setTarget:nil];
    [[NSStatusBar systemStatusBar] removeStatusItem:item_];
  }
  Native(const Native&) = delete;
  Native& operator=(const Native&) = delete;

  NSStatusBarButton* button() const { return [item_ button]; }

 private:
  const Retained<NSStatusItem*> item_;
  const Retained<QMCall*> click_;
};

MacStatusItem::MacStatusItem(double length, std::function<bool()> swallows)
    : state_(std::make_shared<State>(State{std::move(swallows)})) {
  const Sender sender = static_cast<StatusItemButton*>(this);
  @autoreleasepool {
    native_ = std::make_unique<Native>(length, [weak = std::weak_ptr(state_), sender] {
      if (const auto state = weak.lock()) state->click(sender);
    });
  }
}

MacStatusItem::~MacStatusItem() {
  @autoreleasepool {
    native_ = nullptr;
  }
}

StatusItemButton* MacStatusItem::button() {
  return view() ? this : nullptr;
}

void MacStatusItem::setImage(const std::string& symbolName,
                             const std::string& accessibilityDescription) {
  @autoreleasepool {
    NSString* const description = foundationString(accessibilityDescription);
    NSImage* const image = [NSImage imageWithSystemSymbolName:foundationString(symbolName)
                                     accessibilityDescription:description];
    // As a template it takes the bar's own colour, light or dark.
    [image setTemplate:YES];
    [native_->button() setImage:image];
    [native_->button() setTitle:image != nil ? @"" : description];
  }
}

void MacStatusItem::setAction(std::function<void(Sender)> action) {
  state_->action = std::move(action);
}

void* MacStatusItem::view() const {
  return native_->button();
}

}  // namespace quillmont
