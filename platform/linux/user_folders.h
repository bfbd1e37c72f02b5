// The folders of the user on a Linux desktop, by the XDG base directory rules: a variable counts
// only when it holds an absolute path.
#pragma once

#include <string>

#include "platform/Result.h"

namespace quillmont {

/// $HOME, or the home folder of the user database.
std::string homeFolder();

/// $XDG_CONFIG_HOME or ~/.config.
std::string configFolder();

/// $XDG_DATA_HOME or ~/.local/share.
std::string dataFolder();

/// The login name of the real user.
std::string userName();

/// The program's own runtime folder, made if it is missing: "com.norwaldex.Quillmont" in
/// $XDG_RUNTIME_DIR, else in /run/user/<uid>, else in ~/.cache. Mode 0700. Failure: it cannot be
/// made, is no folder, belongs to somebody else or is open to others.
Result<std::string> runtimeFolder();

}  // namespace quillmont
