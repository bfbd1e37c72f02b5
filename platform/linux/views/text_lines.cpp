#include "platform/linux/views/text_lines.h"

#include <QFontMetricsF>
#include <QTextLayout>
#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace quillmont {
namespace {

/// What rounding may take off the width in which a text just fits.
constexpr double kTolerance = 0.01;

constexpr QChar kEllipsis(0x2026);

/// The fonts that were asked for. One that was used before has found its engine, which costs a
/// sixth of what it costs to measure an idle time.
class Fonts {
 public:
  QFont get(int pixelSize, FontWeight weight) {
    const QFont own;
    if (!own.isCopyOf(own_)) {
      own_ = own;
      fonts_.clear();
    }
    const std::pair key(pixelSize, weight);
    const auto found = fonts_.find(key);
    if (found != fonts_.end()) return found->second;
    if (fonts_.size() >= kMost) fonts_.clear();
    return fonts_.emplace(key, made(pixelSize, weight)).first->second;
  }

 private:
  static constexpr std::size_t kMost = 32;

  static QFont made(int pixelSize, FontWeight weight) {
    QFont result;
    result.setFamilies(fontFamilies());
    result.setPixelSize(pixelSize);
    result.setWeight(static_cast<QFont::Weight>(weight));
    result.setHintingPreference(QFont::PreferVerticalHinting);
    return result;
  }

  QFont own_;  ///< the application's, with which each of them begins
  std::map<std::pair<int, FontWeight>, QFont> fonts_;
};

/// Adds the lines of one paragraph. With a limit it stops one line after it: that there is more is
/// all that has to be known.
void breakParagraph(const QString& text, const QFont& font, double width, std::size_t limit,
                    std::vector<TextLine>& lines) {
  QTextLayout layout(text, font);
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  layout.setTextOption(option);
  layout.beginLayout();
  for (auto line = layout.createLine(); line.isValid() && lines.size() <= limit;
       line = layout.createLine()) {
    line.setLineWidth(width);
    lines.push_back({text.mid(line.textStart(), line.textLength()), line.naturalTextWidth()});
  }
  layout.endLayout();
}

void addParagraph(const QString& text, const QFont& font, const QFontMetricsF& metrics,
                  std::optional<double> width, std::size_t limit, std::vector<TextLine>& lines) {
  const double natural = metrics.horizontalAdvance(text);
  if (!width || natural <= *width + kTolerance) {
    lines.push_back({text, natural});
  } else {
    breakParagraph(text, font, *width + kTolerance, limit, lines);
  }
}

QString trimmedAtEnd(QString text) {
  while (!text.isEmpty() && text.back().isSpace()) text.chop(1);
  return text;
}

/// The beginning of `text` that leaves room for the ellipsis, and the ellipsis.
TextLine elided(const QString& text, const QFontMetricsF& metrics, std::optional<double> width) {
  QString line = trimmedAtEnd(text) + kEllipsis;
  if (width && metrics.horizontalAdvance(line) > *width + kTolerance) {
    line = metrics.elidedText(text, Qt::ElideRight, *width);
    if (line.endsWith(kEllipsis)) line = trimmedAtEnd(line.chopped(1)) + kEllipsis;
  }
  return {line, metrics.horizontalAdvance(line)};
}

}  // namespace

QStringList fontFamilies() {
  return {"Noto Sans CJK SC", "sans-serif"};
}

QFont fontFor(const Font& font) {
  static auto& fonts = *new Fonts;  // a font must not end after its application
  return fonts.get(std::max(1, static_cast<int>(std::lround(font.size))), font.weight);
}

double baseline(const Font& font) {
  // Han characters fill the line from 0.88 above what they stand on to 0.12 below.
  return std::floor(lineHeight(font) / 2 + 0.38 * font.size + 0.5);
}

std::vector<TextLine> linesOf(const QString& text, const Font& font, std::optional<double> width,
                              std::optional<int> limit) {
  const auto qtFont = fontFor(font);
  const QFontMetricsF metrics(qtFont);
  const auto most = limit ? static_cast<std::size_t>(std::max(1, *limit)) : SIZE_MAX - 1;
  std::vector<TextLine> lines;
  qsizetype start = 0;
  while (start >= 0 && lines.size() <= most) {
    const auto end = text.indexOf('\n', start);
    const auto paragraph = text.mid(start, end < 0 ? -1 : end - start);
    // A single line is cut between letters, not before the word that does not fit.
    if (most == 1 && lines.empty() && width &&
        metrics.horizontalAdvance(paragraph) > *width + kTolerance) {
      return {elided(paragraph, metrics, width)};
    }
    addParagraph(paragraph, qtFont, metrics, width, most, lines);
    start = end < 0 ? -1 : end + 1;
  }
  if (lines.size() > most) {
    const auto rest = trimmedAtEnd(lines[most - 1].text);
    lines.resize(most);
    lines.back() = elided(rest, metrics, width);
  }
  return lines;
}

}  // namespace quillmont
