// The process-wide singletons on the real host: made on first use, never destroyed, so that work
// that still runs on the monitor's queue when the process ends finds them whole.

#include "monitor/QuillmontDaemon.h"
#include "settings/ConfigManager.h"
#include "ui/MainView.h"

namespace quillmont {

ConfigManager& ConfigManager::shared() {
  static auto* const instance = new ConfigManager(Host::current());
  return *instance;
}

QuillmontDaemon& QuillmontDaemon::shared() {
  static auto* const instance =
      new std::shared_ptr<QuillmontDaemon>(make(Host::current(), ConfigManager::shared()));
  return **instance;
}

MainView::MainView()
    : MainView(Host::current(), QuillmontDaemon::shared(), ConfigManager::shared()) {}

}  // namespace quillmont
