#include "platform/linux/background_thread.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>

#include <algorithm>
#include <future>

namespace quillmont {
namespace {

TEST(BackgroundThread, IsNamedAndYieldsToOthersAlone) {
  const int before = getpriority(PRIO_PROCESS, 0);
  ThreadQueue queue("com.norwaldex.quillmont.daemon-with-a-long-name", kBackgroundThread);
  char name[16] = "";
  int nice = 0;
  std::promise<void> done;
  queue.async([&] {
    prctl(PR_GET_NAME, name);
    nice = getpriority(PRIO_PROCESS, 0);
    done.set_value();
  });
  done.get_future().wait();
  EXPECT_STREQ(name, "daemon-with-a-l");
  EXPECT_EQ(nice, std::max(before, 10));
  EXPECT_EQ(getpriority(PRIO_PROCESS, 0), before);
}

}  // namespace
}  // namespace quillmont
