// Property lists: the tree of values that the disk-image tool prints, that a launch agent is made
// of and that the settings are kept in.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/Result.h"

namespace quillmont {

class PropertyList;

using PropertyListArray = std::vector<PropertyList>;

/// A dictionary in the order of its source, or of its keys where a host's reader loses that. Where
/// a source names a key twice, the last one counts.
using PropertyListDictionary = std::vector<std::pair<std::string, PropertyList>>;

/// Bytes that are no text.
struct PropertyListData {
  std::string bytes;
  bool operator==(const PropertyListData&) const = default;
};

/// A point in time in its ISO 8601 spelling, kept as written.
struct PropertyListDate {
  std::string iso8601;
  bool operator==(const PropertyListDate&) const = default;
};

/// One value of a property list. A value knows its exact type: a boolean is no integer, an integer
/// no real. The typed views answer null for a value of any other type.
class PropertyList {
 public:
  using Value =
      std::variant<bool, std::int64_t, std::uint64_t, double, std::string, PropertyListData,
                   PropertyListDate, PropertyListArray, PropertyListDictionary>;

  PropertyList(bool value) : value_(value) {}
  PropertyList(std::int64_t value) : value_(value) {}
  PropertyList(std::uint64_t value) : value_(value) {}  ///< only for values above int64's
  PropertyList(double value) : value_(value) {}
  PropertyList(std::string value) : value_(std::move(value)) {}
  PropertyList(const char* value) : value_(std::string(value)) {}
  PropertyList(PropertyListData value) : value_(std::move(value)) {}
  PropertyList(PropertyListDate value) : value_(std::move(value)) {}
  PropertyList(PropertyListArray value) : value_(std::move(value)) {}
  PropertyList(PropertyListDictionary value) : value_(std::move(value)) {}

  const Value& value() const { return value_; }

  template <class T>
  const T* as() const {
    return std::get_if<T>(&value_);
  }
  const std::string* string() const { return as<std::string>(); }
  const PropertyListArray* array() const { return as<PropertyListArray>(); }
  const PropertyListDictionary* dictionary() const { return as<PropertyListDictionary>(); }

  /// Any number, a boolean not among them, as a real if that is exact.
  std::optional<double> number() const;

  /// The entry of a dictionary under `key`; null for other types and for a missing key.
  const PropertyList* find(std::string_view key) const;

  /// An array whose every element is a string; nothing for anything else.
  std::optional<std::vector<std::string>> stringArray() const;

  bool operator==(const PropertyList&) const = default;

 private:
  Value value_;
};

/// The platform's reader and writer. Any thread.
class PropertyListCoder {
 public:
  virtual ~PropertyListCoder() = default;

  /// Reads one property list in any of the encodings that the platform's reader knows. Failure: a
  /// text that says what is wrong and, where it can, the line.
  virtual Result<PropertyList> parse(std::string_view bytes) const = 0;

  /// The XML form, version 1.0. Failure: a text with characters that XML cannot carry, or
  /// more levels than a reader would take.
  virtual Result<std::string> xml(const PropertyList& list) const = 0;
};

}  // namespace quillmont
