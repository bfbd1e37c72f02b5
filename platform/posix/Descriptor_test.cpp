#include "platform/posix/Descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

namespace quillmont {
namespace {

int openNull() {
  return open("/dev/null", O_RDONLY | O_CLOEXEC);
}

bool isOpen(int fd) {
  return fcntl(fd, F_GETFD) >= 0;
}

TEST(Descriptor, ClosesWhenItIsDestroyed) {
  const int fd = openNull();
  { const Descriptor owner(fd); }
  EXPECT_FALSE(isOpen(fd));
}

TEST(Descriptor, ReleasedDescriptorStaysOpen) {
  const int fd = openNull();
  {
    Descriptor owner(fd);
    EXPECT_EQ(owner.release(), fd);
    EXPECT_FALSE(owner);
  }
  EXPECT_TRUE(isOpen(fd));
  close(fd);
}

TEST(Descriptor, AssignmentOfATemporaryClosesTheOldOne) {
  const int first = openNull();
  Descriptor owner(first);
  owner = Descriptor(openNull());
  EXPECT_FALSE(isOpen(first));
  EXPECT_TRUE(owner);
}

TEST(Descriptor, ClosingKeepsTheErrorNumber) {
  Descriptor owner(openNull());
  errno = ENOSPC;
  owner.reset();
  EXPECT_EQ(errno, ENOSPC);
  close(-1);
  const int badDescriptor = errno;
  EXPECT_EQ(badDescriptor, EBADF);
}

}  // namespace
}  // namespace quillmont
