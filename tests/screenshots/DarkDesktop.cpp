#include "tests/screenshots/DarkDesktop.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <systemd/sd-bus.h>

#include <cstdint>
#include <stdexcept>

namespace quillmont::testing {
namespace {

constexpr char kPortal[] = "org.freedesktop.portal.Desktop";
constexpr char kPath[] = "/org/freedesktop/portal/desktop";
constexpr char kSettings[] = "org.freedesktop.portal.Settings";
constexpr std::uint32_t kPreferDark = 1;

void require(int status, const char* what) {
  if (status < 0) {
    throw std::runtime_error(std::string(what) + ": error " + std::to_string(-status));
  }
}

/// The portal wraps the value of a setting twice.
int answer(sd_bus_message* call, void*, sd_bus_error*) {
  if (!sd_bus_message_is_method_call(call, kSettings, "Read")) return 0;
  return sd_bus_reply_method_return(call, "v", "v", "u", kPreferDark);
}

}  // namespace

DarkDesktop::DarkDesktop(const std::string& busAddress)
    : stop_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  require(sd_bus_new(&bus_), "making a connection");
  require(sd_bus_set_address(bus_, busAddress.c_str()), "setting the address");
  require(sd_bus_set_bus_client(bus_, 1), "joining a bus");
  require(sd_bus_start(bus_), "connecting");
  require(sd_bus_add_object(bus_, nullptr, kPath, answer, nullptr), "adding the object");
  require(sd_bus_request_name(bus_, kPortal, 0), "owning the name");
  thread_ = std::thread([this] { serve(); });
}

DarkDesktop::~DarkDesktop() {
  eventfd_write(stop_.get(), 1);
  thread_.join();
  sd_bus_flush_close_unref(bus_);
}

void DarkDesktop::serve() {
  pollfd waited[2] = {{sd_bus_get_fd(bus_), 0, 0}, {stop_.get(), POLLIN, 0}};
  for (;;) {
    int status = 0;
    while ((status = sd_bus_process(bus_, nullptr)) > 0) {
    }
    if (status < 0) return;
    waited[0].events = static_cast<short>(sd_bus_get_events(bus_));
    if (poll(waited, 2, -1) < 0 || waited[1].revents != 0) return;
  }
}

}  // namespace quillmont::testing
