// What stands between the widgets and those whom their actions are for.
#pragma once

#include <QPointer>
#include <QWidget>
#include <memory>
#include <vector>

#include "platform/linux/views/PopoverWidget.h"
#include "platform/view/ActionsUnderWay.h"

namespace quillmont {

/// What goes while an action is under way lives on, out of sight, until it is over.
class UserActions : public ActionsUnderWay {
 public:
  /// `target` must outlive it.
  explicit UserActions(ViewActions& target);
  ~UserActions() override;
  UserActions(const UserActions&) = delete;
  UserActions& operator=(const UserActions&) = delete;

  void remove(QWidget* widget);
  void remove(std::unique_ptr<PopoverWidget> popover);

 private:
  void over() override;

  QWidget* const attic_;
  std::vector<QPointer<QWidget>> widgets_;
  std::vector<std::unique_ptr<PopoverWidget>> popovers_;
};

}  // namespace quillmont
