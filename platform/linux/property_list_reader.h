// The reading half of XmlPropertyLists.
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/PropertyList.h"
#include "platform/posix/property_list_limits.h"

namespace quillmont {

/// Reads the XML form; the contract is XmlPropertyLists::parse()'s. Failure: "line 3, column 7: "
/// and what is wrong there, columns counted in bytes from 1.
Result<PropertyList> readXmlPropertyList(std::string_view bytes,
                                         std::size_t maxValues = kMaxPropertyListValues);

}  // namespace quillmont
