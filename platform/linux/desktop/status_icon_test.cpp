#include "platform/linux/desktop/status_icon.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

namespace quillmont {
namespace {

QImage picture(int side) {
  return statusIcon("opticaldiscdrive.fill").pixmap(side).toImage();
}

TEST(StatusIcon, HasItsOwnPictureForEverySizeOfABar) {
  const auto sizes = statusIcon("opticaldiscdrive.fill").availableSizes();
  for (const int side : {16, 22, 24, 32, 44, 48, 64}) {
    EXPECT_TRUE(sizes.contains(QSize(side, side))) << side;
    EXPECT_EQ(picture(side).size(), QSize(side, side));
  }
}

TEST(StatusIcon, BarWithAnOddSizeGetsTheNextSmallerPictureUnscaled) {
  EXPECT_EQ(picture(23), picture(22));
  EXPECT_EQ(picture(200), picture(64));
}

TEST(StatusIcon, BarWithLittleRoomGetsWhatFits) {
  EXPECT_EQ(picture(10).size(), QSize(10, 10));
  EXPECT_EQ(statusIcon("opticaldiscdrive.fill").actualSize(QSize(100, 12)), QSize(12, 12));
}

TEST(StatusIcon, IsPaintedInTheMiddleOfItsPlace) {
  QImage place(30, 22, QImage::Format_ARGB32_Premultiplied);
  place.fill(Qt::transparent);
  QPainter painter(&place);
  statusIcon("opticaldiscdrive.fill").paint(&painter, place.rect());
  painter.end();
  EXPECT_EQ(place.copy(4, 0, 22, 22),
            picture(22).convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

TEST(StatusIcon, IsLegibleOnLightAndOnDark) {
  for (const int side : {16, 22, 48}) {
    const auto image = picture(side);
    int light = 0, dark = 0;
    for (int y = 0; y < side; ++y) {
      for (int x = 0; x < side; ++x) {
        const auto pixel = image.pixelColor(x, y);
        if (pixel.alpha() > 100) ++(pixel.lightness() > 200 ? light : dark);
      }
    }
    EXPECT_GT(light, side * side / 10) << side;
    EXPECT_GT(dark, side) << side;
  }
}

TEST(StatusIcon, ASymbolThatIsNotKnownIsAnIconToo) {
  EXPECT_FALSE(statusIcon("no.such.symbol").isNull());
}

}  // namespace
}  // namespace quillmont
