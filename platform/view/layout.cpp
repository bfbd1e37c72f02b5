#include "platform/view/layout.h"

#include <algorithm>

#include "platform/view/Layouter.h"

namespace quillmont {
namespace {

constexpr double kDividerThickness = 1;

std::optional<double> less(std::optional<double> offered, double amount) {
  if (!offered) return offered;
  return std::max(0.0, *offered - amount);
}

/// Elements that only ask what is inside of them are quicker asked again.
bool isWorthRemembering(const Element& element) {
  return std::holds_alternative<LeafElement>(element.content) ||
         std::holds_alternative<StackElement>(element.content) ||
         std::holds_alternative<ListElement>(element.content);
}

ProposedSize offerInPadding(const PaddingElement& padding, const ProposedSize& offer) {
  return {less(offer.width, padding.leading + padding.trailing),
          less(offer.height, padding.top + padding.bottom)};
}

template <class AlignmentOfAxis>
double alignedOffset(AlignmentOfAxis alignment, double free) {
  if (alignment == AlignmentOfAxis::center) return free / 2;
  return static_cast<int>(alignment) == 0 ? 0 : free;
}

}  // namespace

Size Layouter::sizeOf(const Element& element, const ProposedSize& offer) {
  const auto measured = [&] {
    return std::visit([&](const auto& content) { return measure(content, element, offer); },
                      element.content);
  };
  if (!isWorthRemembering(element)) return measured();
  for (const auto& [asked, answer] : element.sizes) {
    if (asked == offer) return answer;
  }
  const Size size = measured();
  element.sizes.emplace_back(offer, size);
  return size;
}

Size Layouter::measure(const StackElement& stack, const Element& element,
                       const ProposedSize& offer) {
  return planStack(stack, element, offer).size;
}

Size Layouter::measure(const ListElement&, const Element& element, const ProposedSize& offer) {
  // A list outside of a stack stands as in a vertical one.
  return planStack({Axis::vertical, {}, {}}, element, offer).size;
}

Size Layouter::measure(const SpacerElement& spacer, const Element&, const ProposedSize& offer) {
  const bool horizontal = spacer.axis == Axis::horizontal;
  return {horizontal ? std::max(kSystemSpacing, within(offer.width, 0)) : 0,
          horizontal ? 0 : std::max(kSystemSpacing, within(offer.height, 0))};
}

Size Layouter::measure(const DividerElement& divider, const Element&, const ProposedSize& offer) {
  if (divider.stackAxis == Axis::vertical) {
    return {within(offer.width, kShapeLength), kDividerThickness};
  }
  return {kDividerThickness, within(offer.height, kShapeLength)};
}

Size Layouter::measure(const PaddingElement& padding, const Element& element,
                       const ProposedSize& offer) {
  const Size inner = sizeOf(element.children.front(), offerInPadding(padding, offer));
  return {inner.width + padding.leading + padding.trailing,
          inner.height + padding.top + padding.bottom};
}

Size Layouter::measure(const FrameElement& frame, const Element& element,
                       const ProposedSize& offer) {
  const auto& size = frame.size;
  if (size.width && size.height) return {*size.width, *size.height};
  const Size inner = sizeOf(element.children.front(), offerInFrame(frame, offer));
  const auto length = [](std::optional<double> fixed, std::optional<double> most,
                         std::optional<double> offered, double content) {
    if (fixed) return *fixed;
    if (!most || !offered) return content;
    return std::max(content, std::min(*most, *offered));
  };
  return {length(size.width, size.maxWidth, offer.width, inner.width),
          length(size.height, size.maxHeight, offer.height, inner.height)};
}

ProposedSize Layouter::offerInFrame(const FrameElement& frame, const ProposedSize& offer) {
  const auto length = [](std::optional<double> fixed, std::optional<double> most,
                         std::optional<double> offered) {
    if (fixed) return fixed;
    return most && offered ? std::min(*most, *offered) : offered;
  };
  return {length(frame.size.width, frame.size.maxWidth, offer.width),
          length(frame.size.height, frame.size.maxHeight, offer.height)};
}

Size Layouter::measure(const LayerElement&, const Element& element, const ProposedSize& offer) {
  return sizeOf(element.children.front(), offer);
}

Size Layouter::measure(const ScrollElement&, const Element& element, const ProposedSize& offer) {
  const Size content = sizeOf(element.children.front(), {offer.width, std::nullopt});
  return {content.width, within(offer.height, content.height)};
}

Size Layouter::measure(const ButtonElement&, const Element& element, const ProposedSize& offer) {
  return sizeOf(element.children.front(), offer);
}

Size Layouter::measure(const WrapperElement&, const Element& element, const ProposedSize& offer) {
  return sizeOf(element.children.front(), offer);
}

Size Layouter::measure(const PopoverElement&, const Element& element, const ProposedSize& offer) {
  return sizeOf(element.children.front(), offer);
}

bool Layouter::settle(Element& element) {
  if (!element.changed) return false;
  const auto* const leaf = std::get_if<LeafElement>(&element.content);
  if (leaf && !element.resized) element.resized = !answersAsBefore(*leaf, element);
  for (auto& child : element.children) element.resized |= settle(child);
  if (element.resized) element.forgetSizes();
  return element.resized;
}

void Layouter::place(Element& element, const Rect& frame, const ProposedSize& offer) {
  if (!element.resized && element.frame == frame && element.offer == offer) return;
  element.frame = frame;
  element.offer = offer;
  element.native = nullptr;
  std::visit([&](const auto& content) { placeChildren(content, element, frame, offer); },
             element.content);
}

void Layouter::placeCentred(Element& element, const Rect& area) {
  const ProposedSize offer{area.width, area.height};
  const Size size = sizeOf(element, offer);
  place(element,
        {area.x + (area.width - size.width) / 2, area.y + (area.height - size.height) / 2,
         size.width, size.height},
        offer);
}

Size Layouter::placeAtOrigin(Element& element) {
  const Size ideal = sizeOf(element, {});
  const ProposedSize offer{ideal.width, ideal.height};
  const Size size = sizeOf(element, offer);
  place(element, {0, 0, size.width, size.height}, offer);
  return size;
}

void Layouter::placeChildren(const StackElement& stack, Element& element, const Rect& frame,
                             const ProposedSize& offer) {
  const auto& plan = planStack(stack, element, offer);
  double at = stack.axis == Axis::horizontal ? frame.x : frame.y;
  for (const auto& planned : plan.children) {
    const Size size = planned.size;
    auto& child = const_cast<Element&>(*planned.element);
    at += planned.gapBefore;
    if (stack.axis == Axis::horizontal) {
      const double y =
          frame.y + alignedOffset(stack.alignment.vertical, frame.height - size.height);
      place(child, {at, y, size.width, size.height}, planned.offer);
      at += size.width;
    } else {
      const double x =
          frame.x + alignedOffset(stack.alignment.horizontal, frame.width - size.width);
      place(child, {x, at, size.width, size.height}, planned.offer);
      at += size.height;
    }
  }
}

void Layouter::placeChildren(const ListElement&, Element& element, const Rect& frame,
                             const ProposedSize& offer) {
  placeChildren(StackElement{Axis::vertical, {}, {}}, element, frame, offer);
}

void Layouter::placeChildren(const PaddingElement& padding, Element& element, const Rect& frame,
                             const ProposedSize& offer) {
  place(element.children.front(),
        {frame.x + padding.leading, frame.y + padding.top,
         std::max(0.0, frame.width - padding.leading - padding.trailing),
         std::max(0.0, frame.height - padding.top - padding.bottom)},
        offerInPadding(padding, offer));
}

void Layouter::placeChildren(const FrameElement& content, Element& element, const Rect& frame,
                             const ProposedSize& offer) {
  auto& child = element.children.front();
  const auto inner = offerInFrame(content, offer);
  const Size size = sizeOf(child, inner);
  const auto& alignment = content.size.alignment;
  place(child,
        {frame.x + alignedOffset(alignment.horizontal, frame.width - size.width),
         frame.y + alignedOffset(alignment.vertical, frame.height - size.height), size.width,
         size.height},
        inner);
}

void Layouter::placeChildren(const LayerElement&, Element& element, const Rect& frame,
                             const ProposedSize& offer) {
  place(element.children[0], frame, offer);
  placeCentred(element.children[1], frame);
}

void Layouter::placeChildren(const ScrollElement&, Element& element, const Rect&,
                             const ProposedSize& offer) {
  auto& content = element.children.front();
  const ProposedSize inner{offer.width, std::nullopt};
  const Size size = sizeOf(content, inner);
  place(content, {0, 0, size.width, size.height}, inner);
}

void Layouter::placeChildren(const ButtonElement&, Element& element, const Rect& frame,
                             const ProposedSize& offer) {
  place(element.children.front(), frame, offer);
}

void Layouter::placeChildren(const WrapperElement&, Element& element, const Rect& frame,
                             const ProposedSize& offer) {
  place(element.children.front(), frame, offer);
}

void Layouter::placeChildren(const PopoverElement&, Element& element, const Rect& frame,
                             const ProposedSize& offer) {
  place(element.children.front(), frame, offer);
  if (element.children.size() > 1) placeAtOrigin(element.children[1]);
}

Size layOut(Element& root, const Metrics& metrics, TextSizes& texts) {
  texts.beginLayout();
  Layouter layouter(metrics, texts);
  layouter.settle(root);
  return layouter.placeAtOrigin(root);
}

void forgetLayout(Element& root) {
  root.changed = root.resized = true;
  root.forgetSizes();
  for (auto& child : root.children) forgetLayout(child);
}

}  // namespace quillmont
