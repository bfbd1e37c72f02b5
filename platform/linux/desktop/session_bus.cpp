#include "platform/linux/desktop/session_bus.h"

#include <stdlib.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/Log.h"

namespace quillmont {
namespace {

using Steady = std::chrono::steady_clock;

struct BusDeleter {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
using Bus = std::unique_ptr<sd_bus, BusDeleter>;

/// A connection under way to the bus at `address`; none where that fails at once.
Bus startConnecting(const char* address) {
  sd_bus* made = nullptr;
  if (!address || sd_bus_new(&made) < 0) return nullptr;
  Bus bus(made);
  const bool begun = sd_bus_set_address(bus.get(), address) >= 0 &&
                     sd_bus_set_bus_client(bus.get(), 1) >= 0 && sd_bus_start(bus.get()) >= 0;
  return begun ? std::move(bus) : nullptr;
}

/// Neither lets the process in nor turns it away.
bool isSilent(sd_bus* bus, Steady::time_point deadline) {
  int status = 0;
  while (status >= 0 && sd_bus_is_ready(bus) == 0) {
    const auto left = deadline - Steady::now();
    if (left.count() <= 0) return true;
    status = sd_bus_process(bus, nullptr);
    if (status != 0) continue;
    const auto pause = std::chrono::duration_cast<std::chrono::microseconds>(left).count();
    status = sd_bus_wait(bus, static_cast<std::uint64_t>(std::max<std::int64_t>(pause, 1)));
    if (status == -EINTR) status = 0;
  }
  return false;
}

}  // namespace

void keepFromStartingSessionBus() {
  const char* const named = getenv("DBUS_SESSION_BUS_ADDRESS");
  if (named && *named) return;
  const char* const folder = getenv("XDG_RUNTIME_DIR");
  const auto usual = "/run/user/" + std::to_string(getuid());
  setenv("DBUS_SESSION_BUS_ADDRESS", busAddressIn(folder && *folder ? folder : usual).c_str(), 1);
}

void outliveSessionBus() {
  setenv("DBUS_FATAL_WARNINGS", "0", 0);
}

void leaveSilentSessionBus(std::chrono::milliseconds patience, Log& log) {
  const auto deadline = Steady::now() + patience;
  const auto bus = startConnecting(getenv("DBUS_SESSION_BUS_ADDRESS"));
  if (!bus || !isSilent(bus.get(), deadline)) return;
  log.write("The session bus does not answer: going on without it.");
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/dev/null", 1);
}

std::string busAddressIn(const std::string& runtimeFolder) {
  constexpr char kPlain[] = "-_/.\\*0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  std::string result = "unix:path=";
  for (const char character : runtimeFolder + "/bus") {
    if (std::strchr(kPlain, character)) {
      result += character;
    } else {
      char escaped[4];
      std::snprintf(escaped, sizeof escaped, "%%%02x", static_cast<unsigned char>(character));
      result += escaped;
    }
  }
  return result;
}

}  // namespace quillmont
