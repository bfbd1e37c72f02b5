#include "platform/Observable.h"

#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <vector>

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using Strings = std::vector<std::string>;

TEST(Signal, ObserversAreCalledInTheOrderOfTheirSubscription) {
  Signal<int> signal;
  Strings story;
  const auto one =
      signal.subscribe([&](int value) { story.push_back("one " + std::to_string(value)); });
  const auto two =
      signal.subscribe([&](int value) { story.push_back("two " + std::to_string(value)); });
  signal.send(7);
  EXPECT_THAT(story, ElementsAre("one 7", "two 7"));
}

TEST(Signal, DroppedSubscriptionEnds) {
  Signal<> signal;
  int calls = 0;
  {
    const auto subscription = signal.subscribe([&] { ++calls; });
    signal.send();
  }
  signal.send();
  EXPECT_EQ(calls, 1);
}

TEST(Signal, ObserverMayCancelItselfAndOthersDuringACall) {
  Signal<> signal;
  Subscription one, two;
  int calls = 0;
  one = signal.subscribe([&] {
    ++calls;
    one = Subscription();
    two = Subscription();
  });
  two = signal.subscribe([&] { ++calls; });
  signal.send();
  signal.send();
  EXPECT_EQ(calls, 1);
}

TEST(Signal, ObserverAddedDuringACallHearsTheNextOne) {
  Signal<> signal;
  std::vector<Subscription> subscriptions;
  int late = 0;
  subscriptions.push_back(signal.subscribe([&] {
    if (subscriptions.size() == 1) subscriptions.push_back(signal.subscribe([&] { ++late; }));
  }));
  signal.send();
  EXPECT_EQ(late, 0);
  signal.send();
  EXPECT_EQ(late, 1);
}

TEST(Signal, SubscriptionMayOutliveItsSignal) {
  Subscription subscription;
  {
    Signal<> signal;
    subscription = signal.subscribe([] {});
  }
  subscription = Subscription();
  SUCCEED();
}

TEST(Published, TellsBeforeItChangesAndSendsTheValueAfter) {
  ObservableObject object;
  Published<int> number(object, 1);
  Strings story;
  const auto changes = object.objectWillChange().subscribe(
      [&] { story.push_back("will change " + std::to_string(number.get())); });
  const auto values =
      number.observe([&](const int& value) { story.push_back("value " + std::to_string(value)); });
  number.set(2);
  number.set(2);
  EXPECT_THAT(story,
              ElementsAre("value 1", "will change 1", "value 2", "will change 2", "value 2"));
}

TEST(Published, ValueLastsUntilAllAreToldThoughAnObserverSetsTheNext) {
  ObservableObject object;
  Published<Strings> list(object, {});
  std::size_t told = 0;
  const auto first = list.observe([&](const Strings& value) {
    if (value.size() == 1) list.set({"longer than a string keeps in place", "and one more"});
  });
  const auto second = list.observe([&](const Strings& value) { told = value.size(); });
  list.set({"longer than a string keeps in place"});
  EXPECT_EQ(told, 1u);
  EXPECT_EQ(list.get().size(), 2u);
}

TEST(Published, IsReadFromOtherThreadsWhileItIsWritten) {
  ObservableObject object;
  Published<Strings> list(object, {"0", "0"});
  std::thread reader([&] {
    for (int round = 0; round < 1000; ++round) {
      const auto seen = list.get();
      ASSERT_EQ(seen.at(0), seen.at(1));
    }
  });
  for (int round = 0; round < 1000; ++round) list.set(Strings(2, std::to_string(round)));
  reader.join();
}

}  // namespace
}  // namespace quillmont
