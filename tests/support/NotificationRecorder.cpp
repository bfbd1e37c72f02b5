#include "tests/support/NotificationRecorder.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <systemd/sd-bus.h>

#include <stdexcept>
#include <utility>

#include "tests/support/Program.h"

namespace quillmont::testing {
namespace {

constexpr char kName[] = "org.freedesktop.Notifications";
constexpr char kPath[] = "/org/freedesktop/Notifications";

/// Any negative status of sd-bus ends a test at once: nothing of the program's is at fault then.
void require(int status, const char* what) {
  if (status < 0)
    throw std::runtime_error(std::string(what) + ": error " + std::to_string(-status));
}

std::string readString(sd_bus_message* message) {
  const char* text = nullptr;
  require(sd_bus_message_read(message, "s", &text), "reading a string");
  return text;
}

/// "y 1" and so on, of a variant.
std::string readHint(sd_bus_message* message) {
  const char* type = nullptr;
  require(sd_bus_message_peek_type(message, nullptr, &type), "reading a hint");
  const std::string signature = type;
  require(sd_bus_message_enter_container(message, 'v', signature.c_str()), "reading a hint");
  std::string value;
  if (signature == "y") {
    std::uint8_t byte = 0;
    require(sd_bus_message_read(message, "y", &byte), "reading a byte");
    value = std::to_string(byte);
  } else if (signature == "s") {
    value = readString(message);
  } else {
    require(sd_bus_message_skip(message, signature.c_str()), "skipping a hint");
  }
  require(sd_bus_message_exit_container(message), "reading a hint");
  return signature + " " + value;
}

std::map<std::string, std::string> readHints(sd_bus_message* message) {
  std::map<std::string, std::string> hints;
  require(sd_bus_message_enter_container(message, 'a', "{sv}"), "reading hints");
  while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
    auto key = readString(message);
    hints[std::move(key)] = readHint(message);
    require(sd_bus_message_exit_container(message), "reading hints");
  }
  require(sd_bus_message_exit_container(message), "reading hints");
  return hints;
}

RecordedNotification readNotification(sd_bus_message* message) {
  RecordedNotification result;
  std::uint32_t replaced = 0;
  result.application = readString(message);
  require(sd_bus_message_read(message, "u", &replaced), "reading a number");
  result.icon = readString(message);
  result.title = readString(message);
  result.body = readString(message);
  require(sd_bus_message_skip(message, "as"), "skipping actions");
  result.hints = readHints(message);
  require(sd_bus_message_read(message, "i", &result.timeout), "reading a number");
  return result;
}

}  // namespace

NotificationRecorder::NotificationRecorder(const std::string& busAddress,
                                           std::vector<std::string> capabilities)
    : capabilities_(std::move(capabilities)), stop_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  const auto callback = [](sd_bus_message* call, void* self, sd_bus_error*) {
    return static_cast<NotificationRecorder*>(self)->answer(call);
  };
  require(sd_bus_new(&bus_), "making a connection");
  require(sd_bus_set_address(bus_, busAddress.c_str()), "setting the address");
  require(sd_bus_set_bus_client(bus_, 1), "joining a bus");
  require(sd_bus_start(bus_), "connecting");
  require(sd_bus_add_object(bus_, nullptr, kPath, callback, this), "adding the object");
  require(sd_bus_request_name(bus_, kName, 0), "owning the name");
  thread_ = std::thread([this] { serve(); });
}

NotificationRecorder::~NotificationRecorder() {
  eventfd_write(stop_.get(), 1);
  thread_.join();
  sd_bus_flush_close_unref(bus_);
}

std::vector<RecordedNotification> NotificationRecorder::notifications() const {
  const std::lock_guard guard(lock_);
  return notifications_;
}

bool NotificationRecorder::waitForNotifications(std::size_t count,
                                                std::chrono::milliseconds limit) const {
  return eventually([&] { return notifications().size() >= count; }, limit);
}

void NotificationRecorder::serve() {
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

int NotificationRecorder::answer(sd_bus_message* call) {
  if (sd_bus_message_is_method_call(call, kName, "GetCapabilities"))
    return answerCapabilities(call);
  if (sd_bus_message_is_method_call(call, kName, "Notify")) return answerNotify(call);
  if (sd_bus_message_is_method_call(call, kName, "GetServerInformation")) {
    return sd_bus_reply_method_return(call, "ssss", "recorder", "Quillmont", "1", "1.2");
  }
  return 0;
}

int NotificationRecorder::answerCapabilities(sd_bus_message* call) {
  sd_bus_message* reply = nullptr;
  require(sd_bus_message_new_method_return(call, &reply), "making an answer");
  require(sd_bus_message_open_container(reply, 'a', "s"), "making an answer");
  for (const auto& capability : capabilities_) {
    require(sd_bus_message_append(reply, "s", capability.c_str()), "making an answer");
  }
  require(sd_bus_message_close_container(reply), "making an answer");
  const int status = sd_bus_send(nullptr, reply, nullptr);
  sd_bus_message_unref(reply);
  return status < 0 ? status : 1;
}

int NotificationRecorder::answerNotify(sd_bus_message* call) {
  auto notification = readNotification(call);
  std::uint32_t identifier = 0;
  {
    const std::lock_guard guard(lock_);
    notifications_.push_back(std::move(notification));
    identifier = static_cast<std::uint32_t>(notifications_.size());
  }
  return sd_bus_reply_method_return(call, "u", identifier);
}

}  // namespace quillmont::testing
