// What changesBetween() tells a host: the stories of single changes, and random trees against a
// host in memory.

#include "platform/view/changes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "tests/support/FakeMount.h"

namespace quillmont {
namespace {

using testing::FakeMount;

NativeNode node(ViewId id, NativeContent content, std::vector<NativeNode> children = {}) {
  NativeNode result{id, {std::move(content)}, {0, 0, 10, 10}, {}, {}};
  for (auto& child : children) {
    result.children.push_back(std::make_shared<const NativeNode>(std::move(child)));
  }
  return result;
}
NativeNode label(ViewId id, const std::string& text = "a") {
  return node(id, NativeLabel{text, Font::body, Color::primary});
}
NativeNode group(ViewId id, std::vector<NativeNode> children) {
  return node(id, NativeGroup{}, std::move(children));
}
NativeNode panel(std::vector<NativeNode> children) {
  return group(kRootView, std::move(children));
}
NativeNode panelOf(const std::vector<ViewId>& ids) {
  std::vector<NativeNode> children;
  for (const auto id : ids) children.push_back(label(id));
  return panel(std::move(children));
}

using Changes = std::vector<ViewChange>;

TEST(Changes, BetweenEqualPanelsAreNone) {
  const auto tree = panel({label(1), group(2, {label(3)})});
  EXPECT_EQ(changesBetween(tree, tree), Changes{});
  EXPECT_EQ(changesBetween({}, panel({})), Changes{});
}

TEST(Changes, InsertAViewWithAllBelowIt) {
  const auto inner = label(3), outer = group(2, {inner, label(4)});
  EXPECT_EQ(changesBetween(panel({label(1), label(5)}), panel({label(1), outer, label(5)})),
            (Changes{InsertView{2, 0, 1, outer.properties, outer.frame},
                     InsertView{3, 2, 0, inner.properties, inner.frame},
                     InsertView{4, 2, 1, inner.properties, inner.frame}}));
}

TEST(Changes, RemoveAViewWithoutNamingWhatIsBelowIt) {
  EXPECT_EQ(changesBetween(panel({label(1), group(2, {label(3)})}), panel({label(1)})),
            (Changes{RemoveView{2}}));
}

TEST(Changes, MoveOneInsteadOfMany) {
  EXPECT_EQ(changesBetween(panelOf({1, 2, 3, 4, 5}), panelOf({2, 3, 4, 5, 1})),
            (Changes{MoveView{1, 4}}));
  EXPECT_EQ(changesBetween(panelOf({1, 2, 3, 4, 5}), panelOf({5, 1, 2, 3, 4})),
            (Changes{MoveView{5, 0}}));
  EXPECT_EQ(changesBetween(panelOf({1, 2, 3}), panelOf({2, 1, 3})).size(), 1u);
}

TEST(Changes, UpdateOnlyWhatHasOtherProperties) {
  const auto after = label(2, "b");
  EXPECT_EQ(changesBetween(panel({label(1), label(2)}), panel({label(1), after})),
            (Changes{UpdateView{2, after.properties}}));
  auto helped = label(1);
  helped.properties.help = "tip";
  EXPECT_EQ(changesBetween(panel({label(1)}), panel({helped})),
            (Changes{UpdateView{1, helped.properties}}));
}

TEST(Changes, SetOnlyTheFramesThatAreOther) {
  auto moved = label(2);
  moved.frame.x = 5;
  EXPECT_EQ(changesBetween(panel({label(1), label(2)}), panel({label(1), moved})),
            (Changes{SetViewFrame{2, moved.frame}}));
}

TEST(Changes, ReachBelowViewsThatStayTheSame) {
  const auto after = label(3, "b");
  EXPECT_EQ(changesBetween(panel({group(1, {group(2, {label(3)})})}),
                           panel({group(1, {group(2, {after})})})),
            (Changes{UpdateView{3, after.properties}}));
}

TEST(Changes, PutAnotherKindInThePlaceOfOne) {
  const auto after = node(2, NativeButton{});
  EXPECT_EQ(
      changesBetween(panel({label(1), label(2), label(3)}), panel({label(1), after, label(3)})),
      (Changes{RemoveView{2}, InsertView{2, 0, 1, after.properties, after.frame}}));
}

TEST(Changes, BringBackWhatWasBelowAViewOfAnotherKind) {
  const auto inner = label(3), after = node(2, NativeButton{}, {inner});
  EXPECT_EQ(changesBetween(panel({group(2, {inner})}), panel({after})),
            (Changes{RemoveView{2}, InsertView{2, 0, 0, after.properties, after.frame},
                     InsertView{3, 2, 0, inner.properties, inner.frame}}));
}

TEST(Changes, RemoveBeforeTheyInsert) {
  // The one with identity 3 goes from one group to the other, which stands before it.
  const auto inner = label(3);
  EXPECT_EQ(changesBetween(panel({group(1, {}), group(2, {inner})}),
                           panel({group(1, {inner}), group(2, {})})),
            (Changes{RemoveView{3}, InsertView{3, 1, 0, inner.properties, inner.frame}}));
}

TEST(Changes, TellAControlItsStateAgain) {
  const auto toggle = node(1, NativeSwitch{true, Color::cyan});
  EXPECT_EQ(changesBetween(panel({toggle, label(2)}), panel({toggle, label(2)}), {1}),
            (Changes{UpdateView{1, toggle.properties}}));
  EXPECT_EQ(changesBetween(panel({toggle}), panel({toggle}), {7}), Changes{}) << "has gone";
  EXPECT_EQ(changesBetween(panel({}), panel({toggle}), {1}).size(), 1u) << "is told as it comes";
}

TEST(Changes, MoveAsFewAsCanBe) {
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round) {
    std::vector<ViewId> ids(static_cast<std::size_t>(round % 12 + 1));
    std::iota(ids.begin(), ids.end(), ViewId{1});
    const auto before = panelOf(ids);
    std::shuffle(ids.begin(), ids.end(), random);
    // The longest run in the old order, found in the plainest way.
    std::vector<std::size_t> runs(ids.size(), 1);
    for (std::size_t i = 0; i < ids.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        if (ids[j] < ids[i]) runs[i] = std::max(runs[i], runs[j] + 1);
      }
    }
    const auto staying = *std::max_element(runs.begin(), runs.end());
    const auto changes = changesBetween(before, panelOf(ids));
    ASSERT_EQ(changes.size(), ids.size() - staying) << "round " << round;
    for (const auto& change : changes) ASSERT_TRUE(std::holds_alternative<MoveView>(change));
  }
}

/// Trees at random, of few identities, so that two of them share some.
class RandomTrees {
 public:
  explicit RandomTrees(unsigned seed) : random_(seed) {}

  NativeNode make() {
    ids_.resize(20);
    std::iota(ids_.begin(), ids_.end(), ViewId{1});
    if (upTo(3)) std::shuffle(ids_.begin(), ids_.end(), random_);
    ids_.resize(static_cast<std::size_t>(upTo(20)));
    NativeNode root;
    while (!ids_.empty()) addTo(root, 3);
    return root;
  }

 private:
  int upTo(int end) { return std::uniform_int_distribution(0, end - 1)(random_); }

  void addTo(NativeNode& parent, int depth) {
    const auto id = ids_.back();
    ids_.pop_back();
    // Most are always of the same kind.
    const auto kind = upTo(10) ? static_cast<int>(id % 3) : upTo(3);
    auto child = kind == 0   ? label(id, upTo(4) ? "a" : "b")
                 : kind == 1 ? group(id, {})
                             : node(id, NativeButton{});
    if (!upTo(4)) child.frame.x = upTo(3);
    if (!upTo(6)) child.properties.help = "tip";
    while (kind != 0 && depth > 0 && !ids_.empty() && upTo(3)) addTo(child, depth - 1);
    parent.children.push_back(std::make_shared<const NativeNode>(std::move(child)));
  }

  std::mt19937 random_;
  std::vector<ViewId> ids_;
};

/// Whether the host has below `id` what the tree has.
bool isShown(const FakeMount& mount, const NativeNode& tree) {
  const auto& children = mount.views.at(tree.id).children;
  if (children.size() != tree.children.size()) return false;
  for (std::size_t i = 0; i < children.size(); ++i) {
    const auto& child = *tree.children[i];
    if (children[i] != child.id) return false;
    const auto& shown = mount.views.at(child.id);
    if (shown.parent != tree.id || shown.frame != child.frame ||
        shown.properties != child.properties || !isShown(mount, child)) {
      return false;
    }
  }
  return true;
}

std::size_t countOf(const NativeNode& tree) {
  std::size_t count = 1;
  for (const auto& child : tree.children) count += countOf(*child);
  return count;
}

TEST(Changes, LeadFromAnyPanelToAnyOther) {
  for (unsigned seed = 1; seed <= 20000; ++seed) {
    RandomTrees trees(seed);
    const auto before = trees.make(), after = trees.make();
    FakeMount mount;
    mount.apply(changesBetween({}, before), {});
    ASSERT_TRUE(isShown(mount, before)) << "seed " << seed << "\n" << mount.picture();
    mount.apply(changesBetween(before, after), {});
    ASSERT_TRUE(isShown(mount, after)) << "seed " << seed << "\n" << mount.picture();
    ASSERT_EQ(mount.views.size(), countOf(after)) << "one is left over, seed " << seed;
    ASSERT_FALSE(HasFailure()) << "seed " << seed;
  }
}

}  // namespace
}  // namespace quillmont
