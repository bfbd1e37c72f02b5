// From the kinds of native views to AppKit's. Main thread.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/macos/views/MountedView.h"
#include "platform/view/ViewActions.h"

namespace quillmont {

/// A view for that content, which has taken nothing over yet. `anchor` is the view around it.
/// `onScroll` is told whenever views within it have moved.
std::unique_ptr<MountedView> makeMountedView(const NativeContent& content,
                                             const MountedView& anchor, ViewId id,
                                             ViewActions& actions, std::function<void()> onScroll);

/// Gives the view what all kinds have in common: tooltip, names for readers of the screen, whether
/// it takes the mouse. `inButton`: it belongs to the label of a button, which takes the mouse and
/// is read in its place.
void describeView(MountedView& view, const NativeProperties& properties, bool inButton);

}  // namespace quillmont
