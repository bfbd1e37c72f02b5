// The name under which Objective-C headers look for the blocks runtime.
#include <Block.h>
