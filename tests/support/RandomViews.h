// Views that nobody would write, for what has to hold for all of them.
#pragma once

#include <optional>
#include <random>
#include <string>

#include "platform/view/View.h"

namespace quillmont::testing {

/// Views at random: every kind in every other. Always the same ones for one seed; those of another
/// seed for the words differ in their texts alone.
class RandomViews {
 public:
  explicit RandomViews(unsigned seed) : RandomViews(seed, seed) {}
  RandomViews(unsigned seed, unsigned wordSeed) : random_(seed), words_(wordSeed) {}

  View make(int depth) {
    if (depth == 0) return leaf();
    switch (upTo(9)) {
      case 0:
      case 1:
        return HStack({.alignment = static_cast<VerticalAlignment>(upTo(3)), .spacing = spacing()},
                      several(depth));
      case 2:
      case 3:
        return VStack(
            {.alignment = static_cast<HorizontalAlignment>(upTo(3)), .spacing = spacing()},
            several(depth));
      case 4:
        return make(depth - 1).padding(static_cast<Edges>(upTo(7)), upTo(20));
      case 5:
        return make(depth - 1).frame(frame());
      case 6:
        return upTo(2) ? make(depth - 1).background(make(depth - 1))
                       : make(depth - 1).overlay(make(depth - 1));
      case 7:
        return ScrollView(make(depth - 1));
      default:
        return Button([] {}, make(depth - 1).opacity(0.5).help("help"));
    }
  }

  int upTo(int end) { return upTo(end, random_); }

 private:
  static int upTo(int end, std::mt19937& random) {
    return std::uniform_int_distribution(0, end - 1)(random);
  }

  View leaf() {
    switch (upTo(6)) {
      case 0:
        return Spacer();
      case 1:
        return Divider();
      case 2:
        return Fill(Color::red);
      case 3:
        return Circle();
      case 4:
        return Symbol("gear").font(Font::system(10 + upTo(20)));
      default:
        return text();
    }
  }

  View text() {
    std::string words;
    for (int count = upTo(6, words_); count >= 0; --count) {
      words += std::string(static_cast<std::size_t>(1 + upTo(9, words_)), 'a') + " ";
    }
    const auto view = VerbatimText(words).font(Font::system(8 + upTo(8)));
    return upTo(3) ? view : view.lineLimit(1 + upTo(2));
  }

  Views several(int depth) {
    Views views;
    for (int count = upTo(4); count >= 0; --count) {
      const auto view = make(depth - 1);
      if (upTo(5)) {
        views.push_back(view);
      } else {
        views.push_back(KeyedList({{"a", view}, {"b", leaf()}}));
      }
    }
    return views;
  }

  std::optional<double> spacing() {
    if (upTo(2)) return {};
    return upTo(12);
  }

  FrameSize frame() {
    FrameSize size;
    if (upTo(3) == 0) size.width = upTo(200);
    if (upTo(3) == 0) size.height = upTo(200);
    if (upTo(3) == 0) size.maxWidth = upTo(2) ? kUnbounded : upTo(200);
    if (upTo(3) == 0) size.maxHeight = upTo(2) ? kUnbounded : upTo(200);
    size.alignment = {static_cast<HorizontalAlignment>(upTo(3)),
                      static_cast<VerticalAlignment>(upTo(3))};
    return size;
  }

  std::mt19937 random_, words_;
};

}  // namespace quillmont::testing
