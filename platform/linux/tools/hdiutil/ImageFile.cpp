#include "platform/linux/tools/hdiutil/ImageFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
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

AttachmentTurn::AttachmentTurn(const ImageFile& image)
    : file_(::open(image.path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW)) {
  for (int tries = 0; file_ && tries < 200; ++tries) {
    if (flock(file_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
  }
}

}  // namespace quillmont
