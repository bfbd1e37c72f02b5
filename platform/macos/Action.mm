#include "platform/macos/Action.h"

@implementation QMAction

- (instancetype)initWithFunction:(const std::function<void(id)>&)function {
  self = [super init];
  if (self != nil) function_ = function;
  return self;
}

/// On a copy: what it calls may do away with the control, and with this object.
- (void)fire:(id)sender {
  const auto function = function_;
  if (function) function(sender);
}

@end
