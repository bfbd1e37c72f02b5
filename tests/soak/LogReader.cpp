#include "tests/soak/LogReader.h"

#include <utility>

namespace quillmont::testing {
namespace {

using Kind = LogLine::Kind;

/// Everything that the program or a tool of its may say while images come and go.
constexpr std::pair<const char*, Kind> kKnown[] = {
    {"Disk image is idle: /Volumes/", Kind::idle},
    {"Disk image is in use: /Volumes/", Kind::inUse},
    {"Successfully ejected and verified detached: /Volumes/", Kind::ejected},
    {"Warning: hdiutil detach returned 0, but mount point is still attached (possible unmount-only "
     "state): /Volumes/",
     Kind::stillAttached},
    {"Failed to eject: /Volumes/", Kind::failed},
    {"hdiutil: detach failed - ", Kind::other},
};

/// Up to the first character that no label of the soak has.
std::string labelAt(const std::string& text) {
  return text.substr(0, text.find_first_of(". ("));
}

}  // namespace

std::vector<LogLine> LogReader::take() {
  const auto output = program_.output();
  std::vector<LogLine> lines;
  for (auto end = output.find('\n', at_); end != output.npos; end = output.find('\n', at_)) {
    lines.push_back(read(output.substr(at_, end - at_)));
    at_ = end + 1;
  }
  return lines;
}

LogLine LogReader::read(const std::string& line) {
  for (const auto& [words, kind] : kKnown) {
    const auto at = line.find(words);
    if (at == line.npos) continue;
    ++counts_[kind == Kind::other ? line : words];
    const auto label = labelAt(line.substr(at + std::string(words).size()));
    return {kind, kind == Kind::other ? "" : label};
  }
  throw Finding("a log line of no known kind: " + line);
}

}  // namespace quillmont::testing
