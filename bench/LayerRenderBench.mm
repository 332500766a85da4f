// -[CALayer renderInContext:] of a 20-layer tree into a 1000 x 700 bitmap
// context, the way a view picture is taken mid-animation: a full-size
// background, eleven image layers (scaled, by gravity), six coloured panels
// (three translucent), and one translucent group of two overlapping panels
// that needs an offscreen pass. Beside it: the same tree through its
// presentation layer, and the floor of one full-context fill.
#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

#include <benchmark/benchmark.h>

namespace {

constexpr size_t kWidth = 1000, kHeight = 700;

CGContextRef NewContext() {
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef c = CGBitmapContextCreate(NULL, kWidth, kHeight, 8, 0, space,
                                         kCGImageAlphaPremultipliedLast);
  CGColorSpaceRelease(space);
  return c;
}

// A 128 x 128 image with a gradient-like pattern; +1.
CGImageRef NewImage() {
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef c = CGBitmapContextCreate(NULL, 128, 128, 8, 0, space, kCGImageAlphaPremultipliedLast);
  CGColorSpaceRelease(space);
  for (int i = 0; i < 16; i++) {
    CGContextSetRGBFillColor(c, i / 15.0, 0.5, 1 - i / 15.0, 1);
    CGContextFillRect(c, CGRectMake(i * 8, 0, 8, 128));
  }
  CGImageRef image = CGBitmapContextCreateImage(c);
  CGContextRelease(c);
  return image;
}

// The tree: 20 layers in all; +1 root.
CALayer *NewTree(CGImageRef image) {
  [CATransaction begin];
  [CATransaction setDisableActions:YES];
  CALayer *root = [[CALayer alloc] init];
  [root setFrame:CGRectMake(0, 0, kWidth, kHeight)];
  CGColorRef white = CGColorCreateGenericRGB(0.95, 0.95, 0.95, 1);
  [root setBackgroundColor:white];
  CGColorRelease(white);
  NSString *gravities[] = {kCAGravityResize, kCAGravityResizeAspect, kCAGravityResizeAspectFill,
                           kCAGravityCenter};
  for (int i = 0; i < 11; i++) {
    CALayer *layer = [CALayer layer];
    [layer setFrame:CGRectMake(20 + (i % 4) * 240, 20 + (i / 4) * 170, 200, 140)];
    [layer setContents:(id)image];
    [layer setContentsGravity:gravities[i % 4]];
    [layer setMasksToBounds:i % 4 == 2];
    [root addSublayer:layer];
  }
  for (int i = 0; i < 6; i++) {
    CALayer *panel = [CALayer layer];
    [panel setFrame:CGRectMake(40 + i * 150, 540, 120, 60)];
    CGColorRef color = CGColorCreateGenericRGB(0.2 * (i % 3), 0.4, 0.8, 1);
    [panel setBackgroundColor:color];
    CGColorRelease(color);
    if (i % 2 == 1) [panel setOpacity:0.7f];
    [root addSublayer:panel];
  }
  CALayer *group = [CALayer layer];  // a background and a sublayer under one opacity
  [group setFrame:CGRectMake(700, 600, 200, 80)];
  [group setOpacity:0.5f];
  CGColorRef red = CGColorCreateGenericRGB(1, 0, 0, 1);
  [group setBackgroundColor:red];
  CGColorRelease(red);
  CALayer *inner = [CALayer layer];  // the 20th layer
  [inner setFrame:CGRectMake(20, 20, 80, 40)];
  [inner setContents:(id)image];
  [group addSublayer:inner];
  [root addSublayer:group];
  [CATransaction commit];
  return root;
}

void BM_FillFloor(benchmark::State &state) {
  CGContextRef c = NewContext();
  for (auto _ : state) {
    CGContextSetRGBFillColor(c, 0.95, 0.95, 0.95, 1);
    CGContextFillRect(c, CGRectMake(0, 0, kWidth, kHeight));
  }
  CGContextRelease(c);
}
BENCHMARK(BM_FillFloor)->Unit(benchmark::kMicrosecond);

void BM_RenderTree(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  CGImageRef image = NewImage();
  CALayer *root = NewTree(image);
  CGContextRef c = NewContext();
  for (auto _ : state) {
    [root renderInContext:c];
  }
  CGContextRelease(c);
  [root release];
  CGImageRelease(image);
  [pool release];
}
BENCHMARK(BM_RenderTree)->Unit(benchmark::kMicrosecond);

void BM_RenderPresentationTree(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  CGImageRef image = NewImage();
  CALayer *root = NewTree(image);
  CGContextRef c = NewContext();
  for (auto _ : state) {
    NSAutoreleasePool *inner = [NSAutoreleasePool new];
    [[root presentationLayer] renderInContext:c];
    [inner release];
  }
  CGContextRelease(c);
  [root release];
  CGImageRelease(image);
  [pool release];
}
BENCHMARK(BM_RenderPresentationTree)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char **argv) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  [pool release];
  return 0;
}
