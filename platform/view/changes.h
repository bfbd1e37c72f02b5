// What leads from one panel to the next.
#pragma once

#include <set>
#include <vector>

#include "platform/view/NativeView.h"
#include "platform/view/native_tree.h"

namespace quillmont {

/// What turns `before` into `after`. A view stays the same where its identity, its parent and its
/// kind do; as many as can keep their places among their siblings. `told` are controls whose state
/// is told again even if nothing has changed: the user has changed them meanwhile.
std::vector<ViewChange> changesBetween(const NativeNode& before, const NativeNode& after,
                                       const std::set<ViewId>& told = {});

}  // namespace quillmont
