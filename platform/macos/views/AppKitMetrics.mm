#include "platform/macos/views/AppKitMetrics.h"

#include <algorithm>
#include <cmath>

#include "platform/macos/Retained.h"
#include "platform/macos/strings.h"
#include "platform/macos/views/CheckboxView.h"
#include "platform/macos/views/SegmentsView.h"
#include "platform/macos/views/SwitchView.h"
#include "platform/macos/views/mounted_views.h"
#include "platform/macos/views/symbols.h"
#include "platform/macos/views/text_attributes.h"

namespace quillmont {
namespace {

/// Wider than any text, and still a length in which fractions of a point count.
constexpr double kUnbounded = 1e6;

Size sizeOf(NSSize size) {
  return {size.width, size.height};
}

double sharpestScale() {
  double scale = 1;
  for (NSScreen* screen in [NSScreen screens]) {
    scale = std::max<double>(scale, [screen backingScaleFactor]);
  }
  return scale;
}

NSSize roomFor(NSString* text, const Font& font, double width) {
  NSAttributedString* const set =
      attributedText({.text = utf8String(text), .font = font, .color = {}});
  return [set boundingRectWithSize:NSMakeSize(width, kUnbounded)
                           options:NSStringDrawingUsesLineFragmentOrigin]
      .size;
}

/// The first `length` units of the text, but no part of a letter, and an ellipsis.
NSString* cutAfter(NSString* text, NSUInteger length) {
  const NSUInteger end = length < [text length]
                             ? [text rangeOfComposedCharacterSequenceAtIndex:length].location
                             : [text length];
  NSString* const kept = [[text substringToIndex:end]
      stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceCharacterSet]];
  return [kept stringByAppendingString:@"…"];
}

/// Of the longest beginning that there is room for.
double widthOfCut(NSString* text, const Font& font, double width) {
  NSUInteger fits = 0, tooLong = [text length];
  while (fits + 1 < tooLong) {
    const NSUInteger middle = (fits + tooLong) / 2;
    const bool isRoom = roomFor(cutAfter(text, middle), font, kUnbounded).width <= width;
    (isRoom ? fits : tooLong) = middle;
  }
  return std::min(width, roomFor(cutAfter(text, fits), font, kUnbounded).width);
}

}  // namespace

struct AppKitMetrics::Samples {
  const Retained<QMCheckboxView*> checkbox =
      adopt([[QMCheckboxView alloc] initWithFrame:NSZeroRect]);
  const Retained<QMSegmentsView*> segments =
      adopt([[QMSegmentsView alloc] initWithFrame:NSZeroRect]);
  const Retained<QMSwitchArea*> toggle = adopt([[QMSwitchArea alloc] initWithFrame:NSZeroRect]);
};

AppKitMetrics::AppKitMetrics(const AppKitMount* mount)
    : mount_(mount), samples_(std::make_unique<Samples>()) {}

AppKitMetrics::~AppKitMetrics() = default;

double AppKitMetrics::scale() const {
  NSWindow* const window = mount_ ? [panelView(*mount_) window] : nil;
  return window != nil ? [window backingScaleFactor] : sharpestScale();
}

Size AppKitMetrics::textSize(const std::string& text, const Font& font, std::optional<double> width,
                             std::optional<int> lineLimit) const {
  @autoreleasepool {
    const double line = lineHeight(font);
    if (text.empty()) return {0, line};
    // A single line is cut off between letters, and not broken before a word.
    const bool isBroken = width && lineLimit != 1;
    const auto room = roomFor(foundationString(text), font, isBroken ? *width : kUnbounded);
    double widest = room.width;
    if (width && widest > *width) {
      widest = isBroken ? *width : widthOfCut(foundationString(text), font, *width);
    }
    widest = std::ceil(widest * scale() - 0.001) / scale();
    if (width) widest = std::min(widest, *width);
    const double needed = std::max(1.0, std::round(room.height / line));
    const double lines = lineLimit ? std::min<double>(needed, std::max(1, *lineLimit)) : needed;
    return {widest, lines * line};
  }
}

Size AppKitMetrics::symbolSize(const std::string& name, const Font& font) const {
  @autoreleasepool {
    return sizeOf([symbolImage(name, font) size]);
  }
}

Size AppKitMetrics::switchSize() const {
  return sizeOf([samples_->toggle intrinsicContentSize]);
}

Size AppKitMetrics::checkboxSize(const std::string& title, const Font& font) const {
  @autoreleasepool {
    return sizeOf(CheckboxView::sizeOf(samples_->checkbox, title, font));
  }
}

Size AppKitMetrics::segmentsSize(const std::vector<std::string>& labels) const {
  @autoreleasepool {
    if (labels.empty()) return {0, 0};
    SegmentsView::setLabels(samples_->segments, labels);
    return sizeOf([samples_->segments intrinsicContentSize]);
  }
}

}  // namespace quillmont
