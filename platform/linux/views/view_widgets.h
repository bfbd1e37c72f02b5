// From the kinds of native views to widgets. Main thread.
#pragma once

#include <QWidget>

#include "platform/linux/views/NativeWidget.h"
#include "platform/view/ViewActions.h"

namespace quillmont {

/// A widget for that content, in `parent`, which owns it; null for a popover, which is no widget
/// within another. It is still hidden and has taken nothing over yet.
NativeWidget* makeViewWidget(const NativeContent& content, QWidget* parent, ViewId id,
                             ViewActions& actions);

/// Gives `widget` what all kinds have in common: tooltip, names for readers of the screen, whether
/// it takes the mouse. `inButton`: it belongs to the label of a button, which takes the mouse in
/// its place.
void describeWidget(QWidget& widget, const NativeProperties& properties, bool inButton);

}  // namespace quillmont
