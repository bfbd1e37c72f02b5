// Owner of a file descriptor.
#pragma once

#include <utility>

namespace quillmont {

/// Closes its descriptor when it is destroyed; -1 is "none".
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(other.release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~Descriptor() { reset(); }

  explicit operator bool() const { return fd_ >= 0; }
  int get() const { return fd_; }
  int release() { return std::exchange(fd_, -1); }
  void reset();

 private:
  int fd_ = -1;
};

}  // namespace quillmont
