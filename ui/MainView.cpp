#include "ui/MainView.h"

#include <cmath>
#include <cstdio>

#include "monitor/QuillmontDaemon.h"
#include "platform/fatal.h"
#include "settings/ConfigManager.h"
#include "ui/DiskCardView.h"
#include "ui/GearMenu.h"

namespace quillmont {
namespace {

View boundary() {
  return Divider().background(Color::primary.opacity(0.1));
}

}  // namespace

MainView::MainView(const Host& host, QuillmontDaemon& daemon, ConfigManager& config)
    : daemon_(&daemon), config_(&config), host_(host) {}

void MainView::connect(StateScope& scope) {
  scope.observe(*daemon_);
  scope.observe(*config_);
  scope.remember(hoverEjectId_);
  scope.remember(hoverLockId_);
  scope.remember(isShowingMenu_);
}

View MainView::body() const {
  return VStack({.spacing = 0},
                {
                    header(),
                    boundary(),
                    imageArea(),
                    boundary(),
                    settings(),
                })
      .frame({.width = 320});
}

View MainView::header() const {
  auto& config = *config_;
  const Binding<bool> isEnabled([&config] { return config.isEnabled(); },
                                [&config](bool enabled) { config.setIsEnabled(enabled); });
  return HStack({
                    HStack({.spacing = 8},
                           {
                               Symbol("opticaldiscdrive.fill")
                                   .font(Font::system(16))
                                   .foregroundColor(Color::cyan),
                               Text("Quillmont")
                                   .font(Font::headline)
                                   .fontWeight(FontWeight::bold)
                                   .foregroundColor(Color::primary),
                           }),
                    Spacer(),
                    Toggle("", isEnabled)
                        .labelsHidden()
                        .toggleStyle(ToggleStyle::switchControl)
                        .tint(Color::cyan)
                        .help(config.isEnabled() ? "监控已启用" : "监控已禁用"),
                })
      .padding(Edges::horizontal, 16)
      .padding(Edges::vertical, 12);
}

View MainView::imageArea() const {
  return VStack({}, {daemon_->mountedImages().empty() ? emptyState() : imageList()})
      .frame({.height = 200})
      .background(Color::primary.opacity(0.02));
}

View MainView::emptyState() const {
  return VStack({.spacing = 12},
                {
                    Symbol("opticaldiscdrive")
                        .font(Font::system(40))
                        .foregroundColor(Color::secondary.opacity(0.5))
                        .padding(Edges::top, 40),
                    Text("暂无挂载的 DMG 镜像")
                        .font(Font::subheadline)
                        .foregroundColor(Color::secondary),
                    Text("挂载 DMG 后，空闲超时会自动推出")
                        .font(Font::caption)
                        .foregroundColor(Color::secondary.opacity(0.6))
                        .multilineTextAlignment(TextAlignment::center)
                        .padding(Edges::horizontal, 40),
                    Spacer(),
                })
      .frame({.maxWidth = kUnbounded, .maxHeight = kUnbounded});
}

View MainView::imageList() const {
  const auto cards = ForEach(
      daemon_->mountedImages(), [](const DiskImage& image) { return image.id(); },
      [this](const DiskImage& image) { return card(image); });
  return ScrollView(
      VStack({.spacing = 10}, {cards}).padding(Edges::vertical, 12).padding(Edges::horizontal, 12));
}

View MainView::card(const DiskImage& image) const {
  return DiskCardView{
      .img = image,
      .hoverEjectId = hoverEjectId_.binding(),
      .hoverLockId = hoverLockId_.binding(),
      .onToggleExclude = [config = config_,
                          path = image.imagePath] { config->toggleExclude(path); },
      .onEject = [daemon = daemon_,
                  image] { daemon->userForceEject(image.mountPoint, image.volumeName); },
  };
}

View MainView::settings() const {
  return VStack({.spacing = 12}, {timeoutChoice(), launchAtLoginRow()})
      .padding(12)
      .background(Color::primary.opacity(0.01));
}

View MainView::timeoutChoice() const {
  auto& config = *config_;
  const Binding<double> timeout([&config] { return config.timeoutSeconds(); },
                                [&config](double seconds) { config.setTimeoutSeconds(seconds); });
  return VStack({.alignment = HorizontalAlignment::leading, .spacing = 6},
                {
                    HStack({
                        Text("空闲退出超时时间")
                            .font(Font::caption)
                            .fontWeight(FontWeight::medium)
                            .foregroundColor(Color::secondary),
                        Spacer(),
                        VerbatimText(timeoutText(config.timeoutSeconds()))
                            .font(Font::caption)
                            .fontWeight(FontWeight::bold)
                            .foregroundColor(Color::cyan),
                    }),
                    SegmentedPicker(
                        "", timeout,
                        {{"1分", 60}, {"5分", 300}, {"15分", 900}, {"30分", 1800}, {"1小时", 3600}})
                        .labelsHidden()
                        .accessibilityLabel("空闲退出超时时间"),
                });
}

View MainView::launchAtLoginRow() const {
  auto& config = *config_;
  const Binding<bool> launchAtLogin([&config] { return config.launchAtLogin(); },
                                    [&config](bool launch) { config.setLaunchAtLogin(launch); });
  return HStack({
      Toggle("开机自动启动", launchAtLogin)
          .toggleStyle(ToggleStyle::checkbox)
          .font(Font::caption)
          .foregroundColor(Color::secondary),
      Spacer(),
      gearButton(),
  });
}

View MainView::gearButton() const {
  return Button([isShowingMenu = isShowingMenu_] { isShowingMenu.set(!isShowingMenu.get()); },
                Symbol("gearshape.fill").font(Font::system(14)).foregroundColor(Color::secondary))
      .buttonStyle(PlainButtonStyle())
      .accessibilityLabel("更多操作")
      .popover(isShowingMenu_.binding(), RectEdge::maxY,
               [menu = GearMenu(host_, isShowingMenu_.binding())] { return menu.body(); });
}

std::string timeoutText(double seconds) {
  if (!std::isfinite(seconds)) fatalError("The timeout is no number.");
  const auto whole = [](double value, const char* unit) {
    char text[320];  // the largest double has 309 digits
    // Adding zero makes a cut-off negative fraction plain zero.
    std::snprintf(text, sizeof text, "%.0f", std::trunc(value) + 0.0);
    return std::string(text) + unit;
  };
  if (seconds < 60) return whole(seconds, " 秒");
  if (seconds < 3600) return whole(seconds / 60, " 分钟");
  return whole(seconds / 3600, " 小时");
}

}  // namespace quillmont
