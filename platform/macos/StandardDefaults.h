// The settings of a Mac's user.
#pragma once

#include "platform/Log.h"
#include "platform/UserDefaults.h"

namespace quillmont {

/// The standard user defaults of the application. Any thread.
class StandardDefaults : public UserDefaults {
 public:
  /// `ownDomain` is the name under which the program's settings are known. Outside of a bundle they
  /// are kept under the process's name, and go when `ownDomain` is removed. `log` must outlive the
  /// store.
  StandardDefaults(std::string ownDomain, Log& log);

  std::optional<PropertyList> object(std::string_view key) const override;
  std::optional<std::vector<std::string>> stringArray(std::string_view key) const override;
  void setDouble(std::string_view key, double value) override;
  void setBool(std::string_view key, bool value) override;
  void setObject(std::string_view key, PropertyList value) override;
  void removePersistentDomain(std::string_view domain) override;

 private:
  void writeOut() const;

  const std::string ownDomain_;
  Log& log_;
};

}  // namespace quillmont
