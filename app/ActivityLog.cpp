#include "app/ActivityLog.h"

#include "monitor/QuillmontDaemon.h"
#include "platform/Log.h"

namespace quillmont {
namespace {

std::string line(const DiskImage& image) {
  if (!image.inUse) return "Disk image is idle: " + image.mountPoint;
  std::string names;
  for (const auto& name : image.activeProcesses) names += (names.empty() ? "" : ", ") + name;
  return "Disk image is in use: " + image.mountPoint + " (" + names + ")";
}

}  // namespace

ActivityLog::ActivityLog(QuillmontDaemon& daemon, Log& log)
    : log_(log),
      subscription_(daemon.observeMountedImages([this](const auto& images) { review(images); })) {}

void ActivityLog::review(const std::vector<DiskImage>& images) {
  std::map<std::string, bool> now;
  for (const auto& image : images) {
    now[image.id()] = image.inUse;
    const auto known = inUse_.find(image.id());
    if (known == inUse_.end() || known->second != image.inUse) log_.write(line(image));
  }
  inUse_ = std::move(now);
}

}  // namespace quillmont
