// The main thread's side: timers, the idle update, settings, requests, the end.

#include "tests/unit/monitor_model/ReferenceMonitor.h"

#include <algorithm>
#include <cstddef>

namespace quillmont::testing {

ReferenceMonitor::ReferenceMonitor(TimePoint now) : now_(now) {
  start();
}

Standing ReferenceMonitor::standing() const {
  return {queue_.size(), handedOver_.size(), now_, mountedImages_};
}

void ReferenceMonitor::act(const Step& step) {
  switch (step.kind) {
    case Kind::jumpClock:
      now_ += seconds(step.amount);
      return;
    case Kind::passTime:
      passTime(seconds(step.amount));
      return;
    case Kind::runMain:
      runMain();
      return;
    case Kind::runQueue:
      runQueue();
      return;
    case Kind::settle:
      while (!queue_.empty() || !handedOver_.empty()) {
        while (runQueue()) {
        }
        while (runMain()) {
        }
      }
      return;
    default:
      if (!world_.take(step, now_)) actOnMainThread(step);
  }
}

void ReferenceMonitor::actOnMainThread(const Step& step) {
  const auto& image = catalogue().at(static_cast<std::size_t>(step.which));
  if (step.kind == Kind::exclude) excluded_.insert(image.imagePath);
  if (step.kind == Kind::include) excluded_.erase(image.imagePath);
  if (step.kind == Kind::enable) isEnabled_ = step.variant % 2 != 0;
  if (step.kind == Kind::setTimeout) timeoutSeconds_ = step.amount;
  if (step.kind == Kind::volumeEvent && exists()) tick();
  if (!isOwned_) return;
  if (step.kind == Kind::ejectByUser) {
    queue_.push_back({Queued::userEjection, image.mountPoint, image.volumeName});
  }
  if (step.kind == Kind::restart) start();
  if (step.kind == Kind::quit) quit();
  if (step.kind == Kind::letGo) letGo();
}

/// A timer that is due together with another fires first if it was set up first.
void ReferenceMonitor::passTime(TimePoint::duration duration) {
  const auto end = elapsed_ + duration;
  while (timersRun_ && std::min(scanTimer_.due, idleTimer_.due) <= end) {
    const bool scans = scanTimer_.due <= idleTimer_.due;
    auto& timer = scans ? scanTimer_ : idleTimer_;
    moveTo(timer.due);
    timer.due += timer.interval;
    if (scans) {
      tick();
    } else {
      updateIdleTimes();
    }
  }
  moveTo(end);
}

void ReferenceMonitor::moveTo(TimePoint::duration elapsed) {
  now_ += elapsed - elapsed_;
  elapsed_ = elapsed;
}

void ReferenceMonitor::start() {
  timersRun_ = true;
  scanTimer_.due = elapsed_ + scanTimer_.interval;
  idleTimer_.due = elapsed_ + idleTimer_.interval;
  tick();
}

void ReferenceMonitor::quit() {
  waitForPendingEjects();
  timersRun_ = false;
}

void ReferenceMonitor::letGo() {
  quit();
  isOwned_ = false;
}

bool ReferenceMonitor::exists() const {
  const auto holds = [](const HandedOver& task) { return !task.terminates; };
  return isOwned_ || running_ > 0 || std::any_of(handedOver_.begin(), handedOver_.end(), holds);
}

void ReferenceMonitor::tick() {
  queue_.push_back({Queued::cycle});
}

void ReferenceMonitor::updateIdleTimes() {
  const auto now = now_;
  auto images = mountedImages_;
  std::set<std::size_t> toDrop;
  for (std::size_t at = 0; at < images.size(); ++at) {
    auto& image = images[at];
    const auto& path = image.imagePath;
    if (image.inUse || image.isExcluded) continue;
    if (mountTimes_.count(path) == 0 || lastUseTimes_.count(path) == 0) continue;
    const auto mounted = mountTimes_[path];
    const auto used = lastUseTimes_[path];
    const auto reference = used >= mounted ? used : mounted;
    image.idleSeconds = std::chrono::duration<double>(now - reference).count();
    if (isEnabled_ && timeoutSeconds_ <= image.idleSeconds) {
      queue_.push_back({Queued::ejection, image.mountPoint, image.volumeName});
      toDrop.insert(at);
      mountTimes_.erase(path);
      lastUseTimes_.erase(path);
    }
  }
  std::vector<DiskImage> kept;
  for (std::size_t at = 0; at < images.size(); ++at) {
    if (toDrop.count(at) == 0) kept.push_back(images[at]);
  }
  assign(kept);
}

bool ReferenceMonitor::runMain() {
  if (handedOver_.empty()) return false;
  const auto task = handedOver_.front();
  handedOver_.pop_front();
  if (task.terminates) {
    trace.push_back({"terminate"});
    if (++terminations_ == 1 && isOwned_) quit();
    return true;
  }
  mountTimes_ = task.mountTimes;
  lastUseTimes_ = task.lastUseTimes;
  assign(task.images);
  return true;
}

void ReferenceMonitor::waitForPendingEjects() {
  for (int look = 0; look < 30; ++look) {
    if (activeEjectCount_ == 0) return;
    sleep(std::chrono::microseconds(100'000));
  }
}

void ReferenceMonitor::assign(std::vector<DiskImage> images) {
  trace.push_back({"will change", mountedImages_});
  mountedImages_ = std::move(images);
  trace.push_back({"published", mountedImages_});
}

}  // namespace quillmont::testing
