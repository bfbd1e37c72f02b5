#include "platform/linux/desktop/session_bus.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include "tests/support/forked.h"

namespace quillmont {
namespace {

using testing::forked;

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

TEST(SessionBus, CharactersWithAMeaningInAddressesAreEscaped) {
  EXPECT_EQ(busAddressIn("/run/a b;c,d=é"), "unix:path=/run/a%20b%3bc%2cd%3d%c3%a9/bus");
}

}  // namespace
}  // namespace quillmont
