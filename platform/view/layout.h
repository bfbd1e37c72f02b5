// Where everything on the panel goes: every element is offered a size by the one around it, answers
// with the size that it takes, and is then placed.
#pragma once

#include "platform/view/Element.h"
#include "platform/view/Metrics.h"
#include "platform/view/TextSizes.h"

namespace quillmont {

/// Lays `root` out in its ideal size, with its left upper corner at the origin: sets the frame of
/// every element. Answers that size. The same elements and metrics give the same frames; nothing
/// is rounded, but that a text's width is whole device pixels.
///
/// What has not changed since the last layout is not asked again, nor what stands around a change
/// that takes as much room as before.
Size layOut(Element& root, const Metrics& metrics, TextSizes& texts);

/// Has everything asked anew by the next layout: with other metrics, or another screen.
void forgetLayout(Element& root);

}  // namespace quillmont
