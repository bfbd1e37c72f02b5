// Child processes: the one way in which the program starts the system's tools.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Result.h"

namespace quillmont {

/// What becomes of one of a child's output streams.
enum class ChildOutput {
  inherit,  ///< goes where the program's own goes
  pipe,     ///< a pipe that the platform drains while the child is waited for
};

/// One command to start. `path` is absolute; no shell ever sees `arguments`. Standard input is
/// inherited. No other descriptor of the program reaches the child.
struct Command {
  std::string path;
  std::vector<std::string> arguments;
  ChildOutput standardOutput = ChildOutput::inherit;
  ChildOutput standardError = ChildOutput::inherit;
};

/// A child that has been started. Use it from one thread. Dropping it without waiting lets the
/// child run on; the launcher sees to it that no zombie is left.
class ChildProcess {
 public:
  virtual ~ChildProcess() = default;

  /// Blocks, without a time limit, until the child has ended; its pipes are drained meanwhile, so
  /// that no amount of output can keep it from ending. Returns the exit status, or 128 plus the
  /// signal number for a child that a signal ended. Calling again returns the same status.
  virtual int waitUntilExit() = 0;

  /// All that the child wrote to a piped standard output, up to a limit of the platform's, of which
  /// no honest tool knows. Only after waitUntilExit(). A piped standard error is drained and
  /// dropped.
  virtual std::string readStandardOutput() = 0;
};

class ProcessLauncher {
 public:
  virtual ~ProcessLauncher() = default;

  /// Starts `command`. Any thread; does not wait for the child. Failure: the program cannot be
  /// executed (missing, no permission, out of processes ...), told in the error's text.
  virtual Result<std::unique_ptr<ChildProcess>> launch(const Command& command) = 0;
};

}  // namespace quillmont
