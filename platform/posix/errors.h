// The one place where error numbers become words.
#pragma once

#include <string>
#include <string_view>

#include "platform/Result.h"

namespace quillmont {

/// "No such file or directory" for ENOENT, and so on.
std::string errorText(int errorNumber);

/// `what` and the text of `errorNumber`: "cannot open /x: No such file or directory".
Error systemError(std::string_view what, int errorNumber);

}  // namespace quillmont
