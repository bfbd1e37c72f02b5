#include "platform/linux/boot_identifier.h"

#include "platform/posix/files.h"

namespace quillmont {

Result<std::string> bootIdentifier() {
  auto text = readFile("/proc/sys/kernel/random/boot_id", 4096);
  if (text && text->ends_with('\n')) text->pop_back();
  return text;
}

}  // namespace quillmont
