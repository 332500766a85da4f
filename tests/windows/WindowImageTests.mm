// Shadow geometry of windows, the animation window, and captures.

#import <Talvo/Talvo.h>

#import "WindowTestSupport.h"
#import "windows/VXAnimationWindow+Private.h"

namespace {

using WindowShadow = WindowTest;
using AnimationWindow = WindowTest;
using WindowCapture = WindowTest;

}  // namespace

TEST_F(WindowShadow, InsetsFollowTheTitledBit) {
  Owned<NSWindow> titled(NewFilledWindow(NSMakeRect(100, 100, 400, 300), NSTitledWindowMask,
                                         [NSColor redColor]));
  Owned<NSWindow> plain(NewFilledWindow(NSMakeRect(0, 0, 100, 100), NSBorderlessWindowMask,
                                        [NSColor redColor]));
  NSEdgeInsets insets = [titled.get() shadowEdgeInsets];
  EXPECT_EQ(insets.top, -34);
  EXPECT_EQ(insets.left, -42);
  EXPECT_EQ(insets.bottom, -50);
  EXPECT_EQ(insets.right, -42);
  EXPECT_RECT_NEAR([titled.get() shadowedFrame:NSMakeRect(100, 100, 400, 300) flipped:YES], 58, 50,
                   484, 384);
  EXPECT_RECT_NEAR([titled.get() shadowedFrame:NSMakeRect(100, 100, 400, 300) flipped:NO], 58, 66,
                   484, 384);
  EXPECT_RECT_NEAR([plain.get() shadowedFrame:NSMakeRect(0, 0, 100, 100) flipped:YES], -17, -21,
                   134, 134);
  EXPECT_RECT_NEAR([plain.get() shadowedFrame:NSMakeRect(0, 0, 100, 100) flipped:NO], -17, -13,
                   134, 134);
  // A half-size window has half the reach, per axis.
  EXPECT_RECT_NEAR([plain.get() shadowedFrame:NSMakeRect(0, 0, 50, 50)
                              fromScaledFrame:NSMakeRect(0, 0, 100, 100)
                                      flipped:YES],
                   -8.5, -10.5, 67, 67);
  EXPECT_RECT_NEAR([titled.get() shadowedFrame:NSMakeRect(200, 200, 40, 30)
                               fromScaledFrame:NSMakeRect(100, 100, 400, 300)
                                       flipped:YES],
                   195.8, 195.0, 48.4, 38.4);
  // Zero and negative rects go through the arithmetic without trouble.
  EXPECT_RECT_NEAR([plain.get() shadowedFrame:NSZeroRect fromScaledFrame:NSZeroRect flipped:NO], 0,
                   0, 0, 0);
  EXPECT_RECT_NEAR([plain.get() shadowedFrame:NSMakeRect(0, 0, -10, -10) flipped:YES], -17, -21,
                   24, 24);
}

TEST_F(AnimationWindow, StandsOneLevelAboveItsWindow) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 200, 100), NSTitledWindowMask,
                                         [NSColor redColor]));
  [window.get() setLevel:NSFloatingWindowLevel];
  Owned<_VXAnimationWindow> animation([[_VXAnimationWindow alloc] initForWindow:window]);
  ASSERT_NE(animation.get(), nil);
  NSRect screen = [[window.get() screen] frame];
  EXPECT_RECT_NEAR([[animation.get() contentView] frame], 0, 0, screen.size.width,
                   screen.size.height);
  EXPECT_EQ([animation.get() styleMask] & NSTitledWindowMask, 0u);
  EXPECT_EQ([animation.get() level], NSFloatingWindowLevel + 1);
  EXPECT_FALSE([animation.get() hasShadow]);
  EXPECT_FALSE([animation.get() isOpaque]);
  EXPECT_TRUE([animation.get() canBecomeKeyWindow]);
  EXPECT_FALSE([animation.get() canBecomeMainWindow]);
  EXPECT_EQ([animation.get() animationResizeTime:NSMakeRect(0, 0, 1e6, 1e6)], 0.2);
  [animation.get() setAnimationResizeTime:0.5];
  EXPECT_EQ([animation.get() animationResizeTime:NSZeroRect], 0.5);
  NSView *imageView = [animation.get() imageView];
  EXPECT_EQ([imageView superview], [animation.get() contentView]);
  EXPECT_TRUE(NSEqualRects([imageView frame], [[animation.get() contentView] bounds]));
  EXPECT_EQ([imageView autoresizingMask], 18u);
  EXPECT_TRUE([imageView wantsLayer]);

  Owned<NSImage> image([[NSImage alloc] initWithSize:NSMakeSize(4, 4)]);
  [animation.get() setImage:image];
  EXPECT_EQ([animation.get() image], image.get());
  EXPECT_EQ([[imageView layer] contents], image.get());
}

TEST_F(AnimationWindow, NilAndScreenlessWindows) {
  Owned<_VXAnimationWindow> none([[_VXAnimationWindow alloc] initForWindow:NullOf<NSWindow *>()]);
  EXPECT_EQ(none.get(), nil);
  // A window far off every screen has no screen: a zero-size window.
  Owned<NSWindow> lost(NewFilledWindow(NSMakeRect(-90000, -90000, 50, 50), NSBorderlessWindowMask,
                                       [NSColor redColor]));
  if ([lost.get() screen] == nil) {
    Owned<_VXAnimationWindow> animation([[_VXAnimationWindow alloc] initForWindow:lost]);
    ASSERT_NE(animation.get(), nil);
    EXPECT_EQ(NSWidth([[animation.get() contentView] frame]), 0);
    EXPECT_RECT_NEAR([lost.get() _transposedRectInScreen:NSMakeRect(5, 6, 7, 8)], 5, 6, 7, 8);
  }
}

TEST_F(WindowCapture, OrderedOutWindowsHaveNoPicture) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 200, 100), NSBorderlessWindowMask,
                                         [NSColor redColor]));
  EXPECT_EQ([window.get() screenshotByCapturingShadow:YES], nil);
  EXPECT_EQ([window.get() screenshotByCapturingShadow:NO], nil);
}

TEST_F(WindowCapture, ViewPictureNeedsARenderableLayer) {
  Owned<NSView> empty([[NSView alloc] initWithFrame:NSZeroRect]);
  [empty.get() setWantsLayer:YES];
  EXPECT_EQ([empty.get() CGImageWithSubviews], nullptr);
  Owned<NSView> negative([[NSView alloc] initWithFrame:NSMakeRect(0, 0, -5, -5)]);
  EXPECT_EQ([negative.get() CGImageWithSubviews], nullptr);
}
