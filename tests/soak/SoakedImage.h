// One disk image of the soak: its file, what is in it, who holds it, and what is known of it.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "tests/soak/Finding.h"
#include "tests/soak/LogReader.h"
#include "tests/soak/WrittenFiles.h"
#include "tests/support/DiskImages.h"
#include "tests/support/Holder.h"
#include "tests/support/volume_uses.h"

namespace quillmont::testing {

class SoakedImage {
 public:
  /// Where the image is, as the kernel has it.
  enum class Presence { mounted, unmounted, detached };

  SoakedImage(DiskImages& images, std::string name);

  /// Of the volume: another one for each attachment, so that whatever is said of an earlier one
  /// cannot be taken for this one's.
  const std::string& label() const { return label_; }
  const std::string& path() const { return path_; }
  std::string place() const { return DiskImages::realPlace(label_); }
  Presence presence() const;

  /// After the first time, compares what was written before; the number of bytes.
  long attach();

  /// Writes a file and closes it; false when the volume has just gone.
  bool write(std::uint64_t seed, bool synced);

  /// False when the volume has just gone.
  bool hold(const VolumeUse& use);
  void letGo();

  /// Deletes the image's file while it is attached.
  void deleteFile();

  /// Checks the file system of the detached image; makes a new file where it was deleted.
  void inspect();

  bool isHeld() const { return holder_ != nullptr; }
  /// The log has said of this attachment that it is idle, and nothing else since. Of an image that
  /// comes back before the program knew it gone the log speaks only when its use has changed.
  bool isTakenForIdle() const { return takenForIdle_; }

  Steady::time_point heldSince() const { return heldSince_; }

  /// Notes a line of the log about it.
  void noteLine(LogLine::Kind kind);

  /// Since when the program has known, without a break, of the use that there is now.
  std::optional<Steady::time_point> knownInUseSince() const { return knownInUseSince_; }

  // What the soak notes of the present attachment, or of the last one.
  bool attached = false;  ///< from attach() until it is seen to be gone
  bool seen = false;      ///< the log has spoken of it
  bool byHand = false;    ///< ejected by hand or by force: nobody's use protects it
  bool missed = false;    ///< it went before its holder could be seen
  bool inspected = true;  ///< since it went
  Steady::time_point attachedAt;
  bool announced = false;

  bool excluded = false;
  Steady::time_point changedAt;  ///< when anything last put off its ejection

 private:
  std::optional<std::uint64_t> device() const;

  DiskImages& images_;
  const std::string name_;
  const std::string path_;
  std::string label_;
  long attachments_ = 0;
  WrittenFiles files_;
  bool fileDeleted_ = false;
  std::unique_ptr<Holder> holder_;
  Steady::time_point heldSince_;
  bool takenForIdle_ = false;
  std::optional<Steady::time_point> knownInUseSince_;
};

}  // namespace quillmont::testing
