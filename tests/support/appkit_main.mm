// Entry of tests that have windows.

#include <gtest/gtest.h>

#include "tests/support/accessory_application.h"

int main(int argc, char** argv) {
  @autoreleasepool {
    ::testing::InitGoogleTest(&argc, argv);
    [quillmont::testing::accessoryApplication() finishLaunching];
    return RUN_ALL_TESTS();
  }
}
