// Colours, fonts, pictures, paths, shadows and text as it is drawn.
#pragma once

#include <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

@class NSAppearance, NSColor, NSFont, NSImage;
typedef NSString* NSAppearanceName;
typedef CGFloat NSFontWeight;
typedef NSString* NSFontTextStyle;

QM_ENUM(NSUInteger, NSCompositingOperation){
    NSCompositingOperationClear = 0,      NSCompositingOperationCopy = 1,
    NSCompositingOperationSourceOver = 2, NSCompositingOperationSourceIn = 3,
    NSCompositingOperationSourceOut = 4,  NSCompositingOperationSourceAtop = 5};
// On arm64 centred text is 1 and right-aligned text 2, on x86_64 the other way round.
QM_ENUM(NSInteger, NSTextAlignment){NSTextAlignmentLeft = 0, NSTextAlignmentCenter = 1,
                                    NSTextAlignmentRight = 2, NSTextAlignmentJustified = 3,
                                    NSTextAlignmentNatural = 4};
QM_ENUM(NSUInteger, NSLineBreakMode){
    NSLineBreakByWordWrapping = 0,   NSLineBreakByCharWrapping = 1,
    NSLineBreakByClipping = 2,       NSLineBreakByTruncatingHead = 3,
    NSLineBreakByTruncatingTail = 4, NSLineBreakByTruncatingMiddle = 5};
QM_FLAGS(NSInteger, NSStringDrawingOptions){NSStringDrawingUsesLineFragmentOrigin = 1 << 0,
                                            NSStringDrawingUsesFontLeading = 1 << 1,
                                            NSStringDrawingTruncatesLastVisibleLine = 1 << 5};

extern "C" {
extern const NSAppearanceName NSAppearanceNameAqua;
extern const NSAppearanceName NSAppearanceNameDarkAqua;
extern const NSFontWeight NSFontWeightRegular;
extern const NSFontWeight NSFontWeightMedium;
extern const NSFontWeight NSFontWeightSemibold;
extern const NSFontWeight NSFontWeightBold;
extern const NSFontWeight NSFontWeightHeavy;
extern const NSFontTextStyle NSFontTextStyleHeadline;
extern const NSFontTextStyle NSFontTextStyleSubheadline;
extern const NSFontTextStyle NSFontTextStyleBody;
extern const NSFontTextStyle NSFontTextStyleCaption1;
extern const NSAttributedStringKey NSFontAttributeName;
extern const NSAttributedStringKey NSForegroundColorAttributeName;
extern const NSAttributedStringKey NSParagraphStyleAttributeName;
void NSRectFill(NSRect rect);
void NSRectFillUsingOperation(NSRect rect, NSCompositingOperation operation);
}

@interface NSAppearance : NSObject
@property(readonly, copy) NSAppearanceName name;
@property(class, readonly, strong) NSAppearance* currentDrawingAppearance;
+ (nullable NSAppearance*)appearanceNamed:(NSAppearanceName)name;
- (nullable NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName>*)names;
- (void)performAsCurrentDrawingAppearance:(__attribute__((noescape))void (^)(void))block;
@end

@interface NSColorSpace : NSObject
@property(class, readonly, strong) NSColorSpace* sRGBColorSpace;
@property(class, readonly, strong) NSColorSpace* deviceRGBColorSpace;
@end

@interface NSColor : NSObject <NSCopying>
@property(class, readonly, strong) NSColor* labelColor;
@property(class, readonly, strong) NSColor* secondaryLabelColor;
@property(class, readonly, strong) NSColor* tertiaryLabelColor;
@property(class, readonly, strong) NSColor* separatorColor;
@property(class, readonly, strong) NSColor* windowBackgroundColor;
@property(class, readonly, strong) NSColor* controlBackgroundColor;
@property(class, readonly, strong) NSColor* controlAccentColor;
@property(class, readonly, strong) NSColor* keyboardFocusIndicatorColor;
@property(class, readonly, strong) NSColor* textColor;
@property(class, readonly, strong) NSColor* systemRedColor;
@property(class, readonly, strong) NSColor* systemGreenColor;
@property(class, readonly, strong) NSColor* systemBlueColor;
@property(class, readonly, strong) NSColor* systemOrangeColor;
@property(class, readonly, strong) NSColor* systemYellowColor;
@property(class, readonly, strong) NSColor* systemGrayColor;
@property(class, readonly, strong) NSColor* systemCyanColor;
@property(class, readonly, strong) NSColor* clearColor;
@property(class, readonly, strong) NSColor* blackColor;
@property(class, readonly, strong) NSColor* whiteColor;
@property(readonly) CGFloat redComponent;
@property(readonly) CGFloat greenComponent;
@property(readonly) CGFloat blueComponent;
@property(readonly) CGFloat alphaComponent;
+ (NSColor*)colorWithWhite:(CGFloat)white alpha:(CGFloat)alpha;
+ (NSColor*)colorWithCalibratedWhite:(CGFloat)white alpha:(CGFloat)alpha;
+ (NSColor*)colorWithSRGBRed:(CGFloat)red
                       green:(CGFloat)green
                        blue:(CGFloat)blue
                       alpha:(CGFloat)alpha;
+ (NSColor*)colorWithName:(nullable NSString*)name
          dynamicProvider:(NSColor* (^)(NSAppearance* appearance))provider;
- (NSColor*)colorWithAlphaComponent:(CGFloat)alpha;
- (nullable NSColor*)colorUsingColorSpace:(NSColorSpace*)space;
- (void)set;
- (void)setFill;
- (void)setStroke;
@end

@interface NSFont : NSObject <NSCopying>
@property(readonly, copy) NSString* fontName;
@property(readonly) CGFloat pointSize;
@property(readonly) CGFloat ascender;
@property(readonly) CGFloat descender;
@property(readonly) CGFloat leading;
@property(readonly) CGFloat capHeight;
@property(readonly) CGFloat xHeight;
+ (NSFont*)systemFontOfSize:(CGFloat)size;
+ (NSFont*)systemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight;
+ (NSFont*)boldSystemFontOfSize:(CGFloat)size;
@end

QM_ENUM(NSInteger, NSImageSymbolScale){NSImageSymbolScaleSmall = 1, NSImageSymbolScaleMedium = 2,
                                       NSImageSymbolScaleLarge = 3};

@interface NSImageSymbolConfiguration : NSObject <NSCopying>
+ (instancetype)configurationWithPointSize:(CGFloat)size weight:(NSFontWeight)weight;
+ (instancetype)configurationWithPointSize:(CGFloat)size
                                    weight:(NSFontWeight)weight
                                     scale:(NSImageSymbolScale)scale;
@end

@interface NSImage : NSObject <NSCopying>
@property NSSize size;
@property NSRect alignmentRect;
@property(nullable, copy) NSString* accessibilityDescription;
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)name
                          accessibilityDescription:(nullable NSString*)description;
+ (NSImage*)imageWithSize:(NSSize)size
                  flipped:(BOOL)flipped
           drawingHandler:(BOOL (^)(NSRect rect))handler;
- (instancetype)initWithSize:(NSSize)size;
- (nullable NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration;
- (BOOL)isTemplate;
- (void)setTemplate:(BOOL)isTemplate;
- (void)drawInRect:(NSRect)rect;
- (void)drawInRect:(NSRect)rect
          fromRect:(NSRect)source
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)fraction
    respectFlipped:(BOOL)respectFlipped
             hints:(nullable NSDictionary<NSString*, id>*)hints;
@end

@interface NSBezierPath : NSObject <NSCopying>
@property CGFloat lineWidth;
+ (NSBezierPath*)bezierPath;
+ (NSBezierPath*)bezierPathWithRect:(NSRect)rect;
+ (NSBezierPath*)bezierPathWithOvalInRect:(NSRect)rect;
+ (NSBezierPath*)bezierPathWithRoundedRect:(NSRect)rect xRadius:(CGFloat)x yRadius:(CGFloat)y;
- (void)moveToPoint:(NSPoint)point;
- (void)lineToPoint:(NSPoint)point;
- (void)curveToPoint:(NSPoint)end controlPoint1:(NSPoint)first controlPoint2:(NSPoint)second;
- (void)closePath;
- (void)fill;
- (void)stroke;
- (void)addClip;
- (void)appendBezierPath:(NSBezierPath*)path;
@end

@interface NSGraphicsContext : NSObject
@property(class, nullable, strong) NSGraphicsContext* currentContext;
@property NSCompositingOperation compositingOperation;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
- (void)saveGraphicsState;
- (void)restoreGraphicsState;
@end

@interface NSShadow : NSObject <NSCopying>
@property NSSize shadowOffset;
@property CGFloat shadowBlurRadius;
@property(nullable, copy) NSColor* shadowColor;
- (void)set;
@end

@interface NSParagraphStyle : NSObject <NSCopying>
@property(class, readonly, copy) NSParagraphStyle* defaultParagraphStyle;
@property(readonly) NSTextAlignment alignment;
@property(readonly) NSLineBreakMode lineBreakMode;
@end

@interface NSMutableParagraphStyle : NSParagraphStyle
@property NSTextAlignment alignment;
@property NSLineBreakMode lineBreakMode;
@property CGFloat minimumLineHeight;
@property CGFloat maximumLineHeight;
@end

@class NSStringDrawingContext;

@interface NSAttributedString (NSStringDrawing)
- (NSSize)size;
- (void)drawInRect:(NSRect)rect;
- (void)drawWithRect:(NSRect)rect
             options:(NSStringDrawingOptions)options
             context:(nullable NSStringDrawingContext*)context;
- (NSRect)boundingRectWithSize:(NSSize)size options:(NSStringDrawingOptions)options;
- (NSRect)boundingRectWithSize:(NSSize)size
                       options:(NSStringDrawingOptions)options
                       context:(nullable NSStringDrawingContext*)context;
@end

@interface NSString (NSStringDrawing)
- (NSSize)sizeWithAttributes:(nullable NSDictionary<NSAttributedStringKey, id>*)attributes;
@end

#pragma clang assume_nonnull end
