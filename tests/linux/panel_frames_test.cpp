// Where the widgets of the whole panel are, in the fonts for which it was written down.
#include <gtest/gtest.h>

#include <QFontInfo>
#include <QImage>
#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/linux/views/NativeWidget.h"
#include "platform/linux/views/QtMetrics.h"
#include "platform/linux/views/QtMount.h"
#include "platform/linux/views/text_lines.h"
#include "platform/linux/views/theme.h"
#include "platform/posix/files.h"
#include "tests/support/PosedPanel.h"

namespace quillmont {
namespace {

constexpr char kWrittenDown[] = QUILLMONT_SOURCE "/tests/support/panel_frames.txt";

/// To be looked at beside another host's, as a PNG file in the folder that QUILLMONT_PICTURES
/// names.
void takePicture(QWidget* panel) {
  const char* const folder = std::getenv("QUILLMONT_PICTURES");
  if (!folder) return;
  QImage picture(panel->size(), QImage::Format_RGB32);
  picture.fill(colorNow(Color::windowBackground));
  panel->render(&picture, QPoint(), QRegion(), QWidget::DrawChildren);
  EXPECT_TRUE(picture.save(QString::fromStdString(std::string(folder) + "/panel-qt.png")));
}

TEST(PanelFrames, AreThoseThatWereWrittenDown) {
  if (!QFontInfo(fontFor(Font::body)).family().startsWith("Noto Sans CJK")) {
    GTEST_SKIP() << "Noto Sans CJK is not installed";
  }
  testing::PosedPanel panel;
  QtMount mount(panel.actions());
  const QtMetrics metrics;
  panel.show(mount, metrics);
  const auto frames = panel.frames([&](ViewId view) -> Rect {
    auto* const widget = mount.widgetOf(view);
    const auto bounds = dynamic_cast<NativeWidget&>(*widget).bounds();
    const auto origin = widget->mapTo(mount.widget(), QPointF());
    return {origin.x() + bounds.x(), origin.y() + bounds.y(), bounds.width(), bounds.height()};
  });
  takePicture(mount.widget());
  panel.hide();
  // A panel that was changed on purpose is written down anew on request.
  if (std::getenv("QUILLMONT_WRITE_FRAMES")) std::ofstream(kWrittenDown) << frames;
  const auto expected = readFile(kWrittenDown);
  ASSERT_TRUE(expected);
  EXPECT_EQ(frames, *expected);
}

}  // namespace
}  // namespace quillmont
