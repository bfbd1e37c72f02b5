// Property lists as Foundation's objects, and back. For Objective-C++ alone.
#pragma once

#import <Foundation/Foundation.h>

#include "platform/PropertyList.h"

namespace quillmont {

/// The value of a Foundation object, each kind kept as it is; dictionaries in the order of their
/// keys. Failure: an object that no property list holds, a date beyond the calendar's four-digit
/// years, too deep a nesting.
Result<PropertyList> propertyListOf(id object);

/// Autoreleased. Where a dictionary names a key twice, the last one counts. Failure: a date that is
/// none, too deep a nesting.
Result<id> objectOf(const PropertyList& list);

}  // namespace quillmont
