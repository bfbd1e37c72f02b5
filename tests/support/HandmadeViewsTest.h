// Native views made by hand, whichever toolkit shows them, and what the user did to them.
#pragma once

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "platform/view/NativeView.h"
#include "tests/support/RecordedActions.h"

namespace quillmont::testing {

inline const NativeLabel kLabel{.text = "Installer", .font = {}, .color = {}};
inline const NativeSymbol kEjectSymbol{"eject.fill", Font::system(11), Color::red};
inline const NativeShape kSquare{.fill = Color::red};

class HandmadeViewsTest : public ::testing::Test {
 protected:
  static constexpr Size kPanelSize{320, 400};

  /// To a panel of that size.
  virtual void apply(const std::vector<ViewChange>& changes) = 0;

  /// As the last child of `parent`.
  static InsertView insertion(ViewId id, NativeContent content, Rect frame,
                              ViewId parent = kRootView) {
    return {id, parent, 1000, {std::move(content)}, frame};
  }

  void insert(ViewId id, NativeContent content, Rect frame, ViewId parent = kRootView) {
    apply({insertion(id, std::move(content), frame, parent)});
  }

  void update(ViewId id, NativeProperties properties) {
    apply({UpdateView{id, std::move(properties)}});
  }
  void remove(ViewId id) { apply({RemoveView{id}}); }

  RecordedActions actions;
};

}  // namespace quillmont::testing
