// One run of the layout. Only the view layer itself looks in here.
#pragma once

#include <algorithm>
#include <optional>

#include "platform/view/layout.h"

namespace quillmont {

/// The distance that the system itself keeps between two views of a stack.
inline constexpr double kSystemSpacing = 8;

/// What a shape is without an offer.
inline constexpr double kShapeLength = 10;

/// What fills an offer, and has a length of its own where there is none.
inline double within(std::optional<double> offered, double alternative) {
  return std::max(0.0, offered.value_or(alternative));
}

class Layouter {
 public:
  Layouter(const Metrics& metrics, TextSizes& texts)
      : metrics_(metrics), scale_(metrics.scale()), texts_(texts) {}

  /// The size that the element takes when it is offered `offer`.
  Size sizeOf(const Element& element, const ProposedSize& offer);

  /// Forgets what the element and those inside of it have answered, where that may no longer be so.
  /// Answers whether the element itself was resized.
  bool settle(Element& element);

  /// `offer` is the one to which the element answered with the frame's size: what is inside is
  /// shared out as it was then.
  void place(Element& element, const Rect& frame, const ProposedSize& offer);
  void placeCentred(Element& element, const Rect& area);
  /// In its ideal size, which is then offered to it: what fills a width fills that one.
  Size placeAtOrigin(Element& element);

 private:
  Size measure(const StackElement&, const Element&, const ProposedSize&);
  Size measure(const ListElement&, const Element&, const ProposedSize&);
  Size measure(const SpacerElement&, const Element&, const ProposedSize&);
  Size measure(const DividerElement&, const Element&, const ProposedSize&);
  Size measure(const PaddingElement&, const Element&, const ProposedSize&);
  Size measure(const FrameElement&, const Element&, const ProposedSize&);
  Size measure(const LayerElement&, const Element&, const ProposedSize&);
  Size measure(const ScrollElement&, const Element&, const ProposedSize&);
  Size measure(const ButtonElement&, const Element&, const ProposedSize&);
  Size measure(const LeafElement&, const Element&, const ProposedSize&);
  Size measure(const WrapperElement&, const Element&, const ProposedSize&);
  Size measure(const PopoverElement&, const Element&, const ProposedSize&);

  void placeChildren(const StackElement&, Element&, const Rect&, const ProposedSize&);
  void placeChildren(const ListElement&, Element&, const Rect&, const ProposedSize&);
  void placeChildren(const SpacerElement&, Element&, const Rect&, const ProposedSize&) {}
  void placeChildren(const DividerElement&, Element&, const Rect&, const ProposedSize&) {}
  void placeChildren(const PaddingElement&, Element&, const Rect&, const ProposedSize&);
  void placeChildren(const FrameElement&, Element&, const Rect&, const ProposedSize&);
  void placeChildren(const LayerElement&, Element&, const Rect&, const ProposedSize&);
  void placeChildren(const ScrollElement&, Element&, const Rect&, const ProposedSize&);
  void placeChildren(const ButtonElement&, Element&, const Rect&, const ProposedSize&);
  void placeChildren(const LeafElement&, Element&, const Rect&, const ProposedSize&) {}
  void placeChildren(const WrapperElement&, Element&, const Rect&, const ProposedSize&);
  void placeChildren(const PopoverElement&, Element&, const Rect&, const ProposedSize&);

  Size leafSize(const NativeLabel&, const Element&, const ProposedSize&);
  Size leafSize(const NativeSymbol&, const Element&, const ProposedSize&);
  Size leafSize(const NativeShape&, const Element&, const ProposedSize&);
  Size leafSize(const NativeSwitch&, const Element&, const ProposedSize&);
  Size leafSize(const NativeCheckbox&, const Element&, const ProposedSize&);
  Size leafSize(const NativeSegments&, const Element&, const ProposedSize&);
  template <class Other>
  Size leafSize(const Other&, const Element&, const ProposedSize&) {
    return {};  // no leaves: groups, buttons, scrolls and popovers are made of elements
  }
  bool answersAsBefore(const LeafElement&, const Element&);
  bool isOneLine(const NativeLabel&, Size);
  Size inLessHeight(const NativeLabel&, const ProposedSize&, Size);

  static ProposedSize offerInFrame(const FrameElement&, const ProposedSize&);

  const StackPlan& planStack(const StackElement&, const Element&, const ProposedSize&);
  void plan(StackPlan&, const StackElement&, const ProposedSize&);
  void serve(StackPlan::Child&, const ProposedSize&);
  void planShares(StackPlan&, Axis, double along, std::optional<double> across);
  double flexibility(const Element&, Axis, std::optional<double> across);

  const Metrics& metrics_;
  const double scale_;
  TextSizes& texts_;
};

}  // namespace quillmont
