// Views as the layout leaves them, on a screen whose sizes can be reckoned in the head.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/view/Layouter.h"
#include "platform/view/layout.h"
#include "platform/view/resolve.h"
#include "tests/support/FakeMetrics.h"

namespace quillmont::testing {

inline Element built(const View& view) {
  Element element;
  Resolver({}, [] {}).resolve(view, element);
  return element;
}

/// What the view answers to an offer.
inline Size answer(const View& view, const ProposedSize& offer, const Metrics& metrics) {
  TextSizes texts;
  return Layouter(metrics, texts).sizeOf(built(view), offer);
}
inline Size answer(const View& view, const ProposedSize& offer) {
  return answer(view, offer, FakeMetrics());
}

/// A text whose characters are 5 wide and 13 high.
inline View small(const std::string& text) {
  return VerbatimText(text).font(Font::system(10));
}

/// A view that is as large as it is.
inline View box(Color color, double width, double height) {
  return Fill(color).frame({.width = width, .height = height});
}

/// A view that has been built and laid out, in its ideal size or in one that it is given.
class LaidOut {
 public:
  explicit LaidOut(const View& view) : root(built(view)) { size = layOut(root, metrics, texts); }
  LaidOut(const View& view, double width, double height)
      : LaidOut(view.frame({.width = width, .height = height})) {}

  /// The frame of the only figure of a colour.
  Rect figure(Color color) const {
    return frameOfOnly([&](const Element& element) {
      const auto* const leaf = std::get_if<LeafElement>(&element.content);
      const auto* const shape = leaf ? std::get_if<NativeShape>(&leaf->content) : nullptr;
      return shape && shape->fill == color;
    });
  }

  Rect text(const std::string& text) const {
    return frameOfOnly([&](const Element& element) {
      const auto* const leaf = std::get_if<LeafElement>(&element.content);
      const auto* const label = leaf ? std::get_if<NativeLabel>(&leaf->content) : nullptr;
      return label && label->text == text;
    });
  }

  /// The frame of the only element of a kind.
  template <class Kind>
  Rect only() const {
    return frameOfOnly(
        [](const Element& element) { return std::holds_alternative<Kind>(element.content); });
  }

  FakeMetrics metrics;
  TextSizes texts;
  Element root;
  Size size;

 private:
  template <class Wanted>
  Rect frameOfOnly(Wanted wanted) const {
    std::vector<Rect> frames;
    collect(root, wanted, frames);
    EXPECT_EQ(frames.size(), 1u) << "views that are looked for";
    return frames.empty() ? Rect{} : frames.front();
  }

  template <class Wanted>
  static void collect(const Element& element, Wanted wanted, std::vector<Rect>& frames) {
    if (wanted(element)) frames.push_back(element.frame);
    for (const auto& child : element.children) collect(child, wanted, frames);
  }
};

inline void expectSameFrames(const Element& left, const Element& right) {
  ASSERT_EQ(left.frame, right.frame);
  ASSERT_EQ(left.children.size(), right.children.size());
  for (std::size_t i = 0; i < left.children.size(); ++i) {
    expectSameFrames(left.children[i], right.children[i]);
  }
}

}  // namespace quillmont::testing
