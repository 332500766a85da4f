// The split view at work: a layout pass from scratch, one divider-drag step,
// a drag of real mouse events, and one frame of a slide.
#import <Talvo/Talvo.h>

#include <benchmark/benchmark.h>

#import "platform/QuartzCore/TVAnimationClock.h"

namespace {

const double kPanelWidth = 40;

VXSplitView *NewSplitView(int panels) {
  double width = panels * (kPanelWidth + 1);
  VXSplitView *split = [[VXSplitView alloc] initWithFrame:NSMakeRect(0, 0, width, 300)];
  for (int i = 0; i < panels; i++) {
    NSView *panel =
        [[NSView alloc] initWithFrame:NSMakeRect(i * (kPanelWidth + 1), 0, kPanelWidth, 300)];
    [split addSubview:panel];
    [panel release];
  }
  return split;
}

// Every constraint built and solved, every frame set.
void BM_SplitViewLayoutFromScratch(benchmark::State &state) {
  int panels = static_cast<int>(state.range(0));
  for (auto _ : state) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    VXSplitView *split = NewSplitView(panels);
    [split layoutSubtreeIfNeeded];
    benchmark::DoNotOptimize([[split subviews] count]);
    [split release];
    [pool drain];
  }
}
BENCHMARK(BM_SplitViewLayoutFromScratch)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);

// One position constant changed and the layout re-solved, frames applied.
void BM_SplitViewDragStep(benchmark::State &state) {
  int panels = static_cast<int>(state.range(0));
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  VXSplitView *split = NewSplitView(panels);
  [split layoutSubtreeIfNeeded];
  NSLayoutConstraint *position = [[split positionConstraints] objectAtIndex:0];
  double base = [position constant];
  int step = 0;
  for (auto _ : state) {
    [position setConstant:base + (step++ % 20)];
    [split layoutSubtreeIfNeeded];
  }
  [split release];
  [pool drain];
}
BENCHMARK(BM_SplitViewDragStep)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);

// 1000 mouseDragged: events through the application, each followed by the
// layout pass, in a key window; the time is per event.
void BM_DividerDragEvents(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  VXSplitView *split = NewSplitView(10);
  NSWindow *window = [[NSWindow alloc] initWithContentRect:[split frame]
                                                 styleMask:NSBorderlessWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  [window setReleasedWhenClosed:NO];
  [window setContentView:split];
  [split release];
  [window makeKeyAndOrderFront:nil];
  [split layoutSubtreeIfNeeded];
  double x = NSMaxX([[[split viewsInLayout] objectAtIndex:4] frame]) + 0.5;
  NSEvent *(^mouse)(NSEventType, double) = ^NSEvent *(NSEventType type, double at) {
    return [NSEvent mouseEventWithType:type
                              location:NSMakePoint(at, 150)
                         modifierFlags:0
                             timestamp:0
                          windowNumber:[window windowNumber]
                               context:nil
                           eventNumber:0
                            clickCount:1
                              pressure:1];
  };
  for (auto _ : state) {
    [NSApp sendEvent:mouse(NSLeftMouseDown, x)];
    for (int i = 0; i < 1000; i++) {
      NSAutoreleasePool *inner = [NSAutoreleasePool new];
      [NSApp sendEvent:mouse(NSLeftMouseDragged, x - 20 + (i % 40))];
      [split layoutSubtreeIfNeeded];
      [inner drain];
    }
    [NSApp sendEvent:mouse(NSLeftMouseUp, x)];
    [split layoutSubtreeIfNeeded];
  }
  state.SetItemsProcessed(state.iterations() * 1000);
  [window close];
  [window release];
  [pool drain];
}
BENCHMARK(BM_DividerDragEvents)->Unit(benchmark::kMillisecond);

// One clock tick of a slide-in: every constant animated one frame further,
// then the layout pass.
void BM_SlideFrame(benchmark::State &state) {
  int panels = static_cast<int>(state.range(0));
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  TVAnimationClockSetManual(YES);
  VXSplitView *split = NewSplitView(panels);
  [split layoutSubtreeIfNeeded];
  [split setAnimated:YES];
  NSView *panel = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 120, 300)] autorelease];
  int frame = 0;
  for (auto _ : state) {
    if (frame % 12 == 0) {
      // A fresh slide every 12 frames (0.2 s at 60 Hz): pop the panel and
      // push it again.
      state.PauseTiming();
      TVAnimationClockAdvance(1);
      if ([panel superview] != nil) {
        [split setAnimated:NO];
        [split popSubViewAtPosition:VXSplitViewPushPositionEnd];
        [split setAnimated:YES];
      }
      [split pushSubView:panel atPosition:VXSplitViewPushPositionEnd autosaveName:nil];
      [split layoutSubtreeIfNeeded];  // the rebuilt constraint sets, before the first tick
      state.ResumeTiming();
    }
    TVAnimationClockAdvance(1.0 / 60);
    [split layoutSubtreeIfNeeded];
    frame++;
  }
  TVAnimationClockAdvance(1);
  TVAnimationClockSetManual(NO);
  [split release];
  [pool drain];
}
BENCHMARK(BM_SlideFrame)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);

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
