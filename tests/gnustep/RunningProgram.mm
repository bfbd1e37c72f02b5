#include "tests/gnustep/RunningProgram.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>

#include "platform/Application.h"

namespace quillmont::testing {
namespace {

std::atomic<bool> mayEnd = false;

constexpr int kEndedTooEarly = 4;

Host hostWith(const ToolPaths& tools) {
  Host result = Host::current();
  result.tools = tools;
  return result;
}

}  // namespace

RunningProgram& RunningProgram::current() {
  static auto& program = *new RunningProgram;
  return program;
}

RunningProgram::RunningProgram() : host_(hostWith(tools_.paths())) {
  delegate_ = AppDelegate::make(host_, {[this]() -> ConfigManager& {
                                          if (!config_)
                                            config_ = std::make_unique<ConfigManager>(host_);
                                          return *config_;
                                        },
                                        [this]() -> QuillmontDaemon& {
                                          if (!monitor_)
                                            monitor_ = QuillmontDaemon::make(host_, *config_);
                                          return *monitor_;
                                        }});
  host_.application.setDelegate(delegate_.get());
  std::atexit([] {
    if (!mayEnd) std::_Exit(kEndedTooEarly);
    std::_Exit(::testing::Test::HasFailure() ? 1 : 0);
  });
}

void RunningProgram::run() {
  host_.application.run();
}

bool RunningProgram::eventually(const std::function<bool()>& condition) {
  return testing::eventually([&] { return ask(condition); }, std::chrono::seconds(10));
}

void RunningProgram::expectEnd() {
  mayEnd = true;
}

}  // namespace quillmont::testing
