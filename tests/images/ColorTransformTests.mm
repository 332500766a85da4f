// NSColor(checkboard), NSColor(talvo) and NSColor(transform) on real colours
// and real drawing.
#import <Talvo/NSColor+Checkboard.h>
#import <Talvo/NSColor+Talvo.h>
#import <Talvo/NSColor+Transform.h>

#include <cmath>

#import "platform/GraphicsTestSupport.h"
#import "support/TestSupport.h"

namespace {

struct HSBA {
  double h, s, b, a;
};

HSBA ReadHSBA(NSColor *color) {
  NSColor *rgb = [color colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
  CGFloat h = -1, s = -1, b = -1, a = -1;
  [rgb getHue:&h saturation:&s brightness:&b alpha:&a];
  return {h, s, b, a};
}

int Level(double component) { return int(lround(component * 255)); }

}  // namespace

using ColorCategoryTest = PooledTest;
using ColorDrawingTest = WindowGraphicsTest;

TEST_F(ColorCategoryTest, SelectedColorIsOneCalibratedBlue) {
  NSColor *selected = [NSColor selectedColor];
  EXPECT_EQ(selected, [NSColor selectedColor]);
  EXPECT_NSEQ([selected colorSpaceName], NSCalibratedRGBColorSpace);
  EXPECT_NEAR([selected redComponent], 0.039, 1e-6);
  EXPECT_NEAR([selected greenComponent], 0.373, 1e-6);
  EXPECT_NEAR([selected blueComponent], 0.996, 1e-6);
  EXPECT_NEAR([selected alphaComponent], 1.0, 1e-9);
}

TEST_F(ColorCategoryTest, IsDarkerThanComparesStrictlyWithCalibratedWhite) {
  EXPECT_TRUE([[NSColor colorWithCalibratedWhite:0.4 alpha:1] isDarkerThan:0.5]);
  EXPECT_FALSE([[NSColor colorWithCalibratedWhite:0.5 alpha:1] isDarkerThan:0.5]);
  EXPECT_FALSE([[NSColor colorWithCalibratedWhite:0.6 alpha:1] isDarkerThan:0.5]);
  // An RGB colour is judged by its grey value.
  EXPECT_TRUE([[NSColor colorWithCalibratedRed:0.1 green:0.1 blue:0.1 alpha:1] isDarkerThan:0.5]);
  EXPECT_FALSE([[NSColor colorWithCalibratedRed:0.9 green:0.9 blue:0.9 alpha:1] isDarkerThan:0.5]);
}

TEST_F(ColorCategoryTest, DarkerAndLighterBuildCalibratedColoursKeepingAlpha) {
  HSBA white = ReadHSBA([[NSColor colorWithDeviceWhite:1 alpha:1] darkerColor]);
  EXPECT_NEAR(white.b, 0.75, 1e-6);
  EXPECT_NEAR(white.s, 0.0, 1e-6);
  HSBA black = ReadHSBA([[NSColor colorWithDeviceWhite:0 alpha:1] darkerColor]);
  EXPECT_NEAR(black.b, 0.0, 1e-6);

  NSColor *source = [NSColor colorWithDeviceHue:0.6 saturation:0.5 brightness:0.8 alpha:0.5];
  NSColor *darker = [source darkerColor];
  EXPECT_NSEQ([darker colorSpaceName], NSCalibratedRGBColorSpace);
  HSBA d = ReadHSBA(darker);
  EXPECT_NEAR(d.h, 0.6, 1e-6);
  EXPECT_NEAR(d.s, 0.5, 1e-6);
  EXPECT_NEAR(d.b, 0.6, 1e-6);
  EXPECT_NEAR(d.a, 0.5, 1e-6);

  NSColor *lighter = [source lighterColor];
  EXPECT_NSEQ([lighter colorSpaceName], NSCalibratedRGBColorSpace);
  HSBA l = ReadHSBA(lighter);
  EXPECT_NEAR(l.s, 0.375, 1e-6);
  EXPECT_NEAR(l.b, 0.8, 1e-6);
  EXPECT_NEAR(l.a, 0.5, 1e-6);
}

TEST_F(ColorCategoryTest, LighterColorByFactorFollowsGreyColourAndBlackRules) {
  EXPECT_NEAR(ReadHSBA([[NSColor colorWithDeviceWhite:0.9 alpha:1] lighterColor:0.8]).b, 1.0, 1e-6);
  EXPECT_NEAR(ReadHSBA([[NSColor colorWithDeviceWhite:0.5 alpha:1] lighterColor:0.8]).b, 0.6, 1e-6);
  EXPECT_NEAR(ReadHSBA([[NSColor colorWithDeviceWhite:0 alpha:1] lighterColor:0.8]).b, 0.2, 1e-6);
  EXPECT_NEAR(ReadHSBA([[NSColor colorWithDeviceWhite:0 alpha:1] lighterColor:1.5]).b, 0.0, 1e-6);

  // Pinkish red: hue just below a full turn must not come back as cyan.
  NSColor *pink = [NSColor colorWithDeviceRed:1.0 green:0.2 blue:0.5 alpha:1];
  NSColor *pinkLighter =
      [[pink lighterColor:0.8] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
  EXPECT_NEAR([pinkLighter redComponent], 1.0, 1e-6);
  EXPECT_GT([pinkLighter blueComponent], [pinkLighter greenComponent]);
}

TEST_F(ColorCategoryTest, PatternColoursComeBackUnchanged) {
  NSColor *pattern = [NSColor standardCheckerboardColor];
  ASSERT_NE(pattern, nil);
  EXPECT_EQ([pattern darkerColor], pattern);
  EXPECT_EQ([pattern lighterColor], pattern);
  EXPECT_EQ([pattern lighterColor:0.8], pattern);
  EXPECT_FALSE([pattern isDarkerThan:1.0]);
}

TEST_F(ColorCategoryTest, StandardCheckerboardIsSharedWithASixteenPointTile) {
  NSColor *standard = [NSColor standardCheckerboardColor];
  EXPECT_EQ(standard, [NSColor standardCheckerboardColor]);
  NSSize size = [[standard patternImage] size];
  EXPECT_EQ(size.width, 16);
  EXPECT_EQ(size.height, 16);
}

TEST_F(ColorCategoryTest, CheckerboardRefusesWhatCannotMakeATile) {
  NSColor *red = [NSColor redColor];
  EXPECT_EQ([NSColor checkerboardColorWithFirstColor:red secondColor:red squareWidth:0], nil);
  EXPECT_EQ([NSColor checkerboardColorWithFirstColor:red secondColor:red squareWidth:-4], nil);
  EXPECT_EQ([NSColor checkerboardColorWithFirstColor:red secondColor:red squareWidth:NAN], nil);
  EXPECT_EQ([NSColor checkerboardColorWithFirstColor:NullOf<NSColor *>()
                                         secondColor:red
                                         squareWidth:4],
            nil);
}

TEST_F(ColorDrawingTest, StandardCheckerboardTileHasDarkSquaresBottomLeftAndTopRight) {
  NSImage *tile = [[NSColor standardCheckerboardColor] patternImage];
  Owned<NSBitmapImageRep> rep(NewLockFocusSnapshot(NSMakeSize(16, 16), ^{
    [tile drawAtPoint:NSZeroPoint fromRect:NSZeroRect operation:NSCompositeSourceOver fraction:1];
  }));
  ASSERT_NE(rep.get(), nil);
  int dark = Level(0.74), light = Level(0.97);
  EXPECT_PIXEL(RepPixel(rep, 2, 2), dark, dark, dark, 255);
  EXPECT_PIXEL(RepPixel(rep, 13, 13), dark, dark, dark, 255);
  EXPECT_PIXEL(RepPixel(rep, 2, 13), light, light, light, 255);
  EXPECT_PIXEL(RepPixel(rep, 13, 2), light, light, light, 255);
  // Square edges at 8 points, not elsewhere.
  EXPECT_PIXEL(RepPixel(rep, 7, 7), dark, dark, dark, 255);
  EXPECT_PIXEL(RepPixel(rep, 8, 7), light, light, light, 255);
}

TEST_F(ColorDrawingTest, CheckerboardFillRepeatsTheTwoByTwoBlock) {
  NSColor *red = [NSColor colorWithCalibratedRed:1 green:0 blue:0 alpha:1];
  NSColor *blue = [NSColor colorWithCalibratedRed:0 green:0 blue:1 alpha:1];
  NSColor *pattern = [NSColor checkerboardColorWithFirstColor:red secondColor:blue squareWidth:5];
  ASSERT_NE(pattern, nil);
  Owned<NSBitmapImageRep> rep(NewWindowSnapshot(NSMakeSize(40, 40), NO, ^(NSView *view, NSRect) {
    [pattern set];
    NSRectFill([view bounds]);
  }));
  ASSERT_NE(rep.get(), nil);
  // The pattern starts at the window's origin: first colour bottom-left.
  EXPECT_PIXEL(RepPixel(rep, 2, 2), 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 2, 7), 0, 0, 255, 255);
  // Five-point squares alternate along both axes.
  for (int y = 2; y < 40; y += 5) {
    for (int x = 2; x < 35; x += 5) {
      Pixel here = RepPixel(rep, x, y);
      Pixel right = RepPixel(rep, x + 5, y);
      Pixel above = y + 5 < 40 ? RepPixel(rep, x, y + 5) : RepPixel(rep, x, y - 5);
      EXPECT_TRUE((here == Pixel{255, 0, 0, 255}) || (here == Pixel{0, 0, 255, 255})) << here;
      EXPECT_FALSE(here == right) << "at " << x << "," << y;
      EXPECT_FALSE(here == above) << "at " << x << "," << y;
      EXPECT_TRUE(here == RepPixel(rep, x + 5, y + 5 < 40 ? y + 5 : y - 5));
    }
  }
}
