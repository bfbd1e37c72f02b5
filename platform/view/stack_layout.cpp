// How a stack shares what it was offered among its children.

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/view/Layouter.h"

namespace quillmont {
namespace {

bool isSpacer(const Element& element) {
  return std::holds_alternative<SpacerElement>(element.content);
}

void collect(const Element& element, std::vector<StackPlan::Child>& children) {
  for (const auto& child : element.children) {
    if (std::holds_alternative<ListElement>(child.content)) {
      collect(child, children);
    } else {
      children.push_back({&child});
    }
  }
}

double along(Axis axis, const Size& size) {
  return axis == Axis::horizontal ? size.width : size.height;
}

double across(Axis axis, const Size& size) {
  return axis == Axis::horizontal ? size.height : size.width;
}

ProposedSize offer(Axis axis, std::optional<double> length, std::optional<double> breadth) {
  if (axis == Axis::horizontal) return {length, breadth};
  return {breadth, length};
}

/// A spacer is a gap itself, unless one is named.
void setGaps(std::vector<StackPlan::Child>& children, std::optional<double> spacing) {
  for (std::size_t i = 1; i < children.size(); ++i) {
    const bool besideSpacer = isSpacer(*children[i - 1].element) || isSpacer(*children[i].element);
    children[i].gapBefore = spacing.value_or(besideSpacer ? 0 : kSystemSpacing);
  }
}

}  // namespace

/// Where no breadth is offered, that of the broadest child is what all are offered.
const StackPlan& Layouter::planStack(const StackElement& stack, const Element& element,
                                     const ProposedSize& offered) {
  if (!element.plan) element.plan = std::make_unique<StackPlan>();
  auto& result = *element.plan;
  if (result.children.empty()) {
    collect(element, result.children);
    setGaps(result.children, stack.spacing);
  } else if (result.offer == offered) {
    return result;
  }
  result.offer = offered;
  plan(result, stack, offered);
  const bool horizontal = stack.axis == Axis::horizontal;
  if (horizontal ? offered.height : offered.width) return result;
  const double broadest = across(stack.axis, result.size);
  plan(result, stack, offer(stack.axis, horizontal ? offered.width : offered.height, broadest));
  return result;
}

void Layouter::plan(StackPlan& plan, const StackElement& stack, const ProposedSize& offered) {
  const bool horizontal = stack.axis == Axis::horizontal;
  const auto length = horizontal ? offered.width : offered.height;
  const auto breadth = horizontal ? offered.height : offered.width;
  if (length) {
    planShares(plan, stack.axis, *length, breadth);
  } else {
    for (auto& child : plan.children) serve(child, offer(stack.axis, std::nullopt, breadth));
  }
  double total = 0, widest = 0;
  for (const auto& child : plan.children) {
    total += child.gapBefore + along(stack.axis, child.size);
    widest = std::max(widest, across(stack.axis, child.size));
  }
  plan.size = horizontal ? Size{total, widest} : Size{widest, total};
}

void Layouter::serve(StackPlan::Child& child, const ProposedSize& offered) {
  child.offer = offered;
  child.size = sizeOf(*child.element, offered);
}

/// The least flexible are served first, each with an equal share of what is left; the spacers
/// share the rest.
void Layouter::planShares(StackPlan& plan, Axis axis, double length,
                          std::optional<double> breadth) {
  auto& claims = plan.claims;
  claims.clear();
  double left = length;
  for (auto& child : plan.children) {
    left -= child.gapBefore;
    if (!isSpacer(*child.element)) {
      claims.emplace_back(flexibility(*child.element, axis, breadth), &child);
    }
  }
  std::sort(claims.begin(), claims.end());  // of equal ones, the first comes first
  const auto spacers = static_cast<double>(plan.children.size() - claims.size());
  const double reserved = kSystemSpacing * spacers;
  left -= reserved;
  auto waiting = static_cast<double>(claims.size());
  for (const auto& claim : claims) {
    auto& child = *claim.second;
    serve(child, offer(axis, std::max(0.0, left / waiting--), breadth));
    if (length < kUnbounded) left -= along(axis, child.size);
  }
  for (auto& child : plan.children) {
    if (isSpacer(*child.element)) serve(child, offer(axis, (left + reserved) / spacers, breadth));
  }
}

double Layouter::flexibility(const Element& element, Axis axis, std::optional<double> breadth) {
  const auto lengthAt = [&](double length) {
    return along(axis, sizeOf(element, offer(axis, length, breadth)));
  };
  return lengthAt(kUnbounded) - lengthAt(0);
}

}  // namespace quillmont
