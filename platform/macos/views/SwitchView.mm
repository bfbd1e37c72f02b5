#include "platform/macos/views/SwitchView.h"

#include "platform/macos/served_modes.h"
#include "platform/macos/views/theme.h"
#include "platform/view/figures.h"

namespace {

constexpr double kRim = 2;  ///< between the knob and the edge
constexpr double kSlideSeconds = 0.14;
constexpr double kFrameSeconds = 1.0 / 60;

NSBezierPath* pill(NSRect rect) {
  const double radius = rect.size.height / 2;
  return [NSBezierPath bezierPathWithRoundedRect:rect xRadius:radius yRadius:radius];
}

void drawKnob(NSRect knob) {
  [[NSColor colorWithWhite:0 alpha:0.09] setFill];
  [[NSBezierPath bezierPathWithOvalInRect:NSOffsetRect(knob, 0, 1)] fill];
  [[NSColor colorWithWhite:0 alpha:0.05] setFill];
  [[NSBezierPath bezierPathWithOvalInRect:NSInsetRect(knob, -0.5, -0.5)] fill];
  [[NSColor whiteColor] setFill];
  [[NSBezierPath bezierPathWithOvalInRect:knob] fill];
}

}  // namespace

@implementation QMSwitchArea

- (void)dealloc {
  [_slide invalidate];
  [super dealloc];
}

- (NSSize)intrinsicContentSize {
  return NSMakeSize(quillmont::kSwitchSize.width, quillmont::kSwitchSize.height);
}

- (id)accessibilityValue {
  return [NSNumber numberWithInteger:[self state]];
}

- (NSBezierPath*)focusOutline {
  return pill([self bounds]);
}

- (void)showState {
  const double end = [self state] == NSControlStateValueOn ? 1 : 0;
  [self stopSliding];
  if ([self window] == nil ||
      [[NSWorkspace sharedWorkspace] accessibilityDisplayShouldReduceMotion]) {
    _position = end;
    [self setNeedsDisplay:YES];
  } else if (_position != end) {
    [self slide];
  }
}

/// The timer keeps the view until the knob has arrived.
- (void)slide {
  _slide = [NSTimer timerWithTimeInterval:kFrameSeconds
                                   target:self
                                 selector:@selector(slideOn:)
                                 userInfo:nil
                                  repeats:YES];
  for (NSString* mode in quillmont::servedModes()) {
    [[NSRunLoop currentRunLoop] addTimer:_slide forMode:mode];
  }
}

- (void)slideOn:(NSTimer*)timer {
  const double end = [self state] == NSControlStateValueOn ? 1 : 0;
  const double step = kFrameSeconds / kSlideSeconds;
  _position = end > _position ? fmin(end, _position + step) : fmax(end, _position - step);
  [self setNeedsDisplay:YES];
  if (_position == end) [self stopSliding];
}

- (void)stopSliding {
  [_slide invalidate];
  _slide = nil;
}

- (void)drawRect:(NSRect)dirty {
  using quillmont::Color;
  const NSRect track = [self bounds];
  [quillmont::colorFor(Color::primary.opacity(0.2 * (1 - _position))) setFill];
  [pill(track) fill];
  [quillmont::colorFor(tint.opacity(_position)) setFill];
  [pill(track) fill];
  if ([self isPressing]) {
    [[NSColor colorWithWhite:0 alpha:0.09] setFill];
    [pill(track) fill];
  }
  const double side = track.size.height - 2 * kRim;
  const double way = track.size.width - side - 2 * kRim;
  drawKnob(NSMakeRect(track.origin.x + kRim + way * _position, track.origin.y + kRim, side, side));
}

@end

namespace quillmont {

SwitchView::SwitchView(ViewId id, ViewActions& actions)
    : view_(adopt([[QMSwitchArea alloc] initWithFrame:NSZeroRect])) {
  [view_ setButtonType:NSButtonTypePushOnPushOff];
  [view_ setAccessibilityRole:NSAccessibilityCheckBoxRole];
  [view_ setAccessibilitySubrole:NSAccessibilitySwitchSubrole];
  auto* const area = view_.get();
  area->onPress = [id, &actions, area] {
    const bool isOn = [area state] == NSControlStateValueOn;
    [area showState];
    actions.toggle(id, isOn);
  };
  area->onPressing = [area] { [area setNeedsDisplay:YES]; };
}

SwitchView::~SwitchView() {
  view_.get()->onPress = nullptr;
  view_.get()->onPressing = nullptr;
}

void SwitchView::take(const NativeProperties& properties) {
  const auto& content = contentOf<NativeSwitch>(properties);
  view_.get()->tint = content.tint;
  [view_ setState:content.isOn ? NSControlStateValueOn : NSControlStateValueOff];
  [view_ setAlphaValue:properties.opacity];
  [view_ showState];
}

}  // namespace quillmont
