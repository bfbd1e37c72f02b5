#include "platform/linux/loop_devices.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <string_view>

#include "platform/posix/files.h"

namespace quillmont {
namespace {

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

bool exists(const std::string& path) {
  struct statx status = {};
  return statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC,
               STATX_TYPE, &status) == 0;
}

/// The kernel's mark for a deleted file looks like a part of the name; a file that is still there
/// under the whole name carries no mark.
std::string withoutDeletedMark(std::string path) {
  constexpr std::string_view mark = " (deleted)";
  if (path.ends_with(mark) && !exists(path)) path.resize(path.size() - mark.size());
  return path;
}

std::optional<LoopDevice> readLoopDevice(const std::string& folder, const std::string& name) {
  auto backingFile = attribute(folder + "/loop/backing_file");
  if (!backingFile || !backingFile->starts_with('/')) return std::nullopt;
  LoopDevice loop{name, withoutDeletedMark(std::move(*backingFile)), 0};
  if (const auto sequence = attribute(folder + "/diskseq")) {
    loop.sequence = number<std::uint64_t>(*sequence).value_or(0);
  }
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

}  // namespace quillmont
