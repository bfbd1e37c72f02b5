#include "platform/macos/Call.h"

#include <utility>

#include "platform/macos/Retained.h"

@implementation QMCall

- (instancetype)initWithFunction:(std::function<void()>)function {
  self = [super init];
  if (self != nil) function_ = std::move(function);
  return self;
}

- (void)run {
  @autoreleasepool {
    function_();
  }
}

- (void)fire:(id)sender {
  (void)sender;
  const auto held = quillmont::share(self);
  [self run];
}

@end
