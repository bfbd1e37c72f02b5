#include "tests/support/AccessibilityService.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <systemd/sd-bus.h>

#include <stdexcept>
#include <utility>

namespace quillmont::testing {
namespace {

constexpr char kName[] = "org.a11y.Bus";
constexpr char kPath[] = "/org/a11y/bus";

int answer(sd_bus_message* call, void* address, sd_bus_error*) {
  if (!sd_bus_message_is_method_call(call, kName, "GetAddress")) return 0;
  return sd_bus_reply_method_return(call, "s", static_cast<const std::string*>(address)->c_str());
}

}  // namespace

AccessibilityService::AccessibilityService(std::string busAddress)
    : address_(std::move(busAddress)), stop_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  auto* const address = const_cast<std::string*>(&address_);
  if (sd_bus_new(&bus_) < 0 || sd_bus_set_address(bus_, address_.c_str()) < 0 ||
      sd_bus_set_bus_client(bus_, 1) < 0 || sd_bus_start(bus_) < 0 ||
      sd_bus_add_object(bus_, nullptr, kPath, &answer, address) < 0 ||
      sd_bus_request_name(bus_, kName, 0) < 0) {
    sd_bus_close_unref(bus_);
    throw std::runtime_error("no accessibility service on " + address_);
  }
  thread_ = std::thread([this] { serve(); });
}

AccessibilityService::~AccessibilityService() {
  eventfd_write(stop_.get(), 1);
  thread_.join();
  sd_bus_flush_close_unref(bus_);
}

void AccessibilityService::serve() {
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
