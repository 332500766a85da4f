// Zoom and pop effects on real windows, the animation clock driven by hand.

#import <Talvo/Talvo.h>

#import "WindowTestSupport.h"
#import "windows/TVWindowPlatform+Private.h"
#import "windows/VXAnimationWindow+Private.h"

namespace {

class ZoomEffect : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    if (IsSkipped()) return;
    log_.reset([[TVWindowNotificationLog alloc] init]);
  }
  void Watch(NSWindow *window) { [log_.get() observeZoomEffectOf:window]; }
  NSArray *Names() { return [log_.get() names]; }
  _VXAnimationWindow *VisibleAnimationWindow() {
    for (NSWindow *window in [NSApp windows]) {
      if ([window isKindOfClass:[_VXAnimationWindow class]] && [window isVisible]) {
        return (_VXAnimationWindow *)window;
      }
    }
    return nil;
  }
  // Runs the zoom's dispatched half.
  void Dispatched() { RunLoopTurn(); }
  Owned<TVWindowNotificationLog> log_;
};

NSArray *Expected(NSString *first, NSString *second = nil) {
  return [NSArray arrayWithObjects:first, second, nil];
}

}  // namespace

TEST_F(ZoomEffect, BorderlessZoomInShowsThePictureThenTheWindow) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 200, 100), NSBorderlessWindowMask,
                                         [NSColor greenColor]));
  [window.get() setAlphaValue:0.8];
  Watch(window);
  NSInteger behavior = TVAnimationBehavior(window);
  [window.get() orderFrontWithZoomEffectFromRect:NSMakeRect(150, 150, 20, 10)];
  EXPECT_NSEQ(Names(), Expected(VXWindowWillStartZoomEffect)) << "posted before the call returns";
  EXPECT_FALSE([window.get() isVisible]) << "shown and hidden again";
  EXPECT_EQ(VisibleAnimationWindow(), nil) << "the animated part waits for the run loop";

  Dispatched();
  _VXAnimationWindow *animation = VisibleAnimationWindow();
  ASSERT_NE(animation, nil);
  EXPECT_TRUE([animation isKeyWindow]);
  NSView *imageView = [animation imageView];
  // Start: the rect with the borderless shadow scaled by 0.1.
  EXPECT_RECT_NEAR([imageView frame], 148.3, 147.9, 23.4, 13.4);
  EXPECT_EQ([imageView alphaValue], 0.0);

  Advance(0.0);
  Advance(0.1);
  EXPECT_NEAR([imageView alphaValue], 1.0, 1e-6) << "opaque after the first half";
  NSRect middle = [imageView frame];
  // The picture shows the window, scaled into the image view.
  [animation display];
  Owned<NSBitmapImageRep> shown(NewViewSnapshot(imageView));
  EXPECT_PIXEL_NEAR(SnapshotPixel(shown, NSWidth(middle) / 2, NSHeight(middle) / 2), 8, 0, 255, 0,
                    255);
  EXPECT_GT(NSWidth(middle), 23.4);
  EXPECT_LT(NSWidth(middle), 234);
  EXPECT_EQ([Names() count], 1u);

  Advance(0.11);
  RunLoopTurn();
  // End: the frame with its full shadow; then the window takes over.
  EXPECT_NSEQ(Names(), Expected(VXWindowWillStartZoomEffect, VXWindowDidEndZoomEffect));
  EXPECT_TRUE([window.get() isVisible]);
  EXPECT_FALSE(AnimationWindowOnScreen());
  EXPECT_NEAR([window.get() alphaValue], 0.8, 1e-6) << "a borderless window keeps its alpha";
  EXPECT_EQ(TVAnimationBehavior(window), behavior);
  EXPECT_RECT_NEAR([window.get() frame], 100, 100, 200, 100);
  [window.get() orderOut:nil];
}

TEST_F(ZoomEffect, TitledZoomInFadesTheWindowInUnderItsPicture) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 400, 300), NSTitledWindowMask,
                                         [NSColor greenColor]));
  Watch(window);
  [window.get() makeKeyAndOrderFrontWithZoomEffectFromRect:NSMakeRect(200, 200, 40, 30)];
  Dispatched();
  _VXAnimationWindow *animation = VisibleAnimationWindow();
  ASSERT_NE(animation, nil);
  EXPECT_RECT_NEAR([[animation imageView] frame], 195.8, 195.0, 48.4, 38.4);
  Advance(0.0);
  Advance(0.21);
  RunLoopTurn();
  EXPECT_NSEQ(Names(), Expected(VXWindowWillStartZoomEffect, VXWindowDidEndZoomEffect))
      << "posted as the fade starts";
  EXPECT_EQ(VisibleAnimationWindow(), animation) << "the picture stays during the fade";
  // Over the window.
  EXPECT_RECT_NEAR([[animation imageView] frame], 100, 100, 400, 300);
  EXPECT_NEAR([window.get() alphaValue], 0.5, 1e-6);
  EXPECT_TRUE([window.get() isVisible]);
  EXPECT_TRUE([window.get() isKeyWindow]);

  Advance(0.05);
  EXPECT_GT([window.get() alphaValue], 0.5);
  EXPECT_LT([window.get() alphaValue], 1.0);
  Advance(0.06);
  RunLoopTurn();
  EXPECT_NEAR([window.get() alphaValue], 1.0, 1e-6);
  EXPECT_FALSE(AnimationWindowOnScreen());
  EXPECT_TRUE([window.get() isKeyWindow]);
  EXPECT_EQ([Names() count], 2u) << "the real window's frame never moved";
  [window.get() orderOut:nil];
}

TEST_F(ZoomEffect, OrderFrontLeavesATitledWindowFrontButNotKey) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 300, 200), NSTitledWindowMask,
                                         [NSColor greenColor]));
  [window.get() orderFrontWithZoomEffectFromRect:NSMakeRect(10, 10, 30, 20)];
  Dispatched();
  Advance(0.0);
  Advance(0.21);
  RunLoopTurn();
  Advance(0.11);
  RunLoopTurn();
  EXPECT_TRUE([window.get() isVisible]);
  EXPECT_FALSE([window.get() isKeyWindow]);
  EXPECT_NEAR([window.get() alphaValue], 1.0, 1e-6) << "a titled window ends opaque";
  EXPECT_FALSE(AnimationWindowOnScreen());
  [window.get() orderOut:nil];
}

TEST_F(ZoomEffect, BothZoomOutsShrinkThePictureAndHideTheWindow) {
  for (int variant = 0; variant < 2; ++variant) {
    [[log_.get() names] removeAllObjects];
    Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 200, 100), NSBorderlessWindowMask,
                                           [NSColor blueColor]));
    Watch(window);
    [window.get() makeKeyAndOrderFront:nil];
    [[log_.get() names] removeAllObjects];
    if (variant == 0) {
      [window.get() orderOutWithZoomEffectToRect:NSMakeRect(10, 10, 20, 10)];
    } else {
      [window.get() orderOutKeyWithZoomEffectToRect:NSMakeRect(10, 10, 20, 10)];
    }
    EXPECT_NSEQ(Names(), Expected(VXWindowWillStartZoomEffect));
    EXPECT_TRUE([window.get() isVisible]) << "brought to the front first";
    Dispatched();
    _VXAnimationWindow *animation = VisibleAnimationWindow();
    ASSERT_NE(animation, nil);
    EXPECT_FALSE([window.get() isVisible]);
    EXPECT_RECT_NEAR([[animation imageView] frame], 83, 79, 234, 134);
    EXPECT_EQ([[animation imageView] alphaValue], 1.0);
    Advance(0.0);
    Advance(0.04);
    EXPECT_NEAR([[animation imageView] alphaValue], 1.0, 1e-6) << "opaque for the first 60 %";
    Advance(0.17);
    RunLoopTurn();
    EXPECT_NSEQ(Names(), Expected(VXWindowWillStartZoomEffect, VXWindowDidEndZoomEffect));
    EXPECT_FALSE([window.get() isVisible]);
    EXPECT_FALSE(AnimationWindowOnScreen());
    EXPECT_RECT_NEAR([window.get() frame], 100, 100, 200, 100);
  }
}

TEST_F(ZoomEffect, ZoomOutRemovesThePictureOfAnEffectStillRunning) {
  Owned<NSWindow> first(NewFilledWindow(NSMakeRect(50, 50, 100, 100), NSBorderlessWindowMask,
                                        [NSColor redColor]));
  Owned<NSWindow> second(NewFilledWindow(NSMakeRect(300, 50, 100, 100), NSBorderlessWindowMask,
                                         [NSColor blueColor]));
  [second.get() orderFront:nil];
  [first.get() orderFrontWithZoomEffectFromRect:NSMakeRect(0, 0, 10, 10)];
  Dispatched();
  _VXAnimationWindow *running = VisibleAnimationWindow();
  ASSERT_NE(running, nil);
  [second.get() orderOutWithZoomEffectToRect:NSMakeRect(0, 0, 10, 10)];
  EXPECT_FALSE([running isVisible]);
  Dispatched();
  Advance(0.0);
  Advance(0.3);
  RunLoopTurn();
  EXPECT_FALSE(AnimationWindowOnScreen());
  EXPECT_TRUE([first.get() isVisible]) << "the interrupted zoom-in still ends";
  EXPECT_FALSE([second.get() isVisible]);
  [first.get() orderOut:nil];
}

TEST_F(ZoomEffect, BadRectsAndScreenlessWindows) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 80, 60), NSBorderlessWindowMask,
                                         [NSColor redColor]));
  Watch(window);
  [window.get() orderFrontWithZoomEffectFromRect:NSMakeRect(NAN, 0, 1, 1)];
  [window.get() orderOutWithZoomEffectToRect:NSMakeRect(0, INFINITY, 1, 1)];
  EXPECT_EQ([Names() count], 0u) << "nothing starts";
  // Zero and negative rects run through.
  [window.get() orderFrontWithZoomEffectFromRect:NSZeroRect];
  Dispatched();
  Advance(0.0);
  Advance(0.25);
  RunLoopTurn();
  [window.get() orderOutWithZoomEffectToRect:NSMakeRect(5, 5, -20, -20)];
  Dispatched();
  Advance(0.0);
  Advance(0.25);
  RunLoopTurn();
  EXPECT_EQ([Names() count], 4u);
  EXPECT_FALSE(AnimationWindowOnScreen());

  Owned<NSWindow> lost(NewFilledWindow(NSMakeRect(-90000, -90000, 50, 50), NSBorderlessWindowMask,
                                       [NSColor redColor]));
  [lost.get() orderFrontWithZoomEffectFromRect:NSMakeRect(1, 2, 3, 4)];
  Dispatched();
  Advance(0.0);
  Advance(0.25);
  RunLoopTurn();
  EXPECT_FALSE(AnimationWindowOnScreen());
  [lost.get() orderOut:nil];
  [window.get() orderOut:nil];
}

TEST_F(ZoomEffect, PopShrinksAndSpringsBackInPointFourSeconds) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 400, 300), NSTitledWindowMask,
                                         [NSColor greenColor]));
  Watch(window);
  // The animation window's frames, as it resizes.
  NSMutableArray *frames = [NSMutableArray array];
  id observer = [[NSNotificationCenter defaultCenter]
      addObserverForName:NSWindowDidResizeNotification
                  object:nil
                   queue:nil
              usingBlock:^(NSNotification *note) {
                if ([[note object] isKindOfClass:[_VXAnimationWindow class]]) {
                  [frames addObject:[NSValue valueWithRect:[[note object] frame]]];
                }
              }];
  NSDate *start = [NSDate date];
  [window.get() makeKeyAndOrderFrontWithPopEffect];
  double elapsed = -[start timeIntervalSinceNow];
  [[NSNotificationCenter defaultCenter] removeObserver:observer];
  [observer release];
  EXPECT_GE(elapsed, 0.38);
  EXPECT_LT(elapsed, 2.0);
  EXPECT_TRUE([window.get() isVisible]);
  EXPECT_TRUE([window.get() isKeyWindow]);
  EXPECT_FALSE(AnimationWindowOnScreen());
  EXPECT_EQ([Names() count], 0u) << "no notification, the window's frame untouched";
  ASSERT_GT([frames count], 2u);
  NSRect smallest = [[frames objectAtIndex:0] rectValue];
  for (NSValue *value in frames) {
    if (NSWidth([value rectValue]) < NSWidth(smallest)) smallest = [value rectValue];
  }
  // GNUstep keeps window frames on whole points.
  double d = 5.0 * 400 / 300;
  EXPECT_NEAR(NSMinX(smallest), 100 + d, 1.0);
  EXPECT_NEAR(NSMinY(smallest), 100 + d, 1.0);
  EXPECT_NEAR(NSWidth(smallest), 400 - 2 * d, 1.0);
  EXPECT_NEAR(NSHeight(smallest), 300 - 2 * d, 1.0);
  EXPECT_RECT_NEAR([[frames lastObject] rectValue], 100, 100, 400, 300);
  [window.get() orderOut:nil];
}
