#include "platform/linux/desktop/x11.h"

#include <stdlib.h>
#include <xcb/shape.h>
#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <QGuiApplication>
#include <string>
#include <vector>

namespace quillmont {
namespace {

/// A reply is the caller's to free.
template <class T>
std::unique_ptr<T, decltype(&free)> owned(T* reply) {
  return {reply, &free};
}

int screenNumber() {
  int screen = 0;
  char* host = nullptr;
  int display = 0;
  if (xcb_parse_display(nullptr, &host, &display, &screen) != 0) free(host);
  return screen;
}

}  // namespace

void CloseX11::operator()(xcb_connection_t* connection) const {
  xcb_disconnect(connection);
}

X11Connection connectToX11() {
  X11Connection connection(xcb_connect(nullptr, nullptr));
  if (xcb_connection_has_error(connection.get())) return nullptr;
  return connection;
}

xcb_connection_t* qtX11Connection() {
  if (!qGuiApp || QGuiApplication::platformName() != "xcb") return nullptr;
  const auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return native ? native->connection() : nullptr;
}

bool isWithinWayland() {
  return qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

/// The answer is needed: a server that has not heard of version 2 sends no raw events.
bool announceInputVersion2(xcb_connection_t* connection) {
  const auto* const extension = xcb_get_extension_data(connection, &xcb_input_id);
  if (!extension || !extension->present) return false;
  const auto version = owned(xcb_input_xi_query_version_reply(
      connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
  return version && version->major_version >= 2;
}

bool tellsOfEveryPress() {
  if (!qtX11Connection() || isWithinWayland()) return false;
  static const bool result = [] {
    const auto connection = connectToX11();
    return connection && announceInputVersion2(connection.get());
  }();
  return result;
}

bool screenSelectionIsOwned(xcb_connection_t* connection, const std::string& name) {
  const auto full = name + std::to_string(screenNumber());
  const auto atom = owned(xcb_intern_atom_reply(
      connection,
      xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(full.size()), full.c_str()),
      nullptr));
  if (!atom) return false;
  const auto owner = owned(xcb_get_selection_owner_reply(
      connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
  return owner && owner->owner != XCB_NONE;
}

void setX11WindowShape(unsigned long window, WindowShape shape, const QRegion& region) {
  auto* const connection = qtX11Connection();
  if (!connection) return;
  const auto id = static_cast<xcb_window_t>(window);
  const xcb_shape_kind_t kind =
      shape == WindowShape::drawn ? XCB_SHAPE_SK_BOUNDING : XCB_SHAPE_SK_INPUT;
  if (region.isEmpty()) {
    xcb_shape_mask(connection, XCB_SHAPE_SO_SET, kind, id, 0, 0, XCB_NONE);
  } else {
    std::vector<xcb_rectangle_t> rectangles;
    for (const auto& rect : region) {
      rectangles.push_back(
          {static_cast<std::int16_t>(rect.x()), static_cast<std::int16_t>(rect.y()),
           static_cast<std::uint16_t>(rect.width()), static_cast<std::uint16_t>(rect.height())});
    }
    xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_UNSORTED, id, 0, 0,
                         static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
  }
  xcb_flush(connection);
}

}  // namespace quillmont
