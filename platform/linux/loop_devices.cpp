#include "platform/linux/loop_devices.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <memory>
#include <string_view>

#include "platform/posix/files.h"

namespace quillmont {
namespace {

constexpr std::string_view kDeletedMark = " (deleted)";

template <class Number>
std::optional<Number> number(std::string_view text) {
  Number value = 0;
  const auto end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return value;
}

std::optional<unsigned> loopNumber(std::string_view name) {
  if (!name.starts_with("loop")) return std::nullopt;
  return number<unsigned>(name.substr(4));
}

/// The attribute without the newline that the kernel ends it with; a name may hold more of them.
std::optional<std::string> attribute(const std::string& path) {
  auto text = readFile(path, 1u << 20);
  if (!text) return std::nullopt;
  if (text->ends_with('\n')) text->pop_back();
  return std::move(*text);
}

/// 0 if something is there, else the number of the error.
int lookAt(const std::string& path) {
  struct statx status = {};
  constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
  return statx(AT_FDCWD, path.c_str(), flags, STATX_TYPE, &status) == 0 ? 0 : errno;
}

/// The kernel's mark for a deleted file looks like a part of the name; a file that is still there
/// under the whole name carries no mark.
bool takeDeletedMark(std::string& path) {
  if (!path.ends_with(kDeletedMark) || lookAt(path) == 0) return false;
  path.resize(path.size() - kDeletedMark.size());
  return true;
}

std::optional<std::string> readBackingFile(const std::string& folder) {
  auto backingFile = attribute(folder + "/loop/backing_file");
  if (!backingFile || !backingFile->starts_with('/')) return std::nullopt;
  return backingFile;
}

std::optional<std::uint64_t> readSequence(const std::string& folder) {
  const auto sequence = attribute(folder + "/diskseq");
  return sequence ? number<std::uint64_t>(*sequence) : std::nullopt;
}

std::optional<LoopDevice> readLoopDevice(const std::string& folder, const std::string& name) {
  auto backingFile = readBackingFile(folder);
  if (!backingFile) return std::nullopt;
  LoopDevice loop;
  loop.name = name;
  loop.deleted = takeDeletedMark(*backingFile);
  loop.backingFile = std::move(*backingFile);
  loop.sequence = readSequence(folder).value_or(0);
  return loop;
}

}  // namespace

std::vector<LoopDevice> attachedLoopDevices(const std::string& sysBlock) {
  std::vector<unsigned> numbers;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(sysBlock.c_str()), closedir);
  if (!folder) return {};
  while (const auto* entry = readdir(folder.get())) {
    if (const auto found = loopNumber(entry->d_name)) numbers.push_back(*found);
  }
  std::sort(numbers.begin(), numbers.end());

  std::vector<LoopDevice> loops;
  for (const unsigned found : numbers) {
    const std::string name = "loop" + std::to_string(found);
    if (auto loop = readLoopDevice(sysBlock + "/" + name, name)) loops.push_back(std::move(*loop));
  }
  return loops;
}

LoopState loopState(const std::string& loopName, const std::string& sysBlock) {
  const std::string folder = sysBlock + "/" + loopName;
  LoopState state;
  const int error = lookAt(folder + "/loop");
  if (error == ENOENT && lookAt(sysBlock) == 0) state.kind = LoopState::Kind::released;
  if (error != 0) return state;
  state.kind = LoopState::Kind::attached;
  state.sequence = readSequence(folder);
  state.backingFile = readBackingFile(folder);
  if (state.backingFile) takeDeletedMark(*state.backingFile);
  return state;
}

}  // namespace quillmont
