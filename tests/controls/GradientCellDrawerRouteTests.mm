// VXGradientCellDrawer paints its icon in an offscreen bitmap and lays it
// into the window with one image: the window's pixels must be those of the
// steps drawn one by one into the window, within one level per channel, for
// every look, view geometry and bitmap scale (beyond a level only where
// translucent layers meet at an antialiased edge).
#import <Talvo/NSGradient+GradientCell.h>
#import <Talvo/VXGradientCellDrawer.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#import "controls/ControlsTestSupport.h"
#import "controls/VXGradientCellDrawer+Private.h"

namespace {

struct Look {
  BOOL enabled, main, over, pressed;
  NSInteger state;
  double light, radius;
};

struct Geometry {
  NSRect frame;  // the drawing view's frame in a 60 x 50 window
  double zoom;   // frame / bounds: a view scaled up
  BOOL flipped;
};

// A round icon: antialiased edges make every misplaced pixel show.
NSImage *DiscIcon(int side) {
  NSImage *icon = [[[NSImage alloc] initWithSize:NSMakeSize(side, side)] autorelease];
  [icon lockFocus];
  [[NSColor blackColor] setFill];
  [[NSBezierPath bezierPathWithOvalInRect:NSMakeRect(1, 1, side - 2, side - 2)] fill];
  [icon unlockFocus];
  return icon;
}

class GradientCellDrawerRouteTest : public ControlsTest {
 protected:
  void TearDown() override {
    [VXGradientCellDrawer _setPaintsOffscreenForTesting:YES];
    [NSScreen talvo_setBackingScaleFactorOverride:0];
    ControlsTest::TearDown();
  }

  // The window's pixels of a drawer drawing `icon` in the whole of a view.
  NSBitmapImageRep *Draw(const Look &look, const Geometry &g, NSImage *icon, NSColor *backdrop,
                         BOOL offscreen) {
    [VXGradientCellDrawer _setPaintsOffscreenForTesting:offscreen];
    NSWindow *window = Window(NSMakeRect(100, 100, 60, 50), backdrop);
    VXGradientCellDrawer *drawer = [[[VXGradientCellDrawer alloc] init] autorelease];
    [drawer setGradient:[NSGradient grayGradient]];
    [drawer setOnGradient:SolidGradient([NSColor colorWithDeviceRed:0.1
                                                              green:0.3
                                                               blue:0.9
                                                              alpha:1])];
    [drawer setEnabledDrawing:look.enabled];
    [drawer setMainWindowDrawing:look.main];
    [drawer setMouseOverDrawing:look.over];
    [drawer setHighlightedDrawing:look.pressed];
    [drawer setDrawingState:look.state];
    [drawer setLightShadowOpacity:look.light];
    [drawer setInnerShadowRadius:look.radius];
    TVDrawingView *view = [[[TVDrawingView alloc] initWithFrame:g.frame
                                                        flipped:g.flipped
                                                        drawing:^(NSView *v, NSRect dirty) {
                                                          [drawer drawImage:icon
                                                                    inFrame:[v bounds]];
                                                        }] autorelease];
    [view setBoundsSize:NSMakeSize(g.frame.size.width / g.zoom, g.frame.size.height / g.zoom)];
    [[window contentView] addSubview:view];
    return NewViewSnapshot([window contentView]);
  }

  // The largest difference of any channel of any pixel, where, and how
  // many pixels differ by more than one level.
  static int LargestDifference(NSBitmapImageRep *a, NSBitmapImageRep *b, std::string *where,
                               int *beyondOne) {
    int largest = 0;
    *beyondOne = 0;
    for (int y = 0; y < [a pixelsHigh]; ++y) {
      for (int x = 0; x < [a pixelsWide]; ++x) {
        Pixel p = RepPixel(a, x, y), q = RepPixel(b, x, y);
        int d = std::max(
            {std::abs(p.r - q.r), std::abs(p.g - q.g), std::abs(p.b - q.b), std::abs(p.a - q.a)});
        if (d > largest) {
          largest = d;
          *where = std::to_string(x) + "," + std::to_string(y);
        }
        if (d > 1) ++*beyondOne;
      }
    }
    return largest;
  }

  void ExpectSameBothWays(const Look &look, const Geometry &g, NSImage *icon, NSColor *backdrop,
                          const char *what) {
    Owned<NSBitmapImageRep> direct(Draw(look, g, icon, backdrop, NO));
    Owned<NSBitmapImageRep> offscreen(Draw(look, g, icon, backdrop, YES));
    ASSERT_EQ([direct pixelsWide], [offscreen pixelsWide]);
    ASSERT_EQ([direct pixelsHigh], [offscreen pixelsHigh]);
    std::string where;
    int beyondOne = 0;
    // Layers laid over a clear bitmap keep 8 bits of premultiplied colour:
    // where several translucent ones meet at an antialiased edge, a level
    // or two of rounding. A misplaced pixel grid differs by far more.
    EXPECT_LE(LargestDifference(direct, offscreen, &where, &beyondOne), 2)
        << what << " at " << where;
    EXPECT_LE(beyondOne, int([direct pixelsWide] * [direct pixelsHigh]) / 100) << what;
  }
};

const Look kLooks[] = {
    // main window, enabled, the older look's light edge and inner shadow
    {YES, YES, NO, NO, 0, 0.35, 2.0},
    // pressed under the mouse, on, a wider inner shadow
    {YES, YES, YES, YES, 1, 0.35, 3.0},
    // disabled in the main window: 0.3 with the light edge
    {NO, YES, YES, NO, 0, 0.5, 2.0},
    // not the main window: no light edge
    {YES, NO, YES, NO, 0, 0.35, 1.0},
    // the newer look: no light edge, a thin inner shadow
    {YES, YES, NO, NO, 0, 0.0, 1.0},
    // no inner shadow: no margin around the icon
    {YES, YES, NO, YES, 0, 0.35, 0.0},
};

}  // namespace

TEST_F(GradientCellDrawerRouteTest, OffscreenPaintingMatchesDrawingStepByStep) {
  NSImage *icon = DiscIcon(18);
  NSColor *backdrops[] = {[NSColor whiteColor],
                          [NSColor colorWithDeviceRed:0.2 green:0.6 blue:0.4 alpha:1]};
  Geometry g = {NSMakeRect(8, 5, 36, 30), 1.0, NO};
  for (size_t i = 0; i < sizeof(kLooks) / sizeof(kLooks[0]); ++i) {
    for (NSColor *backdrop : backdrops) {
      ExpectSameBothWays(kLooks[i], g, icon, backdrop, ("look " + std::to_string(i)).c_str());
    }
  }
}

// The bitmap shares the window's device pixels whatever the view's place
// and scale: fractional origins, a flipped view, a view zoomed in, an icon
// at the window's edge (its light edge cut off), bitmaps at twice the scale.
TEST_F(GradientCellDrawerRouteTest, OffscreenPaintingKeepsTheWindowsPixelGrid) {
  NSImage *icon = DiscIcon(18);
  NSColor *white = [NSColor whiteColor];
  const struct {
    Geometry g;
    const char *what;
  } cases[] = {
      {{NSMakeRect(7.5, 4.25, 36, 30), 1.0, NO}, "fractional origin"},
      {{NSMakeRect(8, 5, 36, 30), 1.0, YES}, "flipped"},
      {{NSMakeRect(2, 3, 56, 44), 2.0, NO}, "zoomed in twice"},
      {{NSMakeRect(3, 1, 54, 44), 2.0, YES}, "zoomed and flipped"},
      {{NSMakeRect(0, -5, 36, 28), 1.0, NO}, "cut off at the bottom"},
  };
  for (const auto &c : cases) {
    ExpectSameBothWays(kLooks[0], c.g, icon, white, c.what);
    ExpectSameBothWays(kLooks[1], c.g, icon, white, c.what);
  }
  [NSScreen talvo_setBackingScaleFactorOverride:2.0];
  ExpectSameBothWays(kLooks[0], cases[0].g, icon, white, "bitmaps at 2x");
  ExpectSameBothWays(kLooks[2], cases[2].g, icon, white, "bitmaps at 2x, zoomed");
}

// The light edge lies a pixel below the icon, outside its outer rect when
// there is no inner shadow margin: the bitmap must still reach it.
TEST_F(GradientCellDrawerRouteTest, LightEdgeBelowTheIconIsNotCutOff) {
  NSImage *icon = [[[NSImage alloc] initWithSize:NSMakeSize(20, 20)] autorelease];
  [icon lockFocus];
  [[NSColor blackColor] setFill];
  NSRectFill(NSMakeRect(0, 0, 20, 20));
  [icon unlockFocus];
  Look look = {YES, YES, NO, NO, 0, 1.0, 0.0};
  Geometry g = {NSMakeRect(10, 10, 40, 30), 1.0, NO};
  Owned<NSBitmapImageRep> rep(Draw(look, g, icon, [NSColor blackColor], YES));
  // The icon spans window rows 15 ... 34 from the bottom (y 5 ... 24 in the
  // view); the opaque white edge is the row under it.
  EXPECT_PIXEL(RepPixel(rep, 30, 14), 255, 255, 255, 255);
  EXPECT_PIXEL(RepPixel(rep, 30, 13), 0, 0, 0, 255);
}

// An icon that is one bitmap of the drawn size is used as it is, not drawn
// through GNUstep's image cache: it must still come out upright and in
// place, before and after GNUstep has drawn (and so cached) the image.
TEST_F(GradientCellDrawerRouteTest, BitmapIconIsUprightAndInPlaceBeforeAndAfterCaching) {
  NSBitmapImageRep *rep = [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                                                   pixelsWide:20
                                                                   pixelsHigh:20
                                                                bitsPerSample:8
                                                              samplesPerPixel:4
                                                                     hasAlpha:YES
                                                                     isPlanar:NO
                                                               colorSpaceName:NSDeviceRGBColorSpace
                                                                  bytesPerRow:20 * 4
                                                                 bitsPerPixel:32] autorelease];
  // Opaque black in the top rows 0 ... 5 and the left columns 0 ... 5 (an
  // upside-down 'L'), clear elsewhere.
  unsigned char *data = [rep bitmapData];
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 20; ++x) {
      unsigned char *p = data + y * 20 * 4 + x * 4;
      p[0] = p[1] = p[2] = 0;
      p[3] = (y < 6 || x < 6) ? 255 : 0;
    }
  }
  NSImage *icon = [[[NSImage alloc] initWithSize:NSMakeSize(20, 20)] autorelease];
  [icon addRepresentation:rep];
  Look look = {YES, NO, NO, NO, 0, 0.0, 0.0};
  // In a flipped view, as controls are: there the drawer's flip sets the
  // icon upright.
  Geometry g = {NSMakeRect(10, 10, 40, 30), 1.0, YES};
  for (int pass = 0; pass < 2; ++pass) {
    Owned<NSBitmapImageRep> shot(Draw(look, g, icon, [NSColor whiteColor], YES));
    // The icon spans window columns 20 ... 39 and rows 15 ... 34 from the
    // bottom. Not the main window: the gray fill at alpha 0.3 over white.
    Pixel top = RepPixel(shot, 35, 32), left = RepPixel(shot, 22, 17),
          open = RepPixel(shot, 35, 17);
    EXPECT_LT(top.r, 250) << "pass " << pass;
    EXPECT_LT(left.r, 250) << "pass " << pass;
    EXPECT_PIXEL(open, 255, 255, 255, 255) << "pass " << pass;
    EXPECT_PIXEL(RepPixel(shot, 35, 35), 255, 255, 255, 255) << "pass " << pass;
    EXPECT_PIXEL(RepPixel(shot, 19, 20), 255, 255, 255, 255) << "pass " << pass;
    // GNUstep caches the image in the window server once it draws it.
    NSWindow *window = Window(NSMakeRect(100, 100, 30, 30));
    [[window contentView] lockFocus];
    [icon drawInRect:NSMakeRect(0, 0, 20, 20)];
    [[window contentView] unlockFocus];
  }
}
