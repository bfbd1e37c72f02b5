// An image file that is to be attached.
#pragma once

#include <sys/stat.h>

#include <chrono>
#include <string>
#include <utility>

#include "platform/Result.h"
#include "platform/posix/Descriptor.h"

namespace quillmont {

struct ImageFile {
  std::string path;  ///< absolute, links resolved
  Descriptor file;   ///< open for writing unless `readOnly`
  struct stat status = {};
  bool readOnly = false;

  /// Opens the image at `path`, for reading only where nothing may be written. Failure: it cannot
  /// be read, or is no regular file.
  static Result<ImageFile> open(const std::string& path);
};

/// Keeps other attachments away as long as it lives. Those of the same image, so that no two loop
/// devices ever carry one file: they would write over each other. Those into the same folder, so
/// that no two volumes are mounted at one place: one would hide the other.
class AttachmentTurn {
 public:
  /// Longer than the disk service may take to mount a volume.
  static constexpr std::chrono::milliseconds kLongestWait = std::chrono::seconds(90);

  /// Blocks until it is our turn; goes without where the file system knows no locks. Failure:
  /// somebody else still attaches the image after `limit`.
  static Result<AttachmentTurn> take(const ImageFile& image,
                                     std::chrono::milliseconds limit = kLongestWait);

  /// The same for whoever mounts a volume in `folder`.
  static Result<AttachmentTurn> take(const std::string& folder,
                                     std::chrono::milliseconds limit = kLongestWait);

 private:
  explicit AttachmentTurn(Descriptor file) : file_(std::move(file)) {}
  static Result<AttachmentTurn> take(Descriptor file, std::chrono::milliseconds limit,
                                     const char* tooLate);

  // Not the image's own descriptor: that one lives on in the loop device, and its lock with it.
  Descriptor file_;
};

}  // namespace quillmont
