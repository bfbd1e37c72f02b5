#include "ui/MenuButtonStyle.h"

#include <gmock/gmock.h>

#include "platform/view/HostingController.h"
#include "tests/support/FakeMetrics.h"
#include "tests/support/FakeMount.h"
#include "tests/support/ManualTime.h"

namespace quillmont {
namespace {

using testing::FakeMetrics;
using testing::FakeMount;
using testing::ManualClock;
using testing::ManualRunLoop;

class MenuEntries : public ::testing::Test {
 protected:
  void show(const View& view) {
    panel = std::make_unique<HostingController>(view, loop);
    panel->mount(mount, metrics);
    panel->setVisible(true);
  }

  void hover(ViewId view, bool isInside) {
    panel->hover(view, isInside);
    loop.runTasks();
  }

  static View entry(const char* name, std::optional<ButtonRole> role = {}) {
    return Button([] {}, Text(name), role).buttonStyle(MenuButtonStyle());
  }

  ManualClock clock;
  ManualRunLoop loop{clock};
  FakeMetrics metrics;
  FakeMount mount;
  std::unique_ptr<HostingController> panel;
};

TEST_F(MenuEntries, EntryWithoutARoleIsPrimary) {
  show(entry("Go"));
  EXPECT_EQ(mount.picture(), R"view(button name=Go hover (0 0 13 16)
  group (0 0 13 16)
    rectangle clear (0 0 13 16)
    label "Go" 13 primary (0 0 13 16)
)view");
}

TEST_F(MenuEntries, DestructiveEntryIsRedWithAndWithoutHover) {
  show(entry("Go", ButtonRole::destructive));
  mount.find("label \"Go\" 13 red");
  hover(mount.find("button"), true);
  mount.find("label \"Go\" 13 red");
  mount.find("rectangle primary*0.08");
}

TEST_F(MenuEntries, OtherRolesArePrimary) {
  show(entry("Go", ButtonRole::cancel));
  mount.find("label \"Go\" 13 primary");
}

TEST_F(MenuEntries, HoverIsDrawnBehindTheWholeLabel) {
  const auto label = Text("Go").padding(8).frame({.width = 140, .alignment = Alignment::leading});
  show(Button([] {}, label).buttonStyle(MenuButtonStyle()));
  hover(mount.find("button"), true);
  mount.find("rectangle primary*0.08 (0 0 140 32)");
  hover(mount.find("button"), false);
  mount.find("rectangle clear (0 0 140 32)");
}

TEST_F(MenuEntries, EachEntryHasAHoverOfItsOwn) {
  show(VStack({.spacing = 0}, {entry("First"), entry("Second")}).buttonStyle(MenuButtonStyle()));
  hover(mount.find("button name=Second"), true);
  EXPECT_EQ(mount.findAll("rectangle primary*0.08").size(), 1u);
  EXPECT_EQ(mount.findAll("rectangle clear").size(), 1u);
}

TEST_F(MenuEntries, OneStyleForSeveralEntriesIsRememberedForEach) {
  const Views entries = {Button([] {}, Text("First")), Button([] {}, Text("Second"))};
  show(VStack({.spacing = 0}, entries).buttonStyle(MenuButtonStyle()));
  hover(mount.find("button name=First"), true);
  EXPECT_EQ(mount.findAll("rectangle primary*0.08").size(), 1u);
}

TEST_F(MenuEntries, ColourOfTheLabelItselfWins) {
  show(Button([] {}, Text("Go").foregroundColor(Color::red)).buttonStyle(MenuButtonStyle()));
  mount.find("label \"Go\" 13 red");
}

}  // namespace
}  // namespace quillmont
