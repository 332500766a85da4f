// Image work measured against its physical floor: trimming a 4096 x 4096
// RGBA image (one copy of the pixels plus one scan), rendering a drawing
// block offscreen at scale 2, and one gradient fill through an image mask.
#import <Talvo/Talvo.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

namespace {

constexpr size_t kSide = 4096;

// RGBA, premultiplied, transparent but for an opaque rectangle in the middle.
CGImageRef NewTrimImage() {
  static std::vector<uint8_t> pixels;
  pixels.assign(kSide * kSide * 4, 0);
  for (size_t y = 1200; y < 2800; y++) {
    for (size_t x = 1000; x < 3000; x++) {
      uint8_t *p = &pixels[(y * kSide + x) * 4];
      p[0] = 200, p[1] = 40, p[2] = 40, p[3] = 255;
    }
  }
  CGDataProviderRef provider = CGDataProviderCreateWithData(NULL, pixels.data(), pixels.size(), NULL);
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGImageRef image = CGImageCreate(kSide, kSide, 8, 32, kSide * 4, space,
                                   kCGImageAlphaPremultipliedLast, provider, NULL, false,
                                   kCGRenderingIntentDefault);
  CGColorSpaceRelease(space);
  CGDataProviderRelease(provider);
  return image;
}

// The floor of "copy the pixels once": a fresh 64 MiB buffer, filled, freed.
void BM_CopyFloor(benchmark::State &state) {
  std::vector<uint8_t> source(kSide * kSide * 4, 1);
  for (auto _ : state) {
    uint8_t *copy = static_cast<uint8_t *>(malloc(source.size()));
    memcpy(copy, source.data(), source.size());
    benchmark::DoNotOptimize(copy);
    free(copy);
  }
}
BENCHMARK(BM_CopyFloor)->Unit(benchmark::kMillisecond);

void BM_GetFilledRect(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  CGImageRef image = NewTrimImage();
  for (auto _ : state) {
    benchmark::DoNotOptimize(VXGetFilledRect(image));
  }
  CGImageRelease(image);
  [pool drain];
}
BENCHMARK(BM_GetFilledRect)->Unit(benchmark::kMillisecond);

void BM_DrawingBlock64AtScale2(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [NSScreen talvo_setBackingScaleFactorOverride:2];
  NSColor *fill = [NSColor colorWithCalibratedRed:0.9 green:0.5 blue:0.1 alpha:1];
  for (auto _ : state) {
    NSAutoreleasePool *inner = [NSAutoreleasePool new];
    CGImageRef image = CGCreateImageWithDrawingBlock(^(CGContextRef context) {
      [fill setFill];
      [[NSBezierPath bezierPathWithOvalInRect:NSMakeRect(4, 4, 56, 56)] fill];
    }, CGRectMake(0, 0, 64, 64));
    benchmark::DoNotOptimize(image);
    CGImageRelease(image);
    [inner drain];
  }
  [NSScreen talvo_setBackingScaleFactorOverride:0];
  [pool drain];
}
BENCHMARK(BM_DrawingBlock64AtScale2)->Unit(benchmark::kMicrosecond);

void BM_MaskedGradientFill(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  const size_t side = 256;
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef target = CGBitmapContextCreate(NULL, side, side, 8, side * 4, space,
                                              kCGImageAlphaPremultipliedFirst |
                                                  kCGBitmapByteOrder32Little);
  // The mask: an alpha disc drawn once.
  CGContextRef maskContext = CGBitmapContextCreate(NULL, side, side, 8, side * 4, space,
                                                   kCGImageAlphaPremultipliedLast);
  CGContextSetRGBFillColor(maskContext, 0, 0, 0, 1);
  CGContextFillEllipseInRect(maskContext, CGRectMake(16, 16, side - 32, side - 32));
  CGImageRef mask = CGBitmapContextCreateImage(maskContext);
  CGContextRelease(maskContext);
  CGColorSpaceRelease(space);
  NSGraphicsContext *appKit = [NSGraphicsContext graphicsContextWithGraphicsPort:target
                                                                         flipped:NO];
  NSGraphicsContext *previous = [[NSGraphicsContext currentContext] retain];
  [NSGraphicsContext setCurrentContext:appKit];
  NSGradient *gradient = [NSGradient grayGradient];
  for (auto _ : state) {
    CGContextSaveGState(target);
    CGContextClipToMask(target, CGRectMake(0, 0, side, side), mask);
    [gradient drawInRect:NSMakeRect(0, 0, side, side) angle:90];
    CGContextRestoreGState(target);
  }
  [NSGraphicsContext setCurrentContext:previous];
  [previous release];
  CGImageRelease(mask);
  CGContextRelease(target);
  [pool drain];
}
BENCHMARK(BM_MaskedGradientFill)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char **argv) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSSuppressAppIcon"]];
  [NSApplication sharedApplication];
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  [pool drain];
  return 0;
}
