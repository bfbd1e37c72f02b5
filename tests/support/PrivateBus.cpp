#include "tests/support/PrivateBus.h"

#include <signal.h>

#include <fstream>
#include <stdexcept>
#include <vector>

namespace quillmont::testing {
namespace {

/// Writes the configuration of a bus at `address` into `folder`; answers the daemon's command.
std::vector<std::string> daemonCommand(const std::string& folder, const std::string& address) {
  const auto configuration = folder + "/bus.conf";
  std::ofstream(configuration) << "<busconfig><type>session</type><listen>" << address
                               << "</listen><policy context=\"default\">"
                                  "<allow send_destination=\"*\" eavesdrop=\"true\"/>"
                                  "<allow eavesdrop=\"true\"/><allow own=\"*\"/>"
                                  "</policy></busconfig>\n";
  return {"dbus-daemon", "--nofork", "--nopidfile", "--print-address",
          "--config-file=" + configuration};
}

}  // namespace

bool PrivateBus::available() {
  return run({"dbus-daemon", "--version"}).status == 0;
}

PrivateBus::PrivateBus()
    : address_("unix:path=" + folder_.path() + "/bus"),
      daemon_(daemonCommand(folder_.path(), address_)) {
  if (!daemon_.waitForOutput(address_, std::chrono::seconds(10))) {
    throw std::runtime_error("the private bus does not start: " + daemon_.output());
  }
}

void PrivateBus::kill() {
  daemon_.signal(SIGKILL);
  daemon_.waitForExit(std::chrono::seconds(10));
}

void PrivateBus::silence() {
  daemon_.signal(SIGSTOP);
}

Environment PrivateBus::environment() const {
  return environmentWith({{"DBUS_SESSION_BUS_ADDRESS", address_}});
}

}  // namespace quillmont::testing
