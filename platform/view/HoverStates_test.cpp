#include "platform/view/HoverStates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "tests/support/RecordedActions.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HoverStatesTest : public ::testing::Test {
 protected:
  HoverStatesTest() {
    for (const ViewId view : {1u, 2u}) states->track(view);
  }

  void turn() {
    for (const auto& what : std::exchange(later_, {})) what();
  }

  testing::RecordedActions actions;
  std::unique_ptr<HoverStates> states =
      std::make_unique<HoverStates>(actions, [this](auto what) { later_.push_back(what); });

 private:
  std::vector<std::function<void()>> later_;
};

TEST_F(HoverStatesTest, AViewIsLeftBeforeAnotherIsComeTo) {
  states->set(1, true);
  states->tell();
  states->set(2, true);
  states->set(1, false);
  states->tell();
  EXPECT_THAT(actions.take(), ElementsAre("enter 1", "leave 1", "enter 2"));
}

TEST_F(HoverStatesTest, NothingIsToldTwice) {
  states->set(1, true);
  states->tell();
  states->track(1);
  states->set(1, true);
  states->tell();
  EXPECT_THAT(actions.take(), ElementsAre("enter 1"));
}

TEST_F(HoverStatesTest, AVisitThatIsOverBeforeItIsToldIsNone) {
  states->set(1, true);
  states->set(1, false);
  states->tell();
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(HoverStatesTest, NothingIsToldOfAForgottenOrAnUnknownView) {
  states->set(1, true);
  states->tell();
  actions.take();
  states->forget(1);
  states->set(1, false);
  states->set(7, true);
  states->tell();
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(HoverStatesTest, WhatHappensWhileHeldIsToldAtTheNextTurn) {
  states->hold();
  states->set(1, true);
  states->tell();
  states->release();
  EXPECT_THAT(actions.take(), IsEmpty());
  turn();
  EXPECT_THAT(actions.take(), ElementsAre("enter 1"));
}

TEST_F(HoverStatesTest, ATurnThatComesWhileHeldTellsNothing) {
  states->set(1, true);
  states->tellSoon();
  states->hold();
  turn();
  EXPECT_THAT(actions.take(), IsEmpty());
  states->release();
  turn();
  EXPECT_THAT(actions.take(), ElementsAre("enter 1"));
}

TEST_F(HoverStatesTest, AViewThatGoesWhileAnotherIsToldIsNotTold) {
  states->set(1, true);
  states->set(2, true);
  actions.onAction = [&] {
    for (const ViewId view : {1u, 2u}) states->forget(view);
  };
  states->tell();
  EXPECT_EQ(actions.take().size(), 1u);
}

TEST_F(HoverStatesTest, MayEndWhileTelling) {
  states->set(1, true);
  states->set(2, true);
  states->tell();
  actions.take();
  for (const ViewId view : {1u, 2u}) states->set(view, false);
  actions.onAction = [&] { states.reset(); };
  states->tellSoon();
  turn();
  EXPECT_EQ(actions.take().size(), 1u);
}

TEST_F(HoverStatesTest, MayEndBeforeTheNextTurn) {
  states->set(1, true);
  states->tellSoon();
  states.reset();
  turn();
  EXPECT_THAT(actions.take(), IsEmpty());
}

}  // namespace
}  // namespace quillmont
