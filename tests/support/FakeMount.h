// Native views in memory, and pictures of them as text.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/view/NativeView.h"

namespace quillmont::testing {

/// Keeps native views as a host would and refuses, as a test failure, changes that no host could
/// apply.
class FakeMount : public NativeMount {
 public:
  struct View {
    ViewId parent = kRootView;
    NativeProperties properties;
    Rect frame;
    std::vector<ViewId> children;
  };

  FakeMount() { views[kRootView]; }

  void apply(const std::vector<ViewChange>& newChanges, Size newSize) override;

  /// The whole panel, a line a view, children indented; without the panel's own line, that of the
  /// views below `top`.
  std::string picture(ViewId top = kRootView) const;

  /// The last changes, a line each.
  std::string story() const;

  /// The only view whose line in the picture contains `text`; 0 and a test failure otherwise.
  ViewId find(const std::string& text) const;
  std::vector<ViewId> findAll(const std::string& text) const;

  /// The line of one view.
  std::string line(ViewId id) const;

  /// In the panel's coordinates, or in those of the scroll or popover around it.
  Rect frameInPanel(ViewId id) const;

  std::map<ViewId, View> views;
  Size size;
  std::vector<ViewChange> changes;  ///< of the last call
  int applications = 0;

 private:
  void applyOne(const InsertView& change);
  void applyOne(const RemoveView& change);
  void applyOne(const MoveView& change);
  void applyOne(const UpdateView& change);
  void applyOne(const SetViewFrame& change);
  void append(std::string& picture, ViewId id, int depth) const;
  void erase(ViewId id);
};

}  // namespace quillmont::testing
