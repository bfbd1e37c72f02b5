#include "platform/view/ActionsUnderWay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/RecordedActions.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Counted : public ActionsUnderWay {
 public:
  Counted(ViewActions& target, std::vector<std::string>& story)
      : ActionsUnderWay(target), story_(story) {}
  using ActionsUnderWay::isRunning;

 private:
  void over() override { story_.emplace_back("over"); }

  std::vector<std::string>& story_;
};

class ActionsUnderWayTest : public ::testing::Test {
 protected:
  testing::RecordedActions target;
  std::vector<std::string> story;
  std::unique_ptr<Counted> actions = std::make_unique<Counted>(target, story);
};

TEST_F(ActionsUnderWayTest, EveryActionIsHandedOnAndThenOver) {
  actions->press(1);
  actions->toggle(2, true);
  actions->select(3, 4);
  actions->hover(5, true);
  actions->dismiss(6);
  EXPECT_THAT(target.take(),
              ElementsAre("press 1", "toggle 2 on", "select 3 4", "enter 5", "dismiss 6"));
  EXPECT_EQ(story, std::vector<std::string>(5, "over"));
}

TEST_F(ActionsUnderWayTest, RunsFromItsStartToItsEnd) {
  target.onAction = [this] { story.emplace_back(actions->isRunning() ? "running" : "idle"); };
  actions->press(1);
  EXPECT_THAT(story, ElementsAre("running", "over"));
  EXPECT_FALSE(actions->isRunning());
}

TEST_F(ActionsUnderWayTest, AnActionWithinAnotherIsNotOverBeforeIt) {
  bool isInner = false;
  target.onAction = [&] {
    if (std::exchange(isInner, true)) return;
    actions->hover(2, true);
    story.emplace_back("inner done");
  };
  actions->press(1);
  EXPECT_THAT(story, ElementsAre("inner done", "over"));
}

TEST_F(ActionsUnderWayTest, ThePanelThatGoesDuringAnActionIsNotToldThatItIsOver) {
  target.onAction = [this] { actions.reset(); };
  actions->press(1);
  EXPECT_THAT(story, IsEmpty());
}

}  // namespace
}  // namespace quillmont
