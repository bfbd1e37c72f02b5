// What users and other programs do to disk images.

#include <algorithm>

#include "tests/soak/Soak.h"

namespace quillmont::testing {
namespace {

using Presence = SoakedImage::Presence;

constexpr std::size_t kRemembered = 40;
constexpr long kMostExcluded = 4;

constexpr std::uint64_t kActionsWhileOff = 12;

/// So that the program is not asked for more cycles than it can make.
constexpr long kMostUnseen = 2;

}  // namespace

void Soak::note(const std::string& action) {
  const auto second = std::chrono::duration<double>(Steady::now() - began_).count();
  char time[32];
  std::snprintf(time, sizeof time, "%8.1f s  ", second);
  lastActions_.push_back(time + action);
  if (lastActions_.size() > kRemembered) lastActions_.pop_front();
}

SoakedImage* Soak::pick(const std::function<bool(const SoakedImage&)>& fits) {
  const std::size_t start = below(images_.size());
  for (std::size_t i = 0; i < images_.size(); ++i) {
    auto& image = *images_[(start + i) % images_.size()];
    if (fits(image)) return &image;
  }
  return nullptr;
}

void Soak::act() {
  const auto unseen = std::count_if(images_.begin(), images_.end(), [](const auto& image) {
    return image->attached && !image->seen;
  });
  const auto choice = below(100);
  if (!enabled_ && below(kActionsWhileOff) == 0) return flipSwitch();
  if (choice < 30) return unseen < kMostUnseen ? attach() : letGo();
  if (choice < 50) return hold();
  if (choice < 64) return letGo();
  if (choice < 84) return write();
  if (choice < 89) return toggleExclusion();
  if (choice < 91) return enabled_ ? flipSwitch() : write();
  if (choice < 95) return unseen < kMostUnseen ? ejectOnPanel() : write();
  if (choice < 98) return unseen < kMostUnseen ? detachAsAnother() : write();
  deleteFile();
}

void Soak::attach() {
  auto* const image =
      pick([](const SoakedImage& candidate) { return !candidate.attached && candidate.inspected; });
  if (!image) return;
  bytes_ += image->attach();
  attachedAt_[image->label()] = image->attachedAt;
  note("attach " + image->label());
  ++counts_["attaches"];
}

void Soak::hold() {
  auto* const image = pick([](const SoakedImage& candidate) {
    return candidate.attached && !candidate.isHeld() && candidate.presence() == Presence::mounted;
  });
  if (!image) return;
  const auto& use = volumeUses()[below(volumeUses().size())];
  note("hold " + image->label() + " by " + use.name);
  counts_[image->hold(use) ? "holds" : "holds too late"] += 1;
}

void Soak::letGo() {
  auto* const image = pick([](const SoakedImage& candidate) { return candidate.isHeld(); });
  if (!image) return;
  note("let go of " + image->label());
  if (isProtected(*image)) ++counts_["holders that kept their image"];
  image->letGo();
}

void Soak::write() {
  auto* const image = pick([](const SoakedImage& candidate) { return candidate.attached; });
  if (!image) return;
  const auto seed = random_();
  const bool synced = below(2) == 0;
  note("write to " + image->label() + (synced ? ", synced" : ""));
  counts_[image->write(seed, synced) ? "files written" : "files too late"] += 1;
}

void Soak::toggleExclusion() {
  const auto excluded = std::count_if(images_.begin(), images_.end(),
                                      [](const auto& image) { return image->excluded; });
  const bool exclude = excluded < kMostExcluded && below(2) == 0;
  auto* const image = pick([&](const SoakedImage& candidate) {
    return candidate.attached && candidate.excluded != exclude;
  });
  if (!image) return;
  note((exclude ? "exclude " : "include ") + image->label());
  counts_[panel_.toggleExclusion(image->label()) ? "exclusions" : "clicks too late"] += 1;
}

void Soak::flipSwitch() {
  note("flip the switch");
  if (!panel_.flipSwitch()) throw Finding("the panel has no switch");
  ++counts_["switches"];
}

void Soak::ejectOnPanel() {
  auto* const image = pick([](const SoakedImage& candidate) { return candidate.attached; });
  if (!image) return;
  note("eject " + image->label() + " on the panel");
  const bool before = image->byHand;
  image->byHand = true;
  const bool pressed = panel_.eject(image->label());
  if (!pressed) image->byHand = before;
  counts_[pressed ? "ejections by hand" : "clicks too late"] += 1;
}

void Soak::detachAsAnother() {
  auto* const image = pick([](const SoakedImage& candidate) {
    return candidate.attached && candidate.presence() == Presence::mounted;
  });
  if (!image) return;
  const bool forced = below(2) == 0;
  note("detach " + image->label() + (forced ? " by force" : ""));
  image->byHand = image->byHand || forced;
  std::vector<std::string> command = {"detach", "/Volumes/" + image->label()};
  if (forced) command.emplace_back("-force");
  const bool done = tool_.tool(command).status == 0;
  if (done && !forced && image->isHeld() && image->presence() == Presence::detached) {
    throw Finding(image->label() + " was held and went without force");
  }
  image->byHand = image->byHand || done;
  counts_[done ? "detached by others" : "refused to others"] += 1;
}

void Soak::deleteFile() {
  auto* const image = pick([](const SoakedImage& candidate) { return candidate.attached; });
  if (!image) return;
  note("delete the file of " + image->label());
  ++counts_["files of images deleted"];
  image->deleteFile();
}

}  // namespace quillmont::testing
