#include "platform/macos/views/text_attributes.h"

#include "platform/macos/Retained.h"
#include "platform/macos/strings.h"
#include "platform/macos/views/theme.h"

namespace quillmont {
namespace {

NSTextAlignment alignmentOf(TextAlignment alignment) {
  switch (alignment) {
    case TextAlignment::leading:
      return NSTextAlignmentLeft;
    case TextAlignment::center:
      return NSTextAlignmentCenter;
    case TextAlignment::trailing:
      return NSTextAlignmentRight;
  }
  return NSTextAlignmentLeft;
}

}  // namespace

NSFontWeight fontWeight(FontWeight weight) {
  switch (weight) {
    case FontWeight::regular:
      return NSFontWeightRegular;
    case FontWeight::medium:
      return NSFontWeightMedium;
    case FontWeight::semibold:
      return NSFontWeightSemibold;
    case FontWeight::bold:
      return NSFontWeightBold;
  }
  return NSFontWeightRegular;
}

NSFont* fontFor(const Font& font) {
  return [NSFont systemFontOfSize:font.size weight:fontWeight(font.weight)];
}

NSAttributedString* attributedText(const NativeLabel& label) {
  const auto style = adopt([[NSMutableParagraphStyle alloc] init]);
  [style setAlignment:alignmentOf(label.alignment)];
  [style setLineBreakMode:label.lineLimit == 1 ? NSLineBreakByTruncatingTail
                                               : NSLineBreakByWordWrapping];
  [style setMinimumLineHeight:lineHeight(label.font)];
  [style setMaximumLineHeight:lineHeight(label.font)];
  NSDictionary* const attributes = @{
    NSFontAttributeName : fontFor(label.font),
    NSForegroundColorAttributeName : colorFor(label.color),
    NSParagraphStyleAttributeName : style.get(),
  };
  return [[[NSAttributedString alloc] initWithString:foundationString(label.text)
                                          attributes:attributes] autorelease];
}

NSAttributedString* attributedTitle(const std::string& title, const Font& font,
                                    const Color& color) {
  return attributedText({.text = title, .font = font, .color = color, .lineLimit = 1});
}

}  // namespace quillmont
