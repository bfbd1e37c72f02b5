#include "platform/linux/tools/hdiutil/ImageFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <thread>

#include "platform/posix/errors.h"

namespace quillmont {

Result<ImageFile> ImageFile::open(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
  if (!real) return Error{errorText(errno)};
  // A pipe must not hold us up, and a device must not be set going.
  constexpr int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW;
  ImageFile image;
  image.path = real.get();
  if (stat(real.get(), &image.status) != 0) return Error{errorText(errno)};
  if (!S_ISREG(image.status.st_mode)) return Error{"not a disk image: no regular file"};
  // The superuser may write to everything, yet a file that nobody may write to is meant to stay.
  image.readOnly = (image.status.st_mode & 0222) == 0;
  if (!image.readOnly) image.file = Descriptor(::open(real.get(), O_RDWR | flags));
  if (!image.file) {
    image.readOnly = true;
    image.file = Descriptor(::open(real.get(), O_RDONLY | flags));
  }
  if (!image.file || fstat(image.file.get(), &image.status) != 0) return Error{errorText(errno)};
  if (!S_ISREG(image.status.st_mode)) return Error{"not a disk image: no regular file"};
  return image;
}

Result<AttachmentTurn> AttachmentTurn::take(const ImageFile& image,
                                            std::chrono::milliseconds limit) {
  // Of the file itself: its path may lead to another one by now.
  const std::string itself = "/proc/self/fd/" + std::to_string(image.file.get());
  // A server of files gives locks only to those who may write.
  const int access = image.readOnly ? O_RDONLY : O_RDWR;
  Descriptor file(::open(itself.c_str(), access | O_CLOEXEC | O_NONBLOCK));
  if (!file) return systemError("cannot lock " + image.path, errno);
  return take(std::move(file), limit, "another attach of this image is under way");
}

Result<AttachmentTurn> AttachmentTurn::take(const std::string& folder,
                                            std::chrono::milliseconds limit) {
  Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!opened) return systemError("cannot lock " + folder, errno);
  return take(std::move(opened), limit, "another volume is being mounted");
}

Result<AttachmentTurn> AttachmentTurn::take(Descriptor file, std::chrono::milliseconds limit,
                                            const char* tooLate) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) break;
    if (std::chrono::steady_clock::now() > end) {
      return Error{tooLate};
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
  }
  return AttachmentTurn(std::move(file));
}

}  // namespace quillmont
