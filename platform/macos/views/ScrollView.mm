#include "platform/macos/views/ScrollView.h"

#include <algorithm>
#include <utility>

@implementation QMScrollView

- (id)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self == nil) return nil;
  [self setBorderType:NSNoBorder];
  [self setDrawsBackground:NO];
  [[self contentView] setDrawsBackground:NO];
  [self setAutomaticallyAdjustsContentInsets:NO];
  [self setHasHorizontalScroller:NO];
  [self setHasVerticalScroller:YES];
  [self setAutohidesScrollers:YES];
  [self setScrollerStyle:NSScrollerStyleOverlay];
  [self setHorizontalScrollElasticity:NSScrollElasticityNone];
  [[self contentView] setPostsBoundsChangedNotifications:YES];
  [[NSNotificationCenter defaultCenter] addObserver:self
                                           selector:@selector(contentDidMove:)
                                               name:NSViewBoundsDidChangeNotification
                                             object:[self contentView]];
  return self;
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  [super dealloc];
}

/// AppKit sets what the user prefers whenever that changes, and a scroller that takes room would
/// lie over the right edge of the content.
- (void)setScrollerStyle:(NSScrollerStyle)style {
  (void)style;
  [super setScrollerStyle:NSScrollerStyleOverlay];
}

- (void)contentDidMove:(NSNotification*)notification {
  const auto told = onScroll;
  if (told) told();
}

@end

namespace quillmont {

ScrollView::ScrollView(std::function<void()> onScroll)
    : view_(adopt([[QMScrollView alloc] initWithFrame:NSZeroRect])),
      content_(adopt([[QMPanelArea alloc] initWithFrame:NSZeroRect])) {
  [view_ setDocumentView:content_];
  view_.get()->onScroll = std::move(onScroll);
}

ScrollView::~ScrollView() {
  view_.get()->onScroll = nullptr;
}

void ScrollView::take(const NativeProperties& properties) {
  contentSize_ = contentOf<NativeScroll>(properties).contentSize;
  [view_ setAlphaValue:properties.opacity];
  arrange();
}

void ScrollView::place(const Rect& frame) {
  const auto offset = [[view_ contentView] bounds].origin.y;
  MountedView::place(frame);
  arrange();
  scrollTo(offset);
}

/// An offset from above the top is content that is bouncing back by itself.
void ScrollView::arrange() {
  const auto offset = [[view_ contentView] bounds].origin.y;
  const auto room = [view_ contentSize];
  const NSSize size =
      NSMakeSize(std::max<double>(contentSize_.width, room.width), contentSize_.height);
  if (!NSEqualSizes(size, [content_ frame].size)) [content_ setFrameSize:size];
  if (offset >= 0) scrollTo(offset);
}

void ScrollView::scrollTo(double offset) {
  NSClipView* const clip = [view_ contentView];
  const auto bounds = [clip bounds];
  const double most = std::max(0.0, [content_ frame].size.height - bounds.size.height);
  const double next = std::min(offset, most);
  if (bounds.origin.y == next) return;
  [clip scrollToPoint:NSMakePoint(0, next)];
  [view_ reflectScrolledClipView:clip];
}

}  // namespace quillmont
