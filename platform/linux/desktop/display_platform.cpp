#include "platform/linux/desktop/display_platform.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <QDir>
#include <QLibraryInfo>
#include <cstring>

#include "platform/linux/desktop/x11.h"
#include "platform/posix/Descriptor.h"

namespace quillmont {
namespace {

bool acceptsConnections(const std::string& socketPath) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (socketPath.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, socketPath.data(), socketPath.size());
  const Descriptor fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  return fd && connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool waylandAnswers() {
  const auto name = qEnvironmentVariable("WAYLAND_DISPLAY").toStdString();
  if (name.empty()) return false;
  if (name.front() == '/') return acceptsConnections(name);
  return acceptsConnections(qEnvironmentVariable("XDG_RUNTIME_DIR").toStdString() + "/" + name);
}

bool hasWaylandPlugin() {
  const QDir folder(QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms");
  return !folder.entryList({"libqwayland-*"}, QDir::Files).isEmpty();
}

}  // namespace

Displays findDisplays() {
  Displays result;
  result.x11 = qEnvironmentVariableIsSet("DISPLAY") && connectToX11() != nullptr;
  result.wayland = hasWaylandPlugin() && waylandAnswers();
  return result;
}

std::string qtPlatforms(const Displays& displays) {
  std::string result;
  if (displays.x11) result += "xcb;";
  if (displays.wayland) result += "wayland;";
  return result + "offscreen";
}

}  // namespace quillmont
