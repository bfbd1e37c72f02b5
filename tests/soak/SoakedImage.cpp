#include "tests/soak/SoakedImage.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "tests/support/own_volumes.h"

namespace quillmont::testing {
SoakedImage::SoakedImage(DiskImages& images, std::string name)
    : images_(images),
      name_(std::move(name)),
      path_(images.makeExt4(name_ + ".img", name_)),
      label_(name_) {
  if (path_.empty()) throw std::runtime_error("an image cannot be made");
}

SoakedImage::Presence SoakedImage::presence() const {
  if (isMounted(place())) return Presence::mounted;
  return DiskImages::loopsOf(path_).empty() ? Presence::detached : Presence::unmounted;
}

long SoakedImage::attach() {
  label_ = name_ + "x" + std::to_string(++attachments_);
  const auto labelled = run({"e2label", path_, label_});
  if (labelled.status != 0) throw Finding("label " + label_ + ": " + labelled.standardError);
  const auto outcome = images_.attach(path_);
  if (outcome.status != 0) throw Finding("attach " + label_ + ": " + outcome.standardError);
  attached = true;
  seen = byHand = missed = inspected = announced = takenForIdle_ = false;
  knownInUseSince_.reset();
  attachedAt = changedAt = Steady::now();
  return files_.verify(place());
}

std::optional<std::uint64_t> SoakedImage::device() const {
  const auto loops = DiskImages::loopsOf(path_);
  struct stat status = {};
  if (loops.empty() || stat(("/dev/" + loops.front()).c_str(), &status) != 0) return std::nullopt;
  return status.st_rdev;
}

bool SoakedImage::write(std::uint64_t seed, bool synced) {
  const auto volume = device();
  const bool written = volume && files_.write(place(), *volume, seed, synced);
  changedAt = Steady::now();
  return written;
}

bool SoakedImage::hold(const VolumeUse& use) {
  changedAt = Steady::now();
  try {
    holder_ = std::make_unique<Holder>([&] { return use.take(place()); });
  } catch (const std::runtime_error&) {
    if (presence() == Presence::mounted) throw Finding(label_ + " cannot be used: " + use.name);
    return false;
  }
  heldSince_ = Steady::now();
  if (knownInUseSince_) knownInUseSince_ = heldSince_;
  // What was taken is of the volume only if that was there all the time.
  if (presence() == Presence::mounted) return true;
  holder_.reset();
  return false;
}

void SoakedImage::letGo() {
  holder_.reset();
  changedAt = Steady::now();
}

void SoakedImage::deleteFile() {
  unlink(path_.c_str());
  fileDeleted_ = true;
}

void SoakedImage::inspect() {
  inspected = true;
  if (fileDeleted_) {
    images_.makeExt4(name_ + ".img", name_);
    fileDeleted_ = false;
    files_.forget();
    return;
  }
  const auto check = run({"fsck.ext4", "-n", "-f", path_});
  if (check.status != 0) throw Finding("damaged: " + label_ + "\n" + check.standardOutput);
}

void SoakedImage::noteLine(LogLine::Kind kind) {
  if (kind != LogLine::Kind::idle && kind != LogLine::Kind::inUse) return;
  takenForIdle_ = kind == LogLine::Kind::idle;
  knownInUseSince_ = takenForIdle_ ? std::nullopt : std::optional(Steady::now());
}

}  // namespace quillmont::testing
