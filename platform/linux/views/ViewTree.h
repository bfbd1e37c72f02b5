// The widgets of a panel by the names of their views.
#pragma once

#include <QPointer>
#include <QWidget>
#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/linux/views/FocusRing.h"
#include "platform/linux/views/GroupWidget.h"
#include "platform/linux/views/HoverTracker.h"
#include "platform/linux/views/PopoverWidget.h"
#include "platform/linux/views/UserActions.h"
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

  QWidget* root() const { return root_; }
  QWidget* widgetOf(ViewId view) const;

  void begin() { hover_.hold(); }
  // A change that names an unknown view, or another kind of content, changes nothing.
  void apply(const InsertView& change);
  void apply(const RemoveView& change);
  void apply(const MoveView& change);
  void apply(const UpdateView& change);
  void apply(const SetViewFrame& change);
  void end();

  void appearanceDidChange();

 private:
  struct Node {
    ViewId parent = kRootView;
    std::vector<ViewId> children;
    NativeProperties properties;
    Rect frame;
    NativeWidget* view = nullptr;            ///< its widget belongs to the widget around it
    std::unique_ptr<PopoverWidget> popover;  ///< the same, if the view is one
  };

  Node* find(ViewId id);
  void take(ViewId id, Node& node);
  void describe(const Node& node);
  void place(Node& node);
  void restack(ViewId id);
  void forget(ViewId id);
  bool isInButton(const Node& node) const;
  void orderFocus(const Node& top, std::vector<QWidget*>& stops);

  UserActions actions_;
  QPointer<GroupWidget> root_;
  std::unordered_map<ViewId, Node> nodes_;
  HoverTracker hover_;
  FocusRing ring_;
  bool structureChanged_ = false;
};

}  // namespace quillmont
