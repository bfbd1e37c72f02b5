#include "platform/linux/LinuxApplication.h"

#include <errno.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <system_error>

namespace quillmont {
namespace {

/// A blocked signal is queued even where it would be ignored, so the ignored ones are left out.
sigset_t terminationSignals() {
  sigset_t result;
  sigemptyset(&result);
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    struct sigaction action = {};
    sigaction(number, nullptr, &action);
    if (action.sa_handler != SIG_IGN) sigaddset(&result, number);
  }
  return result;
}

}  // namespace

LinuxApplication::LinuxApplication(EventLoop& loop) : loop_(loop) {
  signal(SIGPIPE, SIG_IGN);
  const sigset_t set = terminationSignals();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  signals_ = Descriptor(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
  if (!signals_) throw std::system_error(errno, std::generic_category(), "signalfd");
  watch_ = loop_.watch(signals_.get(), EPOLLIN, [this](std::uint32_t) { takeSignals(); });
}

void LinuxApplication::run() {
  if (delegate_ && !terminating_) delegate_->applicationDidFinishLaunching();
  serve();
}

void LinuxApplication::terminate() {
  if (terminating_) return;
  terminating_ = true;
  if (delegate_) delegate_->applicationWillTerminate();
  stopServing();
}

void LinuxApplication::takeSignals() {
  signalfd_siginfo signal;
  while (read(signals_.get(), &signal, sizeof signal) == sizeof signal) {
  }
  terminate();
}

}  // namespace quillmont
