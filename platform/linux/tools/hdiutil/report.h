// How both halves of the disk-image tool speak, and the statuses that they end with: the Mac's.
#pragma once

#include <string>

namespace quillmont {

inline constexpr int kFailure = 1;
inline constexpr int kWrongArguments = 2;

/// Writes all of `text` to `fd`. Whoever reads may have gone; there is nobody left to tell.
void say(int fd, const std::string& text);

/// "hdiutil: <verb> failed - <reason>" on standard error, as one line whatever names there are in
/// it. Gives `kFailure`.
int reportFailure(const std::string& verb, const std::string& reason);

/// How the tool is used, on standard error. Gives `kWrongArguments`.
int reportUsage();

}  // namespace quillmont
