// The user's settings in a file.
#pragma once

#include <mutex>
#include <string>

#include "platform/UserDefaults.h"

namespace quillmont {

class Log;

/// One domain's settings: `folder`/`domain`.plist, a property list whose root is a dictionary, mode
/// 0600. It is read once, by the constructor, and replaced whole by every write; settings of other
/// names that it holds stay in it. Nothing is created before the first write.
///
/// A file that cannot be used (damaged, no dictionary, not readable, somebody else's) is never
/// written over: it is moved to `domain`.plist.damaged-<UTC time> with a log line, and while even
/// that fails, every write fails.
///
/// Any thread. `coder` and `log` must outlive it.
class PropertyListDefaults : public UserDefaults {
 public:
  PropertyListDefaults(std::string folder, const std::string& domain,
                       const PropertyListCoder& coder, Log& log);

  std::optional<PropertyList> object(std::string_view key) const override;
  std::optional<std::vector<std::string>> stringArray(std::string_view key) const override;
  void setDouble(std::string_view key, double value) override;
  void setBool(std::string_view key, bool value) override;
  void setObject(std::string_view key, PropertyList value) override;

  /// Of its own domain; any other one is none of its business. The file is deleted, and the folder
  /// if nothing else is in it.
  void removePersistentDomain(std::string_view domain) override;

 private:
  void load();
  Result<void> save();
  Result<void> setAside(const std::string& reason);

  const std::string folder_;
  const std::string domain_;
  const std::string path_;
  const PropertyListCoder& coder_;
  Log& log_;

  mutable std::mutex lock_;  ///< for all below, and for the file
  PropertyListDictionary settings_;
  std::string damage_;  ///< why the file at path_ must not be written over; empty if it may
};

}  // namespace quillmont
