#include "tests/e2e/DiskServiceLaboratory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "platform/posix/files.h"
#include "tests/support/DiskImages.h"

namespace quillmont::testing {
namespace {

constexpr char kBus[] = "/bus";  // in the laboratory's folder

/// Starts bus, device manager, authority and disk service in namespaces of their own: their folders
/// are private, and all of them end with the first process. $1 is the laboratory's folder.
constexpr char kLaboratory[] = R"sh(
mount -t tmpfs none /media && mount -t tmpfs none /run || exit 1
mount -t tmpfs none /var/lib && mkdir /var/lib/udisks2 && mount --bind "$1/rules" /etc/polkit-1/rules.d || exit 1
mkdir -p /run/udisks2 /run/udev
export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$1/bus"
dbus-daemon --system --nofork --nopidfile --nosyslog --address="$DBUS_SYSTEM_BUS_ADDRESS" &
/lib/systemd/systemd-udevd &
comes_up() {  # $1: name on the bus, $2: file for what is said
  for try in $(seq 200); do
    dbus-send --system --print-reply --dest="$1" / org.freedesktop.DBus.Peer.Ping >"$2" 2>&1 &&
      return 0
    sleep 0.05
  done
  return 1
}
for try in $(seq 100); do [ -S "$1/bus" ] && break; sleep 0.05; done
/usr/lib/polkit-1/polkitd --no-debug &
comes_up org.freedesktop.PolicyKit1 "$1/said" || exit 1
/usr/libexec/udisks2/udisksd &
comes_up org.freedesktop.UDisks2 "$1/said" && echo laboratory ready
wait
)sh";

constexpr char kRule[] = R"js(
polkit.addRule(function(action, subject) {
  if (subject.user == "nobody" && (action.id == "org.freedesktop.udisks2.loop-setup" ||
                                   action.id == "org.freedesktop.udisks2.filesystem-mount"))
    return polkit.Result.YES;
  if (subject.user == "daemon" && (action.id == "org.freedesktop.udisks2.loop-delete-others" ||
                                   action.id == "org.freedesktop.udisks2.filesystem-unmount-others"))
    return polkit.Result.YES;
});
)js";

}  // namespace

std::string DiskServiceLaboratory::whyImpossible() {
  if (auto reason = DiskImages::whyImpossible(); !reason.empty()) return reason;
  for (const char* needed :
       {"/usr/bin/dbus-daemon", "/usr/bin/dbus-send", "/lib/systemd/systemd-udevd",
        "/usr/lib/polkit-1/polkitd", "/usr/libexec/udisks2/udisksd", "/etc/polkit-1/rules.d"}) {
    if (access(needed, F_OK) != 0) return std::string("this machine has no ") + needed;
  }
  // Entering the laboratory's mounts leaves a changed root folder behind.
  const auto inside =
      run({"nsenter", "--mount=/proc/self/ns/mnt", "test", "-e", DiskImages::toolPath()});
  if (inside.status != 0) {
    return "the root folder of the tests is not that of the system";
  }
  return "";
}

DiskServiceLaboratory::DiskServiceLaboratory() {
  chmod(folder_.path().c_str(), 0755);
  std::filesystem::create_directory(folder_.path() + "/rules");
  chmod((folder_.path() + "/rules").c_str(), 0755);
  std::ofstream(folder_.path() + "/rules/10-test.rules") << kRule;
  DiskImages::copyToolTo(folder_.path());
  first_ = std::make_unique<Program>(std::vector<std::string>{
      "unshare", "--mount", "--propagation", "slave", "--pid", "--fork", "--kill-child",
      "--mount-proc", "sh", "-c", kLaboratory, "sh", folder_.path()});
}

bool DiskServiceLaboratory::comesUp() {
  return first_->waitForOutput("laboratory ready", std::chrono::seconds(20));
}

Outcome DiskServiceLaboratory::tool(const std::vector<std::string>& arguments, uid_t user) const {
  const std::string home = folder_.path() + "/" + std::to_string(user);
  std::filesystem::create_directories(home);
  chmod(home.c_str(), 0700);
  if (chown(home.c_str(), user, user) != 0) ADD_FAILURE() << "chown";
  std::vector<std::string> command = {"nsenter",        "--mount",
                                      "--pid",          "--target",
                                      child(),          "setpriv",
                                      "--reuid",        std::to_string(user),
                                      "--regid",        std::to_string(user),
                                      "--clear-groups", tool()};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return run(command, {{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + folder_.path() + kBus},
                       {"XDG_RUNTIME_DIR", home},
                       {"HOME", home}});
}

std::unique_ptr<Program> DiskServiceLaboratory::start(
    const std::vector<std::string>& arguments) const {
  std::vector<std::string> command = {"nsenter", "--mount", "--pid", "--target", child()};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return std::make_unique<Program>(command);
}

std::string DiskServiceLaboratory::child() const {
  const auto pid = std::to_string(first_->pid());
  const auto children = readFile("/proc/" + pid + "/task/" + pid + "/children");
  return children ? children->substr(0, children->find(' ')) : "";
}

}  // namespace quillmont::testing
