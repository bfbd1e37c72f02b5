// Runs the tests beside the program, which has the main thread.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

#include "tests/gnustep/RunningProgram.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
  auto& program = quillmont::testing::RunningProgram::current();
  std::thread([] {
    @autoreleasepool {
      const int status = RUN_ALL_TESTS();
      std::fflush(nullptr);
      std::_Exit(status);
    }
  }).detach();
  program.run();
  return 0;
}
