#include "platform/linux/LinuxBundle.h"

#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/Host.h"

namespace quillmont {
namespace {

constexpr std::string_view kDeletedMark = " (deleted)";
constexpr std::string_view kProgramFolder = "/Contents/MacOS";

std::string bundlePath(const std::string& executable) {
  const auto slash = executable.rfind('/');
  if (slash == std::string::npos) return "/";
  auto folder = std::string_view(executable).substr(0, slash);
  if (folder.ends_with(kProgramFolder)) folder.remove_suffix(kProgramFolder.size());
  return folder.empty() ? "/" : std::string(folder);
}

}  // namespace

LinuxBundle::LinuxBundle(std::string executable) : executable_(std::move(executable)) {
  if (executable_.ends_with(kDeletedMark)) {
    executable_.erase(executable_.size() - kDeletedMark.size());
  }
  path_ = bundlePath(executable_);
}

std::string LinuxBundle::executableLink() {
  std::error_code failure;
  return std::filesystem::read_symlink("/proc/self/exe", failure);
}

std::optional<std::string> LinuxBundle::identifier() const {
  return kBundleIdentifier;
}

std::optional<std::string> LinuxBundle::executablePath() const {
  if (executable_.empty()) return std::nullopt;
  return executable_;
}

}  // namespace quillmont
