// A user's session of a test's own: folders, settings and a copy of the installed program, so that
// nothing of the real user is touched and every file of the program may be tampered with.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/PropertyList.h"
#include "tests/support/Program.h"

namespace quillmont::testing {

class Session {
 public:
  /// `bus` is the address of the session's message bus; empty for a session without one. Without
  /// `changes` to the environment it has no display either.
  explicit Session(const std::string& bus = "", const Environment& changes = {});

  const Environment& environment() const { return environment_; }
  const std::string& bundle() const { return bundle_; }
  std::string tool(const std::string& name) const { return bundle_ + "/Contents/libexec/" + name; }
  std::string folder() const { return folder_.path(); }
  std::string settingsFile() const;
  std::string agentFile() const;
  std::string loginItem() const;

  /// Writes the settings that the program will find at its start. Keys without their prefix. Images
  /// that were attached before the session are excluded in any case: they are somebody's own.
  void store(PropertyListDictionary settings) const;

  /// Paths of the images that were attached when the session was made.
  const std::vector<std::string>& foreignImages() const { return foreignImages_; }

  /// Puts a launch agent's file where the program keeps it.
  void writeAgent(const PropertyList& agent) const;

  /// Replaces a tool by a shell script; in it, "$original" is the path of the tool that was there,
  /// and "$state" a folder for its own notes.
  void replaceTool(const std::string& name, const std::string& script) const;

  /// Starts the program, with `changes` to its environment.
  std::unique_ptr<Program> start(const Environment& changes = {}) const;

 private:
  TemporaryFolder folder_;
  std::string bundle_;
  std::vector<std::string> foreignImages_;
  Environment environment_;
};

}  // namespace quillmont::testing
