// Property lists as Foundation reads and writes them.
#pragma once

#include "platform/PropertyList.h"

namespace quillmont {

/// Stateless; any thread. Reads XML, binary and old-style lists; a dictionary comes in the order of
/// its keys, as Foundation does not keep that of the source. Lists that nest deeper than 256 are
/// refused, and on writing also dates that are none.
class FoundationPropertyLists : public PropertyListCoder {
 public:
  Result<PropertyList> parse(std::string_view bytes) const override;
  Result<std::string> xml(const PropertyList& list) const override;
};

}  // namespace quillmont
