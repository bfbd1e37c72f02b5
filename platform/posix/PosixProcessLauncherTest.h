// Real children of the test's own.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/posix/PosixProcessLauncher.h"

namespace quillmont::testing {

/// `arguments`: a script for the shell, and what it is given.
inline Command shell(std::vector<std::string> arguments, ChildOutput output = ChildOutput::pipe,
                     ChildOutput error = ChildOutput::inherit) {
  arguments.insert(arguments.begin(), "-c");
  return {"/bin/sh", std::move(arguments), output, error};
}

class PosixProcessLauncherTest : public ::testing::Test {
 protected:
  struct Outcome {
    int status = -1;
    std::string output;
  };

  Outcome run(const Command& command) {
    auto child = launcher_.launch(command);
    EXPECT_TRUE(child) << (child ? "" : child.errorText());
    if (!child) return {};
    const int status = (*child)->waitUntilExit();
    return {status, (*child)->readStandardOutput()};
  }

  PosixProcessLauncher launcher_{"/usr/bin:/bin"};
};

}  // namespace quillmont::testing
