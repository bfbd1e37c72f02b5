// Ownership of Objective-C objects, counted by hand.
#pragma once

#import <Foundation/Foundation.h>

#include <utility>

#if __has_feature(objc_arc)
#error "references are counted by hand here"
#endif

namespace quillmont {

/// Owns one reference to an object, or to nil. `P` is a pointer type: NSView*, id. Messages can be
/// sent to it as to the pointer itself.
template <class P>
class Retained {
 public:
  Retained() = default;
  Retained(const Retained& other) : object_(static_cast<P>([other.object_ retain])) {}
  Retained(Retained&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Retained& operator=(Retained other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Retained() { [object_ release]; }

  /// Takes over the reference that alloc/init, copy and new give.
  static Retained adopt(P object) {
    Retained result;
    result.object_ = object;
    return result;
  }
  /// Takes a reference of its own, for objects that somebody else holds.
  static Retained share(P object) { return adopt(static_cast<P>([object retain])); }

  operator P() const { return object_; }
  P get() const { return object_; }

 private:
  P object_ = nullptr;
};

template <class P>
Retained<P> adopt(P object) {
  return Retained<P>::adopt(object);
}

template <class P>
Retained<P> share(P object) {
  return Retained<P>::share(object);
}

}  // namespace quillmont
