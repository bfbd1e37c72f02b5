#include "tests/support/Session.h"

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <utility>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/linux/loop_devices.h"

namespace quillmont::testing {
namespace {

namespace fs = std::filesystem;

constexpr char kKeyPrefix[] = "com.norwaldex.quillmont.";

void writeText(const std::string& path, const std::string& text) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

}  // namespace

Session::Session(const std::string& bus, const Environment& changes)
    : bundle_(folder_.path() + "/Quillmont") {
  for (const auto& loop : attachedLoopDevices()) foreignImages_.push_back(loop.backingFile);
  const auto home = folder_.path() + "/home";
  const auto runtime = folder_.path() + "/runtime";
  fs::create_directories(home);
  fs::create_directories(runtime);
  chmod(runtime.c_str(), 0700);
  fs::copy(QUILLMONT_BUNDLE, bundle_, fs::copy_options::recursive);
  environment_ = environmentWith({{"HOME", home},
                                  {"XDG_RUNTIME_DIR", runtime},
                                  {"XDG_CONFIG_HOME", home + "/.config"},
                                  {"XDG_DATA_HOME", home + "/.local/share"},
                                  {"DBUS_SESSION_BUS_ADDRESS", bus},
                                  {"DISPLAY", ""},
                                  {"WAYLAND_DISPLAY", ""}});
  for (const auto& [name, value] : changes) {
    environment_.erase(name);
    if (!value.empty()) environment_[name] = value;
  }
}

std::string Session::settingsFile() const {
  return folder() + "/home/.config/quillmont/com.norwaldex.Quillmont.plist";
}

std::string Session::agentFile() const {
  return folder() +
         "/home/.local/share/quillmont/Library/LaunchAgents/com.norwaldex.quillmont.plist";
}

std::string Session::loginItem() const {
  return folder() + "/home/.config/autostart/com.norwaldex.quillmont.desktop";
}

void Session::store(PropertyListDictionary settings) const {
  PropertyListArray excluded(foreignImages_.begin(), foreignImages_.end());
  PropertyListDictionary named;
  for (auto& [key, value] : settings) {
    if (key != "excludeList") {
      named.emplace_back(kKeyPrefix + key, std::move(value));
    } else if (const auto* own = value.array()) {
      excluded.insert(excluded.end(), own->begin(), own->end());
    }
  }
  named.emplace_back(kKeyPrefix + std::string("excludeList"), std::move(excluded));
  writeText(settingsFile(), *XmlPropertyLists().xml(named));
}

void Session::writeAgent(const PropertyList& agent) const {
  writeText(agentFile(), *XmlPropertyLists().xml(agent));
}

void Session::replaceTool(const std::string& name, const std::string& script) const {
  const auto original = QUILLMONT_BUNDLE "/Contents/libexec/" + name;
  const auto state = folder() + "/state-" + name;
  fs::create_directories(state);
  fs::remove(tool(name));
  writeText(tool(name),
            "#!/bin/bash\noriginal='" + original + "'\nstate='" + state + "'\n" + script);
  chmod(tool(name).c_str(), 0755);
}

std::unique_ptr<Program> Session::start(const Environment& changes) const {
  Environment environment = environment_;
  for (const auto& [name, value] : changes) environment[name] = value;
  return std::make_unique<Program>(std::vector<std::string>{bundle_ + "/Contents/MacOS/Quillmont"},
                                   environment);
}

}  // namespace quillmont::testing
