#include "tests/unit/monitor_model/World.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace quillmont::testing {

const std::vector<CatalogueEntry>& catalogue() {
  static const std::vector<CatalogueEntry> entries = {
      {"/Users/user/Backup.dmg", "/Volumes/Backup", "Backup"},
      {"/Users/user/假日.dmg", "/Volumes/假日照片 2", "假日照片 2"},
      {"/Users/user/Quoted.dmg", "/Volumes/A\"B\\C", "A\"B\\C"},
      // Another file's volume of the same name, deeper.
      {"/Users/other/Backup.dmg", "/Volumes/Outer/Backup/", "Backup"},
      // Another file, by its letter case alone, in the first one's place.
      {"/Users/user/backup.dmg", "/Volumes/Backup", "Backup"},
      // The first file once more, elsewhere.
      {"/Users/user/Backup.dmg", "/Volumes/Backup 1", "Backup 1"},
      // Not below the folder of the volumes: never listed.
      {"/Users/user/Hidden.dmg", "/private/hidden", "hidden"},
  };
  return entries;
}

const std::vector<KnownProcess>& knownProcesses() {
  static const std::vector<KnownProcess> processes = {
      {"bash", true},  {"Finder", true},      {"LSOF", true},
      {"lsof", false}, {"mds_stores", false}, {"DropboxHelper", false},
  };
  return processes;
}

namespace {

constexpr std::array kDetachings = {Detaching::works,      Detaching::works,
                                    Detaching::fails,      Detaching::cannotStart,
                                    Detaching::takesScans, Detaching::takesScans};

}  // namespace

bool World::take(const Step& step, TimePoint now) {
  return changeImage(step, now) || changeSurroundings(step);
}

bool World::changeImage(const Step& step, TimePoint now) {
  const auto& entry = catalogue().at(static_cast<std::size_t>(step.which));
  auto* const image = find(entry);
  switch (step.kind) {
    case Kind::attach:
      if (!image) attach(entry, now - seconds(step.amount));
      return true;
    case Kind::vanish:
      if (image) remove(entry.mountPoint);
      return true;
    case Kind::use:
      if (image) use(*image, step.variant);
      return true;
    case Kind::retouch:
      if (image) retouch(image->devEntry, step.variant, now - seconds(step.amount));
      return true;
    default:
      return false;
  }
}

bool World::changeSurroundings(const Step& step) {
  const auto variant = static_cast<std::size_t>(step.variant);
  const Fault fault{static_cast<int>(step.amount), static_cast<Answer>(1 + variant % 3)};
  switch (step.kind) {
    case Kind::failScans:
      scans_ = fault;
      return true;
    case Kind::failChecks:
      checks_ = fault;
      return true;
    case Kind::detachments:
      detaching_ = kDetachings[variant % kDetachings.size()];
      detachNumber_ = static_cast<int>(step.amount);
      return true;
    case Kind::muteNotices:
      noticesAreMute = variant % 2 != 0;
      return true;
    case Kind::moveProgram:
      program = static_cast<ProgramPlace>(variant % 3);
      return true;
    case Kind::meanwhile:
      interruptions_.push_back({step.variant, step.inner});
      return true;
    default:
      return false;
  }
}

std::vector<Step> World::comesAbout() {
  std::vector<Step> due;
  std::erase_if(interruptions_, [&](Interruption& interruption) {
    if (interruption.runsBefore-- > 0) return false;
    due.insert(due.end(), interruption.steps.begin(), interruption.steps.end());
    return true;
  });
  return due;
}

Answer World::scan() {
  std::erase_if(leaving_, [&](SlowDetachment& slow) {
    if (slow.scansLeft-- > 0) return false;
    remove(slow.mountPoint);
    return true;
  });
  return next(scans_);
}

Answer World::check() {
  return next(checks_);
}

std::optional<int> World::detach(const std::string& mountPoint) {
  const bool there = std::any_of(attached.begin(), attached.end(),
                                 [&](const auto& image) { return image.mountPoint == mountPoint; });
  if (detaching_ == Detaching::cannotStart) return std::nullopt;
  if (detaching_ == Detaching::fails) return 1 + detachNumber_;
  if (!there) return 1;
  if (detaching_ == Detaching::takesScans) {
    leaving_.push_back({mountPoint, detachNumber_});
  } else {
    remove(mountPoint);
  }
  return 0;
}

void World::attach(const CatalogueEntry& entry, TimePoint touched) {
  const auto node = "/dev/disk" + std::to_string(4 + nodesMade_++) + "s1";
  nodes[node] = {.modificationDate = touched, .creationDate = std::nullopt};
  attached.push_back({entry.imagePath, entry.mountPoint, node});
}

void World::remove(const std::string& mountPoint) {
  std::erase_if(attached, [&](const auto& image) { return image.mountPoint == mountPoint; });
}

FakeDiskImages::Image* World::find(const CatalogueEntry& entry) {
  const auto found = std::find_if(attached.begin(), attached.end(), [&](const auto& image) {
    return image.imagePath == entry.imagePath && image.mountPoint == entry.mountPoint;
  });
  return found == attached.end() ? nullptr : &*found;
}

/// Often nobody; else the bits of `variant` say which of the known processes, and now and then the
/// first of them is the program itself.
void World::use(FakeDiskImages::Image& image, int variant) {
  image.users.clear();
  if (variant % 3 == 0) return;
  for (std::size_t at = 0; at < knownProcesses().size(); ++at) {
    if (variant >> at & 1) image.users.push_back(knownProcesses()[at].name);
  }
  image.userPid = variant % 5 == 0 ? kOwnPid : 101;
}

void World::retouch(const std::string& node, int variant, TimePoint touched) {
  switch (variant % 4) {
    case 0:
      nodes.erase(node);
      return;
    case 1:
      nodes[node] = {.modificationDate = std::nullopt, .creationDate = touched};
      return;
    case 2:
      nodes[node] = {};
      return;
    default:
      nodes[node] = {.modificationDate = touched, .creationDate = touched - seconds(7)};
  }
}

Answer World::next(Fault& fault) {
  if (fault.times == 0) return Answer::honest;
  --fault.times;
  return fault.answer;
}

}  // namespace quillmont::testing
