#include "platform/linux/tools/hdiutil/UDisks.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "platform/posix/errors.h"

namespace quillmont {
namespace {

constexpr char kService[] = "org.freedesktop.UDisks2";
constexpr char kManager[] = "/org/freedesktop/UDisks2/Manager";
constexpr char kDevices[] = "/org/freedesktop/UDisks2/block_devices/";
constexpr char kFilesystem[] = "org.freedesktop.UDisks2.Filesystem";
constexpr char kLoop[] = "org.freedesktop.UDisks2.Loop";
constexpr std::uint64_t kMicrosecondsPerCall = 60'000'000;  // mounting may replay a journal

struct BusError {
  sd_bus_error error = {};
  ~BusError() { sd_bus_error_free(&error); }
};

std::string oneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  while (text.ends_with(' ')) text.pop_back();
  return text;
}

bool isLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

}  // namespace

std::string kernelName(const std::string& node) {
  struct stat status = {};
  if (stat(node.c_str(), &status) == 0 && S_ISBLK(status.st_mode)) {
    const std::string number =
        std::to_string(major(status.st_rdev)) + ":" + std::to_string(minor(status.st_rdev));
    std::error_code error;
    const auto device = std::filesystem::canonical("/sys/dev/block/" + number, error);
    if (!error) return device.filename();
  }
  return node.substr(node.rfind('/') + 1);
}

std::string UDisks::objectOf(const std::string& device) {
  std::string object = kDevices;
  for (const char c : device) {
    char escaped[4] = "";
    std::snprintf(escaped, sizeof escaped, "_%02x", static_cast<unsigned char>(c));
    object += isLetterOrDigit(c) || c == '_' ? std::string(1, c) : escaped;
  }
  return object;
}

Result<UDisks> UDisks::connect() {
  sd_bus* opened = nullptr;
  const int status = sd_bus_open_system(&opened);
  if (status < 0) return systemError("cannot reach the system bus", -status);
  Bus bus(opened, sd_bus_flush_close_unref);
  sd_bus_set_method_call_timeout(bus.get(), kMicrosecondsPerCall);
  return UDisks(std::move(bus));
}

UDisks::Message UDisks::newCall(const std::string& object, const char* interface,
                                const char* method) {
  sd_bus_message* call = nullptr;
  sd_bus_message_new_method_call(bus_.get(), &call, kService, object.c_str(), interface, method);
  return Message(call, sd_bus_message_unref);
}

void UDisks::appendOptions(sd_bus_message* call, std::initializer_list<const char*> switchedOn) {
  sd_bus_message_open_container(call, 'a', "{sv}");
  sd_bus_message_append(call, "{sv}", "auth.no_user_interaction", "b", 1);
  for (const char* option : switchedOn) sd_bus_message_append(call, "{sv}", option, "b", 1);
  sd_bus_message_close_container(call);
}

Result<UDisks::Message> UDisks::send(const Message& call) {
  errorName_.clear();
  if (!call) return Error{"the system bus is gone"};
  BusError failure;
  sd_bus_message* reply = nullptr;
  const int status = sd_bus_call(bus_.get(), call.get(), 0, &failure.error, &reply);
  Message received(reply, sd_bus_message_unref);
  if (status >= 0) return received;
  if (failure.error.name) errorName_ = failure.error.name;
  const char* text = failure.error.message;
  return Error{text && *text ? oneLine(text) : errorText(-status)};
}

Result<std::string> UDisks::setUpLoop(int fd, bool readOnly) {
  const auto call = newCall(kManager, "org.freedesktop.UDisks2.Manager", "LoopSetup");
  if (call) {
    sd_bus_message_append(call.get(), "h", fd);
    if (readOnly) {
      appendOptions(call.get(), {"read-only"});
    } else {
      appendOptions(call.get(), {});
    }
  }
  const auto reply = send(call);
  if (!reply) return Error{reply.errorText()};
  const char* object = nullptr;
  sd_bus_message_read(reply->get(), "o", &object);
  const std::string path = object ? object : "";
  if (!path.starts_with(kDevices)) return Error{"the disk service names no device: " + path};
  return path.substr(sizeof kDevices - 1);
}

bool UDisks::canMount(const std::string& device) {
  const auto call = newCall(objectOf(device), "org.freedesktop.DBus.Properties", "Get");
  if (call) sd_bus_message_append(call.get(), "ss", kFilesystem, "MountPoints");
  return static_cast<bool>(send(call));
}

Result<std::string> UDisks::mount(const std::string& device) {
  const auto call = newCall(objectOf(device), kFilesystem, "Mount");
  if (call) appendOptions(call.get(), {});
  const auto reply = send(call);
  if (!reply) return Error{reply.errorText()};
  const char* place = nullptr;
  sd_bus_message_read(reply->get(), "s", &place);
  if (!place || *place != '/') return Error{"the disk service does not say where it mounted"};
  return std::string(place);
}

Result<void> UDisks::unmount(const std::string& device, bool lazily) {
  const auto call = newCall(objectOf(device), kFilesystem, "Unmount");
  if (call && lazily) appendOptions(call.get(), {"force"});
  if (call && !lazily) appendOptions(call.get(), {});
  const auto reply = send(call);
  return reply ? Result<void>() : Error{reply.errorText()};
}

Result<void> UDisks::setAutoclear(const std::string& loop) {
  const auto call = newCall(objectOf(loop), kLoop, "SetAutoclear");
  if (call) {
    sd_bus_message_append(call.get(), "b", 1);
    appendOptions(call.get(), {});
  }
  const auto reply = send(call);
  return reply ? Result<void>() : Error{reply.errorText()};
}

Result<void> UDisks::deleteLoop(const std::string& loop) {
  const auto call = newCall(objectOf(loop), kLoop, "Delete");
  if (call) appendOptions(call.get(), {});
  const auto reply = send(call);
  return reply ? Result<void>() : Error{reply.errorText()};
}

Result<uid_t> UDisks::ownerOf(const std::string& loop) {
  const auto call = newCall(objectOf(loop), "org.freedesktop.DBus.Properties", "Get");
  if (call) sd_bus_message_append(call.get(), "ss", kLoop, "SetupByUID");
  const auto reply = send(call);
  if (!reply) return Error{reply.errorText()};
  std::uint32_t user = 0;
  if (sd_bus_message_read(reply->get(), "v", "u", &user) < 0) {
    return Error{"the disk service does not say who attached /dev/" + loop};
  }
  return uid_t{user};
}

}  // namespace quillmont
