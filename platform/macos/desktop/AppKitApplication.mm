#include "platform/macos/desktop/AppKitApplication.h"

#import <AppKit/AppKit.h>
#include <signal.h>

#include <functional>
#include <thread>
#include <utility>

#include "platform/macos/Retained.h"
#include "platform/posix/termination_signals.h"

@interface QMApplicationDelegate : NSObject <NSApplicationDelegate> {
 @public
  std::function<void()> didFinishLaunching_;
  std::function<void()> willTerminate_;
}
@end

@implementation QMApplicationDelegate

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  (void)notification;
  didFinishLaunching_();
}

- (void)applicationWillTerminate:(NSNotification*)notification {
  (void)notification;
  willTerminate_();
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)application {
  (void)application;
  return NO;
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)application {
  (void)application;
  return YES;
}

@end

namespace quillmont {

struct AppKitApplication::State {
  ApplicationDelegate* delegate = nullptr;
  bool launched = false, terminating = false, told = false;

  void didFinishLaunching() {
    if (std::exchange(launched, true) || terminating || !delegate) return;
    delegate->applicationDidFinishLaunching();
  }

  void willTerminate() {
    terminating = true;
    if (std::exchange(told, true) || !delegate) return;
    delegate->applicationWillTerminate();
  }

  /// AppKit may refuse while another window of its own is modal; then it can be asked again.
  void terminate() {
    if (terminating) return;
    terminating = true;
    [NSApp terminate:nil];
    terminating = told;
  }
};

/// AppKit keeps no delegate alive.
class AppKitApplication::Native {
 public:
  explicit Native(const std::shared_ptr<State>& state)
      : delegate_(adopt([[QMApplicationDelegate alloc] init])) {
    delegate_.get()->didFinishLaunching_ = [state] { state->didFinishLaunching(); };
    delegate_.get()->willTerminate_ = [state] { state->willTerminate(); };
    NSApplication* const application = [NSApplication sharedApplication];
    if ([application activationPolicy] == NSApplicationActivationPolicyProhibited) {
      [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
    }
    [application setDelegate:delegate_];
    // Or else it would come back after a login by itself, whatever the user has chosen.
    [application disableRelaunchOnLogin];
  }
  ~Native() { [NSApp setDelegate:nil]; }
  Native(const Native&) = delete;
  Native& operator=(const Native&) = delete;

 private:
  const Retained<QMApplicationDelegate*> delegate_;
};

namespace {

/// A thread waits for the signals, since a handler could do next to nothing and AppKit's loop does
/// not know of them. It ends with the process.
void onTerminationSignal(RunLoop& loop, const Task& task) {
  const sigset_t signals = blockTerminationSignals();
  std::thread([signals, &loop, task] {
    int number = 0;
    while (sigwait(&signals, &number) == 0) loop.async(task);
  }).detach();
}

}  // namespace

AppKitApplication::AppKitApplication(RunLoop& loop) : state_(std::make_shared<State>()) {
  onTerminationSignal(loop, [weak = std::weak_ptr(state_)] {
    if (const auto state = weak.lock()) state->terminate();
  });
  @autoreleasepool {
    native_ = std::make_unique<Native>(state_);
  }
}

AppKitApplication::~AppKitApplication() = default;

void AppKitApplication::setDelegate(ApplicationDelegate* delegate) {
  state_->delegate = delegate;
}

void AppKitApplication::run() {
  @autoreleasepool {
    [NSApp run];
  }
}

void AppKitApplication::terminate() {
  state_->terminate();
}

bool AppKitApplication::isTerminating() const {
  return state_->terminating;
}

}  // namespace quillmont
