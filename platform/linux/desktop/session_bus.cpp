#include "platform/linux/desktop/session_bus.h"

#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace quillmont {

void keepFromStartingSessionBus() {
  const char* const named = getenv("DBUS_SESSION_BUS_ADDRESS");
  if (named && *named) return;
  const char* const folder = getenv("XDG_RUNTIME_DIR");
  const auto usual = "/run/user/" + std::to_string(getuid());
  setenv("DBUS_SESSION_BUS_ADDRESS", busAddressIn(folder && *folder ? folder : usual).c_str(), 1);
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
