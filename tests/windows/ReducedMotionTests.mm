// Reduced motion: the workspace setting read from the user defaults, and
// the effects going straight to their end state with the same
// notifications in the same order.

#import <Talvo/Talvo.h>

#import "WindowTestSupport.h"
#import "windows/VXAnimationWindow+Private.h"

namespace {

NSString *const kReduceMotion = @"reduceMotion";

// Counts the workspace's accessibility notifications.
int gOptionChanges = 0;

// Sets or removes a default in the registration domain, which lives in
// this process only (tests run in parallel share the persistent domains'
// file), then tells observers as a change of the persistent domains does.
void SetRegistered(NSString *key, id value) {
  NSUserDefaults *defaults = [NSUserDefaults standardUserDefaults];
  NSMutableDictionary *domain =
      [[[defaults volatileDomainForName:NSRegistrationDomain] mutableCopy] autorelease];
  if (domain == nil) domain = [NSMutableDictionary dictionary];
  if (value != nil) {
    [domain setObject:value forKey:key];
  } else {
    [domain removeObjectForKey:key];
  }
  [defaults removeVolatileDomainForName:NSRegistrationDomain];
  [defaults setVolatileDomain:domain forName:NSRegistrationDomain];
  [[NSNotificationCenter defaultCenter] postNotificationName:NSUserDefaultsDidChangeNotification
                                                      object:defaults];
}

void SetReduceMotion(BOOL reduce) { SetRegistered(kReduceMotion, reduce ? @"YES" : nil); }

class ReducedMotion : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    if (IsSkipped()) return;
    log_.reset([[TVWindowNotificationLog alloc] init]);
    SetReduceMotion(YES);
  }
  void TearDown() override {
    SetReduceMotion(NO);
    WindowTest::TearDown();
  }
  void Watch(NSWindow *window) { [log_.get() observeZoomEffectOf:window]; }
  NSArray *Names() { return [log_.get() names]; }
  // Animation windows made and still around (on screen or not).
  NSUInteger AnimationWindows() {
    NSUInteger count = 0;
    for (NSWindow *window in [NSApp windows]) {
      count += [window isKindOfClass:[_VXAnimationWindow class]] && [window isVisible];
    }
    return count;
  }
  Owned<TVWindowNotificationLog> log_;
};

NSArray *WillThenDid() {
  return [NSArray arrayWithObjects:VXWindowWillStartZoomEffect, VXWindowDidEndZoomEffect, nil];
}

}  // namespace

@interface TVOptionChangeCounter : NSObject
@end

@implementation TVOptionChangeCounter
- (void)optionsChanged:(NSNotification *)notification {
  gOptionChanges++;
}
@end

TEST_F(ReducedMotion, WorkspaceReadsTheDefaultAndPostsItsChanges) {
  NSWorkspace *workspace = [NSWorkspace sharedWorkspace];
  EXPECT_TRUE([workspace accessibilityDisplayShouldReduceMotion]);
  SetReduceMotion(NO);
  EXPECT_FALSE([workspace accessibilityDisplayShouldReduceMotion]);
  EXPECT_FALSE([workspace accessibilityDisplayShouldReduceTransparency]);
  EXPECT_FALSE([workspace accessibilityDisplayShouldIncreaseContrast]);

  Owned<TVOptionChangeCounter> counter([[TVOptionChangeCounter alloc] init]);
  [[workspace notificationCenter] addObserver:counter.get()
                                     selector:@selector(optionsChanged:)
                                         name:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
                                       object:nil];
  gOptionChanges = 0;
  SetReduceMotion(YES);
  EXPECT_EQ(gOptionChanges, 1);
  SetReduceMotion(YES);
  SetRegistered(@"TalvoSomethingElse", @"x");
  SetRegistered(@"TalvoSomethingElse", nil);
  EXPECT_EQ(gOptionChanges, 1) << "only a change of an option posts";
  SetRegistered(@"increaseContrast", @"YES");
  EXPECT_TRUE([workspace accessibilityDisplayShouldIncreaseContrast]);
  EXPECT_EQ(gOptionChanges, 2);
  SetRegistered(@"increaseContrast", nil);
  EXPECT_EQ(gOptionChanges, 3);
  [[workspace notificationCenter] removeObserver:counter.get()];
}

TEST_F(ReducedMotion, ZoomInShowsTheWindowAtOnceAndStillPostsBoth) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 300, 200), NSTitledWindowMask,
                                         [NSColor greenColor]));
  [window.get() setAlphaValue:0.5];
  Watch(window);
  [window.get() makeKeyAndOrderFrontWithZoomEffectFromRect:NSMakeRect(150, 150, 20, 10)];
  EXPECT_TRUE([window.get() isVisible]);
  EXPECT_TRUE([window.get() isKeyWindow]);
  EXPECT_NEAR([window.get() alphaValue], 1.0, 1e-6) << "where the titled fade ends";
  EXPECT_NSEQ(Names(), [NSArray arrayWithObject:VXWindowWillStartZoomEffect])
      << "the end comes on the next turn, as after an animation";
  RunLoopTurn();
  EXPECT_NSEQ(Names(), WillThenDid());
  EXPECT_EQ(AnimationWindows(), 0u);
  EXPECT_RECT_NEAR([window.get() frame], 100, 100, 300, 200);
  [window.get() orderOut:nil];

  // Ordered front without becoming key; a borderless window keeps its alpha.
  Owned<NSWindow> borderless(NewFilledWindow(NSMakeRect(50, 50, 100, 80), NSBorderlessWindowMask,
                                             [NSColor redColor]));
  [borderless.get() setAlphaValue:0.8];
  [borderless.get() orderFrontWithZoomEffectFromRect:NSMakeRect(0, 0, 10, 10)];
  EXPECT_TRUE([borderless.get() isVisible]);
  EXPECT_FALSE([borderless.get() isKeyWindow]);
  EXPECT_NEAR([borderless.get() alphaValue], 0.8, 1e-6);
  RunLoopTurn();
  EXPECT_EQ(AnimationWindows(), 0u);
  [borderless.get() orderOut:nil];
}

TEST_F(ReducedMotion, ZoomOutHidesTheWindowAtOnceAndStillPostsBoth) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 300, 200), NSTitledWindowMask,
                                         [NSColor greenColor]));
  [window.get() makeKeyAndOrderFront:nil];
  Watch(window);
  [window.get() orderOutWithZoomEffectToRect:NSMakeRect(10, 10, 20, 20)];
  EXPECT_FALSE([window.get() isVisible]);
  RunLoopTurn();
  EXPECT_NSEQ(Names(), WillThenDid());
  EXPECT_EQ(AnimationWindows(), 0u);

  // A zoom out still removes the picture of an effect running from before
  // the setting changed.
  SetReduceMotion(NO);
  [window.get() makeKeyAndOrderFrontWithZoomEffectFromRect:NSMakeRect(150, 150, 20, 10)];
  RunLoopTurn();
  ASSERT_EQ(AnimationWindows(), 1u);
  SetReduceMotion(YES);
  [window.get() orderOutKeyWithZoomEffectToRect:NSMakeRect(10, 10, 20, 20)];
  EXPECT_EQ(AnimationWindows(), 0u);
  EXPECT_FALSE([window.get() isVisible]);
  Advance(0.0);
  Advance(0.5);
  RunLoopTurn();
  Advance(0.5);  // the titled window's fade, begun as the zoom in ended
  Pump();
  EXPECT_FALSE(AnimationWindowOnScreen());
}

TEST_F(ReducedMotion, PopAndBounceEndAtOnceAndShakeStaysStill) {
  Owned<TVWindowFrameRecorder> window([TVWindowFrameRecorder newBorderlessWithContentRect:NSMakeRect(20, 20, 60, 30)]);
  NSDate *start = [NSDate date];
  [window.get() makeKeyAndOrderFrontWithPopEffect];
  [[window.get() frames] removeAllObjects];
  [window.get() setWithBounceAnimationFrame:NSMakeRect(0, 0, 100, 50) duration:0.4 curve:0];
  EXPECT_LT(-[start timeIntervalSinceNow], 0.3) << "no 0.4 s pop, no 0.4 s bounce";
  EXPECT_TRUE([window.get() isVisible]);
  EXPECT_EQ(AnimationWindows(), 0u);
  ASSERT_EQ([[window.get() frames] count], 1u) << "no overshoot on the way";
  EXPECT_RECT_NEAR([[[window.get() frames] lastObject] rectValue], 0, 0, 100, 50);
  [window.get() orderOut:nil];

  // The same keyframes as with motion, every one at the frame's origin.
  CAKeyframeAnimation *shake =
      [CAKeyframeAnimation shakeAnimationInFrame:NSMakeRect(100, 200, 400, 300)
                                      withVigour:0.05
                                andNumberOfShake:3];
  std::vector<NSPoint> points;
  CGPathApply([shake path], &points, [](void *info, const CGPathElement *element) {
    if (element->type != kCGPathElementCloseSubpath) {
      static_cast<std::vector<NSPoint> *>(info)->push_back(
          NSMakePoint(element->points[0].x, element->points[0].y));
    }
  });
  ASSERT_EQ(points.size(), 7u);
  for (NSPoint p : points) EXPECT_POINT_NEAR(p, 100, 200);
}
