// The main thread's run loop over one epoll descriptor.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/Result.h"
#include "platform/RunLoop.h"
#include "platform/posix/Descriptor.h"

struct epoll_event;

namespace quillmont {

/// Main thread, but for async() and stop(), which any thread may call. It is driven by run(), or by
/// a toolkit's loop that watches descriptor() and calls dispatchPending(). Tasks, timers and
/// handlers may dispatch again themselves, as a modal dialog does: nothing is run twice, nothing is
/// lost, and a timer whose task is under way does not fire again.
///
/// A system that is out of descriptors shows as std::system_error from the calls that need one.
class EventLoop : public RunLoop {
 public:
  /// Ends the watching when it is destroyed. Must not outlive the loop.
  class [[nodiscard]] Watch {
   public:
    Watch() = default;
    Watch(EventLoop& loop, std::uint64_t key) : loop_(&loop), key_(key) {}
    Watch(Watch&& other) noexcept : loop_(std::exchange(other.loop_, nullptr)), key_(other.key_) {}
    Watch& operator=(Watch&& other) noexcept;
    ~Watch() { reset(); }
    void reset();

   private:
    EventLoop* loop_ = nullptr;
    std::uint64_t key_ = 0;
  };

  using Handler = std::function<void(std::uint32_t epollEvents)>;

  EventLoop();
  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;
  ~EventLoop() override;

  void async(Task task) override;
  std::unique_ptr<Timer> scheduleRepeatingTimer(double interval, Task task) override;

  /// Calls `handler` as long as `fd` is ready for one of `epollEvents` (EPOLLIN ...). The
  /// descriptor stays the caller's and stays open while it is watched. A handler takes what is
  /// ready before it does anything that may dispatch. For POLLPRI of /proc and /sys use the next
  /// one.
  Watch watch(int fd, std::uint32_t epollEvents, Handler handler);

  /// Calls `handler` after the kernel has announced a change of the file at `path`, one of those in
  /// /proc and /sys that announce by POLLPRI (/proc/self/mountinfo). Changes from this call on
  /// count; several may come as one. Failure: the file cannot be opened.
  Result<Watch> watchAnnouncements(const std::string& path, Task handler);

  /// Serves until stop(). Returns at once if that was called before.
  void run();

  /// For good: nothing is served afterwards, by run() or otherwise.
  void stop();

  /// Readable (POLLIN) whenever dispatchPending() has something to do.
  int descriptor() const { return epoll_.get(); }

  /// Serves what is ready now and does not wait. Tasks posted meanwhile are left for the next call.
  void dispatchPending();

 private:
  struct Source {
    int fd = -1;
    Handler handler;
    Descriptor waker, teller;  ///< of announcements only
  };

  std::uint64_t add(std::shared_ptr<Source> source, std::uint32_t epollEvents);
  void remove(std::uint64_t key);
  bool next(epoll_event& event, int timeout);
  void serve(const epoll_event& event, std::uint64_t lastTask);
  void serveAnnouncements();
  void runTasks(std::uint64_t lastTask);
  std::optional<Task> takeTask(std::uint64_t lastTask);
  std::uint64_t postedTasks();

  Descriptor epoll_;
  std::map<std::uint64_t, std::shared_ptr<Source>> sources_;
  std::uint64_t lastKey_ = 0;
  std::atomic<bool> stopped_ = false;

  Descriptor tasksReady_;  ///< an eventfd, readable exactly while tasks_ is not empty
  std::mutex tasksLock_;   ///< guards the two below and the state of tasksReady_
  std::deque<Task> tasks_;
  std::uint64_t posted_ = 0;  ///< how many tasks there ever were: the last one's number
};

}  // namespace quillmont
