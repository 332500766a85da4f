// Local event monitors: every event that NSApplication dispatches passes
// through the matching monitors, in order, before it is dispatched.

#import <AppKit/AppKit.h>

#import "support/TestSupport.h"

namespace {

class LocalEventMonitors : public KeyWindowTest {
 protected:
  void TearDown() override {
    for (id monitor in monitors_.get()) {
      [NSEvent removeMonitor:monitor];
    }
    [monitors_ removeAllObjects];
    KeyWindowTest::TearDown();
  }
  void Send(NSString *characters, NSUInteger flags = 0) {
    [NSApp sendEvent:KeyDownEvent(window_, characters, characters, flags)];
  }
  void Keep(id monitor) { [monitors_ addObject:monitor]; }

  Owned<NSMutableArray> monitors_{[NSMutableArray new]};
};

TEST_F(LocalEventMonitors, WithoutMonitorsEventsReachTheFirstResponder) {
  Send(@"a");
  EXPECT_EQ([received() count], 1u);
}

TEST_F(LocalEventMonitors, MonitorsRunInOrderAndPassTheirResultOn) {
  NSMutableArray *log = [NSMutableArray array];
  Keep([NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                             handler:^NSEvent *(NSEvent *event) {
                                               [log addObject:[@"first:" stringByAppendingString:[event characters]]];
                                               return KeyDownEvent([event window], @"b", @"b", 0);
                                             }]);
  Keep([NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                             handler:^NSEvent *(NSEvent *event) {
                                               [log addObject:[@"second:" stringByAppendingString:[event characters]]];
                                               return event;
                                             }]);
  Send(@"a");
  EXPECT_NSEQ(log, (@[ @"first:a", @"second:b" ]));
  EXPECT_NSEQ(received(), (@[ @"b" ]));
}

TEST_F(LocalEventMonitors, NilSwallowsTheEventAndLaterMonitorsDoNotSeeIt) {
  __block int laterCalls = 0;
  Keep([NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                             handler:^NSEvent *(NSEvent *event) {
                                               return nil;
                                             }]);
  Keep([NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                             handler:^NSEvent *(NSEvent *event) {
                                               laterCalls++;
                                               return event;
                                             }]);
  Send(@"a");
  EXPECT_EQ(laterCalls, 0);
  EXPECT_EQ([received() count], 0u);
}

TEST_F(LocalEventMonitors, EventsOutsideTheMaskAreNotSeen) {
  __block int calls = 0;
  Keep([NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyUp | NSEventMaskLeftMouseDown
                                             handler:^NSEvent *(NSEvent *event) {
                                               calls++;
                                               return nil;
                                             }]);
  Send(@"a");
  EXPECT_EQ(calls, 0);
  EXPECT_EQ([received() count], 1u);
}

TEST_F(LocalEventMonitors, RemovedMonitorsStopAndRemovalInsideAHandlerIsSafe) {
  __block int calls = 0;
  __block id selfRemoving = nil;
  selfRemoving = [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                       handler:^NSEvent *(NSEvent *event) {
                                                         calls++;
                                                         [NSEvent removeMonitor:selfRemoving];
                                                         return event;
                                                       }];
  Send(@"a");
  Send(@"b");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ([received() count], 2u);

  // A handler that removes a later monitor: that one no longer runs.
  __block int laterCalls = 0;
  __block id later = nil;
  Keep([NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                             handler:^NSEvent *(NSEvent *event) {
                                               [NSEvent removeMonitor:later];
                                               return event;
                                             }]);
  later = [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                handler:^NSEvent *(NSEvent *event) {
                                                  laterCalls++;
                                                  return event;
                                                }];
  Send(@"c");
  EXPECT_EQ(laterCalls, 0);
}

TEST_F(LocalEventMonitors, BadArgumentsAreIgnored) {
  EXPECT_EQ([NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskAny handler:NullOf<NSEvent *(^)(NSEvent *)>()], nil);
  [NSEvent removeMonitor:NullOf<id>()];
  [NSEvent removeMonitor:@"not a monitor"];
  Send(@"a");
  EXPECT_EQ([received() count], 1u);
}

}  // namespace
