// Shadow geometry of windows, the animation window, and captures.

#import <Talvo/Talvo.h>

#import "WindowTestSupport.h"
#import "windows/VXAnimationWindow+Private.h"

namespace {

using WindowShadow = WindowTest;
using AnimationWindow = WindowTest;
using WindowScreenshot = WindowTest;

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

TEST_F(WindowScreenshot, OrderedOutWindowsHaveNoPicture) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 200, 100), NSBorderlessWindowMask,
                                         [NSColor redColor]));
  EXPECT_EQ([window.get() screenshotByCapturingShadow:YES], nil);
  EXPECT_EQ([window.get() screenshotByCapturingShadow:NO], nil);
}

TEST_F(WindowScreenshot, PictureWithAndWithoutTheShadowArea) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 200, 100), NSBorderlessWindowMask,
                                         [NSColor redColor]));
  [window.get() setHasShadow:YES];
  [window.get() orderFront:nil];
  [window.get() display];
  double scale = [window.get() backingScaleFactor];

  NSImage *plain = [window.get() screenshotByCapturingShadow:NO];
  ASSERT_NE(plain, nil);
  EXPECT_EQ([plain size].width, 200);
  EXPECT_EQ([plain size].height, 100);
  NSBitmapImageRep *rep = (NSBitmapImageRep *)[[plain representations] objectAtIndex:0];
  ASSERT_TRUE([rep isKindOfClass:[NSBitmapImageRep class]]);
  EXPECT_EQ([rep pixelsWide], (NSInteger)(200 * scale));
  EXPECT_EQ([rep pixelsHigh], (NSInteger)(100 * scale));
  EXPECT_PIXEL(RepPixel(rep, 10, 10), 255, 0, 0, 255);

  // With the shadow: the borderless reach (17 left and right, 13 top, 21
  // bottom) around the window, transparent or shadow there.
  NSImage *shadowed = [window.get() screenshotByCapturingShadow:YES];
  ASSERT_NE(shadowed, nil);
  EXPECT_EQ([shadowed size].width, 234);
  EXPECT_EQ([shadowed size].height, 134);
  rep = (NSBitmapImageRep *)[[shadowed representations] objectAtIndex:0];
  EXPECT_PIXEL(RepPixel(rep, int(117 * scale), int(71 * scale)), 255, 0, 0, 255) << "the window";
  EXPECT_PIXEL(RepPixel(rep, int(20 * scale), int(24 * scale)), 255, 0, 0, 255)
      << "its bottom-left corner sits 17 in and 21 up";
  EXPECT_LT(RepPixel(rep, 0, 0).a, 255) << "the margin is not the window";
  EXPECT_LT(RepPixel(rep, int(233 * scale), int(133 * scale)).a, 255);
  [window.get() orderOut:nil];
}

// A titled window casts its shadow in the picture without being asked,
// as on AppKit: dark under the window's bottom edge, fading outwards.
TEST_F(WindowScreenshot, TitledWindowPictureCarriesItsShadow) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 200, 100), NSTitledWindowMask,
                                         [NSColor redColor]));
  [window.get() orderFront:nil];
  [window.get() display];
  NSImage *shadowed = [window.get() screenshotByCapturingShadow:YES];
  ASSERT_NE(shadowed, nil);
  NSEdgeInsets insets = [window.get() shadowEdgeInsets];
  NSBitmapImageRep *rep = (NSBitmapImageRep *)[[shadowed representations] objectAtIndex:0];
  double scale = [rep pixelsWide] / [shadowed size].width;
  // Rows counted from the bottom: just below the window, then the edge.
  int x = int([shadowed size].width / 2 * scale);
  int nearRow = int((-insets.bottom - 3) * scale);  // insets grow outwards: negative
  int farRow = 0;
  EXPECT_GT(RepPixel(rep, x, nearRow).a, 20) << "shadow just under the window";
  EXPECT_LT(RepPixel(rep, x, farRow).a, RepPixel(rep, x, nearRow).a) << "and fading";
  [window.get() orderOut:nil];
}

TEST_F(WindowScreenshot, ViewPictureRendersThePresentedLayer) {
  Owned<NSView> view([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 20.9, 10)]);
  [view.get() setWantsLayer:YES];
  CGColorRef blue = CGColorCreateGenericRGB(0, 0, 1, 1);
  [[view.get() layer] setBackgroundColor:blue];
  CGColorRelease(blue);
  CGImageRef picture = [view.get() CGImageWithSubviews];
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(CGImageGetWidth(picture), 20u) << "points as pixels, truncated";
  EXPECT_EQ(CGImageGetHeight(picture), 10u);
  Owned<NSBitmapImageRep> rep([[NSBitmapImageRep alloc] initWithCGImage:picture]);
  EXPECT_PIXEL(RepPixel(rep, 5, 5), 0, 0, 255, 255);
  CGImageRelease(picture);
}

TEST_F(WindowScreenshot, ViewPictureNeedsARenderableLayer) {
  Owned<NSView> empty([[NSView alloc] initWithFrame:NSZeroRect]);
  [empty.get() setWantsLayer:YES];
  EXPECT_EQ([empty.get() CGImageWithSubviews], nullptr);
  Owned<NSView> negative([[NSView alloc] initWithFrame:NSMakeRect(0, 0, -5, -5)]);
  EXPECT_EQ([negative.get() CGImageWithSubviews], nullptr);
}
