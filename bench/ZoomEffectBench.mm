// One frame of a zoom effect at 1000 x 700: the animation clock moves the
// picture's frame and alpha, and the animation window redraws the picture
// scaled. Then a whole zoom-in of a 1000 x 700 window (capture, animation
// window, 12 frames at 60 Hz over its 0.2 s, the swap); its per-frame
// counter divides the whole by 12, set-up included.
#import <Talvo/Talvo.h>

#include <benchmark/benchmark.h>

#import "platform/QuartzCore/TVAnimationClock.h"
#import "windows/VXAnimationWindow+Private.h"

namespace {

const NSSize kPicture = {1000, 700};

// A picture made the way a screenshot is: a CGImage wrapped in a bitmap
// rep of an NSImage.
NSImage *NewPicture() {
  size_t width = (size_t)kPicture.width;
  size_t height = (size_t)kPicture.height;
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef context = CGBitmapContextCreate(NULL, width, height, 8, width * 4, space,
                                               kCGImageAlphaPremultipliedFirst |
                                                   kCGBitmapByteOrder32Little);
  CGColorSpaceRelease(space);
  unsigned char *data = (unsigned char *)CGBitmapContextGetData(context);
  for (size_t y = 0; y < height; ++y) {
    for (size_t x = 0; x < width; ++x) {
      unsigned char *p = data + y * width * 4 + x * 4;
      p[0] = 128;
      p[1] = (unsigned char)(y & 255);
      p[2] = (unsigned char)(x & 255);
      p[3] = 255;
    }
  }
  CGImageRef image = CGBitmapContextCreateImage(context);
  CGContextRelease(context);
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithCGImage:image];
  CGImageRelease(image);
  NSImage *picture = [[NSImage alloc] initWithSize:kPicture];
  [picture addRepresentation:rep];
  [rep release];
  return picture;
}

NSWindow *NewWindow(NSRect frame) {
  NSWindow *window = [[NSWindow alloc] initWithContentRect:frame
                                                 styleMask:NSBorderlessWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  [window setReleasedWhenClosed:NO];
  return window;
}

void BM_ZoomFrame(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  TVAnimationClockSetManual(YES);
  NSWindow *window = NewWindow(NSMakeRect(10, 10, kPicture.width, kPicture.height));
  _VXAnimationWindow *animation = [[_VXAnimationWindow alloc] initForWindow:window];
  NSImage *picture = NewPicture();
  if (state.range(0) == 2) {
    [[[animation imageView] layer]
        setContents:(id)[picture CGImageForProposedRect:NULL context:nil hints:nil]];
  } else {
    [animation setImage:picture];
  }
  NSView *imageView = [animation imageView];
  [imageView setFrame:NSMakeRect(400, 300, 100, 70)];
  [animation orderFront:nil];
  [animation display];
  // A group long enough that every iteration is a frame in the middle.
  [NSAnimationContext
      runAnimationGroup:^(NSAnimationContext *context) {
        [context setDuration:1e6];
        [[imageView animator] setFrame:NSMakeRect(0, 0, kPicture.width, kPicture.height)];
        [[imageView animator] setAlphaValue:1.0];
      }
      completionHandler:nil];
  TVAnimationClockAdvance(0);
  TVAnimationClockAdvance(3e5);  // near the middle: a large picture
  bool draw = state.range(0) != 0;
  state.SetLabel(state.range(0) == 0   ? "clock step"
                 : state.range(0) == 1 ? "NSImage contents"
                                       : "CGImage contents");
  for (auto _ : state) {
    TVAnimationClockAdvance(1.0 / 60);
    if (draw) {
      // What the run loop does next: GNUstep's autodisplay, then anything
      // still marked.
      [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantPast]];
      [animation displayIfNeeded];
    }
  }
  // What the clock-only run left for the run loop.
  [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantPast]];
  [imageView setFrame:[imageView frame]];
  [[imageView layer] removeAllAnimations];
  TVAnimationClockAdvance(1e6);
  [animation orderOut:nil];
  [animation release];
  [picture release];
  [window release];
  TVAnimationClockSetManual(NO);
  [pool drain];
}
// Arg 1: the clock step and the redraw of the picture (the layer's
// contents an NSImage, as the effects set it); arg 2: the same with a
// CGImage as contents; arg 0: the clock step alone (frame and alpha set,
// rectangles marked).
BENCHMARK(BM_ZoomFrame)->Arg(1)->Arg(2)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_WholeZoomInPerFrame(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  TVAnimationClockSetManual(YES);
  NSWindow *window = NewWindow(NSMakeRect(10, 10, kPicture.width, kPicture.height));
  for (auto _ : state) {
    [window orderFrontWithZoomEffectFromRect:NSMakeRect(500, 400, 20, 14)];
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                             beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.01]];
    TVAnimationClockAdvance(0);
    for (int frame = 0; frame < 12; ++frame) {
      TVAnimationClockAdvance(0.2 / 12);
      [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantPast]];
      for (NSWindow *shown in [NSApp windows]) {
        if ([shown isKindOfClass:[_VXAnimationWindow class]]) [shown displayIfNeeded];
      }
    }
    TVAnimationClockAdvance(0.01);
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                             beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.01]];
    state.PauseTiming();
    [window orderOut:nil];
    state.ResumeTiming();
  }
  state.counters["per_frame_ms"] = benchmark::Counter(
      12 * state.iterations(), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  [window release];
  TVAnimationClockSetManual(NO);
  [pool drain];
}
BENCHMARK(BM_WholeZoomInPerFrame)->Unit(benchmark::kMillisecond)->Iterations(10)->UseRealTime();

}  // namespace

int main(int argc, char **argv) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSSuppressAppIcon"]];
  [NSApplication sharedApplication];
  [NSApp finishLaunching];
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  [pool drain];
  return 0;
}
