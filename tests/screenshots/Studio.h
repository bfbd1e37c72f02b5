// The real program on a desktop of its own, posed for pictures.
#pragma once

#include <chrono>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/screenshots/Wallpaper.h"
#include "tests/support/DesktopLab.h"
#include "tests/support/DiskImages.h"
#include "tests/support/NotificationRecorder.h"
#include "tests/support/Session.h"

namespace quillmont::testing {

/// Every step waits until what it does is to be seen, and throws when that does not come. One
/// thread.
class Studio {
 public:
  /// Pictures go into `folder`. The tray is at the top or the bottom edge, some way from the corner
  /// so that there is desktop on all sides of the panel. `scale` is the number of pixels to a
  /// point.
  Studio(std::string folder, bool compositor, const std::string& trayEdge = "top", int scale = 1);
  ~Studio();
  Studio(const Studio&) = delete;
  Studio& operator=(const Studio&) = delete;

  DesktopLab& desktop() { return lab_; }

  /// Starts the program and clicks on its icon; one that runs is ended first.
  void openPanel();

  /// Attaches a new image with a volume named `label`, as if it had been done `age` ago: the
  /// program counts from the time of the device node.
  void attach(const std::string& label, std::chrono::seconds age);

  /// Reads on in a file of the volume, until releaseAll().
  void hold(const std::string& label);
  void releaseAll() { holders_.clear(); }

  /// The only control on the screen of this role whose name begins so.
  Control waitFor(const std::string& role, const std::string& beginning);

  /// The button with this tooltip on the card of `label`.
  Control buttonOf(const std::string& label, const std::string& help);

  void moveTo(const Control& control);
  void click(const Control& control);
  void moveAway();

  /// Everything of the program's that shows, with some desktop around it, once it is still.
  void takePicture(const std::string& name);

 private:
  void startTray(const std::string& edge);
  void endProgram();
  std::vector<ScreenRectangle> ownWindows();
  std::optional<ScreenRectangle> icon();
  std::string area();

  const std::string folder_;
  const int scale_;
  const int width_, height_;
  DesktopLab lab_;
  Wallpaper wallpaper_;
  NotificationRecorder recorder_;
  Session session_;
  DiskImages images_;
  std::list<Program> holders_;
  std::unique_ptr<Program> tray_;
  std::unique_ptr<Program> program_;
};

}  // namespace quillmont::testing
