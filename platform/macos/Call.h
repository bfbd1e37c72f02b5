// What a run loop, a timer or a control calls, as a function.
#pragma once

#import <Foundation/Foundation.h>

#include <functional>

/// Controls do not keep their targets: whoever made the control holds this too.
@interface QMCall : NSObject {
  std::function<void()> function_;
}
- (instancetype)initWithFunction:(std::function<void()>)function;
- (void)run;
/// The same, as an action; what is called may do away with the sender, and with this object.
- (void)fire:(id)sender;
@end
