#include "platform/linux/desktop/display_platform.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "tests/support/Program.h"
#include "tests/support/forked.h"

namespace quillmont {
namespace {

using testing::forked;

TEST(DisplayPlatform, TriesWhatThereIsDownToNothing) {
  EXPECT_EQ(qtPlatforms({.x11 = false, .wayland = false}), "offscreen");
  EXPECT_EQ(qtPlatforms({.x11 = true, .wayland = false}), "xcb;offscreen");
  EXPECT_EQ(qtPlatforms({.x11 = false, .wayland = true}), "wayland;offscreen");
  EXPECT_EQ(qtPlatforms({.x11 = true, .wayland = true}), "xcb;wayland;offscreen");
}

TEST(DisplayPlatform, FindsNoneWithoutNames) {
  EXPECT_EQ(forked([] {
              unsetenv("DISPLAY");
              unsetenv("WAYLAND_DISPLAY");
              const auto displays = findDisplays();
              EXPECT_FALSE(displays.x11);
              EXPECT_FALSE(displays.wayland);
            }),
            0);
}

TEST(DisplayPlatform, ADisplayThatDoesNotAnswerIsNone) {
  const testing::TemporaryFolder folder;
  EXPECT_EQ(forked([&] {
              setenv("DISPLAY", "unix:/nowhere/at/all:0", 1);
              setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
              setenv("WAYLAND_DISPLAY", "wayland-7", 1);
              EXPECT_FALSE(findDisplays().x11);
              EXPECT_FALSE(findDisplays().wayland);
              setenv("WAYLAND_DISPLAY", std::string(500, 'x').c_str(), 1);
              EXPECT_FALSE(findDisplays().wayland);
            }),
            0);
}

}  // namespace
}  // namespace quillmont
