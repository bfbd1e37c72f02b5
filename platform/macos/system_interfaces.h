// What of the system's classes the host uses, for the self-check. A script of tests/cross compares
// this with the built program, and writes it anew.
#pragma once

#include "platform/macos/self_check.h"

namespace quillmont {

inline constexpr SystemInterface kSystemInterfaces[] = {
    {"NSAlert",
     "-addButtonWithTitle: -runModal -setAlertStyle: -setInformativeText: -setMessageText: "
     "-window"},
    {"NSAppearance", "-performAsCurrentDrawingAppearance:"},
    {"NSApplication",
     "+sharedApplication -activateIgnoringOtherApps: -activationPolicy -currentEvent "
     "-disableRelaunchOnLogin -hide: -isActive -keyWindow -modalWindow -run "
     "-setActivationPolicy: -setDelegate: -terminate: -unhideWithoutActivation"},
    {"NSArray",
     "+array +arrayWithObjects:count: -containsObject: -count "
     "-countByEnumeratingWithState:objects:count:"},
    {"NSAttributedString",
     "-boundingRectWithSize:options: -initWithString:attributes: -length -size"},
    {"NSBezierPath",
     "+bezierPath +bezierPathWithOvalInRect: +bezierPathWithRect: "
     "+bezierPathWithRoundedRect:xRadius:yRadius: -bounds -closePath "
     "-curveToPoint:controlPoint1:controlPoint2: -fill -lineToPoint: -moveToPoint: "
     "-setLineWidth: -stroke"},
    {"NSBundle", "+mainBundle -bundleIdentifier -bundlePath -executablePath"},
    {"NSButton",
     "-setAttributedTitle: -setBordered: -setButtonType: -setContentTintColor: -setImage: "
     "-setKeyEquivalent: -setNextState -setState: -setTitle: -state"},
    {"NSCell", "-setLineBreakMode: -setTruncatesLastVisibleLine: -setWraps:"},
    {"NSCharacterSet", "+whitespaceCharacterSet"},
    {"NSClipView", "-scrollToPoint: -setDocumentView: -setDrawsBackground:"},
    {"NSColor",
     "+blackColor +clearColor +colorWithName:dynamicProvider: +colorWithWhite:alpha: "
     "+controlBackgroundColor +labelColor +secondaryLabelColor +separatorColor "
     "+systemCyanColor +systemGreenColor +systemOrangeColor +systemRedColor +whiteColor "
     "+windowBackgroundColor -alphaComponent -colorUsingColorSpace: -colorWithAlphaComponent: "
     "-set -setFill -setStroke"},
    {"NSColorSpace", "+sRGBColorSpace"},
    {"NSControl",
     "-action -cell -isEnabled -performClick: -sendAction:to: -sendActionOn: -setAction: "
     "-setAlignment: -setAttributedStringValue: -setLineBreakMode: -setTarget: -target"},
    {"NSData", "+dataWithBytes:length: -bytes -length"},
    {"NSDate",
     "+dateWithTimeIntervalSince1970: +distantPast -compare: -timeIntervalSince1970 "
     "-timeIntervalSinceReferenceDate"},
    {"NSDictionary",
     "+dictionaryWithObjects:forKeys:count: -count -countByEnumeratingWithState:objects:count: "
     "-objectForKey:"},
    {"NSError", "-localizedDescription"},
    {"NSEvent",
     "+addGlobalMonitorForEventsMatchingMask:handler: +removeMonitor: -characters -isARepeat "
     "-locationInWindow -timestamp -type -window"},
    {"NSFileManager", "+defaultManager -URLsForDirectory:inDomains:"},
    {"NSFont", "+systemFontOfSize:weight:"},
    {"NSGraphicsContext",
     "+restoreGraphicsState +saveGraphicsState -restoreGraphicsState -saveGraphicsState"},
    {"NSImage",
     "+imageWithSize:flipped:drawingHandler: "
     "+imageWithSystemSymbolName:accessibilityDescription: -imageWithSymbolConfiguration: "
     "-setTemplate: -size"},
    {"NSImageSymbolConfiguration", "+configurationWithPointSize:weight:"},
    {"NSImageView", "-setContentTintColor: -setImage: -setImageAlignment: -setImageScaling:"},
    {"NSMutableArray", "+arrayWithCapacity: -addObject: -addObjectsFromArray:"},
    {"NSMutableDictionary", "+dictionaryWithCapacity: -setObject:forKey:"},
    {"NSMutableParagraphStyle",
     "-setAlignment: -setLineBreakMode: -setMaximumLineHeight: -setMinimumLineHeight:"},
    {"NSNotificationCenter", "+defaultCenter -addObserver:selector:name:object: -removeObserver:"},
    {"NSNumber",
     "+numberWithBool: +numberWithDouble: +numberWithInt: +numberWithInteger: "
     "+numberWithLongLong: +numberWithUnsignedLongLong: -boolValue -compare: -doubleValue "
     "-longLongValue -unsignedLongLongValue"},
    {"NSObject",
     "-performSelector:withObject:afterDelay:inModes: "
     "-performSelectorOnMainThread:withObject:waitUntilDone:modes:"},
    {"NSPopover",
     "-behavior -close -contentSize -isShown -performClose: -setBehavior: "
     "-setContentViewController: -setDelegate: -setPositioningRect: "
     "-showRelativeToRect:ofView:preferredEdge:"},
    {"NSProcessInfo",
     "+processInfo -beginActivityWithOptions:reason: -endActivity: -processIdentifier "
     "-processName"},
    {"NSPropertyListSerialization",
     "+dataWithPropertyList:format:options:error: +propertyListWithData:options:format:error:"},
    {"NSResponder",
     "-acceptsFirstResponder -becomeFirstResponder -keyDown: -mouseDown: -mouseDragged: "
     "-mouseEntered: -mouseExited: -mouseUp:"},
    {"NSRunLoop", "+currentRunLoop +mainRunLoop -addTimer:forMode:"},
    {"NSRunningApplication",
     "+runningApplicationsWithBundleIdentifier: -bundleIdentifier -launchDate "
     "-processIdentifier"},
    {"NSScreen", "+screens -backingScaleFactor -frame"},
    {"NSScrollView",
     "-contentSize -contentView -reflectScrolledClipView: -setAutohidesScrollers: "
     "-setAutomaticallyAdjustsContentInsets: -setBorderType: -setDocumentView: "
     "-setDrawsBackground: -setHasHorizontalScroller: -setHasVerticalScroller: "
     "-setHorizontalScrollElasticity: -setScrollerStyle:"},
    {"NSSegmentedControl",
     "-segmentCount -selectedSegment -setLabel:forSegment: -setSegmentCount: "
     "-setSegmentDistribution: -setSelectedSegment: -setTrackingMode:"},
    {"NSShadow", "-set -setShadowBlurRadius: -setShadowColor: -setShadowOffset:"},
    {"NSStatusBar", "+systemStatusBar -removeStatusItem: -statusItemWithLength:"},
    {"NSStatusItem", "-button -length"},
    {"NSString",
     "-characterAtIndex: -dataUsingEncoding:allowLossyConversion: -fileSystemRepresentation "
     "-initWithBytes:length:encoding: -isEqualToString: -length "
     "-rangeOfComposedCharacterSequenceAtIndex: -stringByAppendingString: "
     "-stringByTrimmingCharactersInSet: -substringToIndex:"},
    {"NSSwitch", "-setState: -state"},
    {"NSTextField",
     "-setBezeled: -setBordered: -setDrawsBackground: -setEditable: -setMaximumNumberOfLines: "
     "-setSelectable:"},
    {"NSTimer", "+timerWithTimeInterval:target:selector:userInfo:repeats: -invalidate"},
    {"NSTrackingArea", "-initWithRect:options:owner:userInfo:"},
    {"NSURL", "-path"},
    {"NSUserDefaults",
     "+standardUserDefaults -objectForKey: -removePersistentDomainForName: -setBool:forKey: "
     "-setDouble:forKey: -setObject:forKey: -synchronize"},
    {"NSValue", "-objCType"},
    {"NSView",
     "-acceptsFirstMouse: -accessibilityValue -addSubview: -addSubview:positioned:relativeTo: "
     "-addTrackingArea: -alignmentRectForFrame: -alignmentRectInsets -bounds -canBecomeKeyView "
     "-convertPoint:fromView: -drawFocusRingMask -drawRect: -focusRingMaskBounds -frame "
     "-frameForAlignmentRect: -hitTest: -initWithFrame: -intrinsicContentSize -isDescendantOf: "
     "-isFlipped -isHidden -isHiddenOrHasHiddenAncestor -isOpaque -mouse:inRect: -nextKeyView "
     "-nextValidKeyView -previousValidKeyView -removeFromSuperview -removeTrackingArea: "
     "-scrollRectToVisible: -setAccessibilityElement: -setAccessibilityHelp: "
     "-setAccessibilityLabel: -setAccessibilityRole: -setAccessibilitySubrole: -setAlphaValue: "
     "-setFrame: -setFrameSize: -setNeedsDisplay: -setNextKeyView: "
     "-setPostsBoundsChangedNotifications: -setSubviews: -setToolTip: -subviews -toolTip "
     "-viewDidChangeBackingProperties -viewDidChangeEffectiveAppearance -viewDidMoveToWindow "
     "-visibleRect -window"},
    {"NSViewController",
     "-initWithNibName:bundle: -preferredContentSize -setPreferredContentSize: -setTitle: "
     "-setView:"},
    {"NSWindow",
     "-backingScaleFactor -close -contentView -firstResponder -frame -isVisible "
     "-makeFirstResponder: -makeKeyWindow -mouseLocationOutsideOfEventStream "
     "-setAllowsToolTipsWhenApplicationIsInactive: -setAutorecalculatesKeyViewLoop: "
     "-setPreventsApplicationTerminationWhenModal:"},
    {"NSWorkspace", "+sharedWorkspace -accessibilityDisplayShouldReduceMotion -notificationCenter"},
};

}  // namespace quillmont
