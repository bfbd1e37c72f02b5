#include "platform/linux/views/QtMount.h"

#include <QPainter>
#include <QScrollArea>
#include <QTextDocument>

#include "platform/linux/views/LabelWidget.h"
#include "platform/linux/views/MountTest.h"
#include "platform/linux/views/ScrollWidget.h"
#include "platform/linux/views/theme.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::kEjectSymbol;
using testing::kLabel;
using testing::kSquare;
using testing::MountTest;

class Mount : public MountTest {
 protected:
  QColor pixel(int x, int y) {
    return QColor::fromRgba(mount->widget()->grab().toImage().pixel(x, y));
  }
};

const std::vector<NativeContent> kKinds = {
    NativeGroup{},
    kLabel,
    kEjectSymbol,
    kSquare,
    NativeSwitch{false, Color::cyan},
    NativeCheckbox{false, "Launch", {}, {}},
    NativeSegments{{"1", "5"}, {}},
    NativeButton{},
    NativeScroll{{100, 300}},
};

TEST_F(Mount, EveryKindIsAWidgetOfItsOwnAtItsFrame) {
  for (ViewId id = 1; id <= kKinds.size(); ++id) {
    insert(id, kKinds[id - 1], {10, 20, 100, 30});
    ASSERT_NE(widget(id), nullptr) << id;
    EXPECT_TRUE(widget(id)->isVisible()) << id;
    EXPECT_EQ(widget(id)->geometry(), QRect(10, 20, 100, 30)) << id;
    apply({SetViewFrame{id, {15, 25, 90, 28}}});
    EXPECT_EQ(widget(id)->geometry(), QRect(15, 25, 90, 28)) << id;
    const auto* const same = widget(id);
    update(id, {kKinds[id - 1], "Help"});
    EXPECT_EQ(widget(id), same) << id;
    EXPECT_EQ(widget(id)->toolTip(), "Help") << id;
    const QPointer<QWidget> gone = widget(id);
    remove(id);
    EXPECT_EQ(widget(id), nullptr) << id;
    settle();
    EXPECT_TRUE(gone.isNull()) << id;
  }
  EXPECT_THAT(actions.take(), IsEmpty());
}

TEST_F(Mount, TheRootHasThePanelsSize) {
  mount->apply({}, {320, 233.5});
  EXPECT_EQ(mount->widget()->size(), QSize(320, 234));
}

TEST_F(Mount, ChildrenAreWhereTheirParentIs) {
  insert(1, NativeGroup{}, {100, 50, 80, 80});
  insert(2, kLabel, {5, 6, 20, 16}, 1);
  EXPECT_EQ(widget(2)->mapTo(mount->widget(), QPoint()), QPoint(105, 56));
  insert(3, NativeScroll{{80, 500}}, {0, 100, 80, 100});
  insert(4, kLabel, {7, 30, 20, 16}, 3);
  EXPECT_EQ(widget(4)->mapTo(mount->widget(), QPoint()), QPoint(7, 130));
}

TEST_F(Mount, AFrameMayBeginWithinALogicalPixel) {
  insert(1, NativeGroup{}, {10.5, 20.5, 50, 50});
  insert(2, kSquare, {4.5, 3, 10, 10}, 1);
  const QRect whole(QPoint(15, 23), QSize(10, 11));
  EXPECT_EQ(QRect(widget(2)->mapTo(mount->widget(), QPoint()), widget(2)->size()), whole);
  apply({SetViewFrame{1, {11, 21, 50, 50}}});
  EXPECT_EQ(widget(2)->mapTo(mount->widget(), QPoint()), QPoint(15, 24));
  EXPECT_EQ(widget(2)->size(), QSize(11, 10));
}

TEST_F(Mount, LaterChildrenAreInFrontAndMovesChangeThat) {
  insert(1, NativeShape{.fill = Color::red}, {0, 0, 50, 50});
  insert(2, NativeShape{.fill = Color::green}, {0, 0, 50, 50});
  EXPECT_EQ(pixel(10, 10), colorNow(Color::green));
  apply({MoveView{1, 1}});
  EXPECT_EQ(pixel(10, 10), colorNow(Color::red));
  apply({InsertView{3, kRootView, 0, {NativeShape{.fill = Color::cyan}}, {0, 0, 60, 50}}});
  EXPECT_EQ(pixel(10, 10), colorNow(Color::red));
  EXPECT_EQ(pixel(55, 10), colorNow(Color::cyan));
  apply({MoveView{3, 2}});
  EXPECT_EQ(pixel(10, 10), colorNow(Color::cyan));
  apply({MoveView{3, 0}});
  EXPECT_EQ(pixel(10, 10), colorNow(Color::red));
}

TEST_F(Mount, ShadowAndStrokeReachBeyondTheFrame) {
  insert(1, NativeShape{.fill = Color::white, .stroke = Stroke{Color::black, 6}}, {20, 20, 40, 40});
  EXPECT_EQ(pixel(18, 40), QColor(Qt::black));
  update(1, {NativeShape{.fill = Color::white}});
  EXPECT_NE(pixel(18, 40), QColor(Qt::black));
  EXPECT_EQ(widget(1)->geometry(), QRect(20, 20, 40, 40));
}

TEST_F(Mount, ColoursFollowTheAppearance) {
  insert(1, NativeShape{.fill = Color::controlBackground}, {0, 0, 50, 50});
  EXPECT_EQ(pixel(10, 10), QColor(255, 255, 255));
  setDark(true);
  mount->appearanceDidChange();
  EXPECT_EQ(pixel(10, 10), QColor(30, 30, 30));
  setDark(false);
}

TEST_F(Mount, OpacityHoldsForAllThatIsInside) {
  const QWidget* root = mount->widget();
  const auto before = root->palette().color(QPalette::Window);
  insert(1, NativeGroup{}, {0, 0, 50, 50});
  insert(2, NativeShape{.fill = Color::black}, {0, 0, 50, 50}, 1);
  EXPECT_EQ(pixel(10, 10), QColor(Qt::black));
  update(1, {NativeGroup{}, "", "", false, 0.5});
  EXPECT_NEAR(pixel(10, 10).red(), before.red() / 2, 3);
  update(1, {NativeGroup{}});
  EXPECT_EQ(pixel(10, 10), QColor(Qt::black));
}

TEST_F(Mount, AVeryLongNameEndsInAnEllipsisOnItsLine) {
  auto label = kLabel;
  label.text = std::string(300, 'n');
  label.lineLimit = 1;
  insert(1, label, {0, 0, 150, 16});
  const auto lines = as<LabelWidget>(1)->shownLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_LT(lines[0].size(), 40);
  EXPECT_TRUE(lines[0].endsWith(QChar(0x2026)));
}

TEST_F(Mount, ATextWithoutALimitHasAsManyLinesAsFit) {
  auto label = kLabel;
  label.text = "one two three four five six seven eight nine ten";
  insert(1, label, {0, 0, 60, 48});
  EXPECT_EQ(as<LabelWidget>(1)->shownLines().size(), 3U);
  apply({SetViewFrame{1, {0, 0, 60, 5}}});
  EXPECT_EQ(as<LabelWidget>(1)->shownLines().size(), 1U);
}

TEST_F(Mount, ANameThatLooksLikeMarkupIsShownAsItIs) {
  auto label = kLabel;
  label.text = "<b>Disk</b> & <img src=x>";
  insert(1, label, {0, 0, 300, 16});
  EXPECT_EQ(as<QLabel>(1)->textFormat(), Qt::PlainText);
  EXPECT_THAT(as<LabelWidget>(1)->shownLines(), ElementsAre("<b>Disk</b> & <img src=x>"));
}

TEST_F(Mount, AHelpTextIsTheToolTipAndNeverMarkup) {
  insert(1, NativeSwitch{true, Color::cyan}, {0, 0, 38, 22});
  update(1, {NativeSwitch{true, Color::cyan}, "监控已启用"});
  EXPECT_EQ(widget(1)->toolTip(), "监控已启用");
  update(1, {NativeSwitch{false, Color::cyan}, "监控已禁用"});
  EXPECT_EQ(widget(1)->toolTip(), "监控已禁用");
  update(1, {NativeSwitch{false, Color::cyan}, "<b>bold</b>"});
  QTextDocument shown;
  shown.setHtml(widget(1)->toolTip());
  EXPECT_EQ(shown.toPlainText(), "<b>bold</b>");
  EXPECT_TRUE(Qt::mightBeRichText(widget(1)->toolTip()));
}

TEST_F(Mount, AnIdentityMayComeBackBelowAnotherView) {
  insert(1, NativeGroup{}, {0, 0, 50, 50});
  insert(2, kLabel, {0, 0, 50, 16}, 1);
  insert(3, NativeGroup{}, {100, 0, 50, 50});
  apply({RemoveView{2}, insertion(2, kLabel, {0, 0, 50, 16}, 3)});
  settle();
  ASSERT_NE(widget(2), nullptr);
  EXPECT_EQ(widget(2)->parentWidget(), widget(3));
}

TEST_F(Mount, ChangesThatNameNothingChangeNothing) {
  insert(1, kLabel, {0, 0, 50, 16});
  apply({insertion(1, NativeGroup{}, {}), insertion(2, kLabel, {}, 99), RemoveView{98},
         RemoveView{kRootView}, MoveView{97, 0}, UpdateView{96, {kLabel}},
         UpdateView{1, {NativeGroup{}}}, SetViewFrame{95, {}}});
  EXPECT_EQ(mount->widget()->findChildren<QWidget*>().size(), 1);
  EXPECT_NE(as<LabelWidget>(1), nullptr);
}

TEST_F(Mount, TheRootsParentMayDeleteItFirst) {
  QWidget parent;
  insert(1, NativeGroup{}, {0, 0, 50, 50});
  auto window = std::make_unique<QWidget>();
  mount->widget()->setParent(window.get());
  window.reset();
  EXPECT_EQ(mount->widget(), nullptr);
  insert(2, kLabel, {0, 0, 50, 16});
  EXPECT_EQ(widget(1), nullptr);
  mount->appearanceDidChange();
}

TEST_F(Mount, AMountThatGoesFirstLeavesAnEmptyRoot) {
  QWidget window;
  insert(1, NativeGroup{}, {0, 0, 50, 50});
  const QPointer<QWidget> root = mount->widget();
  root->setParent(&window);
  mount.reset();
  settle();
  ASSERT_FALSE(root.isNull());
  EXPECT_THAT(root->findChildren<QWidget*>(), IsEmpty());
}

}  // namespace
}  // namespace quillmont
