#include "platform/macos/background_thread.h"

#import <Foundation/Foundation.h>
#include <pthread.h>
#include <pthread/qos.h>

#include <utility>

namespace quillmont {
namespace {

/// A longer name would be refused.
constexpr std::size_t kThreadNameLength = 63;

/// The system knows a thread's name and quality only from the thread itself.
void begin(const std::string& label) {
  pthread_setname_np(label.substr(0, kThreadNameLength).c_str());
  pthread_set_qos_class_self_np(QOS_CLASS_BACKGROUND, 0);
}

void run(Task&& task) {
  @autoreleasepool {
    const Task own = std::move(task);
    own();
  }
}

}  // namespace

const BackgroundThread kBackgroundThread = {begin, run};

}  // namespace quillmont
