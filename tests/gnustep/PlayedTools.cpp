#include "tests/gnustep/PlayedTools.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;

void write(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path) << text;
}

constexpr char kDiskImageTool[] = R"(
if [ "$1" = detach ]; then
  rm "images/${2##*/}"
  exit
fi
cat <<'END'
<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict><key>images</key><array>
END
for image in images/*; do
  [ -e "$image" ] || continue
  name=${image##*/}
  cat <<END
<dict><key>image-path</key><string>/Users/user/$name.dmg</string>
<key>system-entities</key><array><dict><key>dev-entry</key><string>$PWD/$image</string>
<key>mount-point</key><string>/Volumes/$name</string></dict></array></dict>
END
done
echo '</array></dict></plist>'
)";

constexpr char kOpenFilesTool[] = R"(
cat "users/${3##*/}" 2>/dev/null
)";

}  // namespace

PlayedTools::PlayedTools() {
  fs::create_directory(tool("images"));
  install("hdiutil", kDiskImageTool);
  install("lsof", kOpenFilesTool);
  install("osascript", "");
  install("bash", "");
}

ToolPaths PlayedTools::paths() const {
  return {tool("hdiutil"), tool("lsof"), tool("osascript"), tool("bash")};
}

void PlayedTools::attach(const std::string& name) {
  write(tool("images/" + name), "");
}

bool PlayedTools::isAttached(const std::string& name) const {
  return fs::exists(tool("images/" + name));
}

void PlayedTools::use(const std::string& name, const std::string& process) {
  write(tool("users/" + name), "p4711\nc" + process + "\nf3\nn/Volumes/" + name + "/file\n");
}

std::string PlayedTools::calls() const {
  std::stringstream result;
  result << std::ifstream(tool("calls")).rdbuf();
  return result.str();
}

void PlayedTools::install(const std::string& name, const std::string& body) {
  write(tool(name), "#!/bin/bash\ncd '" + folder_.path() + "' || exit\necho \"" + name +
                        " $*\" >>calls\n" + body);
  fs::permissions(tool(name), fs::perms::owner_all);
}

}  // namespace quillmont::testing
