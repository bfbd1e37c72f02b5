#include "ui/GearMenu.h"

#include "platform/Alert.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/Desktop.h"
#include "platform/Log.h"
#include "platform/ProcessLauncher.h"
#include "ui/MenuButtonStyle.h"

namespace quillmont {
namespace {

View entry(std::function<void()> action, const View& content) {
  const auto label = content.padding(Edges::horizontal, 12)
                         .padding(Edges::vertical, 8)
                         .frame({.width = 140, .alignment = Alignment::leading});
  return Button(std::move(action), label).buttonStyle(MenuButtonStyle());
}

}  // namespace

View GearMenu::body() const {
  return VStack(
             {.alignment = HorizontalAlignment::leading, .spacing = 0},
             {
                 entry([menu = *this] { menu.quit(); },
                       HStack({Symbol("power"), Text("退出应用")})),
                 Divider(),
                 entry(
                     [menu = *this] { menu.uninstall(); },
                     HStack({Symbol("trash"), Text("彻底卸载并清理")}).foregroundColor(Color::red)),
             })
      .background(Color::windowBackground);
}

void GearMenu::quit() const {
  isShown_.set(false);
  host_.application.terminate();
}

void GearMenu::uninstall() const {
  isShown_.set(false);
  const Command script{host_.tools.shell,
                       {host_.bundle.path() + "/Contents/Resources/uninstall.sh"}};
  const auto answer = host_.desktop.runModal(
      {.messageText = "确定要彻底卸载 Quillmont 吗？",
       .informativeText = "这将会退出应用、移除开机启动项并删除系统中的配置与日志。",
       .style = AlertStyle::warning,
       .buttonTitles = {"确定卸载", "取消"}});
  if (answer != kAlertFirstButtonReturn) return;
  const auto started = host_.processes.launch(script);
  if (!started) host_.log.write("Failed to run uninstall script: " + started.errorText());
}

}  // namespace quillmont
