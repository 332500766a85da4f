#import "support/TestSupport.h"

bool RunMainLoopUntil(const std::function<bool()> &done, double seconds) {
  NSDate *limit = [NSDate dateWithTimeIntervalSinceNow:seconds];
  while (!done()) {
    if ([limit timeIntervalSinceNow] <= 0) {
      return false;
    }
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                             beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.01]];
    [pool drain];
  }
  return true;
}

bool HasWindowServer() {
  return NSApp != nil;
}
