// What it costs to show the next second of a panel full of cards, beside measuring its texts.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/RunLoop.h"
#include "platform/linux/views/QtMetrics.h"
#include "platform/view/HostingController.h"
#include "ui/DiskCardView.h"

namespace quillmont {
namespace {

/// The desktop's own fonts, on a screen that is not there.
const Metrics& desktopMetrics() {
  static int argc = 1;
  static char name[] = "benchmark";
  static char* argv[] = {name, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  static const QApplication application(argc, argv);
  static const QtMetrics metrics;
  return metrics;
}

/// Sizes that cost next to nothing: what is left is the layer's own work.
class FreeMetrics : public Metrics {
 public:
  double scale() const override { return 1; }
  Size textSize(const std::string& text, const Font& font, std::optional<double> width,
                std::optional<int>) const override {
    const double natural = static_cast<double>(text.size()) * font.size / 2;
    return {width && *width < natural ? *width : natural, 1.25 * font.size};
  }
  Size symbolSize(const std::string&, const Font& font) const override {
    return {font.size, font.size};
  }
  Size switchSize() const override { return {38, 22}; }
  Size checkboxSize(const std::string&, const Font&) const override { return {80, 14}; }
  Size segmentsSize(const std::vector<std::string>&) const override { return {250, 24}; }
};

/// Runs what was handed over when it is told to.
class ManualLoop : public RunLoop {
 public:
  void async(Task task) override { tasks_.push_back(std::move(task)); }
  std::unique_ptr<Timer> scheduleRepeatingTimer(double, Task) override { return nullptr; }
  void turn() {
    for (const auto& task : std::exchange(tasks_, {})) task();
  }

 private:
  std::vector<Task> tasks_;
};

class CountingMount : public NativeMount {
 public:
  void apply(const std::vector<ViewChange>& changes, Size) override { count += changes.size(); }
  std::size_t count = 0;
};

struct Images : ObservableObject {
  explicit Images(int count) {
    for (int number = 0; number < count; ++number) {
      const auto name = "Volume " + std::to_string(number);
      images.push_back(
          {"/images/" + name, "/Volumes/" + name, name, number * 1.0, false, {}, false});
    }
  }

  /// Every card shows an idle time that none has shown before.
  void pass() {
    objectWillChange().send();
    for (auto& image : images) image.idleSeconds += static_cast<double>(images.size());
  }

  std::vector<DiskImage> images;
};

struct Cards {
  Images* model;
  void connect(StateScope& scope) { scope.observe(*model); }
  View body() const {
    const Binding<std::optional<std::string>> hover([] { return std::nullopt; }, [](auto) {});
    const auto cards = ForEach(
        model->images, [](const DiskImage& image) { return image.id(); },
        [&](const DiskImage& image) -> View {
          return DiskCardView{image, hover, hover, [] {}, [] {}};
        });
    return ScrollView(VStack({.spacing = 10}, {cards}).padding(12))
        .frame({.width = 320, .height = 200});
  }
};

void redraw(benchmark::State& state, const Metrics& metrics) {
  Images model(static_cast<int>(state.range(0)));
  ManualLoop loop;
  CountingMount mount;
  HostingController panel(Cards{&model}, loop);
  panel.mount(mount, metrics);
  panel.setVisible(true);
  mount.count = 0;
  for (auto _ : state) {
    model.pass();
    loop.turn();
  }
  state.counters["changes"] =
      benchmark::Counter(static_cast<double>(mount.count), benchmark::Counter::kAvgIterations);
}

void redrawCardsWhoseIdleTimesChanged(benchmark::State& state) {
  redraw(state, desktopMetrics());
}
BENCHMARK(redrawCardsWhoseIdleTimesChanged)->Arg(1)->Arg(1000);

void measureTheTextsOfTheSameCards(benchmark::State& state) {
  const auto& metrics = desktopMetrics();
  Images model(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    model.pass();
    for (const auto& image : model.images) {
      const auto idle = "已空闲 " + idleTimeText(image.idleSeconds);
      benchmark::DoNotOptimize(metrics.textSize(
          image.volumeName, Font::system(13, FontWeight::semibold), std::nullopt, std::nullopt));
      benchmark::DoNotOptimize(
          metrics.textSize(idle, Font::system(10), std::nullopt, std::nullopt));
    }
  }
}
BENCHMARK(measureTheTextsOfTheSameCards)->Arg(1)->Arg(1000);

void redrawTheSameWithFreeSizes(benchmark::State& state) {
  redraw(state, FreeMetrics());
}
BENCHMARK(redrawTheSameWithFreeSizes)->Arg(1)->Arg(1000);

}  // namespace
}  // namespace quillmont
