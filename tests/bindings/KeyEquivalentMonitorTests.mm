// Key-equivalent monitors with real key events through NSApplication.

#import <Talvo/NSEvent+Shortcuts.h>

#import "support/TestSupport.h"

namespace {

class KeyEquivalentMonitor : public KeyWindowTest {
 protected:
  void TearDown() override {
    [NSEvent removeMonitor:monitor_];
    KeyWindowTest::TearDown();
  }
  void Install(NSString *key, uint64_t flags) {
    monitor_ = [NSEvent addLocalMonitorForEventsMatchingKeyEquivalent:key
                                                    withModifierFlags:flags
                                                              handler:^NSEvent *(NSEvent *event) {
                                                                fired_++;
                                                                return nil;
                                                              }];
  }
  // Sends a key and answers whether the handler fired for it (and so
  // swallowed it).
  bool Fires(NSString *characters, NSString *ignoringModifiers, NSUInteger flags) {
    int before = fired_;
    NSUInteger delivered = [received() count];
    [NSApp sendEvent:KeyDownEvent(window_, characters, ignoringModifiers, flags)];
    bool fired = fired_ == before + 1;
    EXPECT_EQ([received() count], delivered + (fired ? 0 : 1)) << "swallowed iff fired";
    return fired;
  }

  id monitor_ = nil;
  int fired_ = 0;
};

TEST_F(KeyEquivalentMonitor, CommandSFiresWithExtraModifiersButNotPlain) {
  Install(@"s", NSEventModifierFlagCommand);
  EXPECT_TRUE(Fires(@"s", @"s", NSEventModifierFlagCommand));
  EXPECT_TRUE(Fires(@"S", @"s", NSEventModifierFlagCommand | NSEventModifierFlagShift));
  EXPECT_FALSE(Fires(@"s", @"s", 0));
  EXPECT_FALSE(Fires(@"S", @"S", NSEventModifierFlagCommand));  // case-sensitive
  EXPECT_FALSE(Fires(@"d", @"d", NSEventModifierFlagCommand));
}

TEST_F(KeyEquivalentMonitor, NoFlagsMatchesAnyModifiersAndNilKeyMatchesAnyKey) {
  Install(@"s", 0);
  EXPECT_TRUE(Fires(@"s", @"s", 0));
  EXPECT_TRUE(Fires(@"s", @"s", NSEventModifierFlagOption));
  [NSEvent removeMonitor:monitor_];
  Install(nil, NSEventModifierFlagControl);
  EXPECT_TRUE(Fires(@"q", @"q", NSEventModifierFlagControl));
  EXPECT_FALSE(Fires(@"q", @"q", NSEventModifierFlagCommand));
}

TEST_F(KeyEquivalentMonitor, DeviceDependentFlagsNeverMatch) {
  Install(@"s", NSEventModifierFlagCommand | 0x1);
  EXPECT_FALSE(Fires(@"s", @"s", NSEventModifierFlagCommand | 0x1));
}

TEST_F(KeyEquivalentMonitor, NilHandlerInstallsNothing) {
  EXPECT_EQ([NSEvent addLocalMonitorForEventsMatchingKeyEquivalent:@"s" withModifierFlags:0 handler:NullOf<NSEvent *(^)(NSEvent *)>()],
            nil);
}

}  // namespace
