#include "platform/linux/desktop/LinuxStatusItem.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

constexpr QRect kScreen(0, 0, 1000, 800);

TEST(LinuxStatusItem, CanBeClickedWithoutABar) {
  LinuxStatusItem item([] { return true; });
  item.setImage("opticaldiscdrive.fill", "Quillmont");
  item.click();
  Sender sender = nullptr;
  item.button()->setAction([&](Sender from) { sender = from; });
  item.click();
  EXPECT_EQ(sender, static_cast<Sender>(item.button()));
  EXPECT_FALSE(item.screenRect());
}

TEST(LinuxStatusItem, TheActionMayBeReplacedByTheAction) {
  LinuxStatusItem item([] { return false; });
  int clicks = 0;
  item.setAction([&](Sender) { item.setAction([&](Sender) { clicks += 10; }), ++clicks; });
  item.click();
  item.click();
  EXPECT_EQ(clicks, 11);
}

TEST(BarAnchor, IsTheWholeBreadthOfTheBar) {
  EXPECT_EQ(barAnchor({500, 7}, kScreen, {0, 24, 1000, 776}), QRect(500, 0, 1, 24));
  EXPECT_EQ(barAnchor({500, 790}, kScreen, {0, 0, 1000, 776}), QRect(500, 776, 1, 24));
  EXPECT_EQ(barAnchor({7, 300}, kScreen, {40, 0, 960, 800}), QRect(0, 300, 40, 1));
  EXPECT_EQ(barAnchor({990, 300}, kScreen, {0, 0, 960, 800}), QRect(960, 300, 40, 1));
}

TEST(BarAnchor, IsThePointerItselfWhereTheBarTakesNoRoom) {
  EXPECT_EQ(barAnchor({500, 7}, kScreen, kScreen), QRect(500, 7, 1, 1));
}

}  // namespace
}  // namespace quillmont
