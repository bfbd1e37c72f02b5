#include "platform/linux/tools/lsof/SharedLook.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "platform/linux/boot_identifier.h"
#include "platform/linux/question_series.h"
#include "platform/linux/user_folders.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/files.h"

namespace quillmont {
namespace {

// The record: who asked, when the look began, for each volume a mark, its path and the report, and
// at last a word that a record cut short does not have. Each ends with a NUL, which no field holds.
constexpr std::string_view kNew = "new";
constexpr std::string_view kGiven = "old";
constexpr std::string_view kEnd = "end";
constexpr std::size_t kLargest = 4u << 20;

void append(std::string& record, std::string_view field) {
  record.append(field).push_back('\0');
}

std::optional<std::string_view> takeField(std::string_view& record) {
  const auto end = record.find('\0');
  if (end == record.npos) return std::nullopt;
  const auto field = record.substr(0, end);
  record.remove_prefix(end + 1);
  return field;
}

/// The time at which the process started, in the kernel's own words: a process identifier alone may
/// be given again.
std::string startOf(pid_t pid) {
  constexpr int kFieldsBetween = 19;  // from the state, behind the name, to the start time
  const auto text = readFile("/proc/" + std::to_string(pid) + "/stat");
  if (!text) return {};
  auto at = text->rfind(") ");
  for (int field = 0; field <= kFieldsBetween && at != text->npos; ++field) {
    at = text->find(' ', at + 1);
  }
  return at == text->npos ? std::string() : text->substr(at + 1, text->find(' ', at + 1) - at - 1);
}

std::string namespaceOf(const char* kind) {
  std::array<char, 64> name;
  const auto size =
      readlink((std::string("/proc/self/ns/") + kind).c_str(), name.data(), name.size());
  return std::string(name.data(), static_cast<std::size_t>(size < 0 ? 0 : size));
}

/// The record's bytes, if it is a plain file of ours and nobody else is at it.
std::optional<std::string> lockedRecord(const Descriptor& file) {
  struct stat status = {};
  if (!file || fstat(file.get(), &status) != 0) return std::nullopt;
  const bool ours = S_ISREG(status.st_mode) && status.st_uid == geteuid();
  if (!ours || (status.st_mode & 077) != 0) return std::nullopt;
  if (static_cast<std::size_t>(status.st_size) > kLargest) return std::nullopt;
  if (flock(file.get(), LOCK_EX | LOCK_NB) != 0) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  const auto count = pread(file.get(), bytes.data(), bytes.size(), 0);
  if (count != status.st_size) return std::nullopt;
  return bytes;
}

bool isFresh(std::string_view began, std::chrono::nanoseconds now) {
  std::int64_t count = 0;
  const auto* const end = began.data() + began.size();
  const auto read = std::from_chars(began.data(), end, count);
  if (read.ec != std::errc() || read.ptr != end || count < 0) return false;
  const auto then = std::chrono::nanoseconds(count);
  return then <= now && now - then < kLookIsFresh;
}

}  // namespace

std::optional<SharedLook> SharedLook::ofParent(std::string_view mountTable) {
  if (!std::getenv(kSeriesVariable)) return std::nullopt;
  const auto folder = runtimeFolder();
  const auto boot = bootIdentifier();
  const auto parent = getppid();
  const auto start = startOf(parent);
  if (!folder || !boot || start.empty()) return std::nullopt;
  std::string asker =
      *boot + " " + std::to_string(geteuid()) + " " + std::to_string(parent) + " " + start;
  for (const char* const kind : {"mnt", "net", "pid", "user"}) asker += " " + namespaceOf(kind);
  return SharedLook(*folder + "/look", asker.append("\n").append(mountTable));
}

std::optional<std::string> SharedLook::take(std::string_view path,
                                            std::chrono::nanoseconds now) const {
  const Descriptor file(open(file_.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  const auto bytes = lockedRecord(file);
  if (!bytes || !bytes->ends_with(std::string(kEnd) + '\0')) return std::nullopt;
  std::string_view record = *bytes;
  const auto asker = takeField(record);
  const auto began = takeField(record);
  if (!began || *asker != asker_ || !isFresh(*began, now)) return std::nullopt;
  for (auto mark = takeField(record); mark && *mark != kEnd; mark = takeField(record)) {
    const auto volume = takeField(record);
    const auto report = takeField(record);
    if (!report) return std::nullopt;
    if (*volume != path) continue;
    const auto at = mark->data() - bytes->data();
    const bool given = *mark == kNew && pwrite(file.get(), kGiven.data(), kGiven.size(), at) ==
                                            static_cast<ssize_t>(kGiven.size());
    return given ? std::optional<std::string>(*report) : std::nullopt;
  }
  return std::nullopt;
}

void SharedLook::drop() const {
  unlink(file_.c_str());
}

/// Nothing is flushed: what a stop of the machine leaves is of another boot.
void SharedLook::keep(const std::vector<VolumeAnswer>& answers,
                      std::chrono::nanoseconds began) const {
  std::string record;
  append(record, asker_);
  append(record, std::to_string(began.count()));
  for (const auto& answer : answers) {
    append(record, kNew);
    append(record, answer.path);
    append(record, answer.report);
  }
  append(record, kEnd);
  if (record.size() > kLargest) return;
  const auto draft = file_ + ".new";
  unlink(draft.c_str());
  const Descriptor file(
      open(draft.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!file) return;
  const bool kept = writeAll(file.get(), record) && rename(draft.c_str(), file_.c_str()) == 0;
  if (!kept) unlink(draft.c_str());
}

std::chrono::nanoseconds timeSinceBoot() {
  timespec time = {};
  clock_gettime(CLOCK_BOOTTIME, &time);
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

}  // namespace quillmont
