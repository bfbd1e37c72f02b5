// A background thread's work, one task after another.
#pragma once

#include <memory>
#include <string>

#include "platform/RunLoop.h"

namespace quillmont {

/// Destroying a queue lets the task that is running end and drops those that have not begun; it
/// may happen on the queue's own thread.
class SerialQueue {
 public:
  virtual ~SerialQueue() = default;
  /// Any thread; never blocks. Tasks run in the order of the calls and never overlap.
  virtual void async(Task task) = 0;
};

class SerialQueues {
 public:
  virtual ~SerialQueues() = default;
  /// A new queue of background priority. `label` names it to debuggers.
  virtual std::unique_ptr<SerialQueue> makeBackgroundQueue(const std::string& label) = 0;
};

}  // namespace quillmont
