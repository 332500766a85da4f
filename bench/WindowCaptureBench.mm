// Pictures of a 1000 x 700 window taken by the window-server stand-in from
// the window's back buffer: the bare window, and the window inside a
// shadow margin with its drawn shadow. With --hold_windows the program
// instead keeps that window and a 1 x 1 one on screen, prints their X ids
// and serves their exposures until killed, for compare-capture.sh to time
// xwd on the same windows.
#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>

@interface TVCaptureBenchView : NSView
@end

@implementation TVCaptureBenchView
// Bands of colour, so that the picture is not one flat fill.
- (void)drawRect:(NSRect)dirty {
  NSRect bounds = [self bounds];
  for (int i = 0; i < 20; i++) {
    [[NSColor colorWithDeviceRed:i / 20.0 green:0.4 blue:1 - i / 20.0 alpha:1] set];
    NSRectFill(NSMakeRect(0, NSHeight(bounds) * i / 20, NSWidth(bounds), NSHeight(bounds) / 20 + 1));
  }
}
@end

namespace {

NSWindow *bigWindow = nil;
NSWindow *tinyWindow = nil;

NSWindow *NewWindow(NSRect frame) {
  NSWindow *window = [[NSWindow alloc] initWithContentRect:frame
                                                 styleMask:NSBorderlessWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  NSView *view = [[TVCaptureBenchView alloc] initWithFrame:NSMakeRect(0, 0, NSWidth(frame), NSHeight(frame))];
  [window setContentView:view];
  [view release];
  [window orderFrontRegardless];
  [window display];
  return window;
}

void Pump(double seconds) {
  NSDate *end = [NSDate dateWithTimeIntervalSinceNow:seconds];
  do {
    NSEvent *event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                        untilDate:end
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    if (event != nil) [NSApp sendEvent:event];
  } while ([end timeIntervalSinceNow] > 0);
}

CGRect ServerBounds(NSWindow *window) {
  NSRect frame = [window frame];
  CGFloat top = NSMaxY([[[NSScreen screens] objectAtIndex:0] frame]);
  return CGRectMake(NSMinX(frame), top - NSMaxY(frame), NSWidth(frame), NSHeight(frame));
}

void Capture(benchmark::State &state, bool framed, bool shadow) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [bigWindow setHasShadow:shadow];
  NSArray *windows = [NSArray arrayWithObject:[NSNumber numberWithInteger:[bigWindow windowNumber]]];
  CGRect bounds = ServerBounds(bigWindow);
  if (framed) {
    // A borderless window's shadow reach: 17 left and right, 13 above, 21 below.
    bounds = CGRectMake(bounds.origin.x - 17, bounds.origin.y - 13, bounds.size.width + 34,
                        bounds.size.height + 34);
  }
  CGWindowImageOption option = framed ? kCGWindowImageDefault : kCGWindowImageBoundsIgnoreFraming;
  for (auto _ : state) {
    CGImageRef image = CGWindowListCreateImageFromArray(bounds, (CFArrayRef)windows, option);
    if (image == NULL) {
      state.SkipWithError("no picture");
      break;
    }
    benchmark::DoNotOptimize(image);
    CGImageRelease(image);
  }
  state.SetBytesProcessed(state.iterations() * 1000 * 700 * 4);
  [pool drain];
}

void BM_CaptureBare(benchmark::State &state) { Capture(state, false, false); }
BENCHMARK(BM_CaptureBare)->Unit(benchmark::kMillisecond);

// The margin without a shadow: what the shadow itself costs is the
// difference to the next one.
void BM_CaptureInMargin(benchmark::State &state) { Capture(state, true, false); }
BENCHMARK(BM_CaptureInMargin)->Unit(benchmark::kMillisecond);

void BM_CaptureWithShadow(benchmark::State &state) { Capture(state, true, true); }
BENCHMARK(BM_CaptureWithShadow)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char **argv) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSSuppressAppIcon"]];
  bool hold = false;
  for (int i = 1; i < argc; i++) {
    if (strcmp(argv[i], "--hold_windows") == 0) {
      hold = true;
      memmove(&argv[i], &argv[i + 1], (argc - i) * sizeof(char *));
      argc--;
      break;
    }
  }
  [NSApplication sharedApplication];
  bigWindow = NewWindow(NSMakeRect(10, 10, 1000, 700));
  tinyWindow = NewWindow(NSMakeRect(1020, 10, 1, 1));
  Pump(0.3);
  if (hold) {
    printf("%lu %lu\n", (unsigned long)(uintptr_t)[bigWindow windowRef],
           (unsigned long)(uintptr_t)[tinyWindow windowRef]);
    fflush(stdout);
    for (;;) Pump(1.0);
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  [tinyWindow release];
  [bigWindow release];
  [pool drain];
  return 0;
}
