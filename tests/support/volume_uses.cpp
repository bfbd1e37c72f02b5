#include "tests/support/volume_uses.h"

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string_view>

#include "platform/posix/Descriptor.h"
#include "tests/support/Program.h"
#include "tests/support/forked.h"
#include "tests/support/own_volumes.h"

namespace quillmont::testing {
namespace {

/// Left open until the process ends.
bool opened(const std::string& path, int flags) {
  return open(path.c_str(), flags | O_CLOEXEC, 0644) >= 0;
}

std::string note(const std::string& volume) {
  return volume + "/note.txt";
}

bool reads(const std::string& volume) {
  return opened(note(volume), O_RDONLY);
}

bool writes(const std::string& volume) {
  const int file = open((volume + "/held").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
  constexpr std::string_view kText = "written, and not closed\n";
  return write(file, kText.data(), kText.size()) == static_cast<ssize_t>(kText.size());
}

bool mapsClosed(const std::string& volume) {
  const Descriptor file(open(note(volume).c_str(), O_RDWR | O_CLOEXEC));
  return mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0) != MAP_FAILED;
}

bool worksThere(const std::string& volume) {
  return chdir(volume.c_str()) == 0;
}

bool hasItsRootThere(const std::string& volume) {
  return chroot(volume.c_str()) == 0;
}

/// A process of its own, which ends with this one.
bool runsFromThere(const std::string& volume) {
  const auto program = volume + "/program";
  std::error_code failure;
  std::filesystem::remove(program, failure);  // an earlier one may still run
  std::filesystem::copy_file("/bin/sleep", program, failure);
  if (failure) return false;
  const pid_t parent = getpid();
  const pid_t pid = fork();
  if (pid == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() == parent) execl(program.c_str(), "program", "100000", nullptr);
    _exit(1);
  }
  const auto executable = "/proc/" + std::to_string(pid) + "/exe";
  return eventually(
      [&] {
        std::error_code ignored;
        return std::filesystem::read_symlink(executable, ignored) == program;
      },
      std::chrono::seconds(5));
}

bool hasDeleted(const std::string& volume) {
  const auto file = volume + "/deleted";
  return opened(file, O_RDWR | O_CREAT) && unlink(file.c_str()) == 0;
}

bool hasFolderOpen(const std::string& volume) {
  return opened(volume, O_RDONLY | O_DIRECTORY);
}

bool readsAsAnother(const std::string& volume) {
  constexpr uid_t kNobody = 65534;
  return reads(volume) && setgid(kNobody) == 0 && setuid(kNobody) == 0;
}

bool readsInItsOwnMounts(const std::string& volume) {
  if (!enterOwnMountTable()) return false;
  dropVolumesExcept(volume);
  return reads(volume);
}

/// The mount is held as well as the file, and in the first table it may be gone.
bool worksInItsOwnMounts(const std::string& volume) {
  if (!enterOwnMountTable()) return false;
  dropVolumesExcept(volume);
  return worksThere(volume);
}

bool hasSocketBound(const std::string& volume) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  const auto path = volume + "/socket";
  if (path.size() >= sizeof address.sun_path) return false;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  unlink(path.c_str());
  const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  return bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
}

bool hasPipeOpen(const std::string& volume) {
  const auto pipe = volume + "/pipe";
  unlink(pipe.c_str());
  return mkfifo(pipe.c_str(), 0600) == 0 && opened(pipe, O_RDWR);
}

bool hasPathOpen(const std::string& volume) {
  return opened(note(volume), O_PATH);
}

}  // namespace

const std::vector<VolumeUse>& volumeUses() {
  static const std::vector<VolumeUse> uses = {
      {"read", reads},
      {"write", writes},
      {"map", mapsClosed},
      {"folder", worksThere},
      {"root", hasItsRootThere},
      {"program", runsFromThere},
      {"deleted", hasDeleted},
      {"listing", hasFolderOpen},
      {"stranger", readsAsAnother},
      {"mounts", readsInItsOwnMounts},
      {"mountsfolder", worksInItsOwnMounts},
      {"socket", hasSocketBound},
      {"pipe", hasPipeOpen},
      {"path", hasPathOpen},
  };
  return uses;
}

bool useInFlight(const std::string& volume) {
  static int ends[2];
  if (socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, ends) != 0) return false;
  const Descriptor file(open((volume + "/in-flight").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
  constexpr std::string_view kText = "sent\n";
  if (write(file.get(), kText.data(), kText.size()) != static_cast<ssize_t>(kText.size())) {
    return false;
  }
  char mark = '!';
  iovec data = {&mark, 1};
  alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
  msghdr message = {};
  message.msg_iov = &data;
  message.msg_iovlen = 1;
  message.msg_control = control;
  message.msg_controllen = sizeof control;
  cmsghdr* const header = CMSG_FIRSTHDR(&message);
  header->cmsg_level = SOL_SOCKET;
  header->cmsg_type = SCM_RIGHTS;
  header->cmsg_len = CMSG_LEN(sizeof(int));
  const int sent = file.get();
  std::memcpy(CMSG_DATA(header), &sent, sizeof sent);
  return sendmsg(ends[0], &message, 0) == 1;
}

}  // namespace quillmont::testing
