#!/usr/bin/env python3
"""Plants mistakes in the stub SDK and sees that the comparison reports every one.
Usage: compare_sdk_test.py ZIG-FOLDER TYPINGS-FOLDER
"""
import pathlib
import sys
import unittest

import compare_sdk
import sdk_declarations
import typings

PLANTED = """
#pragma clang assume_nonnull begin
@interface NSView (Planted)
@property BOOL frameRotation;
@property NSUInteger heightAdjustLimit;
- (void)setFrameOrgin:(NSPoint)origin;
+ (void)setBoundsOrigin:(NSPoint)origin;
- (BOOL)scaleUnitSquareToSize:(NSSize)size;
- (void)rotateByAngle:(NSString*)angle;
- (void)translateOriginToPoint:(NSPoint)point again:(BOOL)again;
@end
@interface NSStackView : NSControl
@end
@interface NSBanner : NSView
@end
QM_ENUM(NSInteger, NSHapticFeedbackPattern){NSHapticFeedbackPatternAlignment = 7};
extern "C" const double NSFontWeightHevy;
extern "C" BOOL NSContainsRect(NSRect a);
#pragma clang assume_nonnull end
"""

REPORTED = [
    "NSView.frameRotation: is bool here",
    "NSView.heightAdjustLimit: cannot be set there",
    "-[NSView setFrameOrgin:]: there is no such method",
    "+[NSView setBoundsOrigin:]: there is no such method",
    "-[NSView scaleUnitSquareToSize:]: the result is bool here",
    "-[NSView rotateByAngle:]: parameter 1 is NSString",
    "-[NSView translateOriginToPoint:again:]: there is no such method",
    "NSStackView: inherits NSControl here",
    "NSBanner: there is no such class",
    "NSHapticFeedbackPatternAlignment: is 7 here, 1 there",
    "NSFontWeightHevy: there is no such constant",
    "NSContainsRect: is ['BOOL', 'CGRect'] here",
]


class PlantedMistakes(unittest.TestCase):
    def test_are_all_reported_and_nothing_else(self):
        published = typings.read(pathlib.Path(FOLDERS[1]))
        plain = compare_sdk.Comparison(sdk_declarations.read(FOLDERS[0]), published).run()
        planted = compare_sdk.Comparison(sdk_declarations.read(FOLDERS[0], PLANTED), published).run()
        added = sorted(set(planted) - set(plain))
        for report in REPORTED:
            with self.subTest(report):
                self.assertTrue(any(line.startswith(report) for line in added), "\n".join(added))
        self.assertEqual(len(added), len(REPORTED), "\n".join(added))


if __name__ == "__main__":
    FOLDERS = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1])
