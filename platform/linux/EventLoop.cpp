#include "platform/linux/EventLoop.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cmath>
#include <system_error>

#include "platform/posix/errors.h"
#include "platform/posix/timer_interval.h"

namespace quillmont {
namespace {

constexpr std::uint64_t kTasksKey = 0;

Descriptor checked(int fd, const char* what) {
  if (fd < 0) throw std::system_error(errno, std::generic_category(), what);
  return Descriptor(fd);
}

timespec timerInterval(double seconds) {
  const double bounded = boundedInterval(seconds);
  timespec result = {};
  result.tv_sec = static_cast<time_t>(bounded);
  result.tv_nsec = static_cast<long>((bounded - std::floor(bounded)) * 1e9);
  return result;
}

/// What a firing needs, held by the loop while the timer's own task may be destroying the timer.
struct TimerState {
  Descriptor fd;
  Task task;
  bool firing = false;

  void fire() {
    std::uint64_t expirations = 0;
    if (read(fd.get(), &expirations, sizeof expirations) != sizeof expirations || firing) return;
    firing = true;
    task();
    firing = false;
  }
};

class LoopTimer : public Timer {
 public:
  LoopTimer(EventLoop& loop, const std::shared_ptr<TimerState>& state)
      : watch_(loop.watch(state->fd.get(), EPOLLIN, [state](std::uint32_t) { state->fire(); })) {}
  void invalidate() override { watch_.reset(); }

 private:
  EventLoop::Watch watch_;
};

}  // namespace

EventLoop::Watch& EventLoop::Watch::operator=(Watch&& other) noexcept {
  std::swap(loop_, other.loop_);
  std::swap(key_, other.key_);
  return *this;
}

void EventLoop::Watch::reset() {
  if (auto* loop = std::exchange(loop_, nullptr)) loop->remove(key_);
}

EventLoop::EventLoop()
    : epoll_(checked(epoll_create1(EPOLL_CLOEXEC), "epoll_create1")),
      tasksReady_(checked(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd")) {
  epoll_event event = {};
  event.events = EPOLLIN;
  event.data.u64 = kTasksKey;
  if (epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, tasksReady_.get(), &event) != 0) {
    throw std::system_error(errno, std::generic_category(), "epoll_ctl");
  }
}

EventLoop::~EventLoop() = default;

void EventLoop::async(Task task) {
  const std::lock_guard guard(tasksLock_);
  const bool first = tasks_.empty();
  tasks_.push_back(std::move(task));
  ++posted_;
  if (first) eventfd_write(tasksReady_.get(), 1);
}

std::unique_ptr<Timer> EventLoop::scheduleRepeatingTimer(double interval, Task task) {
  auto state = std::make_shared<TimerState>();
  state->fd =
      checked(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK), "timerfd_create");
  state->task = std::move(task);
  const timespec period = timerInterval(interval);
  const itimerspec schedule = {period, period};
  timerfd_settime(state->fd.get(), 0, &schedule, nullptr);
  return std::make_unique<LoopTimer>(*this, state);
}

EventLoop::Watch EventLoop::watch(int fd, std::uint32_t epollEvents, Handler handler) {
  auto source = std::make_shared<Source>();
  source->fd = fd;
  source->handler = std::move(handler);
  return Watch(*this, add(std::move(source), epollEvents));
}

// An announcement is told once, to the first that polls. When a toolkit polls descriptor(), the
// kernel asks the file on its behalf, and epoll_wait() would then find nothing: the event is lost.
// So the file is opened twice. One only wakes; the other, which nobody else polls, tells.
Result<EventLoop::Watch> EventLoop::watchAnnouncements(const std::string& path, Task handler) {
  auto source = std::make_shared<Source>();
  source->teller = Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  source->waker = Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!source->waker || !source->teller) return systemError("cannot open " + path, errno);
  source->fd = source->waker.get();
  source->handler = [task = std::move(handler)](std::uint32_t) { task(); };
  // EPOLLIN would be true at all times.
  return Watch(*this, add(std::move(source), EPOLLPRI | EPOLLERR));
}

void EventLoop::run() {
  epoll_event event;
  while (!stopped_) {
    if (next(event, -1)) serve(event, postedTasks());
    serveAnnouncements();
  }
}

void EventLoop::stop() {
  stopped_ = true;
  async([] {});  // wakes a loop that waits
}

void EventLoop::dispatchPending() {
  const auto lastTask = postedTasks();
  epoll_event event;
  for (auto rounds = sources_.size() + 1; rounds > 0 && next(event, 0); --rounds) {
    serve(event, lastTask);
  }
  serveAnnouncements();
}

std::uint64_t EventLoop::add(std::shared_ptr<Source> source, std::uint32_t epollEvents) {
  const auto key = ++lastKey_;
  epoll_event event = {};
  event.events = epollEvents;
  event.data.u64 = key;
  if (epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, source->fd, &event) != 0) {
    throw std::system_error(errno, std::generic_category(), "epoll_ctl");
  }
  sources_.emplace(key, std::move(source));
  return key;
}

void EventLoop::remove(std::uint64_t key) {
  const auto found = sources_.find(key);
  if (found == sources_.end()) return;
  // What the handler holds may well remove other watches when it goes: let it go last.
  const auto source = std::move(found->second);
  sources_.erase(found);
  epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, source->fd, nullptr);
}

/// One event at a time: an event fetched in advance might have been served by a nested dispatch, or
/// its source be gone, when its turn came.
bool EventLoop::next(epoll_event& event, int timeout) {
  return !stopped_ && epoll_wait(epoll_.get(), &event, 1, timeout) == 1;
}

void EventLoop::serve(const epoll_event& event, std::uint64_t lastTask) {
  if (event.data.u64 == kTasksKey) return runTasks(lastTask);
  const auto found = sources_.find(event.data.u64);
  if (found == sources_.end() || found->second->teller) return;
  const auto source = found->second;
  source->handler(event.events);
}

void EventLoop::serveAnnouncements() {
  for (auto entry = sources_.begin(); entry != sources_.end() && !stopped_;) {
    const auto [key, source] = *entry;
    pollfd teller = {source->teller.get(), POLLPRI, 0};
    if (source->teller && poll(&teller, 1, 0) == 1) source->handler(EPOLLPRI);
    entry = sources_.upper_bound(key);
  }
}

void EventLoop::runTasks(std::uint64_t lastTask) {
  while (auto task = takeTask(lastTask)) (*task)();
}

std::optional<Task> EventLoop::takeTask(std::uint64_t lastTask) {
  const std::lock_guard guard(tasksLock_);
  if (stopped_ || tasks_.empty() || posted_ - tasks_.size() >= lastTask) return std::nullopt;
  std::optional<Task> task(std::move(tasks_.front()));
  tasks_.pop_front();
  eventfd_t ignored;
  if (tasks_.empty()) eventfd_read(tasksReady_.get(), &ignored);
  return task;
}

std::uint64_t EventLoop::postedTasks() {
  const std::lock_guard guard(tasksLock_);
  return posted_;
}

}  // namespace quillmont
