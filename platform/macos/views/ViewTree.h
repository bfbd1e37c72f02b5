// The views of a panel by their names.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/macos/views/AppKitMount.h"
#include "platform/macos/views/GroupView.h"
#include "platform/macos/views/HoverTracker.h"
#include "platform/macos/views/PopoverView.h"
#include "platform/macos/views/UserActions.h"
#include "platform/view/NativeView.h"

namespace quillmont {

/// Applies single changes. Between begin() and end() nothing is told to anybody, and the order for
/// the keyboard waits for the end. Main thread.
class ViewTree {
 public:
  explicit ViewTree(ViewActions& actions);
  ~ViewTree();
  ViewTree(const ViewTree&) = delete;
  ViewTree& operator=(const ViewTree&) = delete;

  NSView* root() const;
  NSView* viewOf(ViewId view) const;
  MountedView* mounted(ViewId view) const;  ///< null when there is none of that name

  void begin() { hover_.hold(); }
  // A change that names an unknown view, or another kind of content, changes nothing.
  void apply(const InsertView& change);
  void apply(const RemoveView& change);
  void apply(const MoveView& change);
  void apply(const UpdateView& change);
  void apply(const SetViewFrame& change);
  void end();

  void setVisible(bool visible);
  void appearanceDidChange();

 private:
  struct Node {
    ViewId parent = kRootView;
    std::vector<ViewId> children;
    NativeProperties properties;
    Rect frame;
    std::unique_ptr<MountedView> view;
    PopoverView* popover = nullptr;  ///< the same, if the view is one
  };

  Node* find(ViewId id);
  void take(ViewId id, Node& node);
  void describe(const Node& node);
  void place(Node& node);
  void stack(ViewId id);
  void restack(const Node& parent);
  void moveFocusFrom(NSView* view);
  void forget(ViewId id);
  bool isInButton(const Node& node) const;
  void orderFocus();
  void collectFocus(const Node& top, std::vector<NSView*>& stops);
  void presentPopovers();

  UserActions actions_;
  std::unordered_map<ViewId, Node> nodes_;
  HoverTracker hover_;
  bool isHidden_ = false;
  bool structureChanged_ = false;
};

/// The tree of a mount.
ViewTree& treeOf(const AppKitMount& mount);

}  // namespace quillmont
