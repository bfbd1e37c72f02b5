#include "platform/linux/views/QtMount.h"

#include <cmath>
#include <variant>

#include "platform/linux/views/ViewTree.h"

namespace quillmont {

QtMount::QtMount(ViewActions& actions) : tree_(std::make_unique<ViewTree>(actions)) {}

QtMount::~QtMount() = default;

QWidget* QtMount::widget() {
  return tree_->root();
}

void QtMount::apply(const std::vector<ViewChange>& changes, Size size) {
  if (!tree_->root()) return;
  tree_->begin();
  for (const auto& change : changes) {
    std::visit([this](const auto& one) { tree_->apply(one); }, change);
  }
  tree_->root()->resize(wholeUp(size.width), wholeUp(size.height));
  tree_->end();
}

void QtMount::appearanceDidChange() {
  tree_->appearanceDidChange();
}

QWidget* QtMount::widgetOf(ViewId view) const {
  return tree_->widgetOf(view);
}

}  // namespace quillmont
