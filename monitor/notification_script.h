// The one-line script that shows the notification of an ejection.
#pragma once

#include <string>
#include <string_view>

namespace quillmont {

/// The script for the script runner that announces the ejection of the volume `volumeName`, with
/// the default sound. Double quotes in the name are escaped, and nothing else is: a backslash in a
/// name goes through single.
std::string ejectionNotificationScript(std::string_view volumeName);

}  // namespace quillmont
