#include "platform/linux/PropertyListDefaults.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <utility>

#include "platform/Log.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/errors.h"
#include "platform/posix/files.h"

namespace quillmont {
namespace {

/// The entry that counts: the last one of its name. `Entries` is a dictionary, const or not.
template <class Entries>
auto find(Entries& entries, std::string_view key) -> decltype(&entries.front().second) {
  for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
    if (entry->first == key) return &entry->second;
  }
  return nullptr;
}

/// Whose the file at `path` is, links followed.
Result<void> checkOwner(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return Error{errorText(errno)};
  if (status.st_uid != geteuid()) return Error{"it belongs to somebody else"};
  return {};
}

Result<PropertyListDictionary> readSettings(const std::string& path,
                                            const PropertyListCoder& coder) {
  if (const auto own = checkOwner(path); !own) return Error{own.errorText()};
  const auto bytes = readFile(path);
  if (!bytes) return Error{bytes.errorText()};
  auto list = coder.parse(*bytes);
  if (!list) return Error{list.errorText()};
  const auto* dictionary = list->dictionary();
  if (!dictionary) return Error{"it is no dictionary"};
  return *dictionary;
}

bool isThere(const std::string& path) {
  struct stat status;
  return lstat(path.c_str(), &status) == 0;
}

std::string utcStamp() {
  const std::time_t now = std::time(nullptr);
  std::tm parts = {};
  gmtime_r(&now, &parts);
  std::array<char, 32> text;
  return std::string(text.data(),
                     std::strftime(text.data(), text.size(), "%Y%m%dT%H%M%SZ", &parts));
}

/// A name for the damaged file that nothing has yet.
std::string freeDamagedName(const std::string& path) {
  const auto stamped = path + ".damaged-" + utcStamp();
  auto name = stamped;
  for (int number = 2; isThere(name); ++number) name = stamped + "-" + std::to_string(number);
  return name;
}

}  // namespace

PropertyListDefaults::PropertyListDefaults(std::string folder, const std::string& domain,
                                           const PropertyListCoder& coder, Log& log)
    : folder_(std::move(folder)),
      domain_(domain),
      path_(folder_ + "/" + domain + ".plist"),
      coder_(coder),
      log_(log) {
  load();
}

void PropertyListDefaults::load() {
  struct stat status;
  if (stat(path_.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR)) return;
  auto settings = readSettings(path_, coder_);
  if (settings) {
    settings_ = std::move(*settings);
    return;
  }
  damage_ = settings.errorText();
  if (const auto moved = setAside(damage_); !moved) {
    log_.write("Failed to read settings: " + path_ + ": " + damage_ +
               "; failed to set it aside: " + moved.errorText());
  }
}

Result<void> PropertyListDefaults::setAside(const std::string& reason) {
  const auto name = freeDamagedName(path_);
  // One that is gone by now was set aside by another instance.
  if (rename(path_.c_str(), name.c_str()) != 0 && errno != ENOENT) return Error{errorText(errno)};
  log_.write("Failed to read settings: " + path_ + ": " + reason + "; it was set aside as " + name);
  damage_.clear();
  return {};
}

Result<void> PropertyListDefaults::save() {
  if (!damage_.empty()) {
    const auto reason = damage_;
    if (auto moved = setAside(reason); !moved) return moved;
  }
  const auto xml = coder_.xml(settings_);
  if (!xml) return Error{xml.errorText()};
  if (auto made = createFolders(folder_, 0700); !made) return made;
  return replaceFile(path_, *xml);
}

std::optional<PropertyList> PropertyListDefaults::object(std::string_view key) const {
  const std::lock_guard guard(lock_);
  const auto* value = find(settings_, key);
  return value ? std::optional(*value) : std::nullopt;
}

std::optional<std::vector<std::string>> PropertyListDefaults::stringArray(
    std::string_view key) const {
  const std::lock_guard guard(lock_);
  const auto* value = find(settings_, key);
  return value ? value->stringArray() : std::nullopt;
}

void PropertyListDefaults::setDouble(std::string_view key, double value) {
  setObject(key, value);
}

void PropertyListDefaults::setBool(std::string_view key, bool value) {
  setObject(key, value);
}

void PropertyListDefaults::setObject(std::string_view key, PropertyList value) {
  const std::lock_guard guard(lock_);
  if (auto* present = find(settings_, key)) {
    *present = std::move(value);
  } else {
    settings_.emplace_back(key, std::move(value));
  }
  if (const auto saved = save(); !saved) {
    log_.write("Failed to write settings: " + saved.errorText());
  }
}

void PropertyListDefaults::removePersistentDomain(std::string_view domain) {
  if (domain != domain_) return;
  const std::lock_guard guard(lock_);
  settings_.clear();
  damage_.clear();
  for (const auto& path : {path_ + ".new", path_}) {
    if (unlink(path.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR) {
      log_.write("Failed to remove settings: " + path + ": " + errorText(errno));
    }
  }
  // Refused as long as something is in it: a damaged file that was set aside, say.
  static_cast<void>(rmdir(folder_.c_str()));
}

}  // namespace quillmont
