// What may happen to the program in its life, as a list of steps that can be drawn at random,
// replayed, shortened and printed.
#pragma once

#include <string>
#include <vector>

namespace quillmont::testing {

enum class Kind {
  // In the world, seen by nobody until a tool is asked.
  attach,       ///< image `which` of the catalogue, its node `amount` seconds old
  vanish,       ///< image `which` is detached by somebody else
  use,          ///< image `which` gets the set of users number `variant`
  retouch,      ///< the device node of image `which` becomes one of kind `variant`
  failScans,    ///< the next `amount` scans fail in the manner `variant`
  failChecks,   ///< the next `amount` in-use checks fail in the manner `variant`
  detachments,  ///< from now on detaching behaves like `variant`, with the number `amount`
  muteNotices,  ///< whether the script runner can be started: `variant`
  moveProgram,  ///< the program is where `variant` says: in place, in the Trash, deleted
  jumpClock,    ///< `amount` seconds pass, or are set back, while no timer fires
  // On the main thread.
  passTime,     ///< `amount` seconds, with every timer that is due
  runMain,      ///< one task that was handed over
  exclude,      ///< image `which`
  include,      ///< image `which`
  enable,       ///< automatic ejection: `variant`
  setTimeout,   ///< `amount`
  volumeEvent,  ///< a mount or an unmount: `variant`
  ejectByUser,  ///< image `which`
  restart,      ///< the timers
  quit,         ///< what the end of the application asks of the monitor
  letGo,        ///< quits, and the last owner lets go of the monitor
  // On the monitor's queue.
  runQueue,  ///< one task
  settle,    ///< queue and main thread do all that they have to
  // In the middle of a task of the queue.
  meanwhile,  ///< the steps in `inner` come about while the tool or pause number `variant`, counted
              ///< from here, runs
};

struct Step {
  Kind kind;
  int which = 0;
  int variant = 0;
  double amount = 0;
  std::vector<Step> inner = {};
};

using History = std::vector<Step>;

/// The same history for the same seed, on every machine.
History randomHistory(unsigned seed);

/// One line, and one more for every inner step.
std::string textOf(const Step& step);

}  // namespace quillmont::testing
