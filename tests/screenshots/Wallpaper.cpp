#include "tests/screenshots/Wallpaper.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>

namespace quillmont::testing {
namespace {

/// Where compositors look for the picture, which they paint themselves.
constexpr char kProperty[] = "_XROOTPMAP_ID";

xcb_atom_t atom(xcb_connection_t* connection, const std::string& name) {
  const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
      xcb_intern_atom_reply(
          connection,
          xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
          nullptr),
      &std::free);
  if (!reply) throw std::runtime_error("the X server does not answer");
  return reply->atom;
}

}  // namespace

void Wallpaper::Disconnect::operator()(xcb_connection_t* connection) const {
  xcb_disconnect(connection);
}

Wallpaper::Wallpaper(const std::string& display, const ScreenColor& color)
    : connection_(xcb_connect(display.c_str(), nullptr)) {
  auto* const connection = connection_.get();
  if (xcb_connection_has_error(connection) != 0) {
    throw std::runtime_error("no X server at " + display);
  }
  const auto& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
  const auto pixel = static_cast<std::uint32_t>(color.red << 16 | color.green << 8 | color.blue);
  const auto picture = xcb_generate_id(connection);
  const auto context = xcb_generate_id(connection);
  const xcb_rectangle_t everything = {0, 0, screen.width_in_pixels, screen.height_in_pixels};
  xcb_create_pixmap(connection, screen.root_depth, picture, screen.root, everything.width,
                    everything.height);
  xcb_create_gc(connection, context, picture, XCB_GC_FOREGROUND, &pixel);
  xcb_poly_fill_rectangle(connection, picture, context, 1, &everything);
  xcb_change_window_attributes(connection, screen.root, XCB_CW_BACK_PIXMAP, &picture);
  xcb_clear_area(connection, 0, screen.root, 0, 0, 0, 0);
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, screen.root, atom(connection, kProperty),
                      XCB_ATOM_PIXMAP, 32, 1, &picture);
  xcb_flush(connection);
}

}  // namespace quillmont::testing
