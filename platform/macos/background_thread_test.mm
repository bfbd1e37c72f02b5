#include "platform/macos/background_thread.h"

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <pthread/qos.h>

#include <future>

#include "platform/macos/Retained.h"

namespace quillmont {
namespace {

void finish(SerialQueue& queue) {
  std::promise<void> done;
  queue.async([&] { done.set_value(); });
  done.get_future().wait();
}

TEST(BackgroundThread, IsNamedAndOfBackgroundQuality) {
  const auto before = qos_class_self();
  ThreadQueue queue("com.example.q", kBackgroundThread);
  char name[64] = "";
  qos_class_t quality = QOS_CLASS_UNSPECIFIED;
  queue.async([&] {
    pthread_getname_np(pthread_self(), name, sizeof name);
    quality = qos_class_self();
  });
  finish(queue);
  EXPECT_STREQ(name, "com.example.q");
  EXPECT_EQ(quality, QOS_CLASS_BACKGROUND);
  EXPECT_EQ(qos_class_self(), before);
}

TEST(BackgroundThread, ALabelThatIsTooLongIsCutAndNotRefused) {
  ThreadQueue queue(std::string(200, 'q'), kBackgroundThread);
  char name[64] = "";
  queue.async([&] { pthread_getname_np(pthread_self(), name, sizeof name); });
  finish(queue);
  EXPECT_TRUE(std::string(name).starts_with("qqqqqqqqqqqqqqq"));
}

TEST(BackgroundThread, WhatATaskLeavesInThePoolIsGoneAfterIt) {
  ThreadQueue queue("test", kBackgroundThread);
  const auto object = adopt([[NSObject alloc] init]);
  queue.async([&] { [[object retain] autorelease]; });
  finish(queue);
  EXPECT_EQ([object retainCount], 1U);
}

TEST(BackgroundThread, WhatATaskHeldIsGivenUpWithinItsPool) {
  struct Leaver {
    explicit Leaver(const Retained<NSObject*>& left) : object(left) {}
    ~Leaver() { [[object retain] autorelease]; }
    Retained<NSObject*> object;
  };
  ThreadQueue queue("test", kBackgroundThread);
  const auto object = adopt([[NSObject alloc] init]);
  queue.async([leaver = std::make_shared<Leaver>(object)] {});
  finish(queue);
  EXPECT_EQ([object retainCount], 1U);
}

}  // namespace
}  // namespace quillmont
