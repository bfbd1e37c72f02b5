#include "platform/linux/background_thread.h"

#include <errno.h>
#include <sys/prctl.h>
#include <sys/resource.h>

#include <utility>

namespace quillmont {
namespace {

constexpr int kBackgroundNice = 10;
constexpr std::size_t kThreadNameLength = 15;

/// On Linux a thread has a nice value of its own.
void begin(const std::string& label) {
  const auto name = label.substr(label.rfind('.') + 1).substr(0, kThreadNameLength);
  prctl(PR_SET_NAME, name.c_str());
  errno = 0;
  const int nice = getpriority(PRIO_PROCESS, 0);
  if (errno == 0 && nice < kBackgroundNice) setpriority(PRIO_PROCESS, 0, kBackgroundNice);
}

void run(Task&& task) {
  const Task own = std::move(task);
  own();
}

}  // namespace

const BackgroundThread kBackgroundThread = {begin, run};

}  // namespace quillmont
