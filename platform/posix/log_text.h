// Text that is to stand on one line of a log.
#pragma once

#include <string>
#include <string_view>

namespace quillmont {

/// `text` with its control characters escaped, a newline as \n, others as \xNN: names of volumes
/// and processes may hold any, and must not be able to forge a line.
std::string textOfOneLine(std::string_view text);

}  // namespace quillmont
