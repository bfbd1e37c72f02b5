#include "platform/linux/tools/hdiutil/report.h"

#include <unistd.h>

#include "platform/posix/files.h"
#include "platform/posix/log_text.h"

namespace quillmont {

void say(int fd, const std::string& text) {
  static_cast<void>(static_cast<bool>(writeAll(fd, text)));
}

int reportFailure(const std::string& verb, const std::string& reason) {
  say(STDERR_FILENO, "hdiutil: " + verb + " failed - " + textOfOneLine(reason) + "\n");
  return kFailure;
}

int reportUsage() {
  say(STDERR_FILENO,
      "usage: hdiutil info [-plist] | attach <image> | detach <mount point> [-force]\n");
  return kWrongArguments;
}

}  // namespace quillmont
