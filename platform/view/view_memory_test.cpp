// What views remember: as long as they are on the screen, and wherever they stand there.

#include <gmock/gmock.h>

#include "tests/support/ViewTest.h"

namespace quillmont {
namespace {

using testing::Counter;
using ::testing::HasSubstr;
using ::testing::Not;

class Memory : public testing::ViewTest {
 protected:
  /// A list of counters with these names, which are their keys, too.
  void showList(std::vector<std::string> shown) {
    names = std::move(shown);
    showAsking([this] {
      return VStack({}, {ForEach(
                            names, [](const auto& name) { return name; },
                            [](const auto& name) -> View { return Counter{name}; })});
    });
  }
  void showListOf(std::vector<std::string> next) {
    names = std::move(next);
    redraw();
  }
  void count(const std::string& name) {
    press("button name=" + name);
    loop.runTasks();
  }
  /// What the buttons are called, from top to bottom.
  std::string buttons() {
    std::string text;
    for (const auto id : mount.views.at(kRootView).children) {
      text += mount.views.at(id).properties.accessibilityLabel + " ";
    }
    return text;
  }

  std::vector<std::string> names;
};

TEST_F(Memory, LastsFromOneRedrawToTheNext) {
  showAsking([] { return Counter{"a"}; });
  count("a=0");
  EXPECT_EQ(buttons(), "a=1 ");
  redraw();
  count("a=1");
  EXPECT_EQ(buttons(), "a=2 ");
}

TEST_F(Memory, LastsWhileThePanelIsHidden) {
  showAsking([] { return Counter{"a"}; });
  count("a=0");
  panel->setVisible(false);
  change();
  panel->setVisible(true);
  EXPECT_EQ(buttons(), "a=1 ");
}

TEST_F(Memory, IsEachViewsOwn) {
  const View twice = Counter{"a"};
  show(VStack({}, {twice, twice}));
  panel->press(mount.views.at(kRootView).children[1]);
  loop.runTasks();
  EXPECT_EQ(buttons(), "a=0 a=1 ");
}

TEST_F(Memory, GoesWithItsKeyInAList) {
  showList({"a", "b", "c"});
  const auto idOfC = mount.find("name=c");
  count("c=0");
  showListOf({"c", "a", "b"});
  EXPECT_EQ(buttons(), "c=1 a=0 b=0 ");
  EXPECT_EQ(mount.find("name=c"), idOfC) << "the same native view";
  showListOf({"x", "b", "c"});
  EXPECT_EQ(buttons(), "x=0 b=0 c=1 ");
}

TEST_F(Memory, EndsWhenTheViewGoes) {
  showList({"a", "b"});
  const auto idOfB = mount.find("name=b");
  count("b=0");
  showListOf({"a"});
  showListOf({"a", "b"});
  EXPECT_EQ(buttons(), "a=0 b=0 ");
  EXPECT_NE(mount.find("name=b"), idOfB) << "an identity is never given twice";
}

TEST_F(Memory, OfEqualKeysGoesByTheirOrder) {
  showList({"a", "a", "a"});
  panel->press(mount.views.at(kRootView).children[0]);
  loop.runTasks();
  EXPECT_EQ(buttons(), "a=1 a=0 a=0 ");
  redraw();
  EXPECT_EQ(buttons(), "a=1 a=0 a=0 ");
  showListOf({"b", "a", "a"});
  EXPECT_EQ(buttons(), "b=0 a=1 a=0 ");
}

TEST_F(Memory, EndsWhenAnotherViewTakesThePlace) {
  bool isOther = false;
  showAsking([&]() -> View {
    if (isOther) return VerbatimText("other");
    return Counter{"a"};
  });
  count("a=0");
  isOther = true;
  redraw();
  isOther = false;
  redraw();
  EXPECT_EQ(buttons(), "a=0 ");
}

TEST_F(Memory, OfOneTypeIsNotTakenForAnothers) {
  struct Namer {
    State<std::string> name{"none"};
    void connect(StateScope& scope) { scope.remember(name); }
    View body() const { return VerbatimText(name.get()); }
  };
  bool isOther = false;
  showAsking([&]() -> View {
    if (isOther) return Namer();
    return Counter{"a"};
  });
  isOther = true;
  redraw();
  EXPECT_THAT(mount.picture(), HasSubstr("label \"none\""));
}

/// Remembers how often it was hovered.
struct CountingStyle {
  State<int> hovers{0};
  void connect(StateScope& scope) { scope.remember(hovers); }
  View makeBody(const ButtonConfiguration& configuration) const {
    return HStack({configuration.label, VerbatimText(std::to_string(hovers.get()))})
        .onHover([hovers = hovers](bool) { hovers.set(hovers.get() + 1); });
  }
};

struct NamingStyle {
  State<std::string> name{"styled"};
  void connect(StateScope& scope) { scope.remember(name); }
  View makeBody(const ButtonConfiguration& configuration) const {
    return HStack({configuration.label, VerbatimText(name.get())});
  }
};

TEST_F(Memory, OfAButtonStyleIsEachButtonsOwn) {
  show(VStack({}, {Button([] {}, Text("a")), Button([] {}, Text("b"))})
           .buttonStyle(CountingStyle()));
  hover("name=b 0", true);
  loop.runTasks();
  EXPECT_EQ(buttons(), "a 0 b 1 ");
}

TEST_F(Memory, OfOneButtonStyleIsNotTakenForAnothers) {
  bool isOther = false;
  showAsking([&] {
    const auto button = Button([] {}, Text("a"));
    return isOther ? button.buttonStyle(NamingStyle()) : button.buttonStyle(CountingStyle());
  });
  isOther = true;
  redraw();
  EXPECT_EQ(buttons(), "a styled ");
}

TEST_F(Memory, IsReadAndWrittenThroughABinding) {
  struct Switching {
    State<bool> on{false};
    void connect(StateScope& scope) { scope.remember(on); }
    View body() const { return Toggle("", on.binding()); }
  };
  show(Switching());
  panel->toggle(mount.find("switch off"), true);
  loop.runTasks();
  EXPECT_THAT(mount.picture(), HasSubstr("switch on"));
}

TEST_F(Memory, ThatStaysTheSameCausesNoRedraw) {
  State<int> kept{0};
  struct Keeping {
    State<int>* kept;
    State<int> value{7};
    void connect(StateScope& scope) {
      scope.remember(value);
      *kept = value;
    }
    View body() const { return VerbatimText(std::to_string(value.get())); }
  };
  show(Keeping{&kept});
  kept.set(7);
  EXPECT_EQ(loop.pendingTasks(), 0u);
  kept.set(8);
  loop.runTasks();
  EXPECT_THAT(mount.picture(), HasSubstr("label \"8\""));
  panel.reset();
  kept.set(9);
  EXPECT_EQ(kept.get(), 9) << "a value that has outlived its panel";
  EXPECT_EQ(loop.pendingTasks(), 0u);
}

TEST_F(Memory, WatchesAnObjectOnceHoweverOftenItIsBuilt) {
  int bodies = 0;
  showAsking([&] { return VerbatimText(std::to_string(++bodies)); });
  for (int i = 0; i < 5; ++i) redraw();
  EXPECT_EQ(bodies, 6);
}

TEST_F(Memory, WatchesNoObjectOfAViewThatHasGone) {
  struct Watching {
    ObservableObject* object;
    void connect(StateScope& scope) { scope.observe(*object); }
    View body() const { return VerbatimText("watching"); }
  };
  ObservableObject other;
  bool isThere = true;
  showAsking([&]() -> View {
    if (isThere) return Watching{&other};
    return VerbatimText("gone");
  });
  other.objectWillChange().send();
  EXPECT_EQ(loop.pendingTasks(), 1u);
  isThere = false;
  redraw();
  other.objectWillChange().send();
  EXPECT_EQ(loop.pendingTasks(), 0u);
}

}  // namespace
}  // namespace quillmont
