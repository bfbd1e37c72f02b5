#include "platform/view/HostingController.h"

#include <gmock/gmock.h>

#include "tests/support/ViewTest.h"

namespace quillmont {
namespace {

using testing::FakeMetrics;
using testing::FakeMount;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Redraw : public testing::ViewTest {
 protected:
  /// A text that tells how often it was asked for.
  void showCounted() {
    showAsking([this] { return VerbatimText("body " + std::to_string(++bodies)); });
  }
  int bodies = 0;
};

TEST_F(Redraw, IsDoneBeforeThePanelIsVisible) {
  panel = std::make_unique<HostingController>(Text("a"), loop);
  panel->mount(mount, metrics);
  EXPECT_EQ(mount.applications, 0) << "nothing is shown yet";
  EXPECT_EQ(metrics.measured, 0);
  panel->setVisible(true);
  EXPECT_EQ(mount.applications, 1);
  EXPECT_EQ(mount.size, (Size{7, 16}));
  EXPECT_EQ(panel->size(), (Size{7, 16}));
}

TEST_F(Redraw, ComesOnceInATurnHoweverMuchChanges) {
  showCounted();
  change();
  change();
  change();
  EXPECT_EQ(mount.applications, 1) << "not before the next turn";
  EXPECT_EQ(loop.pendingTasks(), 1u);
  loop.runTasks();
  EXPECT_EQ(mount.applications, 2);
  EXPECT_EQ(bodies, 2);
  redraw();
  EXPECT_EQ(mount.applications, 3);
}

TEST_F(Redraw, ComesNotWhenNothingChanges) {
  showCounted();
  loop.runTasks();
  EXPECT_EQ(mount.applications, 1);
}

TEST_F(Redraw, ComesNotWhileThePanelIsHidden) {
  showCounted();
  panel->setVisible(false);
  change();
  EXPECT_EQ(loop.pendingTasks(), 0u);
  loop.runTasks();
  EXPECT_EQ(bodies, 1);
  panel->setVisible(true);
  EXPECT_EQ(bodies, 2) << "made up for at once";
  EXPECT_THAT(mount.picture(), HasSubstr("body 2"));
}

TEST_F(Redraw, ComesNotWhenThePanelWasHiddenBeforeItsTurn) {
  showCounted();
  change();
  panel->setVisible(false);
  loop.runTasks();
  EXPECT_EQ(bodies, 1);
}

TEST_F(Redraw, ComesOnceWhenThePanelWasHiddenAndShownBeforeItsTurn) {
  showCounted();
  change();
  panel->setVisible(false);
  panel->setVisible(true);
  loop.runTasks();
  EXPECT_EQ(bodies, 2);
}

TEST_F(Redraw, IsNotNeededWhereNothingChangedWhileHidden) {
  showCounted();
  panel->setVisible(false);
  panel->setVisible(true);
  panel->setVisible(true);
  EXPECT_EQ(bodies, 1);
}

TEST_F(Redraw, OfAPanelThatHasGoneIsPassedOver) {
  showCounted();
  change();
  panel.reset();
  loop.runTasks();
  EXPECT_EQ(bodies, 1);
  change();
  EXPECT_EQ(loop.pendingTasks(), 0u) << "it watches nothing any more";
}

TEST_F(Redraw, TellsOnlyWhatIsOther) {
  showAsking([this] {
    return VStack({}, {VerbatimText("same"), VerbatimText(++bodies == 1 ? "abcd" : "dcba")});
  });
  redraw();
  EXPECT_EQ(mount.story(), "update label \"dcba\" 13 primary\n");
}

TEST_F(Redraw, MeasuresOnlyNewTexts) {
  showAsking([this] {
    Views rows;
    for (int i = 0; i < 20; ++i) rows.push_back(VerbatimText("row " + std::to_string(i)));
    rows.push_back(VerbatimText("a name").lineLimit(1));
    rows.push_back(VerbatimText("new " + std::to_string(++bodies)));
    return HStack({VStack({}, rows), Spacer()}).frame({.width = 300});
  });
  metrics.measured = 0;
  redraw();
  EXPECT_EQ(metrics.measured, 1);
}

TEST_F(Redraw, MeasuresTextsThatAreCutOffOnlyOnce) {
  showAsking([] {
    const auto name = VerbatimText(std::string(300, 'n')).lineLimit(1);
    return HStack({name, Spacer()}).frame({.width = 300});
  });
  metrics.measured = 0;
  redraw();
  redraw();
  EXPECT_EQ(metrics.measured, 0);
}

TEST_F(Redraw, MeasuresAllAnewWithOtherMetrics) {
  showAsking([] { return VerbatimText("abc").font(Font::system(11)); });
  EXPECT_EQ(mount.size.width, 17);
  metrics.pixelsPerPoint = 2;
  metrics.measured = 0;
  panel->metricsDidChange();
  EXPECT_EQ(mount.size.width, 16.5) << "at once";
  EXPECT_EQ(metrics.measured, 1);
  panel->setVisible(false);
  metrics.pixelsPerPoint = 1;
  panel->metricsDidChange();
  EXPECT_EQ(mount.size.width, 16.5) << "not while it is hidden";
  panel->setVisible(true);
  EXPECT_EQ(mount.size.width, 17);
}

TEST_F(Redraw, WaitsForAMount) {
  panel = std::make_unique<HostingController>(Text("a"), loop);
  panel->setVisible(true);
  panel->metricsDidChange();
  panel->mount(mount, metrics);
  EXPECT_EQ(mount.applications, 1);
}

TEST_F(Redraw, AfterUnmountingTouchesNoNativeViews) {
  showCounted();
  change();
  panel->unmount();
  loop.runTasks();
  change();
  loop.runTasks();
  panel->metricsDidChange();
  panel->setVisible(false);
  panel->setVisible(true);
  EXPECT_EQ(mount.applications, 1);
  EXPECT_EQ(bodies, 1);
}

TEST_F(Redraw, OnOtherNativeViewsBringsEverything) {
  showAsking([] { return testing::Counter{"a"}; });
  press("button");
  loop.runTasks();
  panel->unmount();
  FakeMount other;
  FakeMetrics finer;
  finer.pixelsPerPoint = 2;
  panel->mount(other, finer);
  EXPECT_EQ(other.picture(), R"view(button name=a=1 (0 0 19.5 16)
  label "a=1" 13 primary (0 0 19.5 16)
)view")
      << "with what it remembers";
  EXPECT_EQ(finer.measured, 1) << "sizes of other metrics are no longer right";
}

TEST_F(Redraw, OnOtherNativeViewsWaitsWhileHidden) {
  showCounted();
  panel->setVisible(false);
  FakeMount other;
  panel->mount(other, metrics);
  EXPECT_EQ(other.applications, 0);
  panel->setVisible(true);
  EXPECT_EQ(other.applications, 1);
  EXPECT_EQ(mount.applications, 1);
}

TEST_F(Redraw, TranslatesKeysAndLeavesTextsAsTheyAre) {
  const auto translated = [](const std::string& key) { return "<" + key + ">"; };
  const Binding<bool> on([] { return true; }, [](bool) {});
  const Binding<double> one([] { return 1.0; }, [](double) {});
  panel = std::make_unique<HostingController>(
      VStack({}, {Text("key"), VerbatimText("name"),
                  Toggle("box", on).toggleStyle(ToggleStyle::checkbox).help("tip"),
                  SegmentedPicker("", one, {{"a", 1}}).accessibilityLabel("called"),
                  Toggle("before", on)}),
      loop, translated);
  panel->mount(mount, metrics);
  panel->setVisible(true);
  for (const auto* line : {"label \"<key>\"", "label \"name\"", "\"<box>\"", "help=<tip>",
                           "segments [<a>] name=<called>", "label \"<before>\""}) {
    EXPECT_THAT(mount.picture(), HasSubstr(line));
  }
}

TEST_F(Redraw, WithoutTranslationsShowsKeysAsTheyAre) {
  show(Text("key"));
  EXPECT_THAT(mount.picture(), HasSubstr("label \"key\""));
}

}  // namespace
}  // namespace quillmont
