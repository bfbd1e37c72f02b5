// The user's folders on a Mac.
#pragma once

#include <string>
#include <vector>

namespace quillmont {

/// The user's library folders, the first one being the one to use. They need not exist.
std::vector<std::string> libraryFolders();

}  // namespace quillmont
