#include "platform/linux/views/LabelWidget.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "platform/linux/views/text_lines.h"
#include "platform/linux/views/theme.h"

namespace quillmont {
namespace {

/// A text is never shortened for a part of a pixel.
constexpr double kSlack = 0.25;

std::vector<TextLine> linesWithin(const NativeLabel& label, const QRectF& bounds) {
  const double height = lineHeight(label.font);
  int most = std::max(1, static_cast<int>((bounds.height() + kSlack) / height));
  if (label.lineLimit) most = std::min(most, std::max(1, *label.lineLimit));
  return linesOf(QString::fromStdString(label.text), label.font, bounds.width() + kSlack, most);
}

double startOf(const TextLine& line, TextAlignment alignment, double width) {
  switch (alignment) {
    case TextAlignment::leading:
      return 0;
    case TextAlignment::center:
      return std::floor((width - line.width) / 2 + 0.5);
    case TextAlignment::trailing:
      return width - line.width;
  }
  return 0;
}

}  // namespace

LabelWidget::LabelWidget(QWidget* parent) : QLabel(parent) {
  // A volume may be called anything.
  setTextFormat(Qt::PlainText);
}

void LabelWidget::take(const NativeProperties& properties) {
  label_ = contentOf<NativeLabel>(properties);
  setText(QString::fromStdString(label_.text));
  setOpacity(*this, properties.opacity);
  update();
}

std::vector<QString> LabelWidget::shownLines() const {
  std::vector<QString> result;
  for (const auto& line : linesWithin(label_, bounds())) result.push_back(line.text);
  return result;
}

void LabelWidget::paintEvent(QPaintEvent*) {
  const auto lines = linesWithin(label_, bounds());
  const double height = lineHeight(label_.font);
  const double unused = bounds().height() - height * static_cast<double>(lines.size());
  QPainter painter(this);
  painter.setFont(fontFor(label_.font));
  painter.setPen(colorNow(label_.color));
  double y = bounds().top() + std::floor(unused / 2 + 0.5) + baseline(label_.font);
  for (const auto& line : lines) {
    const double x = bounds().left() + startOf(line, label_.alignment, bounds().width());
    painter.drawText(QPointF(x, y), line.text);
    y += height;
  }
}

}  // namespace quillmont
