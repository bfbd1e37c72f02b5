// The elements of a list, as the next redraw looks for them.
#pragma once

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>

#include "platform/view/Element.h"

namespace quillmont {

/// The children of a list's element by their keys; of several with one key each is found once, the
/// first of them first. They are moved out of the element, which has to outlive this.
class KeyedChildren {
 public:
  explicit KeyedChildren(Element& element) {
    const auto* const list = std::get_if<ListElement>(&element.content);
    if (!list) return;
    for (std::size_t i = 0; i < list->keys.size(); ++i) {
      byKey_.emplace(list->keys[i], &element.children[i]);
    }
  }

  /// A new one, if there is none of that key.
  Element take(const std::string& key) {
    const auto [first, last] = byKey_.equal_range(key);
    if (first == last) return {};
    // The order of equal keys is not told; the lowest identity is the one that came first.
    const auto found = std::min_element(first, last, [](const auto& left, const auto& right) {
      return left.second->id < right.second->id;
    });
    auto* const child = found->second;
    byKey_.erase(found);
    return std::move(*child);
  }

 private:
  std::unordered_multimap<std::string, Element*> byKey_;
};

}  // namespace quillmont
