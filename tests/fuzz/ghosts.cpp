// Records of images that were detached while somebody held them: the name of a record, a NUL, and
// what is in it. An "@" stands for the identifier of this boot, which no kept input could know.

#include "platform/linux/ghosts.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "platform/posix/files.h"
#include "tests/fuzz/fuzzing.h"
#include "tests/support/SysBlock.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;

/// A runtime folder and a loop device of our own.
struct Machine {
  Machine() {
    setenv("XDG_RUNTIME_DIR", runtime.path().c_str(), 1);
    sys.attach("loop3", "/home/user/image.dmg\n", "7\n");
    sys.attach("loop4", "/home/user/other.dmg\n", "");
    boot = readFile("/proc/sys/kernel/random/boot_id", 4096).value();
    boot.pop_back();
  }
  std::string folder() const { return runtime.path() + "/com.norwaldex.Quillmont/ghosts"; }

  TemporaryFolder runtime;
  SysBlock sys;
  std::string boot;
};

std::string withBoot(std::string_view record, const std::string& boot) {
  std::string text;
  for (const char c : record) text += c == '@' ? boot : std::string(1, c);
  return text;
}

void put(const std::string& folder, const std::string& name, const std::string& record) {
  fs::remove_all(folder);
  fs::create_directories(folder);
  fs::permissions(fs::path(folder).parent_path(), fs::perms::owner_all);
  if (name.empty() || name.size() > 200 || name == "." || name == ".." ||
      name.find('/') != name.npos)
    return;
  std::ofstream(folder + "/" + name, std::ios::binary) << record;
}

void checkGhost(const Ghost& ghost, const Machine& machine) {
  require(ghost.loopName == "loop3" || ghost.loopName == "loop4", "a ghost's device is attached");
  require(ghost.loopName != "loop3" || ghost.loopSequence == 7 || ghost.loopSequence == 0,
          "a ghost is of its device's attachment");
  require(!ghost.imagePath.empty() && !ghost.mountPoint.empty() && !ghost.deviceNode.empty(),
          "a ghost knows its image and its place");
  put(machine.folder(), "", "");
  require(static_cast<bool>(rememberGhost(ghost)), "a ghost can be remembered");
  const auto again = livingGhosts(machine.sys.path());
  require(again.size() == 1 && again.front() == ghost, "a ghost that is remembered lives");
  forgetGhost(ghost);
  require(livingGhosts(machine.sys.path()).empty(), "a ghost that is forgotten is gone");
}

}  // namespace

void tryInput(std::string_view input) {
  static Machine machine;
  const std::string name(takePart(input));
  put(machine.folder(), name, withBoot(input, machine.boot));
  const auto ghosts = livingGhosts(machine.sys.path());
  require(ghosts.size() <= 1, "a record is one ghost at most");
  require(livingGhosts(machine.sys.path()) == ghosts, "looking changes nothing");
  require(ghosts.empty() || input.find("boot=@") != input.npos, "a ghost is of this boot");
  for (const auto& ghost : ghosts) checkGhost(ghost, machine);
}

}  // namespace quillmont::testing
