// Which run of the kernel this is.
#pragma once

#include <string>

#include "platform/Result.h"

namespace quillmont {

/// Another one after each start of the machine: what was written down under another one is of no
/// process, mount or device that there is now. Any thread.
Result<std::string> bootIdentifier();

}  // namespace quillmont
