// VXGradientCellDrawer: the two looks' defaults, the icon's fill, opacity,
// washes and shadows read back from a real window, and bad input.
#import <Talvo/NSGradient+GradientCell.h>
#import <Talvo/VXGradientCellDrawer.h>

#include <cmath>

#import "controls/ControlsTestSupport.h"
#import "support/TalvoLook.h"

namespace {

struct DrawerFlags {
  BOOL enabled = YES, main = YES, over = NO, pressed = NO;
  NSInteger state = 0;
  double light = 0.0, radius = 0.0, inner = 1.0;
};

class GradientCellDrawerTest : public ControlsTest {
 protected:
  void TearDown() override {
    TalvoSetAppKitVersionForTesting(NAN);
    ControlsTest::TearDown();
  }
  // A 40 x 40 view on `backdrop` drawing a 20 x 20 black square icon
  // through a drawer with red fill and blue on-fill; answers its pixels.
  NSBitmapImageRep *Draw(DrawerFlags f, NSColor *backdrop = [NSColor whiteColor]) {
    NSWindow *window = Window(NSMakeRect(100, 100, 40, 40), backdrop);
    VXGradientCellDrawer *drawer = [[[VXGradientCellDrawer alloc] init] autorelease];
    [drawer setGradient:SolidGradient([NSColor colorWithDeviceRed:1 green:0 blue:0 alpha:1])];
    [drawer setOnGradient:SolidGradient([NSColor colorWithDeviceRed:0 green:0 blue:1 alpha:1])];
    [drawer setEnabledDrawing:f.enabled];
    [drawer setMainWindowDrawing:f.main];
    [drawer setMouseOverDrawing:f.over];
    [drawer setHighlightedDrawing:f.pressed];
    [drawer setDrawingState:f.state];
    [drawer setLightShadowOpacity:f.light];
    [drawer setInnerShadowRadius:f.radius];
    [drawer setInnerShadowOpacity:f.inner];
    NSImage *icon = SquareIcon(NSMakeSize(20, 20), 0, [NSColor blackColor]);
    TVDrawingView *view = [[[TVDrawingView alloc] initWithFrame:NSMakeRect(0, 0, 40, 40)
                                                        flipped:NO
                                                        drawing:^(NSView *v, NSRect dirty) {
                                                          [drawer drawImage:icon
                                                                    inFrame:[v bounds]];
                                                        }] autorelease];
    [[window contentView] addSubview:view];
    return NewViewSnapshot(view);
  }
};

}  // namespace

TEST_F(GradientCellDrawerTest, DefaultsFollowTheLookInForceAtInit) {
  TalvoSetAppKitVersionForTesting(1265.9);  // floor 1265: older
  Owned<VXGradientCellDrawer> older([[VXGradientCellDrawer alloc] init]);
  TalvoSetAppKitVersionForTesting(1266.0);
  Owned<VXGradientCellDrawer> newer([[VXGradientCellDrawer alloc] init]);
  EXPECT_EQ([older lightShadowOpacity], 0.35);
  EXPECT_EQ([older innerShadowRadius], 2.0);
  EXPECT_EQ([older innerShadowOpacity], 0.85);
  EXPECT_EQ([newer lightShadowOpacity], 0.0);
  EXPECT_EQ([newer innerShadowRadius], 1.0);
  EXPECT_EQ([newer innerShadowOpacity], 1.0);
  for (VXGradientCellDrawer *d : {older.get(), newer.get()}) {
    EXPECT_FALSE([d enabledDrawing]);
    EXPECT_FALSE([d highlightedDrawing]);
    EXPECT_FALSE([d mainWindowDrawing]);
    EXPECT_FALSE([d mouseOverDrawing]);
    EXPECT_EQ([d gradient], [NSGradient grayGradient]);
    EXPECT_EQ([d onGradient], nil);
    EXPECT_EQ([d drawingState], 0);
  }
}

TEST_F(GradientCellDrawerTest, FillsOnlyTheIconShapeCentredInTheFrame) {
  Owned<NSBitmapImageRep> rep(Draw(DrawerFlags()));
  EXPECT_PIXEL(RepPixel(rep, 20, 20), 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 10, 10), 255, 0, 0, 255);  // icon's corner
  EXPECT_PIXEL(RepPixel(rep, 29, 29), 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 9, 20), 255, 255, 255, 255);  // just outside
  EXPECT_PIXEL(RepPixel(rep, 30, 20), 255, 255, 255, 255);
  EXPECT_PIXEL(RepPixel(rep, 20, 30), 255, 255, 255, 255);
  EXPECT_PIXEL(RepPixel(rep, 2, 2), 255, 255, 255, 255);
}

TEST_F(GradientCellDrawerTest, OpacityAndWashesFollowTheFlags) {
  struct Case {
    const char *name;
    DrawerFlags flags;
    Pixel centre;
  };
  auto flags = [](BOOL enabled, BOOL main, BOOL over, BOOL pressed) {
    DrawerFlags f;
    f.enabled = enabled;
    f.main = main;
    f.over = over;
    f.pressed = pressed;
    return f;
  };
  // Red at 0.3 over white: 255, 179, 179. Washes: black 0.3 then 0.5.
  const Case cases[] = {
      {"main enabled", flags(YES, YES, NO, NO), {255, 0, 0, 255}},
      {"main disabled", flags(NO, YES, NO, NO), {255, 179, 179, 255}},
      {"not main enabled", flags(YES, NO, NO, NO), {255, 179, 179, 255}},
      {"not main disabled", flags(NO, NO, NO, NO), {255, 179, 179, 255}},
      {"mouse over", flags(YES, YES, YES, NO), {179, 0, 0, 255}},
      {"pressed", flags(YES, YES, NO, YES), {128, 0, 0, 255}},
      {"over and pressed", flags(YES, YES, YES, YES), {89, 0, 0, 255}},
      {"disabled ignores washes", flags(NO, YES, YES, YES), {255, 179, 179, 255}},
  };
  for (const Case &c : cases) {
    Owned<NSBitmapImageRep> rep(Draw(c.flags));
    EXPECT_TRUE(PixelNear(RepPixel(rep, 20, 20), c.centre, 3)) << c.name;
    EXPECT_PIXEL(RepPixel(rep, 5, 20), 255, 255, 255, 255) << c.name;
  }
}

TEST_F(GradientCellDrawerTest, OnStateUsesTheOnGradientOnlyWhenThereIsOne) {
  DrawerFlags on;
  on.state = 1;
  Owned<NSBitmapImageRep> rep(Draw(on));
  EXPECT_PIXEL(RepPixel(rep, 20, 20), 0, 0, 255, 255);
  DrawerFlags mixed;
  mixed.state = -1;
  rep.reset(Draw(mixed));
  EXPECT_PIXEL(RepPixel(rep, 20, 20), 255, 0, 0, 255);
}

TEST_F(GradientCellDrawerTest, LightEdgeShowsOnePointBelowTheIconInTheMainWindowOnly) {
  NSColor *grey = [NSColor colorWithDeviceWhite:0.5 alpha:1];
  DrawerFlags f;
  f.light = 1.0;
  Owned<NSBitmapImageRep> rep(Draw(f, grey));
  Pixel below = RepPixel(rep, 20, 9);
  Pixel above = RepPixel(rep, 20, 30);
  EXPECT_GT(below.g, 200) << below;  // white edge under the icon
  EXPECT_PIXEL(above, 128, 128, 128, 255);
  f.main = NO;
  rep.reset(Draw(f, grey));
  EXPECT_PIXEL(RepPixel(rep, 20, 9), 128, 128, 128, 255);
}

TEST_F(GradientCellDrawerTest, InnerShadowDarkensTheIconAlongItsOutline) {
  DrawerFlags f;
  f.radius = 2.0;
  f.inner = 1.0;
  Owned<NSBitmapImageRep> rep(Draw(f));
  Pixel edge = RepPixel(rep, 10, 20);
  Pixel centre = RepPixel(rep, 20, 20);
  EXPECT_LT(edge.r, centre.r - 40) << edge;
  EXPECT_PIXEL(centre, 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 7, 20), 255, 255, 255, 255);  // the shadow stays inside
}

TEST_F(GradientCellDrawerTest, SmallFrameShrinksTheIconInProportion) {
  NSWindow *window = Window(NSMakeRect(100, 100, 40, 40));
  VXGradientCellDrawer *drawer = [[[VXGradientCellDrawer alloc] init] autorelease];
  [drawer setGradient:SolidGradient([NSColor blackColor])];
  [drawer setEnabledDrawing:YES];
  [drawer setMainWindowDrawing:YES];
  [drawer setLightShadowOpacity:0];
  [drawer setInnerShadowRadius:0];
  NSImage *icon = SquareIcon(NSMakeSize(40, 20), 0, [NSColor blackColor]);
  TVDrawingView *view =
      [[[TVDrawingView alloc] initWithFrame:NSMakeRect(0, 0, 40, 40)
                                    flipped:NO
                                    drawing:^(NSView *v, NSRect dirty) {
                                      [drawer drawImage:icon inFrame:NSMakeRect(5, 5, 20.5, 30)];
                                    }] autorelease];
  [[window contentView] addSubview:view];
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(view));
  // 40 x 20 into 20.5 x 30: 20.5 x 10.25 -> 20 x 10 at (5, 15). The drawer
  // flips about the frame's height (its frames are a control's bounds), so
  // in this unflipped view the rect lands at y 30 - 25 = 5 ... 15.
  EXPECT_PIXEL(RepPixel(rep, 5, 5), 0, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 24, 14), 0, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 25, 10), 255, 255, 255, 255);
  EXPECT_PIXEL(RepPixel(rep, 4, 10), 255, 255, 255, 255);
  EXPECT_PIXEL(RepPixel(rep, 10, 15), 255, 255, 255, 255);
  EXPECT_PIXEL(RepPixel(rep, 10, 4), 255, 255, 255, 255);
}

TEST_F(GradientCellDrawerTest, IconIsUprightInAFlippedControlView) {
  NSWindow *window = Window(NSMakeRect(100, 100, 40, 40));
  VXGradientCellDrawer *drawer = [[[VXGradientCellDrawer alloc] init] autorelease];
  [drawer setGradient:SolidGradient([NSColor blackColor])];
  [drawer setEnabledDrawing:YES];
  [drawer setMainWindowDrawing:YES];
  [drawer setLightShadowOpacity:0];
  [drawer setInnerShadowRadius:0];
  // A 20 x 20 icon whose upper half only is opaque.
  NSImage *icon = [[[NSImage alloc] initWithSize:NSMakeSize(20, 20)] autorelease];
  [icon lockFocus];
  [[NSColor blackColor] set];
  NSRectFill(NSMakeRect(0, 10, 20, 10));
  [icon unlockFocus];
  TVDrawingView *view = [[[TVDrawingView alloc] initWithFrame:NSMakeRect(0, 0, 40, 40)
                                                      flipped:YES
                                                      drawing:^(NSView *v, NSRect dirty) {
                                                        [drawer drawImage:icon inFrame:[v bounds]];
                                                      }] autorelease];
  [[window contentView] addSubview:view];
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(view));
  // On screen the opaque half is on top: y 20 ... 29 from the bottom.
  EXPECT_PIXEL(RepPixel(rep, 20, 25), 0, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 20, 14), 255, 255, 255, 255);
}

TEST_F(GradientCellDrawerTest, BitmapsAtTwiceTheScaleGiveTheSamePicture) {
  DrawerFlags f;
  f.radius = 2.0;
  Owned<NSBitmapImageRep> one(Draw(f));
  [NSScreen talvo_setBackingScaleFactorOverride:2.0];
  Owned<NSBitmapImageRep> two(Draw(f));
  [NSScreen talvo_setBackingScaleFactorOverride:0];
  for (int x = 8; x < 32; x += 3) {
    EXPECT_TRUE(PixelNear(RepPixel(two, x, 20), RepPixel(one, x, 20), 40)) << x;
  }
  EXPECT_PIXEL(RepPixel(two, 20, 20), 255, 0, 0, 255);
}

TEST_F(GradientCellDrawerTest, BadInputDrawsNothingAndNeverRaises) {
  NSWindow *window = Window(NSMakeRect(100, 100, 40, 40));
  VXGradientCellDrawer *drawer = [[[VXGradientCellDrawer alloc] init] autorelease];
  [drawer setEnabledDrawing:YES];
  [drawer setMainWindowDrawing:YES];
  NSImage *icon = SquareIcon(NSMakeSize(20, 20), 0, [NSColor blackColor]);
  NSImage *empty = [[[NSImage alloc] initWithSize:NSZeroSize] autorelease];
  TVDrawingView *view = [[[TVDrawingView alloc]
      initWithFrame:NSMakeRect(0, 0, 40, 40)
            flipped:NO
            drawing:^(NSView *v, NSRect dirty) {
              [drawer drawImage:NullOf<NSImage *>() inFrame:[v bounds]];
              [drawer drawImage:empty inFrame:[v bounds]];
              [drawer drawImage:(NSImage *)[NSColor redColor] inFrame:[v bounds]];
              [drawer drawImage:icon inFrame:NSZeroRect];
              [drawer drawImage:icon inFrame:NSMakeRect(0, 0, -10, -10)];
              [drawer drawImage:icon inFrame:NSMakeRect(NAN, 0, 40, 40)];
              [drawer drawImage:icon inFrame:NSMakeRect(0, 0, INFINITY, 40)];
            }] autorelease];
  [[window contentView] addSubview:view];
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(view));
  EXPECT_PIXEL(RepPixel(rep, 20, 20), 255, 255, 255, 255);
  [drawer setGradient:nil];
  [drawer setInnerShadowRadius:-3];
  [drawer setInnerShadowOpacity:NAN];
}
