// Figures and their shadows. Lengths in logical pixels. Main thread.
#pragma once

#include <QMarginsF>
#include <QPainter>
#include <QPainterPath>
#include <QRectF>

#include "platform/view/NativeView.h"

namespace quillmont {

/// A rectangle with corners that bend gradually: they begin before a circle of that radius would,
/// and are as deep in the middle.
QPainterPath continuousRectangle(const QRectF& rect, double cornerRadius);

/// The outline of `shape` in `rect`.
QPainterPath outlineOf(const NativeShape& shape, const QRectF& rect);

/// How far stroke and shadow reach beyond the outline.
QMarginsF reachOf(const NativeShape& shape);

/// Paints shadow, fill and stroke, in the colours of now.
void drawShape(QPainter& painter, const NativeShape& shape, const QRectF& rect);

}  // namespace quillmont
