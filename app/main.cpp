// Entry of the program.

#include <memory>

#include "app/AppDelegate.h"
#include "monitor/QuillmontDaemon.h"
#include "platform/Application.h"
#include "platform/Host.h"
#include "settings/ConfigManager.h"

int main() {
  using namespace quillmont;
  const auto& host = Host::current();
  // Never destroyed: what it has on the screen goes with the process.
  static const auto& delegate = *new std::shared_ptr<AppDelegate>(
      AppDelegate::make(host, {&ConfigManager::shared, &QuillmontDaemon::shared}));
  host.application.setDelegate(delegate.get());
  host.application.run();
  return 0;
}
