// The disk-image tool: `info [-plist]`, `attach <image>`, `detach <mount point> [-force]`, with the
// command lines and exit statuses of the Mac's.

#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/linux/tools/hdiutil/attach.h"
#include "platform/linux/tools/hdiutil/detach.h"
#include "platform/linux/tools/hdiutil/info.h"
#include "platform/linux/volume_paths.h"
#include "platform/posix/files.h"

namespace quillmont {
namespace {

constexpr int kFailure = 1;
constexpr int kWrongArguments = 2;

void say(int fd, const std::string& text) {
  // Whoever reads may have gone; there is nobody left to tell.
  static_cast<void>(static_cast<bool>(writeAll(fd, text)));
}

int fail(const char* verb, const std::string& reason) {
  say(STDERR_FILENO, std::string("hdiutil: ") + verb + " failed - " + reason + "\n");
  return kFailure;
}

int info(bool asPropertyList) {
  const auto table = ImageTable::read();
  if (!table) return fail("info", table.errorText());
  if (!asPropertyList) {
    say(STDOUT_FILENO, infoText(*table));
    return 0;
  }
  const auto xml = XmlPropertyLists().xml(infoList(*table));
  if (!xml) return fail("info", xml.errorText());
  return writeAll(STDOUT_FILENO, *xml) ? 0 : kFailure;
}

int attach(const std::string& image) {
  const auto control = imageControl();
  if (!control) return fail("attach", control.errorText());
  const auto attachment = attachImage(image, **control);
  if (!attachment) return fail("attach", attachment.errorText());
  const auto table = ImageTable::read();
  for (const auto& volume : attachment->mounted) {
    const auto place = table ? table->presented(volume.mountPoint) : presentable(volume.mountPoint);
    say(STDOUT_FILENO, presentable(volume.deviceNode) + "\t" + place + "\n");
  }
  for (const auto& warning : attachment->warnings) {
    say(STDERR_FILENO, "hdiutil: attach: " + warning + "\n");
  }
  return 0;
}

int detach(const std::string& place, bool force) {
  const auto control = imageControl();
  if (!control) return fail("detach", control.errorText());
  const auto detached = detachImage(place, force, **control);
  return detached ? 0 : fail("detach", detached.errorText());
}

int run(const std::vector<std::string>& arguments) {
  const std::string verb = arguments.empty() ? "" : arguments.front();
  const std::size_t count = arguments.size();
  if (verb == "info" && count == 1) return info(false);
  if (verb == "info" && count == 2 && arguments[1] == "-plist") return info(true);
  if (verb == "attach" && count == 2) return attach(arguments[1]);
  if (verb == "detach" && count == 2) return detach(arguments[1], false);
  if (verb == "detach" && count == 3 && arguments[2] == "-force") return detach(arguments[1], true);
  say(STDERR_FILENO,
      "usage: hdiutil info [-plist] | attach <image> | detach <mount point> [-force]\n");
  return kWrongArguments;
}

}  // namespace

}  // namespace quillmont

int main(int count, char** arguments) {
  return quillmont::run(
      std::vector<std::string>(arguments + (count > 0 ? 1 : 0), arguments + count));
}
