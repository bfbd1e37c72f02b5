// The desktop's colours as Qt has them. Main thread.
#pragma once

#include <QColor>

#include "platform/view/Color.h"

namespace quillmont {

/// Whether colours are those of a dark desktop from now on. What has been painted already has to be
/// painted anew (QtMount::appearanceDidChange()).
void setDark(bool dark);
bool isDark();

/// The colour as it is in light or in dark.
QColor colorIn(const Color& color, bool dark);

/// The colour as it is now.
QColor colorNow(const Color& color);

}  // namespace quillmont
