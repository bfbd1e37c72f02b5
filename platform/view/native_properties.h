// What hosts ask of a native view, whichever toolkit shows it.
#pragma once

#include <string>

#include "platform/view/NativeView.h"

namespace quillmont {

bool sameKind(const NativeProperties& left, const NativeProperties& right);

/// Shows something and takes nothing: a text, a symbol, a shape.
bool isFigure(const NativeProperties& properties);

/// Can have the keyboard.
bool isControl(const NativeProperties& properties);

/// The text that the view shows by itself; empty for most.
std::string ownText(const NativeProperties& properties);

/// Whether the mouse goes to what lies behind: figures may lie in front of controls, as a card's
/// outline does. `inButton`: the view belongs to the label of a button, which takes the mouse.
bool letsMouseThrough(const NativeProperties& properties, bool inButton);

}  // namespace quillmont
