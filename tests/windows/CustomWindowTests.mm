// The custom window family: view tree, the animated top margin, and the
// pixels the frame views draw, in real windows.

#import <Talvo/Talvo.h>

#import "WindowTestSupport.h"
#import "support/TalvoLook.h"
#import "windows/VXBottomPopupWindow+Private.h"
#import "windows/VXCustomWindow+Private.h"

namespace {

class CustomWindow : public WindowTest {
 protected:
  void TearDown() override {
    TalvoSetAppKitVersionForTesting(NAN);
    WindowTest::TearDown();
  }
  template <typename T>
  T *Make(NSRect frame, NSUInteger style = NSBorderlessWindowMask) {
    T *window = [[T alloc] initWithContentRect:frame
                                     styleMask:style
                                       backing:NSBackingStoreBuffered
                                         defer:NO];
    [window setReleasedWhenClosed:NO];
    windows_.push_back(window);
    return window;
  }
  void CloseAll() {
    for (NSWindow *window : windows_) {
      [window orderOut:nil];
      [window release];
    }
    windows_.clear();
  }
  ~CustomWindow() override { CloseAll(); }
  std::vector<NSWindow *> windows_;
};

}  // namespace

TEST_F(CustomWindow, BaseWindowIsTransparentAndAnswersItsFrameBounds) {
  VXCustomWindow *window = Make<VXCustomWindow>(NSMakeRect(50, 50, 120, 80));
  EXPECT_FALSE([window isOpaque]);
  EXPECT_NSEQ([window backgroundColor], [NSColor clearColor]);
  EXPECT_TRUE([window canBecomeKeyWindow]);
  EXPECT_EQ([window window], window);
  ASSERT_NE([window frameView], nil);
  EXPECT_EQ([window frameView], [[window contentView] superview]);
  EXPECT_TRUE(NSEqualRects([window bounds], [[window frameView] bounds]));
  EXPECT_EQ([window childContentView], nil);
  EXPECT_EQ([window containerView], nil);
  EXPECT_EQ(VXIntrospectionDone, 0);
  EXPECT_EQ(VXIntrospectionDoneForBorderless, 0);
}

TEST_F(CustomWindow, ContentViewSitsInsideTheFrameViewBelowTheMargin) {
  VXBarlessCustomWindow *window = Make<VXBarlessCustomWindow>(NSMakeRect(60, 60, 300, 200));
  NSView *frameView = [window contentView];
  EXPECT_EQ([frameView class], [NSView class]);
  EXPECT_EQ([window contentTopMargin], 0.0);

  Owned<NSView> client([[TVWindowFilledView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)
                                                      color:[NSColor redColor]]);
  [window setContentView:client];
  EXPECT_EQ([window contentView], frameView) << "the frame view stays the content view";
  EXPECT_EQ([client.get() superview], frameView);
  EXPECT_FALSE([client.get() translatesAutoresizingMaskIntoConstraints]);

  [window setContentTopMargin:30];
  [window orderFront:nil];
  [window display];
  EXPECT_RECT_NEAR([client.get() frame], 0, 0, 300, 170);

  // Setting nil, or the frame view itself, keeps the frame view and what
  // it holds.
  [window setContentView:nil];
  [window setContentView:frameView];
  EXPECT_EQ([frameView superview], [window frameView]);
  EXPECT_EQ([window contentView], frameView);
  EXPECT_EQ([client.get() superview], frameView);

  EXPECT_RECT_NEAR([window frameRectForContentRect:NSMakeRect(10, 20, 300, 200)], 10, 20, 300,
                   230);
}

TEST_F(CustomWindow, SameMarginLeavesTheConstraintAlone) {
  VXBarlessCustomWindow *window = Make<VXBarlessCustomWindow>(NSMakeRect(60, 60, 200, 100));
  Owned<NSView> client([[NSView alloc] initWithFrame:NSZeroRect]);
  [window setContentView:client];
  [window setContentTopMargin:12];
  NSLayoutConstraint *top = nil;
  for (NSLayoutConstraint *constraint in [[window contentView] constraints]) {
    if ([constraint firstAttribute] == NSLayoutAttributeTop && [constraint firstItem] == client.get()) {
      top = constraint;
    }
  }
  ASSERT_NE(top, nil);
  EXPECT_EQ([top constant], 12);
  [top setConstant:3];  // only a new value reaches the constraint again
  [window setContentTopMargin:12];
  EXPECT_EQ([top constant], 3);
  [window setContentTopMargin:7];
  EXPECT_EQ([top constant], 7);
}

TEST_F(CustomWindow, TopMarginAnimatesThroughTheWindowAnimator) {
  VXBarlessCustomWindow *window = Make<VXBarlessCustomWindow>(NSMakeRect(80, 80, 200, 100));
  Owned<NSView> client([[TVWindowFilledView alloc] initWithFrame:NSZeroRect color:[NSColor blueColor]]);
  [window setContentView:client];
  [window orderFront:nil];
  [window display];
  EXPECT_RECT_NEAR([client.get() frame], 0, 0, 200, 100);
  EXPECT_NE([window animationForKey:@"contentTopMargin"], nil);

  [NSAnimationContext
      runAnimationGroup:^(NSAnimationContext *context) {
        [context setDuration:1.0];
        [context setTimingFunction:[CAMediaTimingFunction
                                       functionWithName:kCAMediaTimingFunctionLinear]];
        [(VXBarlessCustomWindow *)[window animator] setContentTopMargin:40];
      }
      completionHandler:nil];
  EXPECT_EQ([window contentTopMargin], 0.0) << "not yet";
  Advance(0.5);
  EXPECT_NEAR([window contentTopMargin], 20, 1e-6);
  [window display];
  EXPECT_RECT_NEAR([client.get() frame], 0, 0, 200, 80);
  Advance(0.6);
  RunLoopTurn();
  EXPECT_EQ([window contentTopMargin], 40);
  [window display];
  EXPECT_RECT_NEAR([client.get() frame], 0, 0, 200, 60);

  // The band above the content shows through (clear window, plain frame).
  Owned<NSBitmapImageRep> rep(NewViewSnapshot([window contentView]));
  EXPECT_PIXEL(SnapshotPixel(rep, 100, 30), 0, 0, 255, 255);
  EXPECT_EQ(SnapshotPixel(rep, 100, 80).a, 0);
}

TEST_F(CustomWindow, BottomPopupIsAnInertPanel) {
  Owned<VXBottomPopupWindow> popup([[VXBottomPopupWindow alloc] init]);
  ASSERT_NE(popup.get(), nil);
  EXPECT_EQ([popup.get() styleMask] & 0x7fff, 0u);
  EXPECT_EQ([popup.get() backingType], NSBackingStoreBuffered);
  EXPECT_TRUE([popup.get() hasShadow]);
  EXPECT_TRUE([popup.get() isExcludedFromWindowsMenu]);
  EXPECT_FALSE([popup.get() hidesOnDeactivate]);
  EXPECT_FALSE([popup.get() canBecomeKeyWindow]);
  EXPECT_FALSE([popup.get() canBecomeMainWindow]);
  EXPECT_TRUE([popup.get() accessibilityIsIgnored]);
  EXPECT_EQ([popup.get() contentTopMargin], 5.0);
  EXPECT_EQ([[popup.get() contentView] class], [_VXBottomPopupWindowFrameView class]);
  if ([popup.get() respondsToSelector:@selector(isMovable)]) {
    EXPECT_FALSE([(id)popup.get() isMovable]);
  }

  NSWindow *parent = Make<NSWindow>(NSMakeRect(10, 10, 50, 50));
  [parent addChildWindow:popup.get() ordered:NSWindowAbove];
  EXPECT_EQ([popup.get() accessibilityAttributeValue:NSAccessibilityParentAttribute],
            NSAccessibilityUnignoredAncestor(parent));
  [parent removeChildWindow:popup.get()];
  EXPECT_EQ([popup.get() accessibilityAttributeValue:NSAccessibilityParentAttribute],
            NSAccessibilityUnignoredAncestor(nil));
}

TEST_F(CustomWindow, BottomPopupDrawsItsBodyAndArrow) {
  for (double margin : {5.0, 20.0}) {
    VXBottomPopupWindow *popup = Make<VXBottomPopupWindow>(NSMakeRect(100, 100, 200, 100));
    [popup setContentTopMargin:margin];
    [popup orderFront:nil];
    Owned<NSBitmapImageRep> rep(NewViewSnapshot([popup contentView]));
    double k = double([rep.get() pixelsWide]) / 200;  // 1, or 2 at -GSScaleFactor 2
    ASSERT_GE(k, 1.0);
    EXPECT_PIXEL(SnapshotPixel(rep, 100, 50, k), 240, 240, 240, 255) << "body, white 0.94";
    EXPECT_PIXEL(SnapshotPixel(rep, 99, 95.5, k), 240, 240, 240, 255) << "arrow, under its apex";
    EXPECT_EQ(SnapshotPixel(rep, 99, 97.5, k).a, 0) << "above the apex";
    EXPECT_EQ(SnapshotPixel(rep, 90, 96, k).a, 0) << "beside the arrow";
    EXPECT_EQ(SnapshotPixel(rep, 150, 95, k).a, 0) << "above the body";
    EXPECT_EQ(SnapshotPixel(rep, 0.5, 50, k).a, 0) << "the 1-point inset";
    EXPECT_LT(SnapshotPixel(rep, 1.2, 1.2, k).a, 128) << "rounded corner";
    EXPECT_PIXEL(SnapshotPixel(rep, 5.5, 1.5, k), 240, 240, 240, 255);
  }
}

TEST_F(CustomWindow, VisualEffectWindowOlderLookDrawsARoundedDarkRect) {
  TalvoSetAppKitVersionForTesting(824);
  VXVisualEffectWindow *window = Make<VXVisualEffectWindow>(NSMakeRect(120, 120, 160, 90));
  EXPECT_EQ([[window contentView] class], [_VXWindowDrawingFrameView class]);
  EXPECT_TRUE([[window contentView] isKindOfClass:[NSView class]]);
  EXPECT_EQ((id)[window backgroundEffectView], [window contentView]);
  EXPECT_FALSE([window hidesOnDeactivate]);
  EXPECT_TRUE([window isMovableByWindowBackground]);
  [window orderFront:nil];
  Owned<NSBitmapImageRep> rep(NewViewSnapshot([window contentView]));
  EXPECT_PIXEL(SnapshotPixel(rep, 80, 45), 31, 31, 31, 255) << "white 0.12";
  EXPECT_PIXEL(SnapshotPixel(rep, 80, 0.5), 31, 31, 31, 255) << "the edge, no inset";
  EXPECT_EQ(SnapshotPixel(rep, 0.5, 0.5).a, 0) << "6-point corner";
  EXPECT_EQ(SnapshotPixel(rep, 159.5, 89.5).a, 0);
}

TEST_F(CustomWindow, VisualEffectWindowNewerLookIsAVibrantEffectView) {
  TalvoSetAppKitVersionForTesting(1500);
  VXVisualEffectWindow *window = Make<VXVisualEffectWindow>(NSMakeRect(120, 120, 160, 90));
  NSVisualEffectView *effect = [window backgroundEffectView];
  ASSERT_TRUE([effect isKindOfClass:[NSVisualEffectView class]]);
  EXPECT_EQ([effect material], 0);
  EXPECT_EQ([effect blendingMode], 0);
  EXPECT_EQ([effect state], 1);
  EXPECT_NSEQ([[effect appearance] name], NSAppearanceNameVibrantDark);
  // The window's own drawRect: adds nothing; the effect view fills it with
  // a dark, opaque material.
  [window orderFront:nil];
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(effect));
  Pixel middle = SnapshotPixel(rep, 80, 45);
  EXPECT_EQ(middle.a, 255);
  EXPECT_LT(middle.r + middle.g + middle.b, 3 * 128) << "dark";
  EXPECT_NSEQ([window backgroundColor], [NSColor colorWithCalibratedWhite:0.12 alpha:1.0]);
}

TEST_F(CustomWindow, OrderingFrontSwitchesLayersOffOnThePlatformFrame) {
  VXBarlessCustomWindow *window = Make<VXBarlessCustomWindow>(NSMakeRect(60, 60, 100, 100));
  [[window frameView] setWantsLayer:YES];
  [window orderFront:nil];
  EXPECT_FALSE([[window frameView] wantsLayer]);
  [[window frameView] setWantsLayer:YES];
  [window makeKeyAndOrderFront:nil];
  EXPECT_FALSE([[window frameView] wantsLayer]);
}

TEST_F(CustomWindow, BottomPopupHoldsUpToOddSizesAndContent) {
  // Sizes from nothing to a sliver to large, and contents set, replaced and
  // cleared: it always draws and lays out without trouble.
  const NSSize sizes[] = {{0, 0}, {1, 1}, {9, 4}, {12, 12}, {640, 30}};
  for (NSSize size : sizes) {
    VXBottomPopupWindow *popup =
        Make<VXBottomPopupWindow>(NSMakeRect(200, 200, size.width, size.height));
    Owned<NSView> first([[NSView alloc] initWithFrame:NSZeroRect]);
    Owned<NSView> second([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 50, 50)]);
    [popup setContentView:first];
    [popup setContentView:second];
    [popup setContentView:nil];
    // Each view joins the one frame view; the first subview (the view
    // NSWindow installed) stays the client.
    NSArray *subviews = [[popup contentView] subviews];
    ASSERT_EQ([subviews count], 3u);
    EXPECT_EQ([subviews objectAtIndex:1], first.get());
    EXPECT_EQ([popup actualContentView], [subviews objectAtIndex:0]);
    [popup setContentTopMargin:NAN];
    [popup setContentTopMargin:INFINITY];
    EXPECT_EQ([popup contentTopMargin], 5.0);
    [popup setContentTopMargin:-3];
    EXPECT_EQ([popup contentTopMargin], -3.0);
    [popup orderFront:nil];
    [popup display];
    [popup orderOut:nil];
  }
  VXBottomPopupWindow *empty = Make<VXBottomPopupWindow>(NSMakeRect(0, 0, 20, 20));
  EXPECT_NE([empty actualContentView], nil) << "the view NSWindow installs is the first client";
  EXPECT_RECT_NEAR([empty frameRectForContentRect:NSMakeRect(0, 0, -5, -5)], 0, 0, -5, 0);
  Owned<VXBarlessCustomWindow> plain([[VXBarlessCustomWindow alloc] init]);
  EXPECT_NE([plain.get() contentView], nil);
  EXPECT_TRUE(NSEqualRects([plain.get() bounds], [[plain.get() frameView] bounds]));
}
