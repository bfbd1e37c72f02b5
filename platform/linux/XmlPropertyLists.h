// Property lists in their XML form, read with Expat.
#pragma once

#include "platform/PropertyList.h"

namespace quillmont {

/// Stateless; any thread. Reads UTF-8 and UTF-16, with or without a byte order mark. Hardened
/// against hostile input: entity declarations and undeclared entities are refused before anything
/// is expanded, and so are nestings deeper than 256, more than 4 million values and more than
/// 64 MiB of bytes. A list of another encoding (binary, old style) is refused with a text saying
/// so.
class XmlPropertyLists : public PropertyListCoder {
 public:
  Result<PropertyList> parse(std::string_view bytes) const override;
  Result<std::string> xml(const PropertyList& list) const override;
};

}  // namespace quillmont
