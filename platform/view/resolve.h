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

  /// The elements of `view`. An element that stands where `previous` had one of the same type, or
  /// has its key in the same list, takes over its identity and its memory; `previous` is used up.
  /// An identity is never given twice.
  Element resolve(const View& view, Element* previous);

 private:
  friend class ElementBuilder;

  Localizer localize_;
  std::function<void()> invalidate_;
  ViewId lastId_ = kRootView;
};

}  // namespace quillmont
