#include "platform/macos/property_list_objects.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>

#include "platform/macos/iso_dates.h"
#include "platform/macos/strings.h"
#include "platform/posix/property_list_limits.h"

namespace quillmont {
namespace {

constexpr char kTooDeep[] = "nested too deeply";

/// There are two boolean objects, and every list has those. Their encoding is a number's.
bool isBoolean(NSNumber* number) {
  return number == [NSNumber numberWithBool:YES] || number == [NSNumber numberWithBool:NO];
}

PropertyList numberOf(NSNumber* number) {
  if (isBoolean(number)) return static_cast<bool>([number boolValue]);
  const char* const type = [number objCType];
  if (std::strcmp(type, @encode(double)) == 0 || std::strcmp(type, @encode(float)) == 0) {
    return [number doubleValue];
  }
  const std::uint64_t magnitude = [number unsignedLongLongValue];
  const bool positive = [number compare:[NSNumber numberWithInt:0]] == NSOrderedDescending;
  const bool large = positive && magnitude > std::numeric_limits<std::int64_t>::max();
  return large ? PropertyList(magnitude) : PropertyList(std::int64_t{[number longLongValue]});
}

Result<PropertyList> dateOf(NSDate* date) {
  auto text = isoDate([date timeIntervalSince1970]);
  if (!text) return Error{"a date beyond the calendar"};
  return PropertyList(PropertyListDate{std::move(*text)});
}

PropertyList dataOf(NSData* data) {
  const std::size_t length = [data length];
  return PropertyListData{length > 0 ? std::string(static_cast<const char*>([data bytes]), length)
                                     : std::string()};
}

Result<PropertyList> read(id object, std::size_t depth);

Result<PropertyList> arrayOf(NSArray* objects, std::size_t depth) {
  if (depth > kMaxPropertyListDepth) return Error{kTooDeep};
  PropertyListArray elements;
  elements.reserve([objects count]);
  for (id object in objects) {
    auto element = read(object, depth);
    if (!element) return element;
    elements.push_back(std::move(*element));
  }
  return PropertyList(std::move(elements));
}

Result<PropertyList> dictionaryOf(NSDictionary* objects, std::size_t depth) {
  if (depth > kMaxPropertyListDepth) return Error{kTooDeep};
  PropertyListDictionary entries;
  entries.reserve([objects count]);
  for (id key in objects) {
    if (![key isKindOfClass:[NSString class]]) return Error{"a key that is no text"};
    auto value = read([objects objectForKey:key], depth);
    if (!value) return value;
    entries.emplace_back(utf8String(key), std::move(*value));
  }
  std::sort(entries.begin(), entries.end(),
            [](const auto& one, const auto& other) { return one.first < other.first; });
  return PropertyList(std::move(entries));
}

/// `depth` is that of the containers around `object`.
Result<PropertyList> read(id object, std::size_t depth) {
  if ([object isKindOfClass:[NSString class]]) return PropertyList(utf8String(object));
  if ([object isKindOfClass:[NSNumber class]]) return numberOf(object);
  if ([object isKindOfClass:[NSArray class]]) return arrayOf(object, depth + 1);
  if ([object isKindOfClass:[NSDictionary class]]) return dictionaryOf(object, depth + 1);
  if ([object isKindOfClass:[NSDate class]]) return dateOf(object);
  if ([object isKindOfClass:[NSData class]]) return dataOf(object);
  return Error{"an object that no property list holds"};
}

/// Makes Foundation's objects, by the types of the values.
class Maker {
 public:
  id make(const PropertyList& list) {
    return std::visit([this](const auto& value) { return object(value); }, list.value());
  }

  const char* failure() const { return failure_; }

 private:
  id object(bool value) { return [NSNumber numberWithBool:value]; }
  id object(std::int64_t value) { return [NSNumber numberWithLongLong:value]; }
  id object(std::uint64_t value) { return [NSNumber numberWithUnsignedLongLong:value]; }
  id object(double value) { return [NSNumber numberWithDouble:value]; }
  id object(const std::string& value) { return foundationString(value); }

  id object(const PropertyListData& value) {
    return [NSData dataWithBytes:value.bytes.data() length:value.bytes.size()];
  }

  id object(const PropertyListDate& value) {
    const auto seconds = secondsOfIsoDate(value.iso8601);
    if (!seconds) failure_ = "a date that is none";
    return [NSDate dateWithTimeIntervalSince1970:seconds.value_or(0)];
  }

  id object(const PropertyListArray& elements) {
    NSMutableArray* const result = [NSMutableArray arrayWithCapacity:elements.size()];
    nested([&] {
      for (const auto& element : elements) [result addObject:make(element)];
    });
    return result;
  }

  id object(const PropertyListDictionary& entries) {
    NSMutableDictionary* const result = [NSMutableDictionary dictionaryWithCapacity:entries.size()];
    nested([&] {
      for (const auto& [key, value] : entries) {
        [result setObject:make(value) forKey:foundationString(key)];
      }
    });
    return result;
  }

  template <class Fill>
  void nested(Fill fill) {
    if (depth_ == kMaxPropertyListDepth) {
      failure_ = kTooDeep;
      return;
    }
    ++depth_;
    fill();
    --depth_;
  }

  std::size_t depth_ = 0;
  const char* failure_ = nullptr;
};

}  // namespace

Result<PropertyList> propertyListOf(id object) {
  return read(object, 0);
}

Result<id> objectOf(const PropertyList& list) {
  Maker maker;
  const id object = maker.make(list);
  if (maker.failure() != nullptr) return Error{maker.failure()};
  return object;
}

}  // namespace quillmont
