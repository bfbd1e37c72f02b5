#include "tests/macos/RecordedTools.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;

std::string read(const std::string& path) {
  std::stringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

void write(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

/// Arguments may hold any character but NUL; a call ends with an empty one.
constexpr char kRecordCall[] = R"(
printf '%s\0' "${0##*/}" "$@" '' >>calls
)";

constexpr char kDiskImageTool[] = R"(
case "$1" in
  info) cat list ;;
  detach) mv list.after list ;;
esac
)";

constexpr char kOpenFilesTool[] = R"(
case "$3" in
  */"Backup 2") cat open_files_user.txt ;;
  *) cat open_files_service.txt ;;
esac
)";

}  // namespace

RecordedTools::RecordedTools() {
  for (const char* name : {"open_files_service.txt", "open_files_user.txt"}) {
    write(place(name), recorded(name));
  }
  install("hdiutil", kDiskImageTool);
  install("lsof", kOpenFilesTool);
  install("osascript", "");
  install("bash", "");
}

ToolPaths RecordedTools::paths() const {
  return {place("hdiutil"), place("lsof"), place("osascript"), place("bash")};
}

void RecordedTools::list(const std::string& before, const std::string& after) {
  write(place("list"), before);
  write(place("list.after"), after);
}

std::vector<RecordedTools::Call> RecordedTools::calls(const std::string& tool) const {
  std::vector<Call> result;
  std::istringstream words(read(place("calls")));
  Call call;
  for (std::string word; std::getline(words, word, '\0');) {
    if (!word.empty()) {
      call.push_back(word);
      continue;
    }
    if (call.front() == tool) result.push_back(call);
    call.clear();
  }
  return result;
}

std::string RecordedTools::recorded(const std::string& name) {
  return read(QUILLMONT_RECORDINGS "/" + name);
}

void RecordedTools::install(const std::string& tool, const std::string& body) {
  write(place(tool), "#!/bin/bash\ncd '" + folder_.path() + "' || exit\n" + kRecordCall + body);
  fs::permissions(place(tool), fs::perms::owner_all);
}

}  // namespace quillmont::testing
