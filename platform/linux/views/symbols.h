// The program's symbols, drawn from shapes of its own. Main thread, like all painting.
#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>
#include <QSizeF>
#include <string>

#include "platform/view/Font.h"

namespace quillmont {

/// The size that the symbol `name` has of itself beside letters of `pointSize` points: about 1.2
/// times as high, and as wide as its figure asks. A name that is not known has one, too.
QSizeF symbolExtent(const std::string& name, double pointSize);

/// Draws the symbol `name` in one colour, centred in `box` and as large as goes into it; its lines
/// are as heavy as the weight asks. It begins on a whole device pixel. For a name that is not
/// known, an empty square stands.
void drawSymbol(QPainter& painter, const std::string& name, const QRectF& box, FontWeight weight,
                const QColor& color);

}  // namespace quillmont
