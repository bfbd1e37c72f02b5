#include "platform/view/changes.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quillmont {
namespace {

bool isSameView(const NativeNode& before, const NativeNode& after) {
  if (&before == &after) return true;
  return before.id == after.id &&
         before.properties.content.index() == after.properties.content.index();
}

/// The children of one view, before and after.
class Siblings {
 public:
  Siblings(const NativeNodes& before, const NativeNodes& after) : before_(before) {
    origins_.reserve(after.size());
    Places places;  // mostly all stand where they stood, and none has to be looked for
    for (std::size_t i = 0; i < after.size(); ++i) {
      if (i < before.size() && isSameView(*before[i], *after[i])) {
        origins_.push_back(i);
        continue;
      }
      if (places.empty()) places = sortedPlaces(before);
      origins_.push_back(find(*after[i], places));
    }
  }

  static constexpr std::size_t kNew = static_cast<std::size_t>(-1);

  /// Where each child was before.
  const std::vector<std::size_t>& origins() const { return origins_; }

  bool areTheSame() const {
    if (origins_.size() != before_.size()) return false;
    for (std::size_t i = 0; i < origins_.size(); ++i) {
      if (origins_[i] != i) return false;
    }
    return true;
  }

  std::vector<bool> survivors() const {
    std::vector<bool> result(before_.size(), false);
    for (const auto origin : origins_) {
      if (origin != kNew) result[origin] = true;
    }
    return result;
  }

  /// For each child whether it can stay where it is: the longest run of known ones that are in
  /// their old order.
  std::vector<bool> keepingPlace() const {
    std::vector<std::size_t> ends;  // ends[n]: the last child of the best run of n + 1
    std::vector<std::size_t> previous(origins_.size(), kNew);
    for (std::size_t i = 0; i < origins_.size(); ++i) {
      if (origins_[i] == kNew) continue;
      const auto longer = std::lower_bound(
          ends.begin(), ends.end(), origins_[i],
          [this](std::size_t child, std::size_t origin) { return origins_[child] < origin; });
      if (longer != ends.begin()) previous[i] = *std::prev(longer);
      if (longer == ends.end()) {
        ends.push_back(i);
      } else {
        *longer = i;
      }
    }
    std::vector<bool> result(origins_.size(), false);
    for (auto i = ends.empty() ? kNew : ends.back(); i != kNew; i = previous[i]) result[i] = true;
    return result;
  }

 private:
  using Places = std::vector<std::pair<ViewId, std::size_t>>;

  static Places sortedPlaces(const NativeNodes& nodes) {
    Places places;
    places.reserve(nodes.size());
    for (std::size_t i = 0; i < nodes.size(); ++i) places.emplace_back(nodes[i]->id, i);
    std::sort(places.begin(), places.end());
    return places;
  }

  std::size_t find(const NativeNode& node, const Places& places) const {
    const auto place =
        std::lower_bound(places.begin(), places.end(), std::pair(node.id, std::size_t{0}));
    const bool known = place != places.end() && place->first == node.id &&
                       isSameView(*before_[place->second], node);
    return known ? place->second : kNew;
  }

  const NativeNodes& before_;
  std::vector<std::size_t> origins_;
};

class Comparison {
 public:
  explicit Comparison(const std::set<ViewId>& told) : told_(told) {}

  std::vector<ViewChange> run(const NativeNode& before, const NativeNode& after) {
    removeGone(before, after);
    compareChildren(before, after);
    return std::move(changes_);
  }

 private:
  /// All that goes, goes first: an identity may come back below another view.
  void removeGone(const NativeNode& before, const NativeNode& after) {
    const Siblings siblings(before.children, after.children);
    if (!siblings.areTheSame()) {
      const auto survivors = siblings.survivors();
      for (std::size_t i = 0; i < survivors.size(); ++i) {
        if (!survivors[i]) changes_.emplace_back(RemoveView{before.children[i]->id});
      }
    }
    forEachKnown(before, after, siblings, [this](const NativeNode& was, const NativeNode& is) {
      if (&was != &is) removeGone(was, is);
    });
  }

  void compareChildren(const NativeNode& before, const NativeNode& after) {
    const Siblings siblings(before.children, after.children);
    if (!siblings.areTheSame()) arrange(before, after, siblings);
    forEachKnown(before, after, siblings, [this](const NativeNode& was, const NativeNode& is) {
      if (&was != &is || !told_.empty()) compare(was, is);
    });
  }

  template <class Action>
  static void forEachKnown(const NativeNode& before, const NativeNode& after,
                           const Siblings& siblings, Action action) {
    for (std::size_t i = 0; i < after.children.size(); ++i) {
      const auto origin = siblings.origins()[i];
      if (origin != Siblings::kNew) action(*before.children[origin], *after.children[i]);
    }
  }

  /// Inserts and moves until the children stand as they should. `standing` is how they do.
  void arrange(const NativeNode& before, const NativeNode& after, const Siblings& siblings) {
    const auto& origins = siblings.origins();
    const auto keeps = siblings.keepingPlace();
    const auto survivors = siblings.survivors();
    std::vector<ViewId> standing;
    for (std::size_t i = 0; i < survivors.size(); ++i) {
      if (survivors[i]) standing.push_back(before.children[i]->id);
    }
    std::size_t next = 0;
    for (std::size_t i = 0; i < after.children.size(); ++i) {
      const auto& child = *after.children[i];
      if (keeps[i]) {
        while (standing[next] != child.id) ++next;
        ++next;
        continue;
      }
      if (origins[i] == Siblings::kNew) {
        insert(after.id, next, child);
      } else {
        const auto at = std::find(standing.begin(), standing.end(), child.id);
        if (static_cast<std::size_t>(at - standing.begin()) < next) --next;
        standing.erase(at);
        changes_.emplace_back(MoveView{child.id, next});
      }
      standing.insert(standing.begin() + static_cast<std::ptrdiff_t>(next), child.id);
      ++next;
    }
  }

  void insert(ViewId parent, std::size_t index, const NativeNode& node) {
    changes_.emplace_back(InsertView{node.id, parent, index, node.properties, node.frame});
    for (std::size_t i = 0; i < node.children.size(); ++i) insert(node.id, i, *node.children[i]);
  }

  void compare(const NativeNode& before, const NativeNode& after) {
    if (before.properties != after.properties || told_.count(after.id) > 0) {
      changes_.emplace_back(UpdateView{after.id, after.properties});
    }
    if (before.frame != after.frame) changes_.emplace_back(SetViewFrame{after.id, after.frame});
    compareChildren(before, after);
  }

  const std::set<ViewId>& told_;
  std::vector<ViewChange> changes_;
};

}  // namespace

std::vector<ViewChange> changesBetween(const NativeNode& before, const NativeNode& after,
                                       const std::set<ViewId>& told) {
  return Comparison(told).run(before, after);
}

}  // namespace quillmont
