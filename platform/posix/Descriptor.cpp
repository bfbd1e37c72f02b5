#include "platform/posix/Descriptor.h"

#include <unistd.h>

#include <cerrno>

namespace quillmont {

void Descriptor::reset() {
  if (fd_ < 0) return;
  // Often runs between a call that failed and the reading of its errno.
  const int saved = errno;
  close(std::exchange(fd_, -1));
  errno = saved;
}

}  // namespace quillmont
