#include "platform/linux/tools/hdiutil/loop_search.h"

#include <sys/stat.h>

#include <string_view>

namespace quillmont {
namespace {

std::string_view lastComponent(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

}  // namespace

SameFile carriesFile(const LoopDevice& loop, const ImageFile& image) {
  struct stat status = {};
  // What now has the path of a deleted file is another one.
  if (!loop.deleted && stat(loop.backingFile.c_str(), &status) == 0) {
    const bool same = status.st_dev == image.status.st_dev && status.st_ino == image.status.st_ino;
    return same ? SameFile::yes : SameFile::no;
  }
  // The path of a file on a volume that was pulled away has lost its beginning.
  return lastComponent(loop.backingFile) == lastComponent(image.path) ? SameFile::unknown
                                                                      : SameFile::no;
}

Result<std::string> findLoopOf(const ImageFile& image, const std::vector<LoopDevice>& loops) {
  std::string doubtful;
  for (const auto& loop : loops) {
    const auto same = carriesFile(loop, image);
    if (same == SameFile::yes) return loop.name;
    if (same == SameFile::unknown) doubtful = loop.name;
  }
  if (doubtful.empty()) return doubtful;
  return Error{"/dev/" + doubtful +
               " may carry this image already: the file that it carries was deleted or cannot be "
               "reached"};
}

}  // namespace quillmont
