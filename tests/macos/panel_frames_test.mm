// Where AppKit's views of the whole panel are, beside where another host's are.
#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/macos/Retained.h"
#include "platform/macos/strings.h"
#include "platform/macos/views/AppKitMetrics.h"
#include "platform/macos/views/ShapeView.h"
#include "platform/macos/views/mounted_views.h"
#include "platform/macos/views/text_attributes.h"
#include "platform/posix/files.h"
#include "tests/support/PosedPanel.h"

namespace quillmont {
namespace {

/// The ten disk images in a window.
class PanelFrames : public ::testing::Test {
 protected:
  PanelFrames() {
    [window_ setReleasedWhenClosed:NO];
    [window_ setBackgroundColor:[NSColor windowBackgroundColor]];
    [[window_ contentView] addSubview:panelView(mount_)];
    panel_.show(mount_, metrics_);
    [window_ setContentSize:[panelView(mount_) frame].size];
    [window_ orderFront:nil];
    [window_ display];
  }

  ~PanelFrames() override {
    panel_.hide();
    [window_ close];
  }

  Rect frameOf(ViewId id) const {
    NSView* const view = mountedView(mount_, id);
    auto looks = [view alignmentRectForFrame:[view bounds]];
    if ([view isKindOfClass:[QMShapeView class]]) {
      looks = static_cast<QMShapeView*>(view)->outlineRect;
    }
    const auto frame = [view convertRect:looks toView:panelView(mount_)];
    return {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height};
  }

  /// As it is on the screen, into a PNG file.
  static void takePicture(NSWindow* window, const std::string& path) {
    [window display];
    NSView* const content = [window contentView];
    NSBitmapImageRep* const picture =
        [content bitmapImageRepForCachingDisplayInRect:[content bounds]];
    [content cacheDisplayInRect:[content bounds] toBitmapImageRep:picture];
    NSData* const png = [picture representationUsingType:NSBitmapImageFileTypePNG
                                              properties:[NSDictionary dictionary]];
    ASSERT_TRUE([png writeToFile:foundationString(path) atomically:NO]);
  }

  testing::PosedPanel panel_;
  AppKitMount mount_{panel_.actions()};
  const AppKitMetrics metrics_{&mount_};
  const Retained<NSWindow*> window_ =
      adopt([[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 320, 345)
                                        styleMask:NSWindowStyleMaskBorderless
                                          backing:NSBackingStoreBuffered
                                            defer:NO]);
};

TEST_F(PanelFrames, AreWithinAPointOfThoseThatWereWrittenDown) {
  if (![[fontFor(Font::body) familyName] hasPrefix:@"Noto Sans CJK"]) {
    GTEST_SKIP() << "they were written down in Noto Sans CJK";
  }
  const auto expected = readFile(QUILLMONT_SOURCE "/tests/support/panel_frames.txt");
  ASSERT_TRUE(expected);
  const auto frames = panel_.frames([this](ViewId id) { return frameOf(id); });
  EXPECT_EQ(testing::differencesOfFrames(*expected, frames), "");
}

TEST_F(PanelFrames, CanBeLookedAt) {
  const char* const folder = std::getenv("QUILLMONT_PICTURES");
  if (!folder) GTEST_SKIP() << "QUILLMONT_PICTURES names no folder for pictures";
  const std::string start = std::string(folder) + "/";
  takePicture(window_, start + "panel-light.png");
  [window_ setAppearance:[NSAppearance appearanceNamed:NSAppearanceNameDarkAqua]];
  takePicture(window_, start + "panel-dark.png");
  [window_ setAppearance:[NSAppearance appearanceNamed:NSAppearanceNameAqua]];
  panel_.openMenu();
  takePicture([mountedView(mount_, panel_.find("symbol trash")) window], start + "gear-menu.png");
}

}  // namespace
}  // namespace quillmont
