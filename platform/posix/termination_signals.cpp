#include "platform/posix/termination_signals.h"

#include <initializer_list>

namespace quillmont {

/// A blocked signal is queued even where it would be ignored, so the ignored ones are left out.
sigset_t blockTerminationSignals() {
  sigset_t result;
  sigemptyset(&result);
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    struct sigaction action = {};
    sigaction(number, nullptr, &action);
    if (action.sa_handler != SIG_IGN) sigaddset(&result, number);
  }
  pthread_sigmask(SIG_BLOCK, &result, nullptr);
  return result;
}

}  // namespace quillmont
