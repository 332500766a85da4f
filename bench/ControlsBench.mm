// The controls at work: one gradient-cell draw (two offscreen bitmaps and a
// mask) at a backing scale of 1 and 2, a window of 50 gradient buttons
// redrawn (the drawer's icons painted offscreen and laid in as one image,
// and drawn step by step into the window), and one mouse-moved event
// dispatched over a window of 200 hover buttons (tracking areas).
#import <Talvo/Talvo.h>

#import "controls/VXGradientCellDrawer+Private.h"

#include <benchmark/benchmark.h>

namespace {

// An 18 x 18 black disc on clear, a bitmap as template images loaded from
// files are (not a window-server cache, whose pixels take a round trip).
NSImage *Icon() {
  static NSImage *icon = nil;
  if (icon == nil) {
    NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                                                    pixelsWide:18
                                                                    pixelsHigh:18
                                                                 bitsPerSample:8
                                                               samplesPerPixel:4
                                                                      hasAlpha:YES
                                                                      isPlanar:NO
                                                                colorSpaceName:NSDeviceRGBColorSpace
                                                                   bytesPerRow:18 * 4
                                                                  bitsPerPixel:32];
    unsigned char *data = [rep bitmapData];
    for (int y = 0; y < 18; ++y) {
      for (int x = 0; x < 18; ++x) {
        double dx = x + 0.5 - 9, dy = y + 0.5 - 9;
        unsigned char *p = data + y * 18 * 4 + x * 4;
        p[0] = p[1] = p[2] = 0;
        p[3] = dx * dx + dy * dy <= 64 ? 255 : 0;
      }
    }
    icon = [[NSImage alloc] initWithSize:NSMakeSize(18, 18)];
    [icon addRepresentation:rep];
    [rep release];
  }
  return icon;
}

NSWindow *NewWindow(NSRect content) {
  NSWindow *window = [[NSWindow alloc] initWithContentRect:content
                                                 styleMask:NSTitledWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  [window setReleasedWhenClosed:NO];
  return window;
}

void Pump() {
  for (;;) {
    NSEvent *event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                        untilDate:[NSDate dateWithTimeIntervalSinceNow:0.01]
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    if (event == nil) break;
    [NSApp sendEvent:event];
  }
}

// One drawImage:inFrame: with the inner shadow (two bitmaps and a mask),
// inside a focused view of a window; state.range(0) is the backing scale.
void BM_GradientCellDraw(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [NSScreen talvo_setBackingScaleFactorOverride:(CGFloat)state.range(0)];
  NSWindow *window = NewWindow(NSMakeRect(100, 100, 60, 40));
  NSView *view = [window contentView];
  [window orderFront:nil];
  VXGradientCellDrawer *drawer = [[VXGradientCellDrawer alloc] init];
  [drawer setEnabledDrawing:YES];
  [drawer setMainWindowDrawing:YES];
  [drawer setMouseOverDrawing:YES];
  // range(1): 0 the older look's full drawing, 1 without the light edge,
  // 2 without the inner shadow either (one bitmap and the fill).
  [drawer setLightShadowOpacity:state.range(1) >= 1 ? 0.0 : 0.42];
  [drawer setInnerShadowRadius:state.range(1) >= 2 ? 0.0 : 2.0];
  NSImage *icon = Icon();
  [view lockFocus];
  for (auto _ : state) {
    NSAutoreleasePool *inner = [NSAutoreleasePool new];
    [drawer drawImage:icon inFrame:NSMakeRect(0, 0, 60, 40)];
    [inner drain];
  }
  [view unlockFocus];
  [drawer release];
  [window close];
  [window release];
  [NSScreen talvo_setBackingScaleFactorOverride:0];
  [pool drain];
}
BENCHMARK(BM_GradientCellDraw)->ArgsProduct({{1, 2}, {0, 1, 2}})->Unit(benchmark::kMicrosecond);

// The drawer's parts alone, in the same focused view: the icon's raster
// (range 0 = 0), one offscreen bitmap (1), a mask over it (2).
void BM_GradientCellParts(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSWindow *window = NewWindow(NSMakeRect(100, 100, 60, 40));
  NSView *view = [window contentView];
  [window orderFront:nil];
  NSImage *icon = Icon();
  [view lockFocus];
  NSGraphicsContext *graphics = [NSGraphicsContext currentContext];
  NSRect proposed = NSMakeRect(0, 0, 18, 18);
  CGImageRef raster = CGImageRetain([icon CGImageForProposedRect:&proposed
                                                         context:graphics
                                                           hints:nil]);
  for (auto _ : state) {
    NSAutoreleasePool *inner = [NSAutoreleasePool new];
    if (state.range(0) == 0) {
      benchmark::DoNotOptimize([icon CGImageForProposedRect:&proposed context:graphics hints:nil]);
    } else {
      CGImageRef image = CGCreateImageWithDrawingBlock(
          ^(CGContextRef c) {
            CGContextSetRGBFillColor(c, 1, 1, 1, 1);
            CGContextFillRect(c, CGRectMake(0, 0, 22, 22));
            CGContextDrawImage(c, CGRectMake(2, 2, 18, 18), raster);
          },
          CGRectMake(0, 0, 22, 22));
      if (state.range(0) == 2 && image != NULL) {
        CGImageRef mask = CGImageMaskCreate(
            CGImageGetWidth(image), CGImageGetHeight(image), CGImageGetBitsPerComponent(image),
            CGImageGetBitsPerPixel(image), CGImageGetBytesPerRow(image),
            CGImageGetDataProvider(image), NULL, false);
        CGImageRelease(mask);
      }
      CGImageRelease(image);
    }
    [inner drain];
  }
  CGImageRelease(raster);
  [view unlockFocus];
  [window close];
  [window release];
  [pool drain];
}
BENCHMARK(BM_GradientCellParts)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);

// The platform's shadow on its own: the icon drawn with a blurred shadow
// (blur 4, 2 down) by CGContextDrawImage, range(0): 0 into a window's
// focused view (an X surface), 1 with a mask clip as well (the drawer's
// inner shadow), 2 into a bitmap context of the same size (no X server);
// 3 an AppKit fill (NSRectFillUsingOperation) under the shadow in the
// window, which the platform draws in an X group and reads back.
void BM_ShadowedIconDrawn(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSWindow *window = NewWindow(NSMakeRect(100, 100, 60, 40));
  NSView *view = [window contentView];
  [window orderFront:nil];
  [view lockFocus];
  NSGraphicsContext *graphics = [NSGraphicsContext currentContext];
  NSRect proposed = NSMakeRect(0, 0, 18, 18);
  CGImageRef raster =
      CGImageRetain([Icon() CGImageForProposedRect:&proposed context:graphics hints:nil]);
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef bitmap = CGBitmapContextCreate(NULL, 60, 40, 8, 60 * 4, space,
                                              kCGImageAlphaPremultipliedLast);
  CGColorSpaceRelease(space);
  CGContextRef context = state.range(0) == 2 ? bitmap : (CGContextRef)[graphics graphicsPort];
  CGColorRef dark = CGColorCreateGenericGray(0, 0.8);
  for (auto _ : state) {
    CGContextSaveGState(context);
    if (state.range(0) == 1) CGContextClipToMask(context, CGRectMake(18, 9, 22, 22), raster);
    CGContextSetShadowWithColor(context, CGSizeMake(0, -2), 4, dark);
    if (state.range(0) == 3) {
      NSRectFillUsingOperation(NSMakeRect(20, 11, 18, 18), NSCompositeSourceOver);
    } else {
      CGContextDrawImage(context, CGRectMake(20, 11, 18, 18), raster);
    }
    CGContextRestoreGState(context);
  }
  CGColorRelease(dark);
  CGContextRelease(bitmap);
  CGImageRelease(raster);
  [view unlockFocus];
  [window close];
  [window release];
  [pool drain];
}
BENCHMARK(BM_ShadowedIconDrawn)->DenseRange(0, 3)->Unit(benchmark::kMicrosecond);

// The drawer's route, where the library has the switch (a build from
// before it runs with LD_LIBRARY_PATH against this benchmark).
void SetPaintsOffscreen(BOOL offscreen) {
  if ([VXGradientCellDrawer respondsToSelector:@selector(_setPaintsOffscreenForTesting:)]) {
    [VXGradientCellDrawer _setPaintsOffscreenForTesting:offscreen];
  }
}

// A key window of 50 gradient buttons (10 x 5), every one redrawn;
// state.range(0): 0 the drawer's icons painted offscreen (the default), 1
// every step drawn straight into the window.
void BM_FiftyGradientButtonsRedrawn(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  SetPaintsOffscreen(state.range(0) == 0);
  NSWindow *window = NewWindow(NSMakeRect(100, 100, 400, 200));
  for (int i = 0; i < 50; ++i) {
    VXButton *button =
        [[VXButton alloc] initWithFrame:NSMakeRect((i % 10) * 40, (i / 10) * 40, 36, 36)];
    VXGradientButtonCell *cell = [[VXGradientButtonCell alloc] initImageCell:Icon()];
    [cell setBordered:NO];
    [cell setImagePosition:NSImageOnly];
    [cell setShowsStateBy:NSContentsCellMask];
    [cell setState:i % 3 == 0 ? NSOnState : NSOffState];
    [button setCell:cell];
    [cell release];
    [[window contentView] addSubview:button];
    [button release];
  }
  [NSApp finishLaunching];
  [window makeKeyAndOrderFront:nil];
  Pump();
  for (auto _ : state) {
    NSAutoreleasePool *inner = [NSAutoreleasePool new];
    [[window contentView] setNeedsDisplay:YES];
    [window displayIfNeeded];
    [inner drain];
  }
  state.counters["buttons"] = 50;
  [window close];
  [window release];
  SetPaintsOffscreen(YES);
  [pool drain];
}
BENCHMARK(BM_FiftyGradientButtonsRedrawn)->DenseRange(0, 1)->Unit(benchmark::kMillisecond);

// One mouse-moved event dispatched in a window of 200 hover buttons (20 x
// 10), moving between two buttons so that one exit and one entry fire.
void BM_HoverMoveOverTwoHundredButtons(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSWindow *window = NewWindow(NSMakeRect(100, 100, 800, 300));
  for (int i = 0; i < 200; ++i) {
    VXButton *button =
        [[VXButton alloc] initWithFrame:NSMakeRect((i % 20) * 40, (i / 20) * 30, 36, 26)];
    [[window contentView] addSubview:button];
    [button release];
  }
  [NSApp finishLaunching];
  [window makeKeyAndOrderFront:nil];
  Pump();
  NSEvent *moves[2];
  for (int i = 0; i < 2; ++i) {
    moves[i] = [[NSEvent mouseEventWithType:NSMouseMoved
                                   location:NSMakePoint(18 + 40 * (5 + i), 13 + 30 * 4)
                              modifierFlags:0
                                  timestamp:0
                               windowNumber:[window windowNumber]
                                    context:nil
                                eventNumber:0
                                 clickCount:0
                                   pressure:0] retain];
  }
  int n = 0;
  for (auto _ : state) {
    NSAutoreleasePool *inner = [NSAutoreleasePool new];
    [NSApp sendEvent:moves[n++ & 1]];
    [inner drain];
  }
  state.counters["areas"] = 200;
  [moves[0] release];
  [moves[1] release];
  [window close];
  [window release];
  [pool drain];
}
BENCHMARK(BM_HoverMoveOverTwoHundredButtons)->Unit(benchmark::kMicrosecond);

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
