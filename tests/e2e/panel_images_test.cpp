// Real disk images on the panel.

#include <fcntl.h>

#include <cstdlib>
#include <filesystem>

#include "platform/posix/Descriptor.h"
#include "tests/e2e/PanelTest.h"
#include "tests/support/Holder.h"

namespace quillmont::testing {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class PanelCards : public PanelWithImages {
 protected:
  /// A process that has the image's note open, until it is dropped.
  static std::unique_ptr<Holder> hold(const std::string& label) {
    return std::make_unique<Holder>([note = DiskImages::realPlace(label) + "/note.txt"] {
      static const Descriptor file(open(note.c_str(), O_RDONLY | O_CLOEXEC));
      return static_cast<bool>(file);
    });
  }

  /// Waits until a label begins with `text`.
  bool isSaid(const std::string& text) {
    const auto said = [&] {
      for (const auto& control : lab->accessibility().shown()) {
        if (control.role == "label" && control.name.starts_with(text)) return true;
      }
      return false;
    };
    return eventually(said, 8s);
  }

  /// The button of the card whose title is `label`.
  Control buttonOf(const std::string& label, const std::string& help) {
    const auto title = lab->control("label", label);
    for (const auto& control : lab->accessibility().shown()) {
      if (control.role == "push button" && control.name == help &&
          std::abs(control.rectangle.centerY() - title.rectangle.centerY()) < 24) {
        return control;
      }
    }
    throw std::runtime_error("no such button in " + lab->accessibility().picture());
  }

  bool isDetached(const std::string& image) {
    return eventually([&] { return DiskImages::loopsOf(image).empty(); }, 10s);
  }
};

TEST_F(PanelCards, CardComesWithTheImageAndGoesWithItsEjection) {
  start();
  openPanel();
  EXPECT_TRUE(isSeen("label", "暂无挂载的 DMG 镜像"));
  const auto image = attach("假日照片");
  EXPECT_TRUE(isSeen("label", "假日照片"));
  EXPECT_TRUE(isSaid("已空闲 00:0"));
  lab->click(buttonOf("假日照片", "立即安全推出"));
  EXPECT_TRUE(isDetached(image));
  EXPECT_TRUE(lab->waitUntilGone("label", "假日照片"));
  EXPECT_TRUE(isSeen("label", "暂无挂载的 DMG 镜像"));
}

TEST_F(PanelCards, ImageInUseNamesItsUser) {
  attach("Busy");
  const auto holder = hold("Busy");
  start();
  openPanel();
  EXPECT_TRUE(isSaid("活跃中 (panel_images")) << lab->accessibility().picture();
}

TEST_F(PanelCards, EjectButtonEjectsABusyImage) {
  const auto image = attach("Busy");
  auto holder = hold("Busy");
  start();
  openPanel();
  ASSERT_TRUE(isSaid("活跃中"));
  lab->click(buttonOf("Busy", "立即安全推出"));
  holder.reset();
  EXPECT_TRUE(isDetached(image)) << "gone with its last user";
}

TEST_F(PanelCards, LockButtonExcludesByPathAndEjectButtonEjectsAllTheSame) {
  const auto image = attach("Kept");
  start();
  openPanel();
  lab->control("label", "Kept");
  lab->click(buttonOf("Kept", "防止自动推出"));
  EXPECT_TRUE(isSaid("已排除自动推出"));
  const auto excluded = stored("excludeList");
  ASSERT_TRUE(excluded);
  const auto* const paths = excluded->array();
  ASSERT_NE(paths, nullptr);
  EXPECT_THAT(*paths, ::testing::Contains(PropertyList(image)));
  lab->click(buttonOf("Kept", "立即安全推出"));
  EXPECT_TRUE(isDetached(image));
}

TEST_F(PanelCards, HoverShowsOnTheButtonUnderThePointerAlone) {
  attach("First");
  attach("Second");
  start();
  openPanel();
  lab->control("label", "Second");
  const auto first = buttonOf("First", "立即安全推出").rectangle;
  const auto second = buttonOf("Second", "立即安全推出").rectangle;
  const auto isRed = [&](const ScreenRectangle& button) {
    const auto color = lab->pixel(button.x + 3, button.centerY());
    return color.red > 200 && color.green < 120 && color.blue < 120;
  };
  EXPECT_FALSE(isRed(first) || isRed(second));
  lab->move(first.centerX(), first.centerY());
  EXPECT_TRUE(eventually([&] { return isRed(first) && !isRed(second); }, 3s));
  lab->move(second.centerX(), second.centerY());
  EXPECT_TRUE(eventually([&] { return isRed(second) && !isRed(first); }, 3s));
  lab->move(second.centerX(), second.centerY() + 200);
  EXPECT_TRUE(eventually([&] { return !isRed(first) && !isRed(second); }, 3s));
}

TEST_F(PanelCards, WheelScrollsALongListAndTheOffsetStaysWhenItIsBuiltAnew) {
  for (int i = 1; i <= 6; ++i) attach("Image" + std::to_string(i));
  start();
  openPanel();
  const auto top = lab->control("label", "Image1").rectangle;
  lab->move(top.centerX(), top.centerY());
  for (int i = 0; i < 3; ++i) {
    lab->press(5);
    lab->release(5);
  }
  const auto offset = [&] {
    const auto last = lab->accessibility().find("label", "Image6");
    return last ? last->rectangle.y : 0;
  };
  ASSERT_TRUE(eventually([&] { return offset() > 0 && offset() < top.y + 200; }, 3s));
  const int scrolled = offset();
  ASSERT_TRUE(isSaid("已空闲 00:0"));
  const bool moved = eventually([&] { return offset() != scrolled; }, 2s);
  EXPECT_FALSE(moved) << "while the idle times change";
}

TEST_F(PanelCards, QuitFromTheMenuWaitsForAnEjection) {
  const auto image = attach("Slow");
  session->replaceTool("hdiutil", R"(
if [ "$1" = detach ]; then touch "$state/begun"; sleep 1.5; fi
exec "$original" "$@")");
  start();
  openPanel();
  lab->control("label", "Slow");
  lab->click(buttonOf("Slow", "立即安全推出"));
  ASSERT_TRUE(eventually(
      [&] { return std::filesystem::exists(session->folder() + "/state-hdiutil/begun"); }, 5s));
  lab->click(lab->control("push button", "更多操作"));
  lab->click(lab->control("push button", "退出应用"));
  EXPECT_EQ(program->waitForExit(15s), 0);
  EXPECT_THAT(program->output(), HasSubstr("Successfully ejected and verified detached"));
  EXPECT_THAT(DiskImages::loopsOf(image), ::testing::IsEmpty());
}

}  // namespace
}  // namespace quillmont::testing
