#include "tests/support/StatusNotifierBar.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <systemd/sd-bus.h>

#include <stdexcept>

#include "tests/support/Program.h"

namespace quillmont::testing {
namespace {

constexpr char kName[] = "org.kde.StatusNotifierWatcher";
constexpr char kPath[] = "/StatusNotifierWatcher";
constexpr char kProperties[] = "org.freedesktop.DBus.Properties";
constexpr char kIntrospection[] = R"(<node><interface name="org.kde.StatusNotifierWatcher">
<method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
<property name="RegisteredStatusNotifierItems" type="as" access="read"/>
<property name="ProtocolVersion" type="i" access="read"/>
<signal name="StatusNotifierHostRegistered"/></interface></node>)";

void require(int status, const char* what) {
  if (status < 0) {
    throw std::runtime_error(std::string(what) + ": error " + std::to_string(-status));
  }
}

}  // namespace

StatusNotifierBar::StatusNotifierBar(const std::string& busAddress)
    : stop_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  const auto callback = [](sd_bus_message* call, void* self, sd_bus_error*) {
    return static_cast<StatusNotifierBar*>(self)->answer(call);
  };
  require(sd_bus_new(&bus_), "making a connection");
  require(sd_bus_set_address(bus_, busAddress.c_str()), "setting the address");
  require(sd_bus_set_bus_client(bus_, 1), "joining a bus");
  require(sd_bus_start(bus_), "connecting");
  require(sd_bus_add_object(bus_, nullptr, kPath, callback, this), "adding the object");
  require(sd_bus_request_name(bus_, kName, 0), "owning the name");
  thread_ = std::thread([this] { serve(); });
}

StatusNotifierBar::~StatusNotifierBar() {
  eventfd_write(stop_.get(), 1);
  thread_.join();
  sd_bus_flush_close_unref(bus_);
}

std::optional<std::string> StatusNotifierBar::waitForItem(std::chrono::milliseconds limit) const {
  const auto item = [this] {
    const std::lock_guard guard(lock_);
    return item_;
  };
  if (!eventually([&] { return !item().empty(); }, limit)) return std::nullopt;
  return item();
}

bool StatusNotifierBar::activate(const std::string& busAddress, const std::string& item) {
  return run({"dbus-send", "--bus=" + busAddress, "--print-reply", "--dest=" + item,
              "/StatusNotifierItem", "org.kde.StatusNotifierItem.Activate", "int32:500",
              "int32:10"})
             .status == 0;
}

void StatusNotifierBar::serve() {
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

int StatusNotifierBar::answer(sd_bus_message* call) {
  if (sd_bus_message_is_method_call(call, kName, "RegisterStatusNotifierItem")) {
    const char* item = nullptr;
    require(sd_bus_message_read(call, "s", &item), "reading a string");
    const std::lock_guard guard(lock_);
    // A program names its service, or only the path of an item on its own connection.
    item_ = *item == '/' ? sd_bus_message_get_sender(call) : item;
    return sd_bus_reply_method_return(call, "");
  }
  if (sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Introspectable", "Introspect")) {
    return sd_bus_reply_method_return(call, "s", kIntrospection);
  }
  return answerProperties(call);
}

int StatusNotifierBar::answerProperties(sd_bus_message* call) {
  if (sd_bus_message_is_method_call(call, kProperties, "GetAll")) {
    return sd_bus_reply_method_return(call, "a{sv}", 3, "IsStatusNotifierHostRegistered", "b", 1,
                                      "RegisteredStatusNotifierItems", "as", 0, "ProtocolVersion",
                                      "i", 0);
  }
  if (!sd_bus_message_is_method_call(call, kProperties, "Get")) return 0;
  const char *interface = nullptr, *property = nullptr;
  require(sd_bus_message_read(call, "ss", &interface, &property), "reading two strings");
  const std::string name = property;
  if (name == "IsStatusNotifierHostRegistered") {
    return sd_bus_reply_method_return(call, "v", "b", 1);
  }
  if (name == "ProtocolVersion") return sd_bus_reply_method_return(call, "v", "i", 0);
  return sd_bus_reply_method_return(call, "v", "as", 0);
}

}  // namespace quillmont::testing
