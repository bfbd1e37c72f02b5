#include "platform/linux/ghosts.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <map>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/linux/boot_identifier.h"
#include "platform/linux/loop_devices.h"
#include "platform/linux/user_folders.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/files.h"

namespace quillmont {
namespace {

// A record is a list of key=value entries, each ended by a NUL: the one byte that no path holds.

Result<std::string> ghostFolder() {
  const auto runtime = runtimeFolder();
  if (!runtime) return Error{runtime.errorText()};
  return *runtime + "/ghosts";
}

/// Mount identifiers are given again after an unmount; with the attachment's sequence the name of
/// a stale record is never that of a new one.
std::string recordName(const Ghost& ghost) {
  return ghost.loopName + "-" + std::to_string(ghost.loopSequence) + "-" +
         std::to_string(ghost.mountId);
}

std::string encoded(const Ghost& ghost, const std::string& boot) {
  std::string record;
  const auto add = [&record](const char* key, const std::string& value) {
    record.append(key).append("=").append(value).push_back('\0');
  };
  add("boot", boot);
  add("unmounted", ghost.unmounted ? "1" : "0");
  add("covered", ghost.covered ? "1" : "0");
  add("loop", ghost.loopName);
  add("sequence", std::to_string(ghost.loopSequence));
  add("image", ghost.imagePath);
  add("device", ghost.deviceNode);
  add("mount-point", ghost.mountPoint);
  add("mount-id", std::to_string(ghost.mountId));
  add("super-device", std::to_string(ghost.superDevice));
  add("stat-device", std::to_string(ghost.statDevice));
  return record;
}

using Entries = std::map<std::string, std::string, std::less<>>;

Entries entriesOf(std::string_view record) {
  Entries entries;
  for (auto end = record.find('\0'); end != std::string_view::npos; end = record.find('\0')) {
    const auto entry = record.substr(0, end);
    const auto equals = entry.find('=');
    if (equals != std::string_view::npos) {
      entries.emplace(entry.substr(0, equals), entry.substr(equals + 1));
    }
    record.remove_prefix(end + 1);
  }
  return entries;
}

bool take(const Entries& entries, const char* key, std::string& value) {
  const auto entry = entries.find(key);
  if (entry == entries.end() || entry->second.empty()) return false;
  value = entry->second;
  return true;
}

bool take(const Entries& entries, const char* key, std::uint64_t& value) {
  std::string text;
  if (!take(entries, key, text)) return false;
  const auto end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  return result.ec == std::errc() && result.ptr == end;
}

/// A record that cannot be read is neither living nor over: there may be no descriptor left, say.
enum class Standing { living, over, unknown };

struct Judged {
  Standing standing = Standing::unknown;
  Ghost ghost;  ///< of a living one
};

bool decode(const Entries& entries, Ghost& ghost) {
  std::uint64_t unmounted = 0;
  std::uint64_t covered = 0;
  const bool whole =
      take(entries, "unmounted", unmounted) && take(entries, "covered", covered) &&
      take(entries, "loop", ghost.loopName) && take(entries, "sequence", ghost.loopSequence) &&
      take(entries, "image", ghost.imagePath) && take(entries, "device", ghost.deviceNode) &&
      take(entries, "mount-point", ghost.mountPoint) && take(entries, "mount-id", ghost.mountId) &&
      take(entries, "super-device", ghost.superDevice) &&
      take(entries, "stat-device", ghost.statDevice);
  ghost.unmounted = unmounted != 0;
  ghost.covered = covered != 0;
  return whole;
}

/// The bytes of a record that is a plain file of ours, none of anything else: a link or a pipe
/// planted in the folder is not followed and not waited for. Nothing if it cannot be looked at.
std::optional<std::string> recordBytes(const std::string& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file) return errno == ELOOP ? std::optional<std::string>("") : std::nullopt;
  struct stat status = {};
  if (fstat(file.get(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode) || status.st_uid != geteuid()) return "";
  constexpr off_t kMostBytes = 1 << 16;
  if (status.st_size > kMostBytes) return "";
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  const ssize_t count = pread(file.get(), bytes.data(), bytes.size(), 0);
  if (count < 0) return std::nullopt;
  bytes.resize(static_cast<std::size_t>(count));
  return bytes;
}

/// Asks the device itself: the record may be younger than any list. A renamed image is still the
/// same one, so the path counts only where the kernel tells no sequence.
Standing standingOf(const Ghost& ghost, const std::string& sysBlock) {
  const auto loop = loopState(ghost.loopName, sysBlock);
  if (loop.kind == LoopState::Kind::released) return Standing::over;
  if (loop.kind == LoopState::Kind::unknown) return Standing::unknown;
  if (ghost.loopSequence != 0 && loop.sequence) {
    return *loop.sequence == ghost.loopSequence ? Standing::living : Standing::over;
  }
  return loop.backingFile == ghost.imagePath ? Standing::living : Standing::unknown;
}

/// `name` is that of the record. It says which device and attachment a record may be of: one that
/// tells of others is none.
Judged judge(const std::string& folder, const std::string& name, const std::string& boot,
             const std::string& sysBlock) {
  const auto bytes = recordBytes(folder + "/" + name);
  if (!bytes) return {};
  const Entries entries = entriesOf(*bytes);
  Judged judged;
  std::string recordedBoot;
  const bool ours = take(entries, "boot", recordedBoot) && recordedBoot == boot;
  const bool whole = ours && decode(entries, judged.ghost) && recordName(judged.ghost) == name;
  judged.standing = whole ? standingOf(judged.ghost, sysBlock) : Standing::over;
  return judged;
}

/// Tells records from files beside them that are just being written.
bool isRecordName(std::string_view name) {
  return name.starts_with("loop") && std::count(name.begin(), name.end(), '-') == 2 &&
         name.find_first_not_of("0123456789-", 4) == std::string_view::npos;
}

std::vector<std::string> recordNames(const std::string& folder) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(folder.c_str()), closedir);
  while (const auto* entry = open ? readdir(open.get()) : nullptr) {
    if (isRecordName(entry->d_name)) names.emplace_back(entry->d_name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

Result<void> rememberGhost(const Ghost& ghost) {
  const auto folder = ghostFolder();
  if (!folder) return Error{folder.errorText()};
  if (auto made = createFolders(*folder, 0700); !made) return made;
  const auto boot = bootIdentifier();
  if (!boot) return Error{boot.errorText()};
  return replaceFile(*folder + "/" + recordName(ghost), encoded(ghost, *boot));
}

void forgetGhost(const Ghost& ghost) {
  const auto folder = ghostFolder();
  if (folder) unlink((*folder + "/" + recordName(ghost)).c_str());
}

std::vector<Ghost> livingGhosts(const std::string& sysBlock) {
  const auto folder = ghostFolder();
  const auto boot = bootIdentifier();
  if (!folder || !boot) return {};
  std::vector<Ghost> ghosts;
  for (const auto& name : recordNames(*folder)) {
    auto judged = judge(*folder, name, *boot, sysBlock);
    if (judged.standing == Standing::living) ghosts.push_back(std::move(judged.ghost));
    if (judged.standing == Standing::over) unlink((*folder + "/" + name).c_str());
  }
  return ghosts;
}

}  // namespace quillmont
