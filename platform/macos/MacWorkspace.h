// Volumes and running applications, from the workspace of a Mac.
#pragma once

#include <memory>

#include "platform/Workspace.h"

namespace quillmont {

class MacWorkspace : public Workspace {
 public:
  MacWorkspace();
  /// Nobody is told anything afterwards.
  ~MacWorkspace() override;
  MacWorkspace(const MacWorkspace&) = delete;
  MacWorkspace& operator=(const MacWorkspace&) = delete;

  void observeVolumes(VolumeEvent event, VolumeObserver observer) override;

  /// Only what the system has registered as an application is known to it: a program that was
  /// started outside of its bundle does not find itself.
  std::vector<std::int32_t> runningApplications(const std::string& bundleIdentifier) override;

 private:
  struct Observers;
  const std::unique_ptr<Observers> observers_;
};

}  // namespace quillmont
