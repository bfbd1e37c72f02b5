// What there is to see on an X server: windows, pixels, and who plays which part of a desktop.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

struct xcb_connection_t;

namespace quillmont::testing {

/// In pixels, from the upper left corner of the screen.
struct ScreenRectangle {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  int centerX() const { return x + width / 2; }
  int centerY() const { return y + height / 2; }
  bool contains(int px, int py) const {
    return px >= x && px < x + width && py >= y && py < y + height;
  }
  bool operator==(const ScreenRectangle&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const ScreenRectangle& rectangle);

struct ScreenWindow {
  std::uint32_t id = 0;
  std::string title;
  std::string className;      ///< the second text of WM_CLASS
  std::int64_t process = 0;   ///< as it says itself; 0 if it does not
  ScreenRectangle rectangle;  ///< without the window manager's frame
  bool viewable = false;      ///< it and every window around it are mapped
};

struct ScreenColor {
  int red = 0;
  int green = 0;
  int blue = 0;
  bool operator==(const ScreenColor&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const ScreenColor& color);

/// A connection of the test's own, with one thread using it. A server that does not answer throws.
class XScreen {
 public:
  /// `display` as in DISPLAY.
  explicit XScreen(const std::string& display);

  /// Windows of any depth, parents before what lies in them, each before those above it.
  std::vector<ScreenWindow> windows();

  /// What is to be seen at this place.
  ScreenColor pixel(int x, int y);

  /// Whether some program owns the selection, such as "_NET_SYSTEM_TRAY_S0".
  bool isOwned(const std::string& selection);

  /// Whether the root window has the property.
  bool rootHas(const std::string& property);

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const;
  };
  std::uint32_t atom(const std::string& name);
  std::string text(std::uint32_t window, std::uint32_t property);
  std::int64_t number(std::uint32_t window, std::uint32_t property);
  ScreenWindow window(std::uint32_t id);
  void addChildren(std::uint32_t parent, std::vector<ScreenWindow>& windows);

  const std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  std::uint32_t root_ = 0;
};

}  // namespace quillmont::testing
