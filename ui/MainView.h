// The panel: title and master switch, the mounted images as cards, the settings.
#pragma once

#include <optional>
#include <string>

#include "platform/Host.h"
#include "platform/view/View.h"

namespace quillmont {

class ConfigManager;
class QuillmontDaemon;
struct DiskImage;

/// Main thread. Holds no logic of its own but the timeout's label; every control reads or writes
/// the monitor or the settings, and the gear opens the GearMenu.
class MainView {
 public:
  /// On the real host, with the monitor and the settings of the process.
  MainView();
  /// All three outlive the view.
  MainView(const Host& host, QuillmontDaemon& daemon, ConfigManager& config);

  void connect(StateScope& scope);
  View body() const;

 private:
  View header() const;
  View imageArea() const;
  View emptyState() const;
  View imageList() const;
  View card(const DiskImage& image) const;
  View settings() const;
  View timeoutChoice() const;
  View launchAtLoginRow() const;
  View gearButton() const;

  QuillmontDaemon* daemon_;
  ConfigManager* config_;
  State<std::optional<std::string>> hoverEjectId_{std::nullopt};
  State<std::optional<std::string>> hoverLockId_{std::nullopt};
  State<bool> isShowingMenu_{false};

  Host host_;
};

/// The timeout in its largest whole unit, cut off and not rounded: "1 分钟" for 90 seconds. It must
/// be finite: the program ends otherwise.
std::string timeoutText(double seconds);

}  // namespace quillmont
