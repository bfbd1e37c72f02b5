// Entry of the program.

#include "app/AppDelegate.h"
#include "monitor/QuillmontDaemon.h"
#include "platform/Application.h"
#include "platform/Host.h"
#include "settings/ConfigManager.h"

int main() {
  using namespace quillmont;
  const auto& host = Host::current();
  static AppDelegate delegate(host, {&ConfigManager::shared, &QuillmontDaemon::shared});
  host.application.setDelegate(&delegate);
  host.application.run();
  return 0;
}
