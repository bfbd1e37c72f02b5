// The desktop's real disk service, on a bus of the test's own.
#pragma once

#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/Program.h"

namespace quillmont::testing {

class DiskServiceLaboratory {
 public:
  /// "nobody", whom the laboratory allows what a desktop allows.
  static constexpr uid_t kUser = 65534;

  /// "daemon", who may detach what others attached, and no more.
  static constexpr uid_t kStranger = 1;

  /// Why it cannot be had on this machine; empty if it can.
  static std::string whyImpossible();

  DiskServiceLaboratory();

  bool comesUp();
  std::string output() { return first_->output(); }

  /// Runs the disk-image tool in the laboratory as `user`.
  Outcome tool(const std::vector<std::string>& arguments, uid_t user = kUser) const;

  /// Starts a program in the laboratory as the superuser.
  std::unique_ptr<Program> start(const std::vector<std::string>& arguments) const;

  /// A path of the laboratory as seen from outside of it.
  std::string inside(const std::string& path) const { return "/proc/" + child() + "/root" + path; }

 private:
  std::string tool() const { return folder_.path() + "/hdiutil"; }
  std::string child() const;

  TemporaryFolder folder_;
  std::unique_ptr<Program> first_;
};

}  // namespace quillmont::testing
