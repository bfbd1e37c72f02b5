// Reads what the open-files tool prints and tells which processes count as users of an image.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillmont {

/// System and sync services that touch every volume: a process whose lower-cased name begins with
/// one of these never counts as a user.
std::vector<std::string> ignoredServicePrefixes();

/// The names of the counted processes in `output`, each once, in the order of their first line.
///
/// `output` is the tool's field form: lines of one tag character and a value, of which "p" (process
/// identifier) and "c" (command name) are read. Not counted are the process `myPid`, the tool
/// itself and the services that `ignoredPrefixes` name. Output that is no valid UTF-8 names nobody.
std::vector<std::string> countedProcessNames(std::string_view output, std::string_view myPid,
                                             std::span<const std::string> ignoredPrefixes);

}  // namespace quillmont
