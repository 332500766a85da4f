// -[NSBitmapImageRep imageRepWithSize:] end to end, one thread: the pixels
// copied into a CIImage, clamped, Lanczos-scaled, cropped and rendered into
// a new bitmap. Beside bench/LanczosBench.cpp it shows what the Core Image
// recipe and the two copies add to the bare resampler.
#import <AppKit/AppKit.h>
#import <Talvo/Talvo.h>

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

NSBitmapImageRep *NewPicture(NSInteger side) {
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                                                  pixelsWide:side
                                                                  pixelsHigh:side
                                                               bitsPerSample:8
                                                             samplesPerPixel:4
                                                                    hasAlpha:YES
                                                                    isPlanar:NO
                                                              colorSpaceName:NSDeviceRGBColorSpace
                                                                 bytesPerRow:side * 4
                                                                bitsPerPixel:32];
  for (NSInteger y = 0; y < side; y++) {
    unsigned char *row = [rep bitmapData] + y * [rep bytesPerRow];
    for (NSInteger x = 0; x < side; x++) {
      double u = double(x) / side - 0.5, v = double(y) / side - 0.5;
      row[x * 4] = (unsigned char)(127.5 + 127.5 * std::cos((u * u + v * v) * side * 1.2));
      row[x * 4 + 1] = ((x / 16 + y / 16) & 1) ? 230 : 20;
      row[x * 4 + 2] = (unsigned char)(255 * (v + 0.5));
      row[x * 4 + 3] = 255;
    }
  }
  return rep;
}

void Resample(benchmark::State &state, NSInteger from, CGFloat to) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSBitmapImageRep *source = NewPicture(from);
  for (auto _ : state) {
    NSAutoreleasePool *inner = [NSAutoreleasePool new];
    NSBitmapImageRep *result = [source imageRepWithSize:NSMakeSize(to, to)];
    if (result == nil) state.SkipWithError("no result");
    benchmark::DoNotOptimize(result);
    [inner drain];
  }
  [source release];
  [pool drain];
}

void BM_ImageRepWithSize_4096_to_1024(benchmark::State &s) { Resample(s, 4096, 1024); }
void BM_ImageRepWithSize_512_to_1536(benchmark::State &s) { Resample(s, 512, 1536); }

BENCHMARK(BM_ImageRepWithSize_4096_to_1024)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImageRepWithSize_512_to_1536)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char **argv) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  [pool drain];
  return 0;
}
