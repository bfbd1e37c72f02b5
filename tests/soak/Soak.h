// The program among images that come and go, held and written in every way, with everything that it
// does watched.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/soak/LogReader.h"
#include "tests/soak/PanelHand.h"
#include "tests/soak/SoakedImage.h"
#include "tests/soak/Vitals.h"
#include "tests/support/DesktopLab.h"
#include "tests/support/DiskImages.h"
#include "tests/support/NotificationRecorder.h"
#include "tests/support/Session.h"

namespace quillmont::testing {

class Soak {
 public:
  explicit Soak(std::uint64_t seed);

  /// Acts and watches for `duration`, then ends the program, and looks into every image once more.
  /// Throws the first Finding.
  void run(std::chrono::seconds duration);

  /// What was counted, and what the program took; a line each.
  std::string figures() const;

  /// The last actions, the latest one last, and the end of the program's log.
  std::string lastActions() const;

 private:
  // actions.cpp: one random action, some of which find nothing to act upon.
  void act();
  void attach();
  void hold();
  void letGo();
  void write();
  void toggleExclusion();
  void flipSwitch();
  void ejectOnPanel();
  void detachAsAnother();
  void deleteFile();
  SoakedImage* pick(const std::function<bool(const SoakedImage&)>& fits);
  std::uint64_t below(std::uint64_t bound) { return random_() % bound; }
  void note(const std::string& action);

  // watch.cpp: what must always be.
  void watch();
  void takeAnnouncements();
  void takeLog();
  void takeOutcome(const std::string& label);
  void takeEjection(const std::string& label, const SoakedImage* image);
  void takeSight(SoakedImage& image, LogLine::Kind kind);
  void watchImage(SoakedImage& image);
  void watchMounted(const SoakedImage& image) const;
  void watchUnmounted(SoakedImage& image);
  bool isProtected(const SoakedImage& image) const;
  void noteGone(SoakedImage& image);
  void noteUnmounted(const SoakedImage& image);
  void watchUnexplained();
  void inspectIfOver(SoakedImage& image);
  void readSettings();
  /// The image that has this label now; none if it had it once.
  SoakedImage* imageOf(const std::string& label);
  Steady::duration patience() const;

  void finish();
  void inspectAll();

  const std::uint64_t seed_;
  std::mt19937_64 random_;
  DesktopLab lab_;
  NotificationRecorder recorder_;
  Session session_;
  DiskImages tool_;
  PanelHand panel_;
  std::vector<std::unique_ptr<SoakedImage>> images_;
  std::unique_ptr<Program> program_;
  std::unique_ptr<LogReader> log_;
  std::unique_ptr<Vitals> vitals_;

  bool enabled_ = true;
  std::size_t announcementsTaken_ = 0;
  std::map<std::string, long> unannounced_;  ///< ejections that the log has told, by label
  std::set<std::string> tried_;              ///< labels that the log tells an ejection's outcome of
  /// Volumes that went by nobody's hand, and when, until the log tells of their ejection.
  std::map<std::string, Steady::time_point> unexplained_;
  std::map<std::string, Steady::time_point> attachedAt_;  ///< of every label there ever was
  std::map<std::string, Steady::time_point> goneAt_;      ///< of those whose image has gone
  /// Images that were attached by then have been seen: there was a cycle after that time.
  Steady::time_point seenTo_;
  Steady::time_point seenAt_;  ///< when that was learnt
  /// Ejections that were requested by then are over.
  Steady::time_point drainedTo_;
  /// The longest that an image took to be seen, or a request to be carried out.
  Steady::duration worstDelay_{};
  Steady::time_point began_;
  Steady::time_point ended_;
  std::deque<std::string> lastActions_;
  std::map<std::string, long> counts_;
  long bytes_ = 0;
};

}  // namespace quillmont::testing
