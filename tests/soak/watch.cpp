// What must be at any time, whatever is done.

#include <algorithm>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/posix/files.h"
#include "tests/soak/Soak.h"

namespace quillmont::testing {
namespace {

using Kind = LogLine::Kind;
using Presence = SoakedImage::Presence;
using namespace std::chrono_literals;

constexpr auto kDrained = 15s * kSlowness;
constexpr auto kLinesOfOneCycle = 1s * kSlowness;

const PropertyList* setting(const PropertyList& settings, const std::string& key) {
  return settings.find("com.norwaldex.quillmont." + key);
}

}  // namespace

/// Announcements first: the line that goes with one was written before it.
void Soak::watch() {
  if (!program_->running()) throw Finding("the program has ended");
  takeAnnouncements();
  takeLog();
  readSettings();
  for (auto& image : images_) watchImage(*image);
  watchUnexplained();
}

SoakedImage* Soak::imageOf(const std::string& label) {
  for (auto& image : images_) {
    if (image->label() == label) return image.get();
  }
  if (attachedAt_.count(label) == 0) throw Finding("what is " + label + "?");
  return nullptr;
}

void Soak::takeAnnouncements() {
  const auto all = recorder_.notifications();
  std::vector<std::string> labels;
  for (; announcementsTaken_ < all.size(); ++announcementsTaken_) {
    const auto& body = all[announcementsTaken_].body;
    const auto begin = body.find('"') + 1;
    labels.push_back(body.substr(begin, body.find('"', begin) - begin));
    auto* const image = imageOf(labels.back());
    if (!image) continue;
    if (image->presence() != Presence::detached) {
      throw Finding(image->label() + " is announced and still attached");
    }
    image->announced = true;
  }
  takeLog();
  for (const auto& label : labels) {
    if (--unannounced_[label] < 0) throw Finding(label + " is announced and not logged");
  }
}

void Soak::takeLog() {
  for (const auto& line : log_->take()) {
    if (line.kind == Kind::other) continue;
    auto* const image = imageOf(line.label);
    if (line.kind == Kind::idle || line.kind == Kind::inUse) {
      if (image) takeSight(*image, line.kind);
    } else {
      takeOutcome(line.label);
      if (line.kind == Kind::ejected) takeEjection(line.label, image);
    }
  }
}

/// One of an image that had gone was requested before, and tells how late requests are carried out.
void Soak::takeOutcome(const std::string& label) {
  drainedTo_ = std::max(drainedTo_, attachedAt_[label]);
  tried_.insert(label);
  const auto gone = goneAt_.find(label);
  if (gone != goneAt_.end()) worstDelay_ = std::max(worstDelay_, Steady::now() - gone->second);
}

void Soak::takeEjection(const std::string& label, const SoakedImage* image) {
  if (image && image->presence() != Presence::detached) {
    throw Finding(label + " is said to be ejected and still attached");
  }
  ++counts_["ejections by the program"];
  ++unannounced_[label];
}

void Soak::takeSight(SoakedImage& image, Kind kind) {
  image.noteLine(kind);
  if (!image.attached || image.seen) return;
  image.seen = true;
  seenTo_ = std::max(seenTo_, image.attachedAt);
  seenAt_ = Steady::now();
  worstDelay_ = std::max(worstDelay_, seenAt_ - image.attachedAt);
}

Steady::duration Soak::patience() const {
  return 60s * kSlowness + 6 * worstDelay_;
}

void Soak::watchImage(SoakedImage& image) {
  if (!image.attached) return inspectIfOver(image);
  // One that has come back before the program knew it gone is not spoken of again.
  if (Steady::now() - image.attachedAt > patience()) image.seen = true;
  switch (image.presence()) {
    case Presence::mounted:
      return watchMounted(image);
    case Presence::unmounted:
      return watchUnmounted(image);
    case Presence::detached:
      return noteGone(image);
  }
}

void Soak::watchMounted(const SoakedImage& image) const {
  if (image.isHeld()) {
    const bool checked = seenTo_ > image.heldSince() && Steady::now() - seenAt_ > kLinesOfOneCycle;
    if (checked && image.isTakenForIdle()) {
      throw Finding(image.label() + " is held and the program does not know it");
    }
  } else if (enabled_ && !image.excluded && Steady::now() - image.changedAt > patience()) {
    throw Finding(image.label() + " is idle and was not ejected");
  }
}

/// A request that was on its way when the user came is carried out; but none is made once the
/// program knows of him, and those that were queued until then are over when one of an image that
/// came later is; or after far longer than anything has taken.
bool Soak::isProtected(const SoakedImage& image) const {
  const auto known = image.knownInUseSince();
  if (!image.isHeld() || image.byHand || image.missed || !known) return false;
  return drainedTo_ > *known || Steady::now() - *known > kDrained + 2 * worstDelay_;
}

/// A volume goes because somebody ejects it, and says so; not because another one is ejected.
void Soak::noteUnmounted(const SoakedImage& image) {
  if (!image.byHand) unexplained_.emplace(image.label(), Steady::now());
}

void Soak::watchUnexplained() {
  std::erase_if(unexplained_, [&](const auto& gone) { return tried_.count(gone.first) > 0; });
  for (const auto& [label, since] : unexplained_) {
    if (Steady::now() - since > patience()) throw Finding(label + " went though nobody ejected it");
  }
}

void Soak::watchUnmounted(SoakedImage& image) {
  noteUnmounted(image);
  if (!image.isHeld()) {
    if (Steady::now() - image.changedAt < patience()) return;
    throw Finding(image.label() + " stays attached though nobody holds it");
  }
  if (isProtected(image)) throw Finding(image.label() + " was ejected while it was used");
  if (image.byHand || image.missed) return;
  image.missed = true;
  ++counts_["ejected as a user came"];
}

void Soak::noteGone(SoakedImage& image) {
  noteUnmounted(image);
  if (image.isHeld() && !image.byHand && !image.missed) {
    throw Finding(image.label() + " was detached while it was used");
  }
  note("gone: " + image.label());
  image.attached = false;
  goneAt_[image.label()] = Steady::now();
  image.letGo();
}

/// The image may come again once the program has done with it.
void Soak::inspectIfOver(SoakedImage& image) {
  if (image.inspected) return;
  const auto goneAt = goneAt_.at(image.label());
  const bool over = Steady::now() - goneAt > patience();
  if (!image.announced && seenTo_ < goneAt && !over) return;
  image.inspect();
  ++counts_["images checked"];
}

/// The truth about the settings is in their file.
void Soak::readSettings() {
  const auto text = readFile(session_.settingsFile());
  if (!text) throw Finding("no settings: " + text.errorText());
  const auto settings = XmlPropertyLists().parse(*text);
  if (!settings) throw Finding("damaged settings: " + settings.errorText());
  const auto* const enabled = setting(*settings, "isEnabled");
  const bool isEnabled = !enabled || *enabled == PropertyList(true);
  const auto* const list = setting(*settings, "excludeList");
  if (!list || !list->array()) throw Finding("the settings have no list of excluded images");
  for (auto& image : images_) {
    const auto& paths = *list->array();
    const bool excluded =
        std::find(paths.begin(), paths.end(), PropertyList(image->path())) != paths.end();
    if (excluded != image->excluded || isEnabled != enabled_) image->changedAt = Steady::now();
    image->excluded = excluded;
  }
  enabled_ = isEnabled;
}

}  // namespace quillmont::testing
