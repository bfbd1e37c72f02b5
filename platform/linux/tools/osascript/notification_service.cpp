#include "platform/linux/tools/osascript/notification_service.h"

#include <stdlib.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>

#include "platform/posix/errors.h"

namespace quillmont {
namespace {

using Steady = std::chrono::steady_clock;

struct BusDeleter {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
struct MessageDeleter {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Bus = std::unique_ptr<sd_bus, BusDeleter>;
using Message = std::unique_ptr<sd_bus_message, MessageDeleter>;

/// Microseconds until `deadline`, at least one: zero would mean "the default" to sd-bus.
std::uint64_t remaining(Steady::time_point deadline) {
  const auto left =
      std::chrono::duration_cast<std::chrono::microseconds>(deadline - Steady::now()).count();
  return static_cast<std::uint64_t>(std::max<std::int64_t>(left, 1));
}

bool sessionHasBus() {
  if (const char* address = getenv("DBUS_SESSION_BUS_ADDRESS"); address && *address) return true;
  const char* folder = getenv("XDG_RUNTIME_DIR");
  return folder && access((std::string(folder) + "/bus").c_str(), F_OK) == 0;
}

/// A connection that has been let in. sd-bus itself would wait much longer for a bus that accepts
/// and then says nothing.
Result<Bus> connect(Steady::time_point deadline) {
  if (!sessionHasBus()) return Error{"there is no session bus"};
  sd_bus* opened = nullptr;
  int status = sd_bus_open_user(&opened);
  if (status < 0) return systemError("cannot reach the session bus", -status);
  Bus bus(opened);
  while ((status = sd_bus_is_ready(bus.get())) == 0) {
    if (Steady::now() >= deadline) return Error{"the session bus does not answer"};
    status = sd_bus_process(bus.get(), nullptr);
    if (status == 0) status = sd_bus_wait(bus.get(), remaining(deadline));
    if (status < 0 && status != -EINTR) break;
  }
  if (status < 0) return systemError("cannot join the session bus", -status);
  return bus;
}

Result<Message> newCall(const Bus& bus, const char* method) {
  sd_bus_message* created = nullptr;
  const int status = sd_bus_message_new_method_call(
      bus.get(), &created, "org.freedesktop.Notifications", "/org/freedesktop/Notifications",
      "org.freedesktop.Notifications", method);
  if (status < 0) return systemError("cannot make a message", -status);
  return Message(created);
}

Result<Message> call(const Bus& bus, const Message& message, Steady::time_point deadline) {
  sd_bus_message* reply = nullptr;
  sd_bus_error error = {};
  const int status = sd_bus_call(bus.get(), message.get(), remaining(deadline), &error, &reply);
  if (status >= 0) return Message(reply);
  Error result = error.message ? Error{std::string("no notification service: ") + error.message}
                               : systemError("no notification service", -status);
  sd_bus_error_free(&error);
  return result;
}

Result<bool> serviceReadsMarkup(const Bus& bus, Steady::time_point deadline) {
  const auto question = newCall(bus, "GetCapabilities");
  if (!question) return Error{question.errorText()};
  const auto reply = call(bus, *question, deadline);
  if (!reply) return Error{reply.errorText()};
  int status = sd_bus_message_enter_container(reply->get(), 'a', "s");
  const char* capability = nullptr;
  while (status > 0 && (status = sd_bus_message_read(reply->get(), "s", &capability)) > 0) {
    if (std::strcmp(capability, "body-markup") == 0) return true;
  }
  if (status < 0) return systemError("the notification service answers strangely", -status);
  return false;
}

Result<void> notify(const Bus& bus, const Notification& notification, const std::string& body,
                    Steady::time_point deadline) {
  const auto message = newCall(bus, "Notify");
  if (!message) return Error{message.errorText()};
  constexpr int kNormalUrgency = 1;
  const int status = sd_bus_message_append(
      message->get(), "susssasa{sv}i", "Quillmont", std::uint32_t{0}, "drive-optical",
      notification.title.c_str(), body.c_str(), 0, 3, "sound-name", "s", "message-new-instant",
      "desktop-entry", "s", "quillmont", "urgency", "y", kNormalUrgency, std::int32_t{-1});
  if (status < 0) return systemError("cannot make a message of this text", -status);
  const auto reply = call(bus, *message, deadline);
  if (!reply) return Error{reply.errorText()};
  return {};
}

}  // namespace

std::string notificationBody(const std::string& message, bool serviceReadsMarkup) {
  if (!serviceReadsMarkup) return message;
  std::string body;
  for (const char character : message) {
    if (character == '&') {
      body += "&amp;";
    } else if (character == '<') {
      body += "&lt;";
    } else if (character == '>') {
      body += "&gt;";
    } else {
      body += character;
    }
  }
  return body;
}

Result<void> deliverNotification(const Notification& notification, std::chrono::seconds limit) {
  const auto deadline = Steady::now() + limit;
  const auto bus = connect(deadline);
  if (!bus) return Error{bus.errorText()};
  const auto markup = serviceReadsMarkup(*bus, deadline);
  if (!markup) return Error{markup.errorText()};
  return notify(*bus, notification, notificationBody(notification.message, *markup), deadline);
}

}  // namespace quillmont
