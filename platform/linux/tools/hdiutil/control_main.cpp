// The half of the disk-image tool that changes something: `attach <image>` and
// `detach <mount point> [-force]`. The other half starts it, in its own place.

#include <unistd.h>

#include <string>
#include <vector>

#include "platform/linux/tools/hdiutil/attach.h"
#include "platform/linux/tools/hdiutil/detach.h"
#include "platform/linux/tools/hdiutil/report.h"
#include "platform/linux/volume_paths.h"
#include "platform/posix/log_text.h"

namespace quillmont {
namespace {

int attach(const std::string& image) {
  const auto control = imageControl();
  if (!control) return reportFailure("attach", control.errorText());
  const auto attachment = attachImage(image, **control);
  if (!attachment) return reportFailure("attach", attachment.errorText());
  const auto table = ImageTable::read();
  for (const auto& volume : attachment->mounted) {
    const auto place = table ? table->presented(volume.mountPoint) : presentable(volume.mountPoint);
    say(STDOUT_FILENO, presentable(volume.deviceNode) + "\t" + place + "\n");
  }
  for (const auto& warning : attachment->warnings) {
    say(STDERR_FILENO, "hdiutil: attach: " + textOfOneLine(warning) + "\n");
  }
  return 0;
}

int detach(const std::string& place, bool force) {
  const auto control = imageControl();
  if (!control) return reportFailure("detach", control.errorText());
  const auto detached = detachImage(place, force, **control);
  return detached ? 0 : reportFailure("detach", detached.errorText());
}

int run(const std::vector<std::string>& arguments) {
  const std::string verb = arguments.empty() ? "" : arguments.front();
  const std::size_t count = arguments.size();
  if (verb == "attach" && count == 2) return attach(arguments[1]);
  if (verb == "detach" && count == 2) return detach(arguments[1], false);
  if (verb == "detach" && count == 3 && arguments[2] == "-force") return detach(arguments[1], true);
  return reportUsage();
}

}  // namespace
}  // namespace quillmont

int main(int count, char** arguments) {
  return quillmont::run(
      std::vector<std::string>(arguments + (count > 0 ? 1 : 0), arguments + count));
}
