// Whatever way a process uses a volume, the open-files tool names it, as the real lsof does.

#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "platform/posix/Descriptor.h"
#include "tests/e2e/OpenFilesTool.h"
#include "tests/support/Holder.h"
#include "tests/support/processes.h"

namespace quillmont {
namespace {

using std::filesystem::create_directories;
using testing::Holder;

TEST_F(OpenFilesTool, NobodyIsNoOutput) {
  expectUsers({});
}

TEST_F(OpenFilesTool, FileOpenForReading) {
  const Holder holder([&] { return opened(file_, O_RDONLY); });
  expectUsers({holder.pid()});
  const auto output = ask(volume_).standardOutput;
  EXPECT_EQ(fields(output, 'n'), std::vector<std::string>{file_}) << output;
}

TEST_F(OpenFilesTool, FileOpenForWriting) {
  const Holder holder([&] { return opened(volume_ + "/new", O_WRONLY | O_CREAT); });
  expectUsers({holder.pid()});
}

TEST_F(OpenFilesTool, WorkingDirectory) {
  const Holder holder([&] { return chdir(volume_.c_str()) == 0; });
  expectUsers({holder.pid()});
  EXPECT_EQ(fields(ask(volume_).standardOutput, 'f'), std::vector<std::string>{"cwd"});
}

TEST_F(OpenFilesTool, RootDirectory) {
  const Holder holder([&] { return chroot(volume_.c_str()) == 0; });
  expectUsers({holder.pid()});
  EXPECT_EQ(fields(ask(volume_).standardOutput, 'f'), std::vector<std::string>{"rtd"});
}

TEST_F(OpenFilesTool, RunningProgram) {
  std::filesystem::copy_file("/bin/sleep", volume_ + "/sleep");
  const testing::Program sleep({volume_ + "/sleep", "60"});
  const auto started = [&] { return ask(volume_).status == 0; };
  ASSERT_TRUE(testing::eventually(started, std::chrono::seconds(5)));
  expectUsers({sleep.pid()});
  EXPECT_EQ(fields(ask(volume_).standardOutput, 'f'), std::vector<std::string>{"txt"});
}

TEST_F(OpenFilesTool, MappedFileWhoseDescriptorIsClosed) {
  const Holder holder([&] {
    const Descriptor file(open(file_.c_str(), O_RDONLY));
    return mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file.get(), 0) != MAP_FAILED;
  });
  expectUsers({holder.pid()});
  EXPECT_EQ(fields(ask(volume_).standardOutput, 'f'), std::vector<std::string>{"mem"});
}

TEST_F(OpenFilesTool, DeletedFile) {
  const Holder holder([&] { return opened(file_, O_RDWR) && unlink(file_.c_str()) == 0; });
  expectUsers({holder.pid()});
}

TEST_F(OpenFilesTool, DeletedWorkingDirectory) {
  const auto folder = volume_ + "/folder";
  const Holder holder([&] {
    return create_directories(folder) && chdir(folder.c_str()) == 0 && rmdir(folder.c_str()) == 0;
  });
  expectUsers({holder.pid()});
}

TEST_F(OpenFilesTool, OpenDirectory) {
  const Holder holder([&] { return opened(volume_, O_RDONLY | O_DIRECTORY); });
  expectUsers({holder.pid()});
}

TEST_F(OpenFilesTool, ProcessOfAnotherUser) {
  const Holder holder([&] {
    constexpr uid_t kNobody = 65534;
    return opened(file_, O_RDONLY) && setgid(kNobody) == 0 && setuid(kNobody) == 0;
  });
  expectUsers({holder.pid()});
}

TEST_F(OpenFilesTool, Fifo) {
  const auto fifo = volume_ + "/fifo";
  const Holder holder([&] { return mkfifo(fifo.c_str(), 0600) == 0 && opened(fifo, O_RDWR); });
  expectUsers({holder.pid()});
}

TEST_F(OpenFilesTool, BoundSocketIsKnownThoughLsofDoesNotSeeIt) {
  const Holder holder([&] {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    (volume_ + "/socket").copy(address.sun_path, sizeof address.sun_path - 1);
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    return bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  });
  ASSERT_EQ(umount2(volume_.c_str(), 0), -1);
  ASSERT_EQ(errno, EBUSY);
  expectUsersHere({holder.pid()});
}

TEST_F(OpenFilesTool, PathDescriptor) {
  const Holder holder([&] { return opened(file_, O_PATH); });
  expectUsers({holder.pid()});
}

TEST_F(OpenFilesTool, InheritedDescriptor) {
  Descriptor file(open(file_.c_str(), O_RDONLY | O_CLOEXEC));
  const Holder holder([] { return true; });
  expectUsers({getpid(), holder.pid()});
  file.reset();
  expectUsers({holder.pid()});
}

TEST_F(OpenFilesTool, ProcessIsNamedAndNotItsThread) {
  const Holder holder([&] {
    bool done = false;
    std::thread([&] { done = called("worker") && opened(file_, O_RDONLY); }).join();
    return called("leader") && done;
  });
  expectUsers({holder.pid()});
  EXPECT_EQ(fields(ask(volume_).standardOutput, 'c'), std::vector<std::string>{"leader"});
}

TEST_F(OpenFilesTool, ProcessWhoseFirstThreadHasEndedIsKnownThoughLsofDoesNotSeeIt) {
  const Holder holder([&] {
    signal(SIGUSR1, [](int) { syscall(SYS_exit, 0); });
    std::thread([] {
      for (;;) pause();
    }).detach();
    return opened(file_, O_RDONLY);
  });
  ASSERT_EQ(syscall(SYS_tgkill, holder.pid(), holder.pid(), SIGUSR1), 0);
  const auto ended = [&] { return testing::isZombie(std::to_string(holder.pid())); };
  ASSERT_TRUE(testing::eventually(ended, std::chrono::seconds(5)));
  expectUsersHere({holder.pid()});
}

}  // namespace
}  // namespace quillmont
