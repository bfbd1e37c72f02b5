// A panel that hangs from a status item by its arrow.
#pragma once

#include <memory>

#include "platform/StatusItem.h"

namespace quillmont {

class HostingController;

/// An edge of a rectangle whose y axis points up.
enum class RectEdge { minX = 0, minY = 1, maxX = 2, maxY = 3 };

enum class PopoverBehavior {
  applicationDefined = 0,  ///< closes only when it is told to
  transient = 1,           ///< the toolkit closes it too, on interaction outside of it
};

/// Main thread.
class Popover {
 public:
  virtual ~Popover() = default;

  /// What it shows, in the size of its own layout. The host mounts it on native views.
  virtual void setContent(std::shared_ptr<HostingController> content) = 0;
  virtual void setBehavior(PopoverBehavior behavior) = 0;

  virtual bool isShown() const = 0;

  /// Shows it outside `edge` of the whole button, or at another edge where there is no room.
  virtual void show(StatusItemButton& button, RectEdge edge) = 0;

  /// As if the user had closed it. Nothing happens to one that is not shown.
  virtual void performClose(Sender sender) = 0;
};

}  // namespace quillmont
