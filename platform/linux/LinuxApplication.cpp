#include "platform/linux/LinuxApplication.h"

#include <errno.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <system_error>

#include "platform/posix/termination_signals.h"

namespace quillmont {

LinuxApplication::LinuxApplication(EventLoop& loop) : loop_(loop) {
  signal(SIGPIPE, SIG_IGN);
  const sigset_t set = blockTerminationSignals();
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
