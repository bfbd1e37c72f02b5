// All that the program asks of the system it runs on, in one place.
#pragma once

#include <cstdint>

#include "platform/ToolPaths.h"

namespace quillmont {

class Application;
class Bundle;
class Clock;
class Desktop;
class FileManager;
class Log;
class ProcessLauncher;
class PropertyListCoder;
class RunLoop;
class SerialQueues;
class UserDefaults;
class Workspace;

/// A set of references; copy it freely. Everything it refers to outlives its users: the real
/// host's parts live as long as the process, a test's as long as the test.
struct Host {
  ProcessLauncher& processes;
  PropertyListCoder& propertyLists;
  UserDefaults& defaults;
  FileManager& files;
  Bundle& bundle;
  Log& log;
  RunLoop& mainRunLoop;
  SerialQueues& queues;
  Clock& clock;
  Workspace& workspace;
  Application& application;
  Desktop& desktop;
  ToolPaths tools;
  std::int32_t processIdentifier;
  std::uint32_t userIdentifier;

  /// The system that this build is for, brought up on first use (on the main thread). Defined by
  /// the host's own sources.
  static const Host& current();
};

/// The program's identifier wherever the bundle itself reports none: settings domain and
/// single-instance key.
inline constexpr char kBundleIdentifier[] = "com.norwaldex.Quillmont";

}  // namespace quillmont
