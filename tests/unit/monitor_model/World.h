// What lies outside of the program: disk images, their users, tools that work or fail. A product
// and a model that are compared have a copy each.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/FileManager.h"
#include "tests/support/TestHost.h"
#include "tests/unit/monitor_model/History.h"

namespace quillmont::testing {

/// An image that may be attached, and what its volume is called.
struct CatalogueEntry {
  std::string imagePath;
  std::string mountPoint;
  std::string volumeName;
};

/// Images that are easily taken for each other, among others.
const std::vector<CatalogueEntry>& catalogue();

/// A process with an open file. Whether it counts as a user is written down here, not computed.
struct KnownProcess {
  std::string name;
  bool counts;
};
const std::vector<KnownProcess>& knownProcesses();

enum class Answer { honest, cannotStart, nothing, garbage };
enum class Detaching { works, fails, cannotStart, takesScans };
enum class ProgramPlace { installed, trashed, deleted };

/// The identifier of the program's own process.
inline constexpr int kOwnPid = 999;

class World {
 public:
  /// Takes a step that concerns the world; false for all others. `now` is the time of the step.
  bool take(const Step& step, TimePoint now);

  /// A tool begins to run, or the queue to pause: what comes about in the middle of it.
  std::vector<Step> comesAbout();

  /// What the next scan is like. Images whose detachment takes a while are a scan closer to it.
  Answer scan();
  Answer check();

  /// Runs the detach tool: its status, or nothing if it cannot be started.
  std::optional<int> detach(const std::string& mountPoint);

  std::vector<FakeDiskImages::Image> attached;
  std::map<std::string, FileAttributes> nodes;
  ProgramPlace program = ProgramPlace::installed;
  bool noticesAreMute = false;

 private:
  struct Fault {
    int times = 0;
    Answer answer = Answer::honest;
  };
  struct Interruption {
    int runsBefore;
    std::vector<Step> steps;
  };
  struct SlowDetachment {
    std::string mountPoint;
    int scansLeft;
  };

  bool changeImage(const Step& step, TimePoint now);
  bool changeSurroundings(const Step& step);
  void attach(const CatalogueEntry& entry, TimePoint touched);
  void remove(const std::string& mountPoint);
  FakeDiskImages::Image* find(const CatalogueEntry& entry);
  void use(FakeDiskImages::Image& image, int variant);
  void retouch(const std::string& node, int variant, TimePoint touched);
  static Answer next(Fault& fault);

  Fault scans_;
  Fault checks_;
  Detaching detaching_ = Detaching::works;
  int detachNumber_ = 0;
  std::vector<SlowDetachment> leaving_;
  std::vector<Interruption> interruptions_;
  int nodesMade_ = 0;
};

}  // namespace quillmont::testing
