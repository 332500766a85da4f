// Tracking areas at work: a window of 200 views in a grid, each with one
// area (entered/exited and mouse moved), and one mouse-moved event sent
// through NSApplication as the event loop would. Beside it the same event
// in the same window without any areas, so that the areas' own cost reads
// as the difference. Target: under 100 µs per event with 200 areas.
#import <AppKit/AppKit.h>

#include <benchmark/benchmark.h>

// Counts what it is told, so that the dispatch cannot be skipped.
@interface TVBenchOwner : NSObject {
 @public
  long _calls;
}
@end

@implementation TVBenchOwner
- (void)mouseEntered:(NSEvent *)event {
  _calls++;
}
- (void)mouseExited:(NSEvent *)event {
  _calls++;
}
- (void)mouseMoved:(NSEvent *)event {
  _calls++;
}
@end

namespace {

const int kColumns = 20;
const int kCell = 20;

NSWindow *NewGridWindow(int views, BOOL withAreas, TVBenchOwner *owner) {
  int rows = (views + kColumns - 1) / kColumns;
  NSWindow *window = [[NSWindow alloc]
      initWithContentRect:NSMakeRect(0, 0, kColumns * kCell, rows * kCell)
                styleMask:NSBorderlessWindowMask
                  backing:NSBackingStoreBuffered
                    defer:NO];
  [window setReleasedWhenClosed:NO];
  [window orderFront:nil];  // events reach only windows the server knows
  for (int i = 0; i < views; i++) {
    NSView *view = [[NSView alloc]
        initWithFrame:NSMakeRect((i % kColumns) * kCell, (i / kColumns) * kCell, kCell, kCell)];
    [[window contentView] addSubview:view];
    if (withAreas) {
      NSTrackingArea *area = [[NSTrackingArea alloc]
          initWithRect:[view bounds]
               options:NSTrackingMouseEnteredAndExited | NSTrackingMouseMoved |
                       NSTrackingActiveAlways
                 owner:owner
              userInfo:nil];
      [view addTrackingArea:area];
      [area release];
    }
    [view release];
  }
  return window;
}

NSEvent *MovedEvent(NSWindow *window, NSPoint point) {
  return [NSEvent mouseEventWithType:NSMouseMoved
                            location:point
                       modifierFlags:0
                           timestamp:0
                        windowNumber:[window windowNumber]
                             context:nil
                         eventNumber:0
                          clickCount:0
                            pressure:0];
}

// The mouse alternates between two cells, so that every event exits one
// area, enters another and moves in it.
void RunMoves(benchmark::State &state, BOOL withAreas) {
  NSAutoreleasePool *outer = [NSAutoreleasePool new];
  TVBenchOwner *owner = [TVBenchOwner new];
  NSWindow *window = NewGridWindow((int)state.range(0), withAreas, owner);
  NSEvent *events[2] = {[MovedEvent(window, NSMakePoint(5, 5)) retain],
                        [MovedEvent(window, NSMakePoint(kCell * 7 + 5, kCell * 3 + 5)) retain]};
  long i = 0;
  for (auto _ : state) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    [NSApp sendEvent:events[i++ & 1]];
    [pool drain];
  }
  benchmark::DoNotOptimize(owner->_calls);
  state.counters["calls/event"] = double(owner->_calls) / double(state.iterations());
  [events[0] release];
  [events[1] release];
  [window close];
  [window release];
  [owner release];
  [outer drain];
}

void BM_MouseMovedWithAreas(benchmark::State &state) {
  RunMoves(state, YES);
}
BENCHMARK(BM_MouseMovedWithAreas)->Arg(20)->Arg(200)->Unit(benchmark::kMicrosecond);

void BM_MouseMovedWithoutAreas(benchmark::State &state) {
  RunMoves(state, NO);
}
BENCHMARK(BM_MouseMovedWithoutAreas)->Arg(200)->Unit(benchmark::kMicrosecond);

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
