#include "platform/linux/desktop/session_bus.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <string>

#include "platform/posix/Descriptor.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/SharedLog.h"
#include "tests/support/forked.h"

namespace quillmont {
namespace {

using testing::forked;
using testing::SharedLog;

TEST(SessionBus, ANamedOneIsKept) {
  EXPECT_EQ(forked([] {
              setenv("DBUS_SESSION_BUS_ADDRESS", "unix:abstract=mine", 1);
              keepFromStartingSessionBus();
              EXPECT_STREQ(getenv("DBUS_SESSION_BUS_ADDRESS"), "unix:abstract=mine");
            }),
            0);
}

TEST(SessionBus, OtherwiseItIsTheOneOfTheRuntimeFolder) {
  EXPECT_EQ(forked([] {
              for (const char* none : {"", static_cast<const char*>(nullptr)}) {
                unsetenv("DBUS_SESSION_BUS_ADDRESS");
                if (none) setenv("DBUS_SESSION_BUS_ADDRESS", none, 1);
                setenv("XDG_RUNTIME_DIR", "/run/mine", 1);
                keepFromStartingSessionBus();
                EXPECT_STREQ(getenv("DBUS_SESSION_BUS_ADDRESS"), "unix:path=/run/mine/bus");
              }
            }),
            0);
}

TEST(SessionBus, WithoutARuntimeFolderItIsTheUsualOne) {
  EXPECT_EQ(forked([] {
              unsetenv("DBUS_SESSION_BUS_ADDRESS");
              unsetenv("XDG_RUNTIME_DIR");
              keepFromStartingSessionBus();
              EXPECT_EQ(getenv("DBUS_SESSION_BUS_ADDRESS"),
                        "unix:path=/run/user/" + std::to_string(getuid()) + "/bus");
            }),
            0);
}

/// The socket at `path`, with nobody who ever answers.
Descriptor silentSocket(const std::string& path) {
  Descriptor result(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  EXPECT_LT(path.size(), sizeof address.sun_path);
  std::memcpy(address.sun_path, path.data(), std::min(path.size(), sizeof address.sun_path - 1));
  EXPECT_EQ(bind(result.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  EXPECT_EQ(listen(result.get(), 8), 0);
  return result;
}

/// What is left of the bus at `address` when it has been looked at for `patience`, and what is
/// told.
void expectLeft(const std::string& address, std::chrono::milliseconds patience, bool left) {
  EXPECT_EQ(forked([&] {
              SharedLog log;
              setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
              leaveSilentSessionBus(patience, log);
              EXPECT_EQ(getenv("DBUS_SESSION_BUS_ADDRESS"),
                        left ? std::string("unix:path=/dev/null") : address);
              EXPECT_EQ(log.lines().size(), left ? 1u : 0u);
            }),
            0);
}

TEST(SessionBus, OneThatTakesConnectionsAndSaysNothingIsLeft) {
  const testing::TemporaryFolder folder;
  const auto socket = silentSocket(folder.path() + "/bus");
  expectLeft("unix:path=" + folder.path() + "/bus", std::chrono::milliseconds(50), true);
}

TEST(SessionBus, OneThatAnswersIsKept) {
  if (!testing::PrivateBus::available()) GTEST_SKIP() << "this machine has no message bus daemon";
  const testing::PrivateBus bus;
  expectLeft(bus.address(), std::chrono::seconds(10), false);
}

TEST(SessionBus, ALostOneEndsNobodyWhoStillWaitsForIt) {
  const auto wait = [] {
    void* const library = dlopen("libdbus-1.so.3", RTLD_NOW);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto block = reinterpret_cast<void (*)(void*)>(dlsym(library, "dbus_pending_call_block"));
    ASSERT_NE(block, nullptr) << dlerror();
    block(nullptr);
  };
  unsetenv("DBUS_FATAL_WARNINGS");
  EXPECT_NE(forked(wait), 0) << "what it is for";
  EXPECT_EQ(forked([&] {
              outliveSessionBus();
              wait();
            }),
            0);
}

TEST(SessionBus, OneThatIsNotThereOrNoAddressAtAllIsNothingToWaitFor) {
  for (const char* address : {"unix:path=/no/such/bus", "nonsense", "unix:path=/dev/null"}) {
    expectLeft(address, std::chrono::seconds(10), false);
  }
}

TEST(SessionBus, CharactersWithAMeaningInAddressesAreEscaped) {
  EXPECT_EQ(busAddressIn("/run/a b;c,d=é"), "unix:path=/run/a%20b%3bc%2cd%3d%c3%a9/bus");
}

}  // namespace
}  // namespace quillmont
