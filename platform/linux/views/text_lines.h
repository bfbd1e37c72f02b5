// How texts are set: fonts, lines, and where a line ends. Lengths in points, which are logical
// pixels. Main thread, with a QGuiApplication.
#pragma once

#include <QFont>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "platform/view/Font.h"

namespace quillmont {

/// Han characters come in their Simplified forms; by the system's own choice they may be Japanese
/// ones.
QStringList fontFamilies();

/// The system's font for labels in that size, whatever the screen's resolution is said to be.
QFont fontFor(const Font& font);

/// From the top of a line down to what letters stand on.
double baseline(const Font& font);

struct TextLine {
  QString text;
  double width = 0;
};

/// The text in lines, broken where it says so itself and, with a width, where a line would be
/// wider: between words if that can be. Of more lines than `limit` (at least 1), those that fit are
/// answered, and the last one ends in an ellipsis. There is always a line.
std::vector<TextLine> linesOf(const QString& text, const Font& font, std::optional<double> width,
                              std::optional<int> limit);

}  // namespace quillmont
