#include "tests/unit/monitor_model/ObservedMonitor.h"

#include <cstddef>
#include <utility>

namespace quillmont::testing {

class ObservedMonitor::Monitor : public OpenMonitor {
 public:
  Monitor(const Host& host, ConfigManager& config) : OpenMonitor(host, config) {}

  void eject(const std::string& mountPoint, const std::string& volumeName) override {
    write("eject " + mountPoint + " (" + volumeName + ")");
    OpenMonitor::eject(mountPoint, volumeName);
    write("ejected " + mountPoint);
  }

  std::function<void(std::string)> write;
};

ObservedMonitor::ObservedMonitor() {
  setUpTools();
  system_.application.setDelegate(this);
  monitor_ = QuillmontDaemon::make<Monitor>(system_.host(), config_);
  observe();
}

void ObservedMonitor::setUpTools() {
  auto& tools = system_.processes.tools;
  const ToolPaths paths;
  honestDiskImageTool_ = tools[paths.diskImageTool];
  honestOpenFilesTool_ = tools[paths.openFilesTool];
  tools[paths.diskImageTool] = [this](const Command& command) { return diskImageTool(command); };
  tools[paths.openFilesTool] = [this](const Command& command) { return openFilesTool(command); };
  tools[paths.scriptRunner] = [this](const Command& command) {
    begin(command);
    return world_.noticesAreMute ? ToolRun{.launchError = "No such file"} : ToolRun{};
  };
  tools[paths.shell] = [this](const Command& command) {
    begin(command);
    return ToolRun{};
  };
  system_.clock.onSleep = [this] {
    catchUp();
    interrupt();
  };
}

void ObservedMonitor::observe() {
  monitor_->write = [this](std::string what) { write(std::move(what)); };
  values_ = monitor_->observeMountedImages([this](const std::vector<DiskImage>& images) {
    published_ = comparable(images);
    write("published", published_);
  });
  trace.clear();
  willChange_ =
      monitor_->objectWillChange().subscribe([this] { write("will change", published_); });
}

Standing ObservedMonitor::standing() {
  catchUp();
  // The list itself, as long as there is one; a monitor that was let go is heard through its last
  // assignment alone.
  return {system_.queues.pendingTasks(), system_.runLoop.pendingTasks(), system_.clock.now(),
          monitor_ ? comparable(monitor_->mountedImages()) : published_};
}

void ObservedMonitor::act(const Step& step) {
  switch (step.kind) {
    case Kind::jumpClock:
      system_.clock.advance(seconds(step.amount));
      return;
    case Kind::passTime:
      system_.runLoop.advance(seconds(step.amount));
      return;
    case Kind::runMain:
      system_.runLoop.runTask();
      return;
    case Kind::runQueue:
      system_.queues.runTask();
      return;
    case Kind::settle:
      system_.settle();
      return;
    default:
      if (!world_.take(step, system_.clock.now())) actOnMainThread(step);
      showWorld();
  }
}

/// What the fakes answer by themselves follows the world.
void ObservedMonitor::showWorld() {
  images_.attached = world_.attached;
  system_.files.nodes = world_.nodes;
  const bool trashed = world_.program == ProgramPlace::trashed;
  system_.bundle.bundlePath =
      trashed ? "/Users/user/.Trash/Quillmont.app" : "/Applications/Quillmont.app";
  system_.files.folders.clear();
  if (world_.program != ProgramPlace::deleted) {
    system_.files.folders.insert(system_.bundle.bundlePath);
  }
}

void ObservedMonitor::actOnMainThread(const Step& step) {
  const auto& image = catalogue().at(static_cast<std::size_t>(step.which));
  const auto event = step.variant % 2 != 0 ? VolumeEvent::didMount : VolumeEvent::didUnmount;
  if (step.kind == Kind::exclude) config_.excludeImage(image.imagePath);
  if (step.kind == Kind::include) config_.includeImage(image.imagePath);
  if (step.kind == Kind::enable) config_.setIsEnabled(step.variant % 2 != 0);
  if (step.kind == Kind::setTimeout) config_.setTimeoutSeconds(step.amount);
  if (step.kind == Kind::volumeEvent) system_.workspace.happen(event);
  if (!monitor_) return;
  if (step.kind == Kind::ejectByUser) monitor_->userForceEject(image.mountPoint, image.volumeName);
  if (step.kind == Kind::restart) monitor_->start();
  if (step.kind == Kind::quit) quit();
  if (step.kind == Kind::letGo) {
    quit();
    monitor_.reset();
  }
}

void ObservedMonitor::quit() {
  monitor_->waitForPendingEjects();
  monitor_->stop();
}

void ObservedMonitor::applicationWillTerminate() {
  catchUp();
  if (monitor_) quit();
}

void ObservedMonitor::write(std::string what, const std::vector<DiskImage>& images) {
  catchUp();
  trace.push_back({std::move(what), images});
}

/// Writes down what the fakes have recorded by themselves. Called often enough for the order to be
/// that in which it came about.
void ObservedMonitor::catchUp() {
  const auto& sleeps = system_.clock.sleeps;
  while (seenSleeps_ < sleeps.size()) trace.push_back({pauseText(sleeps[seenSleeps_++])});
  const auto& domains = system_.defaults.removedDomains;
  while (seenDomains_ < domains.size()) {
    trace.push_back({"remove the settings " + domains[seenDomains_++]});
  }
  const auto& lines = system_.log.lines;
  while (seenLines_ < lines.size()) trace.push_back({"log " + lines[seenLines_++]});
  for (; seenTerminations_ < system_.application.terminations; ++seenTerminations_) {
    trace.push_back({"terminate"});
  }
}

void ObservedMonitor::begin(const Command& command) {
  auto text = "run " + command.path;
  for (const auto& argument : command.arguments) text += " " + argument;
  write(std::move(text));
  interrupt();
}

void ObservedMonitor::interrupt() {
  if (isInterrupted_) return;
  isInterrupted_ = true;
  for (const auto& step : world_.comesAbout()) {
    act(step);
    catchUp();
  }
  isInterrupted_ = false;
}

ToolRun ObservedMonitor::diskImageTool(const Command& command) {
  begin(command);
  if (command.arguments.front() == "detach") {
    const auto status = world_.detach(command.arguments.at(1));
    return status ? ToolRun{.status = *status} : ToolRun{.launchError = "No such file"};
  }
  const auto answer = world_.scan();
  images_.attached = world_.attached;
  switch (answer) {
    case Answer::cannotStart:
      return {.launchError = "No such file"};
    case Answer::nothing:
      return {};
    case Answer::garbage:
      return {.output = "garbage"};
    default:
      return honestDiskImageTool_(command);
  }
}

ToolRun ObservedMonitor::openFilesTool(const Command& command) {
  begin(command);
  switch (world_.check()) {
    case Answer::cannotStart:
      return {.launchError = "No such file"};
    case Answer::nothing:
      return {};
    case Answer::garbage:
      return {.output = "p1\ncbash\n\xFF"};
    default:
      images_.attached = world_.attached;
      return honestOpenFilesTool_(command);
  }
}

}  // namespace quillmont::testing
