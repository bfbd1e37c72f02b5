#include "tests/soak/WrittenFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <random>

#include "platform/posix/Descriptor.h"
#include "platform/posix/errors.h"
#include "platform/posix/files.h"
#include "tests/soak/Finding.h"

namespace quillmont::testing {
namespace {

constexpr std::size_t kMostBytes = 256 * 1024;
constexpr std::uint64_t kNames = 12;

std::string bytesOf(std::uint64_t seed) {
  std::mt19937_64 random(seed);
  std::string bytes(random() % kMostBytes, '\0');
  for (auto& byte : bytes) byte = static_cast<char>(random() & 0xff);
  return bytes;
}

}  // namespace

bool WrittenFiles::write(const std::string& volume, std::uint64_t device, std::uint64_t seed,
                         bool synced) {
  const auto name = "file" + std::to_string(seed % kNames);
  const auto path = volume + "/" + name;
  Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
  struct stat status = {};
  if (!file || fstat(file.get(), &status) != 0) return false;
  if (status.st_dev != device) {
    unlink(path.c_str());
    return false;
  }
  seeds_.erase(name);
  if (ftruncate(file.get(), 0) != 0) throw Finding(path + ": " + errorText(errno));
  const auto written = writeAll(file.get(), bytesOf(seed));
  if (!written) throw Finding(path + ": " + written.errorText());
  if (synced && fsync(file.get()) != 0) throw Finding(path + ": " + errorText(errno));
  if (close(file.release()) != 0) throw Finding(path + ": " + errorText(errno));
  seeds_[name] = seed;
  return true;
}

long WrittenFiles::verify(const std::string& volume) const {
  long count = 0;
  for (const auto& [name, seed] : seeds_) {
    const auto bytes = readFile(volume + "/" + name);
    if (!bytes) throw Finding("lost: " + volume + "/" + name + ": " + bytes.errorText());
    if (*bytes != bytesOf(seed)) throw Finding("changed: " + volume + "/" + name);
    count += static_cast<long>(bytes->size());
  }
  return count;
}

}  // namespace quillmont::testing
