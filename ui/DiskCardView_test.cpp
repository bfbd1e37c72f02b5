#include "ui/DiskCardView.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "platform/view/HostingController.h"
#include "tests/support/FakeMetrics.h"
#include "tests/support/FakeMount.h"
#include "tests/support/ManualTime.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using testing::FakeMetrics;
using testing::FakeMount;
using ::testing::HasSubstr;
using testing::ManualClock;
using testing::ManualRunLoop;
using ::testing::Not;
using ::testing::StartsWith;

using HoverId = std::optional<std::string>;

DiskImage idleImage(const std::string& name, double idleSeconds = 65) {
  return {"/images/" + name + ".dmg", "/Volumes/" + name, name, idleSeconds, false, {}, false};
}

DiskImage busyImage(const std::string& name, std::vector<std::string> users) {
  auto image = idleImage(name);
  image.inUse = true;
  image.activeProcesses = std::move(users);
  return image;
}

DiskImage excluded(DiskImage image) {
  image.isExcluded = true;
  return image;
}

/// Cards below one another, 300 wide, with an owner that writes down what they want.
class Card : public ::testing::Test {
 protected:
  struct Owner {
    explicit Owner(Card& test_) : test(test_) {}
    void connect(StateScope& scope) {
      scope.remember(hoverEjectId);
      scope.remember(hoverLockId);
    }
    View body() const {
      return VStack({.spacing = 0}, {ForEach(
                                        test.images, [](const auto& image) { return image.id(); },
                                        [&](const auto& image) -> View { return card(image); })})
          .frame({.width = 300});
    }
    DiskCardView card(const DiskImage& image) const {
      auto* const told = &test.wishes;
      return {.img = image,
              .hoverEjectId = hoverEjectId.binding(),
              .hoverLockId = hoverLockId.binding(),
              .onToggleExclude = [=] { told->push_back("exclude " + image.volumeName); },
              .onEject = [=] { told->push_back("eject " + image.volumeName); }};
    }
    Card& test;
    State<HoverId> hoverEjectId{std::nullopt};
    State<HoverId> hoverLockId{std::nullopt};
  };

  std::string pictureOf(std::vector<DiskImage> shown) {
    show(std::move(shown));
    return mount.picture();
  }

  void show(std::vector<DiskImage> shown) {
    images = std::move(shown);
    if (mount.applications > 0) return panel.metricsDidChange();
    panel.mount(mount, metrics);
    panel.setVisible(true);
  }

  void hover(ViewId view, bool isInside) {
    panel.hover(view, isInside);
    loop.runTasks();
  }

  ViewId button(const std::string& help, std::size_t card = 0) {
    return mount.findAll("help=" + help).at(card);
  }

  /// The lines of a button's label: background and symbol.
  std::string label(ViewId id) { return mount.picture(id); }

  ManualClock clock;
  ManualRunLoop loop{clock};
  FakeMetrics metrics;
  FakeMount mount;
  std::vector<DiskImage> images;
  std::vector<std::string> wishes;
  HostingController panel{Owner(*this), loop};
};

TEST_F(Card, OfAnIdleImage) {
  EXPECT_EQ(pictureOf({idleImage("Alpha")}),
            R"view(rounded(8) controlBackground*0.8 shadow black*0.05 2 0,1 (0 0 300 47)
symbol opticaldiscdrive.fill 24 cyan (8 9 30 30)
label "Alpha" 13 semibold primary lines=1 (48 8 33 16)
circle orange (48 30 6 6)
label "已空闲 01:05" 10 secondary (58 26 60 13)
button help=防止自动推出 hover (238 12 24 24)
  rounded(6) clear (0 0 24 24)
  symbol lock.open.fill 11 secondary*0.8 (5 5 14 13)
button help=立即安全推出 hover (268 12 24 24)
  rounded(6) red*0.1 (0 0 24 24)
  symbol eject.fill 11 red (5 5 14 13)
rounded(8) stroke primary*0.05 1 (0 0 300 47)
)view");
}

TEST_F(Card, OfAnImageInUse) {
  EXPECT_EQ(pictureOf({busyImage("Beta", {"Finder", "Preview"})}),
            R"view(rounded(8) controlBackground*0.8 shadow black*0.05 2 0,1 (0 0 300 47)
symbol opticaldiscdrive.fill 24 green (8 9 30 30)
label "Beta" 13 semibold primary lines=1 (48 8 26 16)
circle green (48 30 6 6)
label "活跃中 (Finder, Preview)" 10 secondary lines=1 (58 26 120 13)
button help=防止自动推出 hover (238 12 24 24)
  rounded(6) clear (0 0 24 24)
  symbol lock.open.fill 11 secondary*0.8 (5 5 14 13)
button help=立即安全推出 hover (268 12 24 24)
  rounded(6) red*0.1 (0 0 24 24)
  symbol eject.fill 11 red (5 5 14 13)
rounded(8) stroke primary*0.05 1 (0 0 300 47)
)view");
}

TEST_F(Card, OfAnExcludedImage) {
  EXPECT_EQ(pictureOf({excluded(idleImage("Gamma"))}),
            R"view(rounded(8) controlBackground*0.8 shadow black*0.05 2 0,1 (0 0 300 47)
symbol opticaldiscdrive 24 secondary (8 9 30 30)
label "Gamma" 13 semibold primary lines=1 (48 8 33 16)
label "已排除自动推出" 10 secondary (48 26 70 13)
button help=允许自动推出 hover (238 12 24 24)
  rounded(6) orange*0.15 (0 0 24 24)
  symbol lock.fill 11 orange (5 5 14 13)
button help=立即安全推出 hover (268 12 24 24)
  rounded(6) red*0.1 (0 0 24 24)
  symbol eject.fill 11 red (5 5 14 13)
rounded(8) stroke primary*0.05 1 (0 0 300 47)
)view");
}

TEST_F(Card, ExcludedImageInUseIsShownAsExcluded) {
  EXPECT_EQ(pictureOf({excluded(busyImage("Gamma", {"Finder"}))}),
            pictureOf({excluded(idleImage("Gamma"))}));
}

TEST_F(Card, NobodysUseHasEmptyBrackets) {
  EXPECT_THAT(pictureOf({busyImage("Beta", {})}), HasSubstr("label \"活跃中 ()\" "));
}

TEST_F(Card, LongListOfUsersIsCutOffOnItsLine) {
  show({busyImage("Beta", std::vector<std::string>(50, "Preview"))});
  const auto& status = mount.views.at(mount.find("活跃中"));
  EXPECT_EQ(status.frame, (Rect{58, 26, 152, 13})) << "up to the spacer beside the buttons";
  EXPECT_EQ(std::get<NativeLabel>(status.properties.content).lineLimit, 1);
}

TEST_F(Card, NameOf300CharactersKeepsTheButtonsInPlace) {
  show({idleImage(std::string(300, 'n'))});
  EXPECT_EQ(mount.views.at(mount.find("nnnn")).frame, (Rect{48, 8, 162, 16}));
  EXPECT_EQ(mount.views.at(button("防止自动推出")).frame, (Rect{238, 12, 24, 24}));
  EXPECT_EQ(mount.size, (Size{300, 47}));
}

TEST_F(Card, VolumeNameIsShownAsItIs) {
  EXPECT_THAT(pictureOf({idleImage("%d **bold** \"q\"")}),
              HasSubstr("label \"%d **bold** \"q\"\" 13 semibold"));
}

TEST_F(Card, HoveredEjectButtonIsWhiteOnRed) {
  show({idleImage("Alpha"), idleImage("Beta")});
  hover(button("立即安全推出", 1), true);
  EXPECT_EQ(label(button("立即安全推出", 1)),
            "rounded(6) red (0 0 24 24)\nsymbol eject.fill 11 white (5 5 14 13)\n");
  EXPECT_EQ(label(button("立即安全推出", 0)),
            "rounded(6) red*0.1 (0 0 24 24)\nsymbol eject.fill 11 red (5 5 14 13)\n");
  hover(button("立即安全推出", 1), false);
  EXPECT_EQ(label(button("立即安全推出", 1)), label(button("立即安全推出", 0)));
}

TEST_F(Card, HoveredOpenLockHasAFaintGround) {
  show({idleImage("Alpha"), idleImage("Beta")});
  hover(button("防止自动推出", 0), true);
  EXPECT_EQ(label(button("防止自动推出", 0)),
            "rounded(6) primary*0.05 (0 0 24 24)\nsymbol lock.open.fill 11 secondary*0.8 "
            "(5 5 14 13)\n");
  EXPECT_THAT(label(button("防止自动推出", 1)), HasSubstr("rounded(6) clear"));
}

TEST_F(Card, HoverChangesNothingOnAClosedLock) {
  show({excluded(idleImage("Gamma"))});
  const auto before = mount.picture();
  hover(button("允许自动推出"), true);
  EXPECT_EQ(mount.picture(), before);
}

TEST_F(Card, HoverOfOneKindOfButtonLeavesTheOtherAlone) {
  show({idleImage("Alpha")});
  hover(button("防止自动推出"), true);
  EXPECT_THAT(label(button("立即安全推出")), HasSubstr("red*0.1"));
}

TEST_F(Card, LateLeaveOfOneCardClearsTheHoverOfAnother) {
  show({idleImage("Alpha"), idleImage("Beta")});
  hover(button("立即安全推出", 0), true);
  hover(button("立即安全推出", 1), true);
  hover(button("立即安全推出", 0), false);
  EXPECT_THAT(mount.picture(), Not(HasSubstr("white")));
  hover(button("立即安全推出", 1), true);
  EXPECT_THAT(label(button("立即安全推出", 1)), HasSubstr("white"));
}

TEST_F(Card, ButtonsReportWhatTheUserWants) {
  show({idleImage("Alpha"), excluded(busyImage("Gamma", {"Finder"}))});
  panel.press(button("防止自动推出"));
  panel.press(button("立即安全推出", 0));
  panel.press(button("允许自动推出"));
  panel.press(button("立即安全推出", 1));
  EXPECT_THAT(wishes, ElementsAre("exclude Alpha", "eject Alpha", "exclude Gamma", "eject Gamma"));
}

TEST(IdleTime, IsCutOffToWholeSeconds) {
  EXPECT_EQ(idleTimeText(0), "00:00");
  EXPECT_EQ(idleTimeText(59.9), "00:59");
  EXPECT_EQ(idleTimeText(60), "01:00");
  EXPECT_EQ(idleTimeText(-0.9), "00:00");
}

TEST(IdleTime, MinutesAreNotWrappedIntoHours) {
  EXPECT_EQ(idleTimeText(3600), "60:00");
  EXPECT_EQ(idleTimeText(90 * 60), "90:00");
  EXPECT_EQ(idleTimeText(100 * 60 + 7), "100:07");
  EXPECT_EQ(idleTimeText(9.2e18), "153333333333333333:20");
}

using IdleTimeDeathTest = ::testing::TestWithParam<double>;

TEST_P(IdleTimeDeathTest, ThatIsNoWholeNumberOfSecondsEndsTheProgram) {
  EXPECT_DEATH(idleTimeText(GetParam()), "An idle time cannot be told in whole seconds");
}

INSTANTIATE_TEST_SUITE_P(OutOfRange, IdleTimeDeathTest,
                         ::testing::Values(std::nan(""), std::numeric_limits<double>::infinity(),
                                           -std::numeric_limits<double>::infinity(),
                                           9223372036854775808.0, -1e19));

}  // namespace
}  // namespace quillmont
