// The per-user store of settings, one domain an application.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/PropertyList.h"

namespace quillmont {

/// The standard user defaults of the application. Any thread. Reads answer from memory; each write
/// reaches the store before it returns. A write that fails is logged by the host and stays in
/// memory.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  virtual std::optional<PropertyList> object(std::string_view key) const = 0;

  /// Nothing if the key is absent or holds anything but an array of strings.
  virtual std::optional<std::vector<std::string>> stringArray(std::string_view key) const = 0;

  virtual void setDouble(std::string_view key, double value) = 0;
  virtual void setBool(std::string_view key, bool value) = 0;
  virtual void setObject(std::string_view key, PropertyList value) = 0;

  /// Forgets every setting of the domain named `domain`, in memory and in the store.
  virtual void removePersistentDomain(std::string_view domain) = 0;
};

}  // namespace quillmont
