// From a view, which is a description, to the elements that stand for it on the screen.
#pragma once

#include <functional>
#include <string>

#include "platform/view/Element.h"
#include "platform/view/View.h"
#include "platform/view/localization.h"

namespace quillmont {

/// Main thread.
class Resolver {
 public:
  /// `invalidate` is what a changed value and a changed observed object call.
  Resolver(Localizer localize, std::function<void()> invalidate)
      : localize_(std::move(localize)), invalidate_(std::move(invalidate)) {}

  /// Makes `root` the elements of `view`; a new element becomes whatever the view is. An element
  /// that stands where there was one of the same type, or has its key in the same list, stays the
  /// same one, with its identity and its memory. An identity is never given twice. What has changed
  /// is laid out before the next build.
  void resolve(const View& view, Element& root);

 private:
  friend class ElementBuilder;

  Localizer localize_;
  std::function<void()> invalidate_;
  ViewId lastId_ = kRootView;
};

}  // namespace quillmont
