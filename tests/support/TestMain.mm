// The test runner: an application object (so that events, windows and the
// main run loop work as in an application), then GoogleTest.

#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  // GNUstep maps an application-icon window unless told not to.
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSSuppressAppIcon"]];
  testing::InitGoogleTest(&argc, argv);
  bool listing = testing::GTEST_FLAG(list_tests);
  if (!listing && getenv("DISPLAY") != NULL) {
    [NSApplication sharedApplication];
  }
  int status = RUN_ALL_TESTS();
  [pool drain];
  return status;
}
