// An installed Quillmont in a throwaway home folder, and what a test of its removal looks at.
#pragma once

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>

#include "tests/support/Program.h"

namespace quillmont::testing {

/// Everything below a folder: its path there, and what it is.
using Listing = std::map<std::string, std::string>;

inline std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline Listing listingOf(const std::string& folder) {
  namespace fs = std::filesystem;
  Listing listing;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    auto& what = listing[fs::path(entry.path()).lexically_relative(folder)];
    if (entry.is_symlink()) {
      what = "link to " + fs::read_symlink(entry.path()).string();
    } else if (entry.is_directory()) {
      what = "folder";
    } else {
      const auto size = entry.file_size();
      what = "file: " + (size < 65536 ? contentsOf(entry.path()) : std::to_string(size) + " bytes");
    }
  }
  return listing;
}

class UninstallTest : public ::testing::Test {
 protected:
  UninstallTest() {
    namespace fs = std::filesystem;
    chmod(root.c_str(), 0755);
    fs::create_directories(home);
    fs::create_directories(runtime);
    chmod(runtime.c_str(), 0700);
    environment = environmentWith({{"HOME", home},
                                   {"XDG_RUNTIME_DIR", runtime},
                                   {"XDG_CONFIG_HOME", ""},
                                   {"XDG_DATA_HOME", ""},
                                   {"XDG_STATE_HOME", ""},
                                   {"XDG_CACHE_HOME", ""},
                                   {"DBUS_SESSION_BUS_ADDRESS", ""},
                                   {"DISPLAY", ""},
                                   {"WAYLAND_DISPLAY", ""}});
  }

  /// The bundle as it is installed, at `place`.
  static void install(const std::string& place) {
    std::filesystem::create_directories(std::filesystem::path(place).parent_path());
    std::filesystem::copy(QUILLMONT_BUNDLE, place, std::filesystem::copy_options::recursive);
  }
  void install() const { install(bundle); }

  /// As much of it as the script needs.
  static void installScriptAlone(const std::string& place) {
    std::filesystem::create_directories(place + "/Contents/Resources");
    std::filesystem::copy(QUILLMONT_BUNDLE "/Contents/Resources/uninstall.sh", scriptOf(place));
  }

  static void put(const std::string& path, const std::string& text = "") {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << text;
  }

  static void link(const std::string& target, const std::string& path) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::filesystem::create_symlink(target, path);
  }

  static std::string scriptOf(const std::string& place) {
    return place + "/Contents/Resources/uninstall.sh";
  }

  /// Runs the script of the bundle at `place` to its end, as the program starts it.
  Outcome uninstall(const std::string& place) const {
    return run({"/bin/bash", scriptOf(place)}, environment);
  }
  Outcome uninstall() const { return uninstall(bundle); }

  /// Everything in the test's folder.
  Listing listing() const { return listingOf(root); }

  static constexpr char kSettings[] = "com.norwaldex.Quillmont.plist";
  static constexpr char kAgent[] = "com.norwaldex.quillmont.plist";
  static constexpr char kEntry[] = "com.norwaldex.quillmont.desktop";

  const TemporaryFolder folder;
  const std::string root = folder.path();
  const std::string home = root + "/it's \"my\" $HOME `of` [a]* \\ 家";
  const std::string runtime = root + "/runtime 一";
  const std::string bundle = home + "/.local/lib/quillmont";
  const std::string settingsFolder = home + "/.config/quillmont";
  const std::string agentsFolder = home + "/.local/share/quillmont/Library/LaunchAgents";
  Environment environment;
};

}  // namespace quillmont::testing
