// Buttons, labels, pictures, segments, switches and scrolling.
#pragma once

#include <AppKit/views.h>

#pragma clang assume_nonnull begin

@class NSMenuItem;
typedef NSInteger NSControlStateValue;
enum : NSControlStateValue {
  NSControlStateValueMixed = -1,
  NSControlStateValueOff = 0,
  NSControlStateValueOn = 1
};
QM_ENUM(NSUInteger, NSControlSize){NSControlSizeRegular = 0, NSControlSizeSmall = 1,
                                   NSControlSizeMini = 2, NSControlSizeLarge = 3};
QM_ENUM(NSUInteger, NSCellImagePosition){NSNoImage = 0, NSImageOnly = 1, NSImageLeft = 2};
QM_ENUM(NSUInteger, NSImageScaling){NSImageScaleProportionallyDown = 0,
                                    NSImageScaleAxesIndependently = 1, NSImageScaleNone = 2,
                                    NSImageScaleProportionallyUpOrDown = 3};
QM_ENUM(NSUInteger, NSImageAlignment){NSImageAlignCenter = 0};
QM_ENUM(NSUInteger, NSButtonType){NSButtonTypeMomentaryLight = 0, NSButtonTypePushOnPushOff = 1,
                                  NSButtonTypeToggle = 2,         NSButtonTypeSwitch = 3,
                                  NSButtonTypeRadio = 4,          NSButtonTypeMomentaryChange = 5,
                                  NSButtonTypeOnOff = 6,          NSButtonTypeMomentaryPushIn = 7};
QM_ENUM(NSUInteger, NSSegmentSwitchTracking){NSSegmentSwitchTrackingSelectOne = 0};
QM_ENUM(NSInteger, NSSegmentDistribution){NSSegmentDistributionFit = 0,
                                          NSSegmentDistributionFill = 1,
                                          NSSegmentDistributionFillEqually = 2};
QM_ENUM(NSUInteger, NSBorderType){NSNoBorder = 0, NSLineBorder = 1, NSBezelBorder = 2};
QM_ENUM(NSInteger, NSScrollerStyle){NSScrollerStyleLegacy = 0, NSScrollerStyleOverlay = 1};
QM_ENUM(NSInteger, NSScrollElasticity){NSScrollElasticityAutomatic = 0, NSScrollElasticityNone = 1,
                                       NSScrollElasticityAllowed = 2};

@interface NSCell : NSObject <NSCopying>
@property BOOL wraps;
@property(getter=isScrollable) BOOL scrollable;
@property BOOL truncatesLastVisibleLine;
@property BOOL usesSingleLineMode;
@property NSLineBreakMode lineBreakMode;
@property(readonly) NSSize cellSize;
- (NSSize)cellSizeForBounds:(NSRect)bounds;
@end

@interface NSActionCell : NSCell
@end

@interface NSTextFieldCell : NSActionCell
@end

@interface NSControl : NSView
@property(nullable, weak) id target;
@property(nullable) SEL action;
@property NSInteger tag;
@property(getter=isEnabled) BOOL enabled;
@property NSControlSize controlSize;
@property(copy) NSString* stringValue;
@property(copy) NSAttributedString* attributedStringValue;
@property(nullable, copy) NSFont* font;
@property NSTextAlignment alignment;
@property NSLineBreakMode lineBreakMode;
@property BOOL usesSingleLineMode;
@property BOOL allowsExpansionToolTips;
@property BOOL refusesFirstResponder;
@property(nullable, strong) __kindof NSCell* cell;
- (NSSize)sizeThatFits:(NSSize)size;
- (void)sizeToFit;
- (BOOL)sendAction:(nullable SEL)action to:(nullable id)target;
- (NSInteger)sendActionOn:(NSEventMask)mask;
- (void)performClick:(nullable id)sender;
@end

@interface NSTextField : NSControl
@property(nullable, copy) NSColor* textColor;
@property(nullable, copy) NSColor* backgroundColor;
@property BOOL drawsBackground;
@property(getter=isBordered) BOOL bordered;
@property(getter=isBezeled) BOOL bezeled;
@property(getter=isEditable) BOOL editable;
@property(getter=isSelectable) BOOL selectable;
@property CGFloat preferredMaxLayoutWidth;
@property NSInteger maximumNumberOfLines;
@property BOOL allowsDefaultTighteningForTruncation;
+ (instancetype)labelWithString:(NSString*)text;
+ (instancetype)wrappingLabelWithString:(NSString*)text;
@end

@interface NSImageView : NSControl
@property(nullable, strong) NSImage* image;
@property(nullable, copy) NSColor* contentTintColor;
@property NSImageScaling imageScaling;
@property NSImageAlignment imageAlignment;
+ (instancetype)imageViewWithImage:(NSImage*)image;
@end

@interface NSButton : NSControl
@property(copy) NSString* title;
@property(copy) NSAttributedString* attributedTitle;
@property(nullable, strong) NSImage* image;
@property NSCellImagePosition imagePosition;
@property(getter=isBordered) BOOL bordered;
@property(getter=isTransparent) BOOL transparent;
@property NSControlStateValue state;
@property BOOL allowsMixedState;
@property(copy) NSString* keyEquivalent;
@property(nullable, copy) NSColor* contentTintColor;
@property(getter=isHighlighted) BOOL highlighted;
- (void)setNextState;
- (void)setButtonType:(NSButtonType)type;
- (void)highlight:(BOOL)flag;
+ (instancetype)checkboxWithTitle:(NSString*)title
                           target:(nullable id)target
                           action:(nullable SEL)action;
@end

@interface NSSwitch : NSControl
@property NSControlStateValue state;
@end

@interface NSSegmentedControl : NSControl
@property NSInteger segmentCount;
@property NSInteger selectedSegment;
@property NSSegmentSwitchTracking trackingMode;
@property NSSegmentDistribution segmentDistribution;
- (void)setLabel:(NSString*)label forSegment:(NSInteger)segment;
- (nullable NSString*)labelForSegment:(NSInteger)segment;
- (void)setWidth:(CGFloat)width forSegment:(NSInteger)segment;
@end

@interface NSClipView : NSView
@property(nullable, strong) NSView* documentView;
@property(readonly) NSRect documentRect;
@property(readonly) NSRect documentVisibleRect;
@property BOOL drawsBackground;
- (void)scrollToPoint:(NSPoint)origin;
- (NSRect)constrainBoundsRect:(NSRect)bounds;
@end

@interface NSScrollView : NSView
@property(nullable, strong) __kindof NSView* documentView;
@property(strong) NSClipView* contentView;
@property(readonly) NSSize contentSize;
@property BOOL hasVerticalScroller;
@property BOOL hasHorizontalScroller;
@property BOOL autohidesScrollers;
@property BOOL drawsBackground;
@property NSBorderType borderType;
@property NSScrollerStyle scrollerStyle;
@property NSScrollElasticity verticalScrollElasticity;
@property NSScrollElasticity horizontalScrollElasticity;
@property BOOL automaticallyAdjustsContentInsets;
- (void)reflectScrolledClipView:(NSClipView*)view;
- (void)flashScrollers;
@end

@interface NSView (NSViewPostsBoundsChanges)
@property BOOL postsBoundsChangedNotifications;
@end

#pragma clang assume_nonnull end
