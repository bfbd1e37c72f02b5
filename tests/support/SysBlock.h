// The kernel's list of block devices, made up for a test.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/Program.h"

namespace quillmont::testing {

class SysBlock {
 public:
  const std::string& path() const { return folder_.path(); }

  /// A loop device that carries `backingFile`, in the place of one of that name. Both texts are
  /// written as they are; an empty one leaves the attribute out.
  void attach(const std::string& name, const std::string& backingFile,
              const std::string& sequence = "7\n") {
    std::filesystem::remove_all(path() + "/" + name);
    std::filesystem::create_directories(path() + "/" + name + "/loop");
    if (!backingFile.empty()) write(name + "/loop/backing_file", backingFile);
    if (!sequence.empty()) write(name + "/diskseq", sequence);
  }

  /// A device that carries nothing.
  void release(const std::string& name) {
    std::filesystem::create_directories(path() + "/" + name);
    std::filesystem::remove_all(path() + "/" + name + "/loop");
  }

  void write(const std::string& name, const std::string& text) {
    std::ofstream(path() + "/" + name, std::ios::binary) << text;
  }

 private:
  TemporaryFolder folder_;
};

}  // namespace quillmont::testing
