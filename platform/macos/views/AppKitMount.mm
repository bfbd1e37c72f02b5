#include "platform/macos/views/AppKitMount.h"

#include <variant>

#include "platform/macos/views/ViewTree.h"
#include "platform/macos/views/mounted_views.h"

namespace quillmont {

AppKitMount::AppKitMount(ViewActions& actions) : tree_(std::make_unique<ViewTree>(actions)) {}

AppKitMount::~AppKitMount() = default;

void AppKitMount::apply(const std::vector<ViewChange>& changes, Size size) {
  tree_->begin();
  for (const auto& change : changes) {
    std::visit([this](const auto& one) { tree_->apply(one); }, change);
  }
  [tree_->root() setFrameSize:NSMakeSize(size.width, size.height)];
  tree_->end();
}

void AppKitMount::setVisible(bool visible) {
  tree_->setVisible(visible);
}

void AppKitMount::appearanceDidChange() {
  tree_->appearanceDidChange();
}

ViewTree& treeOf(const AppKitMount& mount) {
  return *mount.tree_;
}

NSView* panelView(const AppKitMount& mount) {
  return treeOf(mount).root();
}

NSView* mountedView(const AppKitMount& mount, ViewId view) {
  return treeOf(mount).viewOf(view);
}

}  // namespace quillmont
