// What a run loop or a timer calls, as a function.
#pragma once

#import <Foundation/Foundation.h>

#include <functional>

@interface QMCall : NSObject {
  std::function<void()> function_;
}
- (instancetype)initWithFunction:(std::function<void()>)function;
- (void)run;
/// The same, for a timer; what is called may end the timer, which keeps this object.
- (void)fire:(NSTimer*)timer;
@end
