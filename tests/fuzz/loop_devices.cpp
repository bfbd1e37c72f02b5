// Attributes of loop devices: backing file, sequence, and a name that stands beside the device's
// own; each ended by a NUL.

#include "platform/linux/loop_devices.h"

#include <string>

#include "platform/linux/image_devices.h"
#include "tests/fuzz/fuzzing.h"
#include "tests/support/SysBlock.h"

namespace quillmont::testing {
namespace {

/// A device that would be found below the folder under this name.
bool isUsable(const std::string& name) {
  return !name.empty() && name.size() < 200 && name != "." && name != ".." && name != "loop" &&
         name != "diskseq" && name.find('/') == name.npos;
}

void checkDevice(const LoopDevice& loop, const std::string& backingFile,
                 const std::string& sysBlock) {
  require(loop.backingFile.starts_with('/'), "a backing file is an absolute path");
  const std::string told = loop.backingFile + (loop.deleted ? " (deleted)" : "");
  require(backingFile == told + (backingFile.ends_with('\n') ? "\n" : ""),
          "the kernel tells the path, a mark for a deleted file, and a line feed");
  const auto state = loopState("loop3", sysBlock);
  require(state.backingFile == loop.backingFile, "both readers see one file");
  require(state.sequence.value_or(0) == loop.sequence, "both readers see one sequence");
}

}  // namespace

void tryInput(std::string_view input) {
  static SysBlock sys;
  const std::string backingFile(takePart(input));
  const std::string sequence(takePart(input));
  const std::string name(takePart(input));
  sys.attach("loop3", backingFile, sequence);
  if (isUsable(name)) std::filesystem::create_directory(sys.path() + "/loop3/" + name);

  const auto loops = attachedLoopDevices(sys.path());
  require(loops.size() <= 1, "one device, one image");
  for (const auto& loop : loops) checkDevice(loop, backingFile, sys.path());
  require(loopState("loop3", sys.path()).kind == LoopState::Kind::attached, "it is attached");

  const auto partitions = partitionNames("loop3", sys.path());
  require(partitions.empty() || (partitions.size() == 1 && partitions.front() == name),
          "a partition is a folder of the device's");
  require(partitions.empty() || name.starts_with("loop3p"), "a partition has the device's name");
}

}  // namespace quillmont::testing
