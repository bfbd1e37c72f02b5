// The real monitor in a world, with everything that it does written down.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/support/TestHost.h"
#include "tests/unit/monitor_model/Trace.h"
#include "tests/unit/monitor_model/World.h"

namespace quillmont::testing {

class ObservedMonitor : private ApplicationDelegate {
 public:
  ObservedMonitor();

  void act(const Step& step);
  Standing standing();

  std::vector<Deed> trace;

 private:
  class Monitor;

  void applicationDidFinishLaunching() override {}
  void applicationWillTerminate() override;

  void setUpTools();
  void observe();
  void actOnMainThread(const Step& step);
  void showWorld();
  void quit();
  void write(std::string what, const std::vector<DiskImage>& images = {});
  void catchUp();
  void interrupt();
  void begin(const Command& command);
  ToolRun diskImageTool(const Command& command);
  ToolRun openFilesTool(const Command& command);

  World world_;
  bool isInterrupted_ = false;
  TestHost system_;
  FakeDiskImages images_{system_};
  FakeProcesses::Tool honestDiskImageTool_;
  FakeProcesses::Tool honestOpenFilesTool_;
  ConfigManager config_{system_.host()};
  std::shared_ptr<Monitor> monitor_;
  std::vector<DiskImage> published_;
  Subscription willChange_;
  Subscription values_;
  std::size_t seenLines_ = 0;
  std::size_t seenSleeps_ = 0;
  std::size_t seenDomains_ = 0;
  int seenTerminations_ = 0;
};

}  // namespace quillmont::testing
