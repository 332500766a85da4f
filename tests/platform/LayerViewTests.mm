// Layer-backed views drawn by real GNUstep windows under Xvfb, read back
// from the window's buffer: contents, gravity, background, opacity as one
// group over what lies below, sublayers, hidden layers, redisplay of parts,
// and the same at 2x.

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

#include <cmath>

#import "GraphicsTestSupport.h"
#import "platform/QuartzCore/TVAnimationClock.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

// A drawing view that says it is opaque, so that it redraws alone unless
// a translucent layer above it sends the redraw further up.
@interface TVOpaqueDrawingView : TVDrawingView
@end

@implementation TVOpaqueDrawingView
- (BOOL)isOpaque {
  return YES;
}
@end

namespace {

// An 8 x 8 image in four solid quadrants: top-left blue, top-right yellow,
// bottom-left magenta, bottom-right cyan; +1.
CGImageRef NewQuadrantImage() {
  CGContextRef c = NewRGBAContext(8, 8);
  const struct {
    CGFloat x, y, r, g, b;
  } quadrants[] = {{0, 4, 0, 0, 1}, {4, 4, 1, 1, 0}, {0, 0, 1, 0, 1}, {4, 0, 0, 1, 1}};
  for (const auto &q : quadrants) {
    CGContextSetRGBFillColor(c, q.r, q.g, q.b, 1);
    CGContextFillRect(c, CGRectMake(q.x, q.y, 4, 4));
  }
  CGImageRef image = CGBitmapContextCreateImage(c);
  CGContextRelease(c);
  return image;
}

// An opaque view filled with one colour (autoreleased).
NSView *Solid(NSRect frame, NSColor *color, BOOL flipped = NO) {
  return [[[TVOpaqueDrawingView alloc] initWithFrame:frame
                                       flipped:flipped
                                       drawing:^(NSView *view, NSRect dirty) {
                                         [color set];
                                         NSRectFill(dirty);
                                       }] autorelease];
}

// A layer-backed view with no drawing of its own (autoreleased).
NSView *NewLayerView(NSRect frame) {
  NSView *view = [[[NSView alloc] initWithFrame:frame] autorelease];
  [view setWantsLayer:YES];
  [view layer];
  return view;
}

class LayerView : public WindowGraphicsTest {
 protected:
  void SetUp() override {
    WindowGraphicsTest::SetUp();
    if (IsSkipped()) return;
    if (![NSView talvo_layerGroupsAvailable]) {
      // Opacity groups need private GNUstep details; their absence fails here.
      ADD_FAILURE() << "layer opacity groups are off on this GNUstep";
    }
    quadrants_ = NewQuadrantImage();
    [CATransaction begin];
    [CATransaction setDisableActions:YES];
  }
  void TearDown() override {
    if (!IsSkipped()) [CATransaction commit];
    CloseWindow();
    CGImageRelease(quadrants_);
    WindowGraphicsTest::TearDown();
  }
  // A borderless 200 x 150 window whose content is white.
  NSView *OpenWindow() {
    window_ = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 200, 150)
                                          styleMask:NSBorderlessWindowMask
                                            backing:NSBackingStoreBuffered
                                              defer:NO];
    [window_ setReleasedWhenClosed:NO];
    root_ = Solid(NSMakeRect(0, 0, 200, 150), [NSColor whiteColor]);
    [window_ setContentView:root_];
    [window_ orderFront:nil];
    return root_;
  }
  void CloseWindow() {
    if (!window_) return;
    [window_ orderOut:nil];
    [window_ close];
    [window_ release];
    window_ = nil;
    [shot_ release];
    shot_ = nil;
  }
  // Reads the window's buffer after a full display (or, with `full` NO,
  // after drawing only what is marked).
  void Grab(bool full = true) {
    if (full) {
      [window_ display];
    } else {
      [window_ displayIfNeeded];
    }
    [shot_ release];
    [root_ lockFocus];
    shot_ = [[NSBitmapImageRep alloc] initWithFocusedViewRect:[root_ bounds]];
    [root_ unlockFocus];
    scale_ = shot_ ? double([shot_ pixelsWide]) / 200.0 : 1;
  }
  // The pixel at (x, y) in the root view's points, y up.
  Pixel At(double x, double y) {
    return RepPixel(shot_, int(std::floor(x * scale_)), int(std::floor(y * scale_)));
  }

  NSWindow *window_ = nil;
  NSView *root_ = nil;
  NSBitmapImageRep *shot_ = nil;
  double scale_ = 1;
  CGImageRef quadrants_ = NULL;
};

TEST_F(LayerView, ContentsShowByGravityOverTheBackground) {
  NSView *root = OpenWindow();
  NSView *view = NewLayerView(NSMakeRect(20, 20, 80, 40));
  [root addSubview:view];
  [[view layer] setContents:(id)quadrants_];
  Grab();
  EXPECT_PIXEL(At(30, 50), 0, 0, 255, 255);   // top-left quadrant, top-left
  EXPECT_PIXEL(At(90, 50), 255, 255, 0, 255);
  EXPECT_PIXEL(At(30, 30), 255, 0, 255, 255);
  EXPECT_PIXEL(At(90, 30), 0, 255, 255, 255);
  EXPECT_PIXEL(At(10, 10), 255, 255, 255, 255);

  CGColorRef red = CGColorCreateGenericRGB(1, 0, 0, 1);
  [[view layer] setBackgroundColor:red];
  CGColorRelease(red);
  [[view layer] setContentsGravity:kCAGravityResizeAspect];  // 40 x 40 at x 40...80
  Grab(false);  // the changes marked the view
  EXPECT_PIXEL(At(25, 40), 255, 0, 0, 255);
  EXPECT_PIXEL(At(45, 55), 0, 0, 255, 255);
  EXPECT_PIXEL(At(75, 25), 0, 255, 255, 255);
  EXPECT_PIXEL(At(95, 40), 255, 0, 0, 255);

  // An NSImage works as contents too, and the view's own drawing goes on top.
  Owned<NSImage> image([[NSImage alloc] initWithCGImage:quadrants_ size:NSZeroSize]);
  [[view layer] setContents:image.get()];
  [[view layer] setContentsGravity:kCAGravityBottomLeft];
  Grab();
  EXPECT_PIXEL(At(21, 27), 0, 0, 255, 255);
  EXPECT_PIXEL(At(27, 21), 0, 255, 255, 255);
  EXPECT_PIXEL(At(30, 21), 255, 0, 0, 255);
}

TEST_F(LayerView, OpacityCompositesTheViewTreeAsOneGroup) {
  NSView *root = OpenWindow();
  [root addSubview:Solid(NSMakeRect(20, 20, 100, 100), [NSColor redColor])];  // under the layer
  NSView *view = NewLayerView(NSMakeRect(60, 60, 120, 80));
  [root addSubview:view];
  [[view layer] setContents:(id)quadrants_];
  [view setAlphaValue:0.5];
  EXPECT_FLOAT_EQ([[view layer] opacity], 0.5f);
  NSView *green = Solid(NSMakeRect(80, 0, 40, 40), [NSColor greenColor]);
  [view addSubview:green];  // over the cyan quadrant, inside the group
  NSView *nested = NewLayerView(NSMakeRect(10, 50, 30, 20));
  [[nested layer] setOpacity:0.5f];  // one value with alphaValue
  EXPECT_DOUBLE_EQ([nested alphaValue], 0.5);
  [nested addSubview:Solid([nested bounds], [NSColor redColor])];
  [view addSubview:nested];

  auto check = [&](const char *when) {
    EXPECT_PIXEL(At(10, 10), 255, 255, 255, 255) << when;
    EXPECT_PIXEL(At(30, 30), 255, 0, 0, 255) << when;
    EXPECT_PIXEL(At(100, 130), 128, 128, 255, 255) << when << ": blue at 50% over white";
    EXPECT_PIXEL(At(70, 70), 255, 0, 128, 255) << when << ": magenta at 50% over red";
    EXPECT_PIXEL(At(150, 90), 128, 255, 128, 255) << when << ": green at 50%, not over cyan";
    EXPECT_PIXEL(At(75, 125), 191, 128, 191, 255) << when << ": red at 25% over blue at 50%";
    EXPECT_PIXEL(At(165, 130), 255, 255, 128, 255) << when << ": yellow at 50%";
  };
  Grab();
  check("full display");
  [view setNeedsDisplay:YES];
  Grab(false);
  check("the layer's view again");
  [green setNeedsDisplay:YES];
  Grab(false);
  check("a subview alone");
  [nested setNeedsDisplay:YES];
  Grab(false);
  check("the nested layer alone");

  // Opacity 0 and hidden show what lies below; the view still clears its marks.
  [[view layer] setOpacity:0];
  Grab(false);
  EXPECT_PIXEL(At(70, 70), 255, 0, 0, 255);
  EXPECT_PIXEL(At(150, 90), 255, 255, 255, 255);
  [[view layer] setOpacity:1];
  Grab(false);
  EXPECT_PIXEL(At(70, 70), 255, 0, 255, 255);
  EXPECT_PIXEL(At(150, 90), 0, 255, 0, 255);
  [[view layer] setHidden:YES];
  [view setNeedsDisplay:YES];
  Grab(false);
  EXPECT_PIXEL(At(70, 70), 255, 0, 0, 255);
  EXPECT_FALSE([window_ viewsNeedDisplay]);
}

TEST_F(LayerView, SublayersDrawInTheViewsCoordinatesAboveItsSubviews) {
  NSView *root = OpenWindow();
  NSView *flipped = Solid(NSMakeRect(20, 20, 100, 100), [NSColor whiteColor], YES);
  [flipped setWantsLayer:YES];
  [root addSubview:flipped];
  CGColorRef red = CGColorCreateGenericRGB(1, 0, 0, 1);
  CGColorRef blue = CGColorCreateGenericRGB(0, 0, 1, 0.5);
  CALayer *topLeft = [CALayer layer];
  [topLeft setFrame:CGRectMake(0, 0, 20, 10)];  // flipped view: at the top
  [topLeft setBackgroundColor:red];
  CALayer *contents = [CALayer layer];
  [contents setFrame:CGRectMake(40, 40, 20, 20)];
  [contents setContents:(id)quadrants_];  // upright in a flipped view too
  CALayer *hidden = [CALayer layer];
  [hidden setFrame:CGRectMake(70, 70, 20, 20)];
  [hidden setBackgroundColor:red];
  [hidden setHidden:YES];
  CALayer *over = [CALayer layer];
  [over setFrame:CGRectMake(0, 80, 20, 20)];
  [over setBackgroundColor:blue];
  [[flipped layer] setSublayers:@[ topLeft, contents, hidden, over ]];
  [flipped addSubview:Solid(NSMakeRect(0, 80, 20, 20), [NSColor greenColor])];
  CGColorRelease(blue);
  CGColorRelease(red);
  Grab();
  EXPECT_PIXEL(At(25, 115), 255, 0, 0, 255);
  EXPECT_PIXEL(At(25, 105), 255, 255, 255, 255);
  EXPECT_PIXEL(At(62, 77), 0, 0, 255, 255) << "top-left quadrant at the top";
  EXPECT_PIXEL(At(78, 62), 0, 255, 255, 255);
  EXPECT_PIXEL(At(100, 40), 255, 255, 255, 255) << "hidden sublayer";
  EXPECT_PIXEL(At(25, 25), 0, 128, 128, 255) << "half-blue sublayer over the green subview";
}

TEST_F(LayerView, LayerAnimationsRedrawTheViewFrameByFrame) {
  NSView *root = OpenWindow();
  NSView *view = NewLayerView(NSMakeRect(20, 20, 100, 100));
  [root addSubview:view];
  CGColorRef red = CGColorCreateGenericRGB(1, 0, 0, 1);
  CALayer *dot = [CALayer layer];
  [dot setFrame:CGRectMake(0, 0, 10, 10)];
  [dot setBackgroundColor:red];
  CGColorRelease(red);
  [[view layer] addSublayer:dot];
  Grab();
  EXPECT_PIXEL(At(25, 25), 255, 0, 0, 255);

  TVAnimationClockSetManual(YES);
  CABasicAnimation *move = [CABasicAnimation animationWithKeyPath:@"position.x"];
  [move setFromValue:@5.0];
  [move setToValue:@85.0];
  [move setDuration:1];
  [move setTimingFunction:[CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionLinear]];
  [dot addAnimation:move forKey:nil];
  CABasicAnimation *fade = [CABasicAnimation animationWithKeyPath:@"opacity"];
  [fade setFromValue:@0.0];
  [fade setToValue:@1.0];
  [fade setDuration:1];
  [fade setTimingFunction:[CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionLinear]];
  [dot addAnimation:fade forKey:@"fade"];
  Grab(false);
  TVAnimationClockAdvance(0.5);
  EXPECT_TRUE([window_ viewsNeedDisplay]) << "a frame of a layer animation marks the view";
  Grab(false);
  EXPECT_PIXEL(At(25, 25), 255, 255, 255, 255);
  EXPECT_PIXEL(At(65, 25), 255, 128, 128, 255) << "halfway: at x 40...50, half opaque";
  TVAnimationClockAdvance(0.6);
  Grab(false);
  EXPECT_PIXEL(At(25, 25), 255, 0, 0, 255) << "back to the model values";
  EXPECT_PIXEL(At(65, 25), 255, 255, 255, 255);
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);
  TVAnimationClockSetManual(NO);
}

TEST_F(LayerView, RenderingABackingLayerDrawsTheViewAndItsSubviews) {
  NSView *root = OpenWindow();
  NSView *host = Solid(NSMakeRect(20, 20, 100, 80), [NSColor whiteColor]);
  [host setWantsLayer:YES];
  [root addSubview:host];
  [host addSubview:Solid(NSMakeRect(10, 10, 30, 20), [NSColor redColor])];
  NSView *flipped = Solid(NSMakeRect(50, 10, 40, 40), [NSColor blueColor], YES);
  [flipped addSubview:Solid(NSMakeRect(0, 0, 10, 10), [NSColor greenColor])];  // top-left
  [host addSubview:flipped];
  NSView *layered = NewLayerView(NSMakeRect(10, 40, 30, 30));
  [[layered layer] setContents:(id)quadrants_];
  [layered setAlphaValue:0.5];
  [host addSubview:layered];

  CGContextRef c = NewRGBAContext(100, 80);
  [[[host layer] presentationLayer] renderInContext:c];
  EXPECT_PIXEL(RGBAPixel(c, 20, 20), 255, 0, 0, 255);
  EXPECT_PIXEL(RGBAPixel(c, 55, 45), 0, 255, 0, 255);
  EXPECT_PIXEL(RGBAPixel(c, 55, 15), 0, 0, 255, 255);
  EXPECT_PIXEL(RGBAPixel(c, 15, 65), 128, 128, 255, 255) << "blue quadrant at 50% over white";
  EXPECT_PIXEL(RGBAPixel(c, 35, 45), 128, 255, 255, 255) << "cyan quadrant at 50% over white";
  EXPECT_PIXEL(RGBAPixel(c, 95, 75), 255, 255, 255, 255);
  CGContextRelease(c);

  // The window draws the same, once.
  Grab();
  EXPECT_PIXEL(At(40, 40), 255, 0, 0, 255);
  EXPECT_PIXEL(At(75, 65), 0, 255, 0, 255);
  EXPECT_PIXEL(At(35, 85), 128, 128, 255, 255);
}

TEST_F(LayerView, BadInputDrawsNothingAndNeverRaises) {
  NSView *root = OpenWindow();
  NSView *view = NewLayerView(NSMakeRect(20, 20, 60, 60));
  [root addSubview:view];
  NSView *empty = NewLayerView(NSMakeRect(100, 20, 0, 0));
  [root addSubview:empty];
  [[empty layer] setContents:(id)quadrants_];
  [[view layer] setContents:@"not an image"];
  CALayer *nan = [CALayer layer];
  [nan setFrame:CGRectMake(0, 0, 10, 10)];
  [nan setPosition:CGPointMake(NAN, INFINITY)];
  CGColorRef red = CGColorCreateGenericRGB(1, 0, 0, 1);
  [nan setBackgroundColor:red];
  CGColorRelease(red);
  [[view layer] addSublayer:nan];
  [view setAlphaValue:NAN];
  [view setLayer:(CALayer *)(id)@"not a layer"];  // ignored
  EXPECT_NO_THROW(Grab());
  EXPECT_PIXEL(At(30, 30), 255, 255, 255, 255);
  EXPECT_PIXEL(At(101, 21), 255, 255, 255, 255);
  EXPECT_TRUE([[view layer] isKindOfClass:[CALayer class]]);

  // A layer given by hand is the one shown.
  CALayer *given = [CALayer layer];
  [given setContents:(id)quadrants_];
  [view setAlphaValue:1];
  [view setLayer:given];
  EXPECT_EQ([view layer], given);
  EXPECT_EQ((id)[given delegate], (id)view);
  Grab();
  EXPECT_PIXEL(At(25, 75), 0, 0, 255, 255);
  [view setLayer:nil];
  EXPECT_EQ((id)[given delegate], (id)nil);
}

// The same tree at a 2x backing: window frames and readback in pixels.
// GNUstep reads GSScaleFactor from the defaults whenever it asks a screen
// for its scale: the registration domain gives it for this test only.
void SetRegisteredDefaults(NSDictionary *domain) {
  NSUserDefaults *defaults = [NSUserDefaults standardUserDefaults];
  [defaults removeVolatileDomainForName:NSRegistrationDomain];
  [defaults setVolatileDomain:domain forName:NSRegistrationDomain];
}

TEST_F(LayerView, OpacityGroupAndContentsAt2x) {
  NSUserDefaults *defaults = [NSUserDefaults standardUserDefaults];
  NSDictionary *registered =
      [[[defaults volatileDomainForName:NSRegistrationDomain] retain] autorelease];
  NSMutableDictionary *scaled = [[registered mutableCopy] autorelease];
  if (!scaled) scaled = [NSMutableDictionary dictionary];
  [scaled setObject:@"2" forKey:@"GSScaleFactor"];
  SetRegisteredDefaults(scaled);
  if ([defaults floatForKey:@"GSScaleFactor"] != 2) {
    SetRegisteredDefaults(registered ? registered : @{});
    GTEST_SKIP() << "GSScaleFactor is set another way for this process";
  }
  NSView *root = OpenWindow();
  [root addSubview:Solid(NSMakeRect(20, 20, 100, 100), [NSColor redColor])];
  NSView *view = NewLayerView(NSMakeRect(60, 60, 120, 80));
  [root addSubview:view];
  [[view layer] setContents:(id)quadrants_];
  [view setAlphaValue:0.5];
  NSView *green = Solid(NSMakeRect(80, 0, 40, 40), [NSColor greenColor]);
  [view addSubview:green];
  Grab();
  EXPECT_NEAR(scale_, 2, 1e-9) << "the window's buffer is in device pixels";
  EXPECT_PIXEL(At(100, 130), 128, 128, 255, 255);
  EXPECT_PIXEL(At(70, 70), 255, 0, 128, 255);
  EXPECT_PIXEL(At(150, 90), 128, 255, 128, 255);
  // Edges land on the 2x pixel grid: the group's left edge at 60 points.
  EXPECT_PIXEL(At(59.75, 90), 255, 0, 0, 255);
  EXPECT_PIXEL(At(60.25, 90), 255, 0, 128, 255);
  [green setNeedsDisplay:YES];
  Grab(false);
  EXPECT_PIXEL(At(150, 90), 128, 255, 128, 255);
  CloseWindow();
  SetRegisteredDefaults(registered ? registered : @{});
}

}  // namespace
