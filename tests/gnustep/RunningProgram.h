// The whole program on its desktop, for tests that use it as a user would.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <future>
#include <memory>
#include <string>
#include <type_traits>

#include "app/AppDelegate.h"
#include "monitor/QuillmontDaemon.h"
#include "platform/Host.h"
#include "platform/RunLoop.h"
#include "settings/ConfigManager.h"
#include "tests/gnustep/PlayedTools.h"

namespace quillmont::testing {

/// A real host's program, but for its tools, which are played. It has the main thread; the test
/// runs beside it on a thread of its own, clicks with a real pointer, and asks the main thread what
/// it wants to know.
class RunningProgram {
 public:
  /// The one of this process, made on the main thread before any test.
  static RunningProgram& current();

  /// Serves the main thread until the process ends.
  void run();

  /// Runs `question` on the main thread; its answer.
  template <class Question>
  auto ask(Question question) -> std::invoke_result_t<Question> {
    std::packaged_task<std::invoke_result_t<Question>()> task(std::move(question));
    auto answer = task.get_future();
    host().mainRunLoop.async([&task] { task(); });
    return answer.get();
  }

  /// Asks `condition` on the main thread until it holds; false if it does not within 10 seconds.
  bool eventually(const std::function<bool()>& condition);

  /// The process may end from now on; its status tells whether the test has failed.
  void expectEnd();

  const Host& host() const { return host_; }
  PlayedTools& tools() { return tools_; }
  ConfigManager& config() { return *config_; }
  QuillmontDaemon& monitor() { return *monitor_; }

 private:
  RunningProgram();

  PlayedTools tools_;
  Host host_;
  std::unique_ptr<ConfigManager> config_;
  std::shared_ptr<QuillmontDaemon> monitor_;
  std::shared_ptr<AppDelegate> delegate_;
};

}  // namespace quillmont::testing
