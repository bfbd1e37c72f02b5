#include "platform/macos/FoundationPropertyLists.h"

#import <Foundation/Foundation.h>

#include <algorithm>
#include <utility>

#include "platform/macos/property_list_objects.h"
#include "platform/macos/strings.h"
#include "platform/posix/property_list_limits.h"
#include "platform/posix/xml_text.h"

namespace quillmont {
namespace {

/// Foundation's own reason. It does not always give one.
Error reasonOf(NSError* error, const char* otherwise) {
  auto text = utf8String([error localizedDescription]);
  return Error{text.empty() ? otherwise : std::move(text)};
}

bool isXmlText(std::string_view text) {
  while (!text.empty()) {
    const auto length = xmlCharacterLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

/// Foundation writes whatever characters there are, also those that no reader takes.
bool fitsXml(const PropertyList& list) {
  if (const auto* text = list.string()) return isXmlText(*text);
  if (const auto* elements = list.array()) {
    return std::all_of(elements->begin(), elements->end(), fitsXml);
  }
  if (const auto* entries = list.dictionary()) {
    return std::all_of(entries->begin(), entries->end(), [](const auto& entry) {
      return isXmlText(entry.first) && fitsXml(entry.second);
    });
  }
  return true;
}

}  // namespace

Result<PropertyList> FoundationPropertyLists::parse(std::string_view bytes) const {
  if (bytes.size() > kMaxPropertyListBytes) return Error{"a property list of too many bytes"};
  @autoreleasepool {
    NSData* const data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
    NSError* error = nil;
    const id object = [NSPropertyListSerialization propertyListWithData:data
                                                                options:NSPropertyListImmutable
                                                                 format:nullptr
                                                                  error:&error];
    if (object == nil) return reasonOf(error, "not a property list");
    return propertyListOf(object);
  }
}

Result<std::string> FoundationPropertyLists::xml(const PropertyList& list) const {
  @autoreleasepool {
    const auto object = objectOf(list);
    if (!object) return Error{object.errorText()};
    if (!fitsXml(list)) return Error{"a text holds bytes that XML cannot carry"};
    NSError* error = nil;
    NSData* const data =
        [NSPropertyListSerialization dataWithPropertyList:*object
                                                   format:NSPropertyListXMLFormat_v1_0
                                                  options:0
                                                    error:&error];
    if (data == nil) return reasonOf(error, "cannot be written as a property list");
    return std::string(static_cast<const char*>([data bytes]), [data length]);
  }
}

}  // namespace quillmont
