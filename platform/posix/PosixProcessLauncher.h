// Child processes through posix_spawn().
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/ProcessLauncher.h"

namespace quillmont {

/// Any thread. Children get the environment as it was when the launcher was made, with a PATH of
/// its own, all signals at their defaults and none of them blocked, and no descriptor but the three
/// standard streams. A child that is dropped without waiting is reaped at a later launch, so the
/// launcher should live as long as the program.
///
/// Waiting for a child ends with the child itself: whoever inherited its pipes cannot prolong it,
/// and what such a process writes afterwards is dropped. A status that somebody else has collected
/// reads as 255.
class PosixProcessLauncher : public ProcessLauncher {
 public:
  /// Far more than anybody reads: a property list of more than 64 MiB is refused.
  static constexpr std::size_t kOutputLimit = 256u << 20;

  /// Of a child's standard output only the first `outputLimit` bytes are kept.
  explicit PosixProcessLauncher(const std::string& searchPath,
                                std::size_t outputLimit = kOutputLimit);
  ~PosixProcessLauncher() override;

  /// Failure: the system's reason alone, such as "No such file or directory". An argument with a
  /// NUL byte, which no process can be given, is "Invalid argument".
  Result<std::unique_ptr<ChildProcess>> launch(const Command& command) override;

 private:
  class DroppedChildren;
  class Child;

  const std::vector<std::string> environment_;
  const std::size_t outputLimit_;
  const std::shared_ptr<DroppedChildren> dropped_;
};

}  // namespace quillmont
