// What a control calls, as a function.
#pragma once

#import <Foundation/Foundation.h>

#include <functional>

/// The target of a control; the action is `fire:`. Controls do not keep their targets: whoever made
/// the control holds this too.
@interface QMAction : NSObject {
  std::function<void(id)> function_;
}
- (instancetype)initWithFunction:(const std::function<void(id)>&)function;
- (void)fire:(id)sender;
@end
