#include "platform/linux/desktop/RawButtons.h"

#include <stdlib.h>
#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <utility>
#include <vector>

namespace quillmont {
namespace {

struct Press {
  std::uint32_t button;
  bool pressed;
};

void selectRawButtons(xcb_connection_t* connection) {
  struct {
    xcb_input_event_mask_t head;
    std::uint32_t mask;
  } const wanted = {
      {XCB_INPUT_DEVICE_ALL_MASTER, 1},
      XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE};
  for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection)); screen.rem > 0;
       xcb_screen_next(&screen)) {
    xcb_input_xi_select_events(connection, screen.data->root, 1, &wanted.head);
  }
  xcb_flush(connection);
}

}  // namespace

std::unique_ptr<RawButtons> RawButtons::listen(Handler handler) {
  if (!tellsOfEveryPress()) return nullptr;
  auto connection = connectToX11();
  if (!connection || !announceInputVersion2(connection.get())) return nullptr;
  const auto code = xcb_get_extension_data(connection.get(), &xcb_input_id)->major_opcode;
  selectRawButtons(connection.get());
  return std::unique_ptr<RawButtons>(
      new RawButtons(std::move(connection), code, std::move(handler)));
}

RawButtons::RawButtons(X11Connection connection, std::uint8_t extension, Handler handler)
    : connection_(std::move(connection)),
      extension_(extension),
      handler_(std::move(handler)),
      ready_(xcb_get_file_descriptor(connection_.get()), QSocketNotifier::Read) {
  QObject::connect(&ready_, &QSocketNotifier::activated, &ready_, [this] { readEvents(); });
}

/// All are read before the first is told: the handler may destroy this object, or serve the loop.
void RawButtons::readEvents() {
  std::vector<Press> presses;
  while (auto* const event = xcb_poll_for_event(connection_.get())) {
    const auto* const generic = reinterpret_cast<const xcb_ge_generic_event_t*>(event);
    const bool ours =
        (event->response_type & 0x7f) == XCB_GE_GENERIC && generic->extension == extension_;
    if (ours && (generic->event_type == XCB_INPUT_RAW_BUTTON_PRESS ||
                 generic->event_type == XCB_INPUT_RAW_BUTTON_RELEASE)) {
      const auto* const raw = reinterpret_cast<const xcb_input_raw_button_press_event_t*>(event);
      presses.push_back({raw->detail, generic->event_type == XCB_INPUT_RAW_BUTTON_PRESS});
    }
    free(event);
  }
  if (xcb_connection_has_error(connection_.get())) ready_.setEnabled(false);
  const auto alive = alive_;
  const auto handler = handler_;
  for (const auto& press : presses) {
    if (*alive) handler(press.button, press.pressed);
  }
}

}  // namespace quillmont
