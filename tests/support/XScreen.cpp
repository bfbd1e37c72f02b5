#include "tests/support/XScreen.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <ostream>
#include <stdexcept>

namespace quillmont::testing {
namespace {

/// Replies are the caller's to free.
template <class Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
  return {reply, &std::free};
}

constexpr std::uint32_t kLongestText = 4096;

}  // namespace

std::ostream& operator<<(std::ostream& stream, const ScreenRectangle& rectangle) {
  return stream << rectangle.width << "x" << rectangle.height << "+" << rectangle.x << "+"
                << rectangle.y;
}

std::ostream& operator<<(std::ostream& stream, const ScreenColor& color) {
  return stream << "rgb(" << color.red << ", " << color.green << ", " << color.blue << ")";
}

void XScreen::Disconnect::operator()(xcb_connection_t* connection) const {
  xcb_disconnect(connection);
}

XScreen::XScreen(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
  if (xcb_connection_has_error(connection_.get()) != 0) {
    throw std::runtime_error("no X server at " + display);
  }
  root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
}

std::uint32_t XScreen::atom(const std::string& name) {
  auto* const connection = connection_.get();
  const auto reply = owned(xcb_intern_atom_reply(
      connection,
      xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
      nullptr));
  if (!reply) throw std::runtime_error("the X server does not answer");
  return reply->atom;
}

std::string XScreen::text(std::uint32_t window, std::uint32_t property) {
  auto* const connection = connection_.get();
  const auto reply = owned(xcb_get_property_reply(
      connection,
      xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestText),
      nullptr));
  if (!reply || reply->format != 8) return "";
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::int64_t XScreen::number(std::uint32_t window, std::uint32_t property) {
  auto* const connection = connection_.get();
  const auto reply = owned(xcb_get_property_reply(
      connection, xcb_get_property(connection, 0, window, property, XCB_ATOM_CARDINAL, 0, 1),
      nullptr));
  if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < 4) return 0;
  std::uint32_t value = 0;
  std::memcpy(&value, xcb_get_property_value(reply.get()), sizeof value);
  return value;
}

ScreenWindow XScreen::window(std::uint32_t id) {
  auto* const connection = connection_.get();
  ScreenWindow result;
  result.id = id;
  result.title = text(id, atom("_NET_WM_NAME"));
  if (result.title.empty()) result.title = text(id, XCB_ATOM_WM_NAME);
  // Two texts, each ended by a NUL.
  const auto names = text(id, XCB_ATOM_WM_CLASS);
  const auto second = names.find('\0');
  if (second != names.npos) result.className = names.c_str() + second + 1;
  result.process = number(id, atom("_NET_WM_PID"));
  const auto shape =
      owned(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, id), nullptr));
  const auto place = owned(xcb_translate_coordinates_reply(
      connection, xcb_translate_coordinates(connection, id, root_, 0, 0), nullptr));
  const auto attributes = owned(xcb_get_window_attributes_reply(
      connection, xcb_get_window_attributes(connection, id), nullptr));
  // A window may go between being listed and being asked.
  if (!shape || !place || !attributes) return result;
  result.rectangle = {place->dst_x, place->dst_y, shape->width, shape->height};
  result.viewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
  return result;
}

void XScreen::addChildren(std::uint32_t parent, std::vector<ScreenWindow>& windows) {
  auto* const connection = connection_.get();
  const auto reply =
      owned(xcb_query_tree_reply(connection, xcb_query_tree(connection, parent), nullptr));
  if (!reply) return;
  const auto* const children = xcb_query_tree_children(reply.get());
  for (int i = 0; i < xcb_query_tree_children_length(reply.get()); ++i) {
    windows.push_back(window(children[i]));
    addChildren(children[i], windows);
  }
}

std::vector<ScreenWindow> XScreen::windows() {
  std::vector<ScreenWindow> result;
  addChildren(root_, result);
  return result;
}

ScreenColor XScreen::pixel(int x, int y) {
  auto* const connection = connection_.get();
  const auto image = owned(xcb_get_image_reply(
      connection,
      xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, static_cast<std::int16_t>(x),
                    static_cast<std::int16_t>(y), 1, 1, ~0u),
      nullptr));
  if (!image || xcb_get_image_data_length(image.get()) < 4) {
    throw std::runtime_error("no pixel at " + std::to_string(x) + "," + std::to_string(y));
  }
  std::uint32_t value = 0;
  std::memcpy(&value, xcb_get_image_data(image.get()), sizeof value);
  return {static_cast<int>(value >> 16 & 255), static_cast<int>(value >> 8 & 255),
          static_cast<int>(value & 255)};
}

bool XScreen::isOwned(const std::string& selection) {
  auto* const connection = connection_.get();
  const auto reply = owned(xcb_get_selection_owner_reply(
      connection, xcb_get_selection_owner(connection, atom(selection)), nullptr));
  return reply && reply->owner != XCB_NONE;
}

bool XScreen::rootHas(const std::string& property) {
  auto* const connection = connection_.get();
  const auto reply = owned(xcb_get_property_reply(
      connection,
      xcb_get_property(connection, 0, root_, atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, 0),
      nullptr));
  return reply && reply->type != XCB_NONE;
}

}  // namespace quillmont::testing
