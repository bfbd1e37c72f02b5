// The disk service of the desktop, UDisks2, on the system bus.
#pragma once

#include <sys/types.h>

#include <initializer_list>
#include <memory>
#include <string>

#include "platform/Result.h"

struct sd_bus;
struct sd_bus_message;

namespace quillmont {

/// Every call forbids the service to ask the user for a password: this program works on its own
/// account, often from a timer. Devices go by their names: "loop3", "loop3p1". Calls block.
/// Failures carry the service's own text.
class UDisks {
 public:
  static Result<UDisks> connect();

  /// Sets up a loop device for the open file `fd` and returns its name.
  Result<std::string> setUpLoop(int fd, bool readOnly);

  /// Whether the service knows the device as one that can be mounted; it learns so a little after
  /// the device has come.
  bool canMount(const std::string& device);

  /// Mounts the device and returns where.
  Result<std::string> mount(const std::string& device);
  Result<void> unmount(const std::string& device, bool lazily);
  Result<void> setAutoclear(const std::string& loop);
  Result<void> deleteLoop(const std::string& loop);

  /// The user who set up the loop device.
  Result<uid_t> ownerOf(const std::string& loop);

  /// Whether the last call failed because somebody uses the volume.
  bool wasBusy() const { return errorName_ == "org.freedesktop.UDisks2.Error.DeviceBusy"; }

  /// Whether the last call failed because the device has been mounted meanwhile.
  bool wasMountedAlready() const {
    return errorName_ == "org.freedesktop.UDisks2.Error.AlreadyMounted";
  }

  /// The service's object of a device: "dm-0" is ".../dm_2d0".
  static std::string objectOf(const std::string& device);

 private:
  using Bus = std::unique_ptr<sd_bus, sd_bus* (*)(sd_bus*)>;
  using Message = std::unique_ptr<sd_bus_message, sd_bus_message* (*)(sd_bus_message*)>;

  explicit UDisks(Bus bus) : bus_(std::move(bus)) {}
  Message newCall(const std::string& object, const char* interface, const char* method);
  static void appendOptions(sd_bus_message* call, std::initializer_list<const char*> switchedOn);
  Result<Message> send(const Message& call);

  Bus bus_;
  std::string errorName_;
};

/// The kernel's own name of the device with this node: "dm-0" for "/dev/mapper/backup".
std::string kernelName(const std::string& node);

}  // namespace quillmont
