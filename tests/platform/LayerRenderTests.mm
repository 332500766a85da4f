// -[CALayer renderInContext:] into bitmap contexts: contents placement,
// opacity as a group, sublayer geometry, presentation layers mid-animation
// and hostile input.

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

#include <cmath>

#import "AnimationTestSupport.h"
#import "GraphicsTestSupport.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

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

const Pixel kBlue{0, 0, 255, 255}, kYellow{255, 255, 0, 255}, kMagenta{255, 0, 255, 255},
    kCyan{0, 255, 255, 255}, kRed{255, 0, 0, 255}, kClear{0, 0, 0, 0};

// A layer made without implicit animations.
CALayer *Layer(CGRect frame, CGColorRef background = NULL) {
  CALayer *layer = [CALayer layer];
  [layer setFrame:frame];
  [layer setBackgroundColor:background];
  return layer;
}

class LayerRender : public AnimationTest {
 protected:
  void SetUp() override {
    AnimationTest::SetUp();
    [CATransaction begin];
    [CATransaction setDisableActions:YES];
    red_ = CGColorCreateGenericRGB(1, 0, 0, 1);
    white_ = CGColorCreateGenericRGB(1, 1, 1, 1);
    green_ = CGColorCreateGenericRGB(0, 1, 0, 1);
    quadrants_ = NewQuadrantImage();
  }
  void TearDown() override {
    CGImageRelease(quadrants_);
    CGColorRelease(green_);
    CGColorRelease(white_);
    CGColorRelease(red_);
    if (context_) CGContextRelease(context_);
    [CATransaction commit];
    AnimationTest::TearDown();
  }
  // Renders `layer` into a fresh `width` x `height` RGBA context.
  void Render(CALayer *layer, size_t width = 100, size_t height = 100) {
    if (context_) CGContextRelease(context_);
    context_ = NewRGBAContext(width, height);
    [layer renderInContext:context_];
  }
  Pixel At(int x, int y) { return RGBAPixel(context_, x, y); }

  CGColorRef red_ = NULL, white_ = NULL, green_ = NULL;
  CGImageRef quadrants_ = NULL;
  CGContextRef context_ = NULL;
};

TEST_F(LayerRender, GravityPlacesContentsUprightInTheBounds) {
  CALayer *layer = Layer(CGRectMake(0, 0, 60, 40), red_);
  [layer setContents:(id)quadrants_];
  struct Probe {
    int x, y;
    Pixel expected;
  };
  const struct {
    NSString *gravity;
    Probe probes[3];
  } cases[] = {
      {kCAGravityResize, {{15, 30, kBlue}, {45, 30, kYellow}, {45, 10, kCyan}}},
      // 40 x 40 centred: x from 10 to 50, the background beside it.
      {kCAGravityResizeAspect, {{5, 20, kRed}, {20, 30, kBlue}, {40, 10, kCyan}}},
      // 60 x 60 centred: y from -10 to 50, past the bounds (not masked).
      {kCAGravityResizeAspectFill, {{15, 45, kBlue}, {45, 38, kYellow}, {15, 2, kMagenta}}},
      // 8 x 8 at (26, 16).
      {kCAGravityCenter, {{27, 23, kBlue}, {33, 17, kCyan}, {10, 10, kRed}}},
      {kCAGravityTopLeft, {{1, 39, kBlue}, {7, 32, kCyan}, {9, 39, kRed}}},
      {kCAGravityBottomRight, {{52, 7, kBlue}, {59, 0, kCyan}, {51, 0, kRed}}},
      {kCAGravityTop, {{27, 39, kBlue}, {33, 32, kCyan}, {27, 31, kRed}}},
      {@"no such gravity", {{15, 30, kBlue}, {45, 30, kYellow}, {45, 10, kCyan}}},
  };
  for (const auto &c : cases) {
    [layer setContentsGravity:c.gravity];
    Render(layer);
    for (const Probe &p : c.probes) {
      EXPECT_TRUE(PixelNear(At(p.x, p.y), p.expected, 1))
          << [c.gravity UTF8String] << " at " << p.x << "," << p.y;
    }
  }
  // Masking to the bounds cuts the overflow of aspect fill.
  [layer setContentsGravity:kCAGravityResizeAspectFill];
  [layer setMasksToBounds:YES];
  Render(layer);
  EXPECT_PIXEL(At(15, 45), 0, 0, 0, 0);
  EXPECT_TRUE(PixelNear(At(15, 35), kBlue, 1));
}

TEST_F(LayerRender, ContentsScaleAndNSImageContents) {
  CALayer *layer = Layer(CGRectMake(0, 0, 20, 20));
  [layer setContents:(id)quadrants_];
  [layer setContentsScale:2];  // 8 pixels = 4 points
  [layer setContentsGravity:kCAGravityBottomLeft];
  Render(layer, 20, 20);
  EXPECT_TRUE(PixelNear(At(0, 3), kBlue, 1));
  EXPECT_TRUE(PixelNear(At(3, 0), kCyan, 1));
  EXPECT_TRUE(PixelNear(At(5, 1), kClear, 0));

  // An NSImage places by its size in points.
  Owned<NSImage> image([[NSImage alloc] initWithCGImage:quadrants_ size:NSMakeSize(16, 16)]);
  [layer setContents:image.get()];
  Render(layer, 20, 20);
  EXPECT_TRUE(PixelNear(At(1, 14), kBlue, 1));
  EXPECT_TRUE(PixelNear(At(14, 1), kCyan, 1));
  EXPECT_TRUE(PixelNear(At(17, 1), kClear, 0));
  Render([layer presentationLayer], 20, 20);  // shares the model's pixels
  EXPECT_TRUE(PixelNear(At(1, 14), kBlue, 1));

  // New contents replace the pixels taken from the old ones.
  CGContextRef redContext = NewRGBAContext(4, 4);
  CGContextSetRGBFillColor(redContext, 1, 0, 0, 1);
  CGContextFillRect(redContext, CGRectMake(0, 0, 4, 4));
  CGImageRef red = CGBitmapContextCreateImage(redContext);
  CGContextRelease(redContext);
  Owned<NSImage> redImage([[NSImage alloc] initWithCGImage:red size:NSMakeSize(16, 16)]);
  CGImageRelease(red);
  [layer setContents:redImage.get()];
  Render(layer, 20, 20);
  EXPECT_TRUE(PixelNear(At(1, 14), kRed, 1));
}

// Which of the two filters samples depends on whether the contents are
// drawn smaller or larger than their pixels; linear blends neighbours,
// nearest never does.
TEST_F(LayerRender, FiltersSampleByMinificationOrMagnification) {
  CALayer *layer = Layer(CGRectMake(0, 0, 80, 80));
  EXPECT_NSEQ([layer minificationFilter], kCAFilterLinear);
  EXPECT_NSEQ([layer magnificationFilter], kCAFilterLinear);
  [layer setContents:(id)quadrants_];
  // Magnified ten times: the blue/yellow edge in the top row sits between
  // device pixels 39 and 40.
  Render(layer, 80, 80);
  Pixel edge = At(39, 79);
  EXPECT_GT(edge.r, 10) << edge;  // blended towards yellow
  EXPECT_GT(edge.b, 10) << edge;  // and still partly blue
  [layer setMagnificationFilter:kCAFilterNearest];
  [layer setMinificationFilter:kCAFilterLinear];
  Render(layer, 80, 80);
  EXPECT_TRUE(PixelNear(At(39, 79), kBlue, 0)) << At(39, 79);
  EXPECT_TRUE(PixelNear(At(40, 79), kYellow, 0)) << At(40, 79);
  Render([layer presentationLayer], 80, 80);  // copies keep the filter
  EXPECT_TRUE(PixelNear(At(39, 79), kBlue, 0)) << At(39, 79);

  // One-pixel stripes drawn at three quarters: linear gives greys, nearest
  // only the two stripe colours; the magnification filter plays no part.
  CGContextRef stripes = NewRGBAContext(4, 4);
  CGContextSetRGBFillColor(stripes, 1, 1, 1, 1);
  CGContextFillRect(stripes, CGRectMake(0, 0, 4, 4));
  CGContextSetRGBFillColor(stripes, 0, 0, 0, 1);
  CGContextFillRect(stripes, CGRectMake(1, 0, 1, 4));
  CGContextFillRect(stripes, CGRectMake(3, 0, 1, 4));
  CGImageRef striped = CGBitmapContextCreateImage(stripes);
  CGContextRelease(stripes);
  CALayer *small = Layer(CGRectMake(0, 0, 3, 3));
  [small setContents:(id)striped];
  CGImageRelease(striped);
  [small setMagnificationFilter:kCAFilterNearest];
  Render(small, 3, 3);
  int greys = 0;
  for (int x = 0; x < 3; ++x) greys += At(x, 1).r > 20 && At(x, 1).r < 235;
  EXPECT_GT(greys, 0);
  [small setMinificationFilter:kCAFilterNearest];
  Render(small, 3, 3);
  for (int x = 0; x < 3; ++x) {
    EXPECT_TRUE(At(x, 1).r == 0 || At(x, 1).r == 255) << x << ": " << At(x, 1);
  }
  // Anything but a string is the default again.
  [small setMinificationFilter:(NSString *)[NSNull null]];
  EXPECT_NSEQ([small minificationFilter], kCAFilterLinear);
}

TEST_F(LayerRender, OpacityBlendsWithinALevelAndGroupsSublayers) {
  CALayer *root = Layer(CGRectMake(0, 0, 100, 100), white_);
  // One thing drawn: its opacity is plain alpha.
  CALayer *single = Layer(CGRectMake(0, 0, 20, 20), red_);
  [single setOpacity:0.5f];
  [root addSublayer:single];
  // A background and an overlapping opaque sublayer at 50%: one group, so
  // the green below the red does not show through.
  CALayer *group = Layer(CGRectMake(40, 40, 40, 40), green_);
  [group setOpacity:0.5f];
  [group addSublayer:Layer(CGRectMake(0, 0, 20, 20), red_)];
  [root addSublayer:group];
  // Opacities multiply down the tree.
  CALayer *outer = Layer(CGRectMake(0, 60, 20, 20));
  [outer setOpacity:0.5f];
  CALayer *inner = Layer(CGRectMake(0, 0, 20, 20), red_);
  [inner setOpacity:0.5f];
  [outer addSublayer:inner];
  [root addSublayer:outer];
  Render(root);
  EXPECT_PIXEL_NEAR(At(10, 10), 1, 255, 128, 128, 255);
  EXPECT_PIXEL_NEAR(At(50, 50), 1, 255, 128, 128, 255) << "red over green in one group";
  EXPECT_PIXEL_NEAR(At(70, 70), 1, 128, 255, 128, 255);
  EXPECT_PIXEL_NEAR(At(10, 70), 1, 255, 191, 191, 255);

  // The same group on a transparent context: premultiplied 50% red.
  [root setBackgroundColor:NULL];
  Render(root);
  EXPECT_PIXEL_NEAR(At(50, 50), 1, 128, 0, 0, 128);
  EXPECT_PIXEL_NEAR(At(70, 70), 1, 0, 128, 0, 128);
  EXPECT_PIXEL_NEAR(At(10, 70), 1, 64, 0, 0, 64);
}

TEST_F(LayerRender, SublayersFollowPositionAnchorBoundsTransformAndFlip) {
  CALayer *root = Layer(CGRectMake(0, 0, 100, 100));
  CALayer *parent = Layer(CGRectMake(10, 10, 80, 80));
  [parent setBounds:CGRectMake(5, 5, 80, 80)];  // sublayers shift by -5
  [root addSublayer:parent];
  CALayer *a = Layer(CGRectMake(5, 5, 10, 10), red_);  // at root (10, 10)
  [parent addSublayer:a];
  CALayer *b = Layer(CGRectMake(45, 5, 10, 20), green_);
  [b setAffineTransform:CGAffineTransformMakeRotation(M_PI / 2)];  // about its centre: 20 x 10
  [parent addSublayer:b];
  Render(root);
  EXPECT_PIXEL(At(11, 11), 255, 0, 0, 255);
  EXPECT_PIXEL(At(9, 11), 0, 0, 0, 0);
  EXPECT_PIXEL(At(20, 11), 0, 0, 0, 0);
  // b's centre in root space: (10 + 50 - 5, 10 + 15 - 5) = (55, 20); rotated, it
  // spans x 45...65, y 15...25.
  EXPECT_PIXEL(At(46, 20), 0, 255, 0, 255);
  EXPECT_PIXEL(At(55, 12), 0, 0, 0, 0);

  // A flipped parent measures its sublayers' positions from the top.
  [parent setGeometryFlipped:YES];
  Render(root);
  // a spans y 5...15 from the top of the bounds (5...85): root y 80...90.
  EXPECT_PIXEL(At(11, 84), 255, 0, 0, 255);
  EXPECT_PIXEL(At(11, 11), 0, 0, 0, 0);

  // Contents in a flipped space stay upright.
  [a setContents:(id)quadrants_];
  Render(root);
  EXPECT_TRUE(PixelNear(At(11, 88), kBlue, 1));
  EXPECT_TRUE(PixelNear(At(19, 81), kCyan, 1));

  // Masking clips sublayers to the bounds.
  [parent setGeometryFlipped:NO];
  [a setContents:nil];
  [a setPosition:CGPointMake(5, 50)];  // half outside the bounds' left edge (x 5)
  [parent setMasksToBounds:YES];
  Render(root);
  EXPECT_PIXEL(At(12, 55), 255, 0, 0, 255);
  EXPECT_PIXEL(At(8, 55), 0, 0, 0, 0);
  [parent setMasksToBounds:NO];
  Render(root);
  EXPECT_PIXEL(At(8, 55), 255, 0, 0, 255);
}

TEST_F(LayerRender, PresentationLayerShowsTheDrivenAnimationMidway) {
  CALayer *root = Layer(CGRectMake(0, 0, 100, 100));
  CALayer *moving = Layer(CGRectMake(0, 0, 10, 10), red_);
  [root addSublayer:moving];
  CALayer *fading = Layer(CGRectMake(80, 80, 10, 10), red_);
  [root addSublayer:fading];
  [CATransaction commit];  // the fixture's; animations are added explicitly

  CABasicAnimation *move = [CABasicAnimation animationWithKeyPath:@"position"];
  [move setFromValue:[NSValue valueWithPoint:NSMakePoint(5, 5)]];
  [move setToValue:[NSValue valueWithPoint:NSMakePoint(85, 5)]];
  [move setDuration:1];
  [move setTimingFunction:[CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionLinear]];
  [moving addAnimation:move forKey:@"move"];
  CABasicAnimation *fade = [CABasicAnimation animationWithKeyPath:@"opacity"];
  [fade setFromValue:@0.0];
  [fade setToValue:@1.0];
  [fade setDuration:1];
  [fade setTimingFunction:[CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionLinear]];
  [fading addAnimation:fade forKey:@"fade"];
  Advance(0.5);

  Render([root presentationLayer]);
  EXPECT_PIXEL(At(45, 5), 255, 0, 0, 255) << "halfway: centre at x 45";
  EXPECT_PIXEL(At(5, 5), 0, 0, 0, 0);
  EXPECT_PIXEL_NEAR(At(85, 85), 1, 128, 0, 0, 128);
  // The model tree shows the model values.
  Render(root);
  EXPECT_PIXEL(At(5, 5), 255, 0, 0, 255);
  EXPECT_PIXEL(At(85, 85), 255, 0, 0, 255);

  Advance(0.6);
  [CATransaction begin];  // for the fixture's commit
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);
}

TEST_F(LayerRender, BadInputDrawsNothingAndNeverRaises) {
  CALayer *root = Layer(CGRectMake(0, 0, 100, 100));
  CALayer *stringContents = Layer(CGRectMake(0, 0, 10, 10));
  [stringContents setContents:@"not an image"];
  CALayer *nanFrame = Layer(CGRectMake(20, 0, 10, 10), red_);
  [nanFrame setPosition:CGPointMake(NAN, 5)];
  CALayer *nanBounds = Layer(CGRectMake(40, 0, 10, 10), red_);
  [nanBounds setBounds:CGRectMake(0, 0, INFINITY, 10)];
  CALayer *nanOpacity = Layer(CGRectMake(60, 0, 10, 10), red_);
  [nanOpacity setOpacity:NAN];
  CALayer *hidden = Layer(CGRectMake(80, 0, 10, 10), red_);
  [hidden setHidden:YES];
  CALayer *badTransform = Layer(CGRectMake(0, 20, 10, 10), red_);
  [badTransform setAffineTransform:CGAffineTransformMake(NAN, 0, 0, 1, 0, 0)];
  CALayer *empty = Layer(CGRectMake(20, 20, 0, 0), red_);
  [empty setContents:(id)quadrants_];
  // A zero-size layer still shows its sublayers.
  [empty addSublayer:Layer(CGRectMake(0, 0, 10, 10), green_)];
  CALayer *negative = Layer(CGRectMake(40, 20, 10, 10), red_);
  [negative setBounds:CGRectMake(0, 0, -10, 10)];
  for (CALayer *layer in @[ stringContents, nanFrame, nanBounds, nanOpacity, hidden, badTransform,
                            empty, negative ]) {
    [root addSublayer:layer];
  }
  EXPECT_NO_THROW(Render(root));
  for (int x = 5; x < 100; x += 20) {
    EXPECT_PIXEL(At(x, 5), 0, 0, 0, 0) << "x " << x;
  }
  EXPECT_PIXEL(At(5, 25), 0, 0, 0, 0);
  EXPECT_PIXEL(At(25, 25), 0, 255, 0, 255);
  EXPECT_PIXEL(At(45, 25), 0, 0, 0, 0);
  EXPECT_NO_THROW([root renderInContext:NullOf<CGContextRef>()]);
  EXPECT_NO_THROW([root setContentsGravity:NullOf<NSString *>()]);
  EXPECT_NSEQ([root contentsGravity], kCAGravityResize);
}

TEST_F(LayerRender, CGImageContentsAreRetainedAndCopiedIntoPresentationLayers) {
  CGImageRef image = NewQuadrantImage();
  CALayer *layer = [[CALayer alloc] init];
  [layer setFrame:CGRectMake(0, 0, 8, 8)];
  [layer setContents:(id)image];
  CGImageRelease(image);  // the layer's reference keeps it
  CALayer *presentation = [layer presentationLayer];
  EXPECT_EQ([presentation contents], [layer contents]);
  [layer release];
  Render(presentation, 8, 8);
  EXPECT_TRUE(PixelNear(At(1, 7), kBlue, 0));
}

}  // namespace
