// The field form of the open-files tool's output: lines of one tag character and a value.
#pragma once

#include <string>
#include <string_view>

namespace quillmont {

/// `name` as the value of a field: one line of valid UTF-8 whatever bytes it holds. \b \f \n \r \t
/// and the backslash as these escapes, other control characters as ^A to ^_, and as \xNN each byte
/// of what is no valid UTF-8 or what a reader could take for the end of a line.
std::string fieldValue(std::string_view name);

/// Appends the line of `tag` and the escaped `value` to `output`.
void appendField(std::string& output, char tag, std::string_view value);

}  // namespace quillmont
