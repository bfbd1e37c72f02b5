#include "platform/FileManager.h"

namespace quillmont {

std::string lastPathComponent(std::string_view path) {
  const auto end = path.find_last_not_of('/');
  if (end == std::string_view::npos) return path.empty() ? "" : "/";
  path = path.substr(0, end + 1);
  const auto slash = path.rfind('/');
  return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

}  // namespace quillmont
