#include "platform/linux/desktop/ArrowWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QKeyEvent>

namespace quillmont {
namespace {

constexpr QRect kAnchor(390, 0, 20, 24);

struct Fixture {
  ArrowWindow window;
  QWidget* content = new QWidget;
  int closeRequests = 0;

  Fixture() {
    QPalette red;
    red.setColor(QPalette::Window, Qt::red);
    content->setPalette(red);
    content->setAutoFillBackground(true);
    content->resize(200, 300);
    window.setContent(content);
    window.setBackground(Qt::blue);
    window.onCloseRequest = [this] { ++closeRequests; };
  }

  QRect contentOnScreen() const { return {content->mapToGlobal(QPoint(0, 0)), content->size()}; }

  QColor pixel(const QPoint& onScreen) {
    return window.grab().toImage().pixelColor(onScreen - window.pos());
  }
};

TEST(ArrowWindow, StandsAtItsAnchorAroundItsContent) {
  Fixture f;
  f.window.showAt(kAnchor, RectEdge::minY);
  EXPECT_TRUE(f.window.isVisible());
  EXPECT_EQ(f.window.y(), 24) << "the tip touches the anchor";
  EXPECT_EQ(f.contentOnScreen().center().x(), 399);
  EXPECT_TRUE(f.window.geometry().contains(f.contentOnScreen()));
}

TEST(ArrowWindow, FollowsItsContentsSize) {
  Fixture f;
  f.window.showAt(kAnchor, RectEdge::minY);
  const auto before = f.window.geometry();
  f.content->resize(240, 340);
  EXPECT_EQ(f.window.size(), before.size() + QSize(40, 40));
  EXPECT_EQ(f.window.y(), before.y());
  EXPECT_EQ(f.contentOnScreen().center().x(), 399);
}

TEST(ArrowWindow, HasOneSizeOnlySoThatADesktopOfTilesLetsItFloat) {
  Fixture f;
  f.window.showAt(kAnchor, RectEdge::minY);
  EXPECT_EQ(f.window.minimumSize(), f.window.size());
  EXPECT_EQ(f.window.maximumSize(), f.window.size());
}

TEST(ArrowWindow, TakesUpASizeThatChangedWhileItWasHidden) {
  Fixture f;
  f.window.showAt(kAnchor, RectEdge::minY);
  const auto before = f.window.size();
  f.window.hide();
  f.content->resize(240, 340);
  f.window.showAt(kAnchor, RectEdge::minY);
  EXPECT_EQ(f.window.size(), before + QSize(40, 40));
}

TEST(ArrowWindow, ShownAgainItMoves) {
  Fixture f;
  f.window.showAt(kAnchor, RectEdge::minY);
  const int before = f.window.x();
  f.window.showAt(kAnchor.translated(-100, 0), RectEdge::minY);
  EXPECT_EQ(f.window.x(), before - 100);
}

TEST(ArrowWindow, PaintsItsArrowAndKeepsItsCornersRound) {
  Fixture f;
  f.window.showAt(kAnchor, RectEdge::minY);
  const auto body = f.contentOnScreen().adjusted(-1, -1, 1, 1);
  EXPECT_EQ(f.pixel(QPoint(400, body.top() - 4)), QColor(Qt::blue)) << "the arrow";
  EXPECT_EQ(f.pixel(body.center()), QColor(Qt::red));
  for (const auto& corner :
       {body.topLeft(), body.topRight(), body.bottomLeft(), body.bottomRight()}) {
    EXPECT_EQ(f.pixel(corner).red(), 0);
    EXPECT_LT(f.pixel(corner).alpha(), 128);
  }
  EXPECT_EQ(f.pixel(body.topLeft() + QPoint(kBodyRadius, 2)), QColor(Qt::red));
}

TEST(ArrowWindow, ItsShadowEndsBeforeTheWindowDoes) {
  const QRect anchor(390, 380, 20, 20);
  for (const auto edge : {RectEdge::minX, RectEdge::minY, RectEdge::maxX, RectEdge::maxY}) {
    Fixture f;
    f.content->resize(200, 200);
    f.window.showAt(anchor, edge);
    const auto picture = f.window.grab().toImage();
    const int x = picture.width() / 4, y = picture.height() / 4;  // beside the arrow
    for (const auto& end : {QPoint(x, 0), QPoint(x, picture.height() - 1), QPoint(0, y),
                            QPoint(picture.width() - 1, y)}) {
      EXPECT_LT(picture.pixelColor(end).alpha(), 6) << end.x() << ", " << end.y();
    }
    const auto body = f.contentOnScreen().adjusted(-1, -1, 1, 1);
    for (const auto& beside : {body.topLeft() + QPoint(40, -1), body.bottomLeft() + QPoint(40, 1),
                               body.topLeft() + QPoint(-1, 40), body.topRight() + QPoint(1, 40)}) {
      EXPECT_GT(f.pixel(beside).alpha(), 20) << "there is a shadow";
    }
  }
}

TEST(ArrowWindow, TheBorderIsTheSameOnBothSlopesOfTheArrow) {
  Fixture f;
  f.window.showAt(kAnchor, RectEdge::minY);
  const int y = f.contentOnScreen().top() - 6;
  const int middle = kAnchor.left() + kAnchor.right() + 1;  // of the anchor, twice
  for (int x = kAnchor.left() - 4; x < kAnchor.center().x(); ++x) {
    const auto left = f.pixel(QPoint(x, y)), right = f.pixel(QPoint(middle - 1 - x, y));
    EXPECT_NEAR(left.blue(), right.blue(), 2) << x;
    EXPECT_NEAR(left.alpha(), right.alpha(), 2) << x;
  }
}

TEST(ArrowWindow, TakesAnotherBackground) {
  Fixture f;
  f.window.showAt(kAnchor, RectEdge::minY);
  f.window.setBackground(Qt::green);
  EXPECT_EQ(f.pixel(QPoint(400, f.contentOnScreen().top() - 5)), QColor(Qt::green));
}

TEST(ArrowWindow, InTheCornerItHasNoArrow) {
  Fixture f;
  f.window.showInCorner();
  const auto body = f.contentOnScreen().adjusted(-1, -1, 1, 1);
  EXPECT_EQ(body.top(), 0);
  EXPECT_EQ(f.window.mapToGlobal(QPoint(0, 0)).y(), body.top() - 16) << "shadow on every side";
}

TEST(ArrowWindow, ShowsTooltipsThoughItsProgramIsHardlyEverTheActiveOne) {
  EXPECT_TRUE(ArrowWindow().testAttribute(Qt::WA_AlwaysShowToolTips));
}

TEST(ArrowWindow, NoControlHasTheKeyboardBeforeTabGivesItOne) {
  Fixture f;
  f.content->setFocusPolicy(Qt::TabFocus);
  f.content->setFocus();
  f.window.showAt(kAnchor, RectEdge::minY);
  QApplication::setActiveWindow(&f.window);
  EXPECT_EQ(QApplication::focusWidget(), &f.window);
  f.window.hide();
}

TEST(ArrowWindow, AsksToBeClosedAndStaysOpen) {
  Fixture f;
  f.window.showAt(kAnchor, RectEdge::minY);
  QKeyEvent other(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
  QApplication::sendEvent(&f.window, &other);
  EXPECT_EQ(f.closeRequests, 0);
  QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QApplication::sendEvent(f.content, &escape);
  EXPECT_EQ(f.closeRequests, 1);
  f.window.close();
  EXPECT_EQ(f.closeRequests, 2);
  EXPECT_TRUE(f.window.isVisible());
}

TEST(ArrowWindow, MayBeHiddenWhenItAsks) {
  auto window = std::make_unique<ArrowWindow>();
  window->onCloseRequest = [&] { window->hide(); };
  window->showAt(kAnchor, RectEdge::minY);
  window->close();
  EXPECT_FALSE(window->isVisible());
}

}  // namespace
}  // namespace quillmont
