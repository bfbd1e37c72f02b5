// The system in memory: tools, files, settings and session that record what is asked of them and
// answer, or fail, as a test tells them.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/ProcessLauncher.h"
#include "platform/PropertyList.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

namespace quillmont::testing {

class RecordingLog : public Log {
 public:
  void write(std::string_view line) override { lines.emplace_back(line); }
  std::vector<std::string> lines;
};

/// How a tool behaves: what it prints and with which status it ends, or why it does not start.
struct ToolRun {
  std::string output = {};
  int status = 0;
  std::optional<std::string> launchError = std::nullopt;
};

/// Tools as functions, by path; a path without one does not start. Every launch is recorded.
class FakeProcesses : public ProcessLauncher {
 public:
  using Tool = std::function<ToolRun(const Command&)>;

  Result<std::unique_ptr<ChildProcess>> launch(const Command& command) override {
    launches.push_back(command);
    const auto tool = tools.find(command.path);
    const auto result = tool == tools.end() ? ToolRun{.launchError = "No such file or directory"}
                                            : tool->second(command);
    if (result.launchError) return Error{*result.launchError};
    return std::unique_ptr<ChildProcess>(
        new FakeChild(*this, launches.size() - 1, result, command.standardOutput));
  }

  std::vector<Command> launchesOf(const std::string& path) const {
    std::vector<Command> result;
    for (const auto& command : launches) {
      if (command.path == path) result.push_back(command);
    }
    return result;
  }

  std::map<std::string, Tool> tools;
  std::vector<Command> launches;
  std::set<std::size_t> waitedFor;  ///< positions in `launches`

 private:
  class FakeChild : public ChildProcess {
   public:
    FakeChild(FakeProcesses& owner, std::size_t position, ToolRun result, ChildOutput output)
        : owner_(owner), position_(position), result_(std::move(result)), output_(output) {}

    int waitUntilExit() override {
      owner_.waitedFor.insert(position_);
      return result_.status;
    }

    /// As a real pipe: nothing before the end, nothing that was not piped.
    std::string readStandardOutput() override {
      const bool readable = owner_.waitedFor.contains(position_) && output_ == ChildOutput::pipe;
      return readable ? result_.output : "";
    }

   private:
    FakeProcesses& owner_;
    std::size_t position_;
    ToolRun result_;
    ChildOutput output_;
  };
};

/// Encodes a list as a ticket, and reads the lists whose tickets it gave out. Anything else is no
/// property list.
class TicketPropertyLists : public PropertyListCoder {
 public:
  Result<PropertyList> parse(std::string_view bytes) const override {
    const auto known = lists_.find(std::string(bytes));
    if (known == lists_.end()) return Error{"not a property list"};
    return known->second;
  }

  Result<std::string> xml(const PropertyList& list) const override {
    if (failing) return Error{"cannot encode"};
    auto ticket = "property list " + std::to_string(lists_.size());
    lists_.emplace(ticket, list);
    return ticket;
  }

  bool failing = false;

 private:
  mutable std::map<std::string, PropertyList> lists_;
};

class MemoryDefaults : public UserDefaults {
 public:
  std::optional<PropertyList> object(std::string_view key) const override {
    const auto found = values.find(std::string(key));
    return found == values.end() ? std::nullopt : std::optional(found->second);
  }
  std::optional<std::vector<std::string>> stringArray(std::string_view key) const override {
    const auto stored = object(key);
    return stored ? stored->stringArray() : std::nullopt;
  }
  void setDouble(std::string_view key, double value) override { setObject(key, value); }
  void setBool(std::string_view key, bool value) override { setObject(key, value); }
  void setObject(std::string_view key, PropertyList value) override {
    writes.emplace_back(key);
    values.insert_or_assign(std::string(key), std::move(value));
  }
  void removePersistentDomain(std::string_view domain) override {
    removedDomains.emplace_back(domain);
    values.clear();
  }

  std::map<std::string, PropertyList> values;
  std::vector<std::string> writes;  ///< keys, in the order of their writes
  std::vector<std::string> removedDomains;
};

/// A tree of files and folders by path. A path in `failing` refuses every change.
class FakeFiles : public FileManager {
 public:
  Result<FileAttributes> attributes(const std::string& path) const override {
    const auto found = nodes.find(path);
    if (found == nodes.end()) return Error{"No such file or directory"};
    return found->second;
  }
  bool exists(const std::string& path) const override {
    return files.contains(path) || folders.contains(path);
  }
  std::vector<std::string> userLibraryFolders() const override { return libraryFolders; }
  Result<void> createDirectory(const std::string& path) override {
    if (failing.contains(path)) return Error{"Not a directory"};
    folders.insert(path);
    return {};
  }
  Result<void> writeFile(const std::string& path, std::string_view bytes) override {
    const auto folder = path.substr(0, path.rfind('/'));
    if (failing.contains(path) || !folders.contains(folder)) {
      return Error{"No such file or directory"};
    }
    files[path] = bytes;
    return {};
  }
  Result<void> remove(const std::string& path) override {
    if (failing.contains(path) || files.erase(path) == 0) {
      return Error{"No such file or directory"};
    }
    return {};
  }

  std::map<std::string, FileAttributes> nodes;  ///< device nodes and their time stamps
  std::map<std::string, std::string> files;
  std::set<std::string> folders;
  std::set<std::string> failing;
  std::vector<std::string> libraryFolders = {"/Users/user/Library"};
};

class FakeBundle : public Bundle {
 public:
  std::optional<std::string> identifier() const override { return bundleIdentifier; }
  std::string path() const override { return bundlePath; }
  std::optional<std::string> executablePath() const override { return executable; }

  std::optional<std::string> bundleIdentifier = "com.norwaldex.Quillmont";
  std::string bundlePath = "/Applications/Quillmont.app";
  std::optional<std::string> executable = "/Applications/Quillmont.app/Contents/MacOS/Quillmont";
};

class FakeWorkspace : public Workspace {
 public:
  void observeVolumes(VolumeEvent event, VolumeObserver observer) override {
    observers_.emplace_back(event, std::move(observer));
  }
  std::vector<std::int32_t> runningApplications(const std::string& bundleIdentifier) override {
    askedFor.push_back(bundleIdentifier);
    return running;
  }

  void happen(VolumeEvent event) {
    for (const auto& [wanted, observer] : observers_) {
      if (wanted == event) observer(event);
    }
  }

  std::vector<std::int32_t> running;
  std::vector<std::string> askedFor;

 private:
  std::vector<std::pair<VolumeEvent, VolumeObserver>> observers_;
};

class FakeApplication : public Application {
 public:
  void setDelegate(ApplicationDelegate* newDelegate) override { delegate = newDelegate; }
  void run() override { delegate->applicationDidFinishLaunching(); }
  void terminate() override {
    ++terminations;
    if (delegate && terminations == 1) delegate->applicationWillTerminate();
  }

  ApplicationDelegate* delegate = nullptr;
  int terminations = 0;
};

}  // namespace quillmont::testing
