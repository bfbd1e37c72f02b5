// A program that was deleted while it runs still has to take its login item away, with a tool that
// was deleted along with it.
#pragma once

#include <string>

namespace quillmont {

/// Keeps the program file `tool` open for the rest of the process and lays a symbolic link of its
/// name in `folder`, through which it can be started by this process's children after its own file
/// is gone. `folder` is made (mode 0700) if it is missing; a link that another process has left is
/// replaced, or removed when there is nothing to put in its place: the process it points into is
/// gone, and its identifier may be another's by now. Best effort and silent.
void keepTool(const std::string& tool, const std::string& folder);

}  // namespace quillmont
