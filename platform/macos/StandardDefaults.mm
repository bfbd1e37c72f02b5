#include "platform/macos/StandardDefaults.h"

#import <Foundation/Foundation.h>

#include <utility>

#include "platform/macos/property_list_objects.h"
#include "platform/macos/strings.h"

namespace quillmont {
namespace {

NSUserDefaults* store() {
  return [NSUserDefaults standardUserDefaults];
}

/// Where the standard defaults of this process are kept.
NSString* domainInUse() {
  NSString* const identifier = [[NSBundle mainBundle] bundleIdentifier];
  return identifier != nil ? identifier : [[NSProcessInfo processInfo] processName];
}

}  // namespace

StandardDefaults::StandardDefaults(std::string ownDomain, Log& log)
    : ownDomain_(std::move(ownDomain)), log_(log) {}

std::optional<PropertyList> StandardDefaults::object(std::string_view key) const {
  @autoreleasepool {
    const id stored = [store() objectForKey:foundationString(key)];
    if (stored == nil) return std::nullopt;
    auto value = propertyListOf(stored);
    if (!value) return std::nullopt;
    return std::move(*value);
  }
}

std::optional<std::vector<std::string>> StandardDefaults::stringArray(std::string_view key) const {
  const auto stored = object(key);
  return stored ? stored->stringArray() : std::nullopt;
}

void StandardDefaults::setDouble(std::string_view key, double value) {
  @autoreleasepool {
    [store() setDouble:value forKey:foundationString(key)];
    writeOut();
  }
}

void StandardDefaults::setBool(std::string_view key, bool value) {
  @autoreleasepool {
    [store() setBool:value forKey:foundationString(key)];
    writeOut();
  }
}

void StandardDefaults::setObject(std::string_view key, PropertyList value) {
  @autoreleasepool {
    const auto object = objectOf(value);
    if (!object) {
      log_.write("Failed to write settings: " + object.errorText());
      return;
    }
    [store() setObject:*object forKey:foundationString(key)];
    writeOut();
  }
}

void StandardDefaults::removePersistentDomain(std::string_view domain) {
  @autoreleasepool {
    [store() removePersistentDomainForName:foundationString(domain)];
    if (domain == ownDomain_) [store() removePersistentDomainForName:domainInUse()];
    writeOut();
  }
}

/// The store takes writes in its own time. A process that is ended the hard way must not lose what
/// the user has set, nor bring back what was removed.
void StandardDefaults::writeOut() const {
  if (![store() synchronize]) log_.write("Failed to write settings");
}

}  // namespace quillmont
