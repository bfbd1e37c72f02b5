#include "platform/macos/views/SegmentsView.h"

#include "platform/macos/strings.h"

@implementation QMSegmentsView

- (id)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self == nil) return nil;
  [self setTrackingMode:NSSegmentSwitchTrackingSelectOne];
  [self setSegmentDistribution:NSSegmentDistributionFillEqually];
  [self setTarget:self];
  [self setAction:@selector(tellChoice:)];
  return self;
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
  return YES;
}

- (void)mouseDown:(NSEvent*)event {
  const auto alive = quillmont::share(self);
  [super mouseDown:event];
}

- (BOOL)becomeFirstResponder {
  if (![super becomeFirstResponder]) return NO;
  [self scrollRectToVisible:[self bounds]];
  return YES;
}

- (void)tellChoice:(id)sender {
  [[self retain] autorelease];
  const auto told = onChoice;
  if (told) told();
}

@end

namespace quillmont {

SegmentsView::SegmentsView(ViewId id, ViewActions& actions)
    : id_(id), actions_(actions), view_(adopt([[QMSegmentsView alloc] initWithFrame:NSZeroRect])) {
  view_.get()->onChoice = [this] { chosen(); };
}

SegmentsView::~SegmentsView() {
  view_.get()->onChoice = nullptr;
}

void SegmentsView::take(const NativeProperties& properties) {
  const auto& content = contentOf<NativeSegments>(properties);
  setLabels(view_, content.labels);
  setSelected(content.selected);
  [view_ setAlphaValue:properties.opacity];
}

void SegmentsView::setLabels(QMSegmentsView* segments, const std::vector<std::string>& labels) {
  const auto count = static_cast<NSInteger>(labels.size());
  if ([segments segmentCount] != count) [segments setSegmentCount:count];
  for (NSInteger i = 0; i < count; ++i) {
    [segments setLabel:foundationString(labels[static_cast<std::size_t>(i)]) forSegment:i];
  }
}

void SegmentsView::setSelected(std::optional<std::size_t> selected) {
  const auto count = static_cast<std::size_t>([view_ segmentCount]);
  selected_ = selected && *selected < count ? selected : std::nullopt;
  [view_ setSelectedSegment:selected_ ? static_cast<NSInteger>(*selected_) : -1];
}

/// AppKit tells of a click on the selected segment, too.
void SegmentsView::chosen() {
  const NSInteger segment = [view_ selectedSegment];
  if (segment < 0 || selected_ == static_cast<std::size_t>(segment)) return;
  selected_ = static_cast<std::size_t>(segment);
  actions_.select(id_, *selected_);
}

}  // namespace quillmont
