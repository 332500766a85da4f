// The split view at work, at 10 to 1000 panels: the first layout pass
// (outside a window and in one), one divider-drag step, a pass with nothing
// changed, releasing the split view, a drag of real mouse events and one
// frame of a slide. Beside each, the bare solver on the same constraint
// system (every row and stay the pass gives it), so that the pass's own cost
// reads as a ratio.
#import <Talvo/Talvo.h>

#include <benchmark/benchmark.h>

#include <vector>

#import "platform/QuartzCore/TVAnimationClock.h"
#include "platform/AppKit/layout/Solver.hpp"

namespace layout = talvo::layout;

namespace {

const double kPanelWidth = 40;
const double kHeight = 300;

void PanelCounts(benchmark::internal::Benchmark *bench) {
  for (int n : {10, 100, 300, 1000}) {
    bench->Arg(n);
  }
}

VXSplitView *NewSplitView(int panels) {
  double width = panels * (kPanelWidth + 1);
  VXSplitView *split = [[VXSplitView alloc] initWithFrame:NSMakeRect(0, 0, width, kHeight)];
  for (int i = 0; i < panels; i++) {
    NSView *panel =
        [[NSView alloc] initWithFrame:NSMakeRect(i * (kPanelWidth + 1), 0, kPanelWidth, kHeight)];
    [split addSubview:panel];
    [panel release];
  }
  return split;
}

NSWindow *NewWindow(NSRect content) {
  NSWindow *window = [[NSWindow alloc] initWithContentRect:content
                                                 styleMask:NSBorderlessWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:YES];
  [window setReleasedWhenClosed:NO];
  return window;
}

// A split view of `panels` panels as the content of a new window (returned
// +1 in *window), laid out once.
VXSplitView *NewLaidOutSplitViewInWindow(int panels, NSWindow **window) {
  VXSplitView *split = NewSplitView(panels);
  *window = NewWindow([split frame]);
  [*window setContentView:split];
  [split layoutSubtreeIfNeeded];
  return split;
}

void ReleaseWindowAndSplitView(NSWindow *window, VXSplitView *split) {
  [window close];
  [window release];
  [split release];
}

// --- The bare solver on the split view's system ----------------------------

// What the layout pass gives the solver for a split view of n panels: the
// edges of every view (the split view, the panels, the dividers), the split
// view's size, each view's non-negative size and, in modes 1 and 3, weak
// stays on its edges; the chain, the heights and the positions at 490,
// each position after its view's chain (modes 2 and 3) or all at the end.
struct RawEdgesSplitView {
  struct Box {
    layout::Variable left, top, right, bottom;
  };
  layout::Solver solver;
  Box root;
  std::vector<Box> views;
  std::vector<layout::Constraint> positions;

  explicit RawEdgesSplitView(int panels, int mode) {
    bool stays = mode & 1;
    bool interleave = mode & 2;
    using layout::Constraint;
    using layout::Expression;
    using layout::Relation;
    layout::Strength required = layout::Strength::Required();
    double width = panels * (kPanelWidth + 1);
    solver.addConstraint(Constraint::Make(root.left, Relation::Equal, 0.0, required));
    solver.addConstraint(Constraint::Make(root.top, Relation::Equal, 0.0, required));
    solver.addConstraint(Constraint::Make(root.right, Relation::Equal, width, required));
    solver.addConstraint(Constraint::Make(root.bottom, Relation::Equal, kHeight, required));
    int count = 2 * panels - 1;
    views.resize(count);
    for (int i = 0; i < count; i++) {
      Box &box = views[i];
      bool divider = i % 2 == 1;
      double x = (i / 2) * (kPanelWidth + 1) + (divider ? kPanelWidth : 0);
      box.left.setValue(x);
      box.right.setValue(x + (divider ? 1 : kPanelWidth));
      box.bottom.setValue(kHeight);
      solver.addConstraint(Constraint::Make(box.right, Relation::GreaterThanOrEqual, box.left, required));
      solver.addConstraint(Constraint::Make(box.bottom, Relation::GreaterThanOrEqual, box.top, required));
      if (stays) for (const layout::Variable &v : {box.left, box.top, box.right, box.bottom}) {
        solver.addEditVariable(v, layout::Strength{0.5f});
      }
    }
    for (int i = 0; i < count; i++) {
      Box &box = views[i];
      Expression leading = i == 0 ? Expression(root.left) : Expression(views[i - 1].right);
      solver.addConstraint(Constraint::Make(box.left, Relation::Equal, leading, required));
      solver.addConstraint(Constraint::Make(box.top, Relation::Equal, root.top, required));
      solver.addConstraint(Constraint::Make(root.bottom, Relation::Equal, box.bottom, required));
      if (i % 2 == 1) {
        solver.addConstraint(Constraint::Make(Expression(box.right) - Expression(box.left), Relation::Equal, 1.0, required));
      }
      if (interleave && i % 2 == 0 && i > 0) {
        Constraint position = Constraint::Make(views[i].left, Relation::Equal,
                                               Expression(root.left) + (i / 2) * (kPanelWidth + 1),
                                               layout::Strength{490});
        solver.addConstraint(position);
        positions.push_back(position);
      }
    }
    solver.addConstraint(Constraint::Make(root.right, Relation::Equal, views.back().right, required));
    for (int i = 2; !interleave && i < count; i += 2) {
      Constraint position = Constraint::Make(views[i].left, Relation::Equal,
                                             Expression(root.left) + (i / 2) * (kPanelWidth + 1),
                                             layout::Strength{490});
      solver.addConstraint(position);
      positions.push_back(position);
    }
    solver.updateVariables();
  }
};

void BM_RawEdges(benchmark::State &state) {
  int panels = static_cast<int>(state.range(0));
  for (auto _ : state) {
    RawEdgesSplitView raw(panels, state.range(1));
    benchmark::DoNotOptimize(raw.views.back().right.value());
  }
}
BENCHMARK(BM_RawEdges)->ArgsProduct({{10, 100, 300, 1000}, {1, 2, 3}})->Unit(benchmark::kMillisecond);


// One divider of the edges system dragged, stays on: the position's
// constant changed in place and the frames read back.
void BM_RawEdgesDragStep(benchmark::State &state) {
  int panels = static_cast<int>(state.range(0));
  RawEdgesSplitView raw(panels, static_cast<int>(state.range(1)));
  std::size_t divider = raw.positions.size() / 2;
  double base = (divider + 1) * (kPanelWidth + 1);
  int step = 0;
  for (auto _ : state) {
    raw.solver.updateConstant(raw.positions[divider], -(base + (step++ % 20)));
    raw.solver.updateVariables();
    benchmark::DoNotOptimize(raw.views[2 * divider + 2].left.value());
  }
}
BENCHMARK(BM_RawEdgesDragStep)->ArgsProduct({{10, 100, 300, 1000}, {1, 2, 3}})->Unit(benchmark::kMicrosecond);

// --- Through AppKit ----------------------------------------------------------

// Every constraint built and solved, every frame set; the tree is made
// outside the timing.
void BM_SplitViewFirstPassDetached(benchmark::State &state) {
  int panels = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    VXSplitView *split = NewSplitView(panels);
    state.ResumeTiming();
    [split layoutSubtreeIfNeeded];
    state.PauseTiming();
    benchmark::DoNotOptimize([[split subviews] count]);
    [split release];
    [pool drain];
    state.ResumeTiming();
  }
}
BENCHMARK(BM_SplitViewFirstPassDetached)->Apply(PanelCounts)->Unit(benchmark::kMillisecond);

void BM_SplitViewFirstPassInWindow(benchmark::State &state) {
  int panels = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    VXSplitView *split = NewSplitView(panels);
    NSWindow *window = NewWindow([split frame]);
    [window setContentView:split];
    [split release];
    state.ResumeTiming();
    [split layoutSubtreeIfNeeded];
    state.PauseTiming();
    [window close];
    [window release];
    [pool drain];
    state.ResumeTiming();
  }
}
BENCHMARK(BM_SplitViewFirstPassInWindow)->Apply(PanelCounts)->Unit(benchmark::kMillisecond);

// One position constant changed and the layout re-solved, frames applied.
void BM_SplitViewDragStep(benchmark::State &state) {
  int panels = static_cast<int>(state.range(0));
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSWindow *window = nil;
  VXSplitView *split = NewLaidOutSplitViewInWindow(panels, &window);
  NSLayoutConstraint *position = [[split positionConstraints] objectAtIndex:0];
  double base = [position constant];
  int step = 0;
  for (auto _ : state) {
    [position setConstant:base + (step++ % 20)];
    [split layoutSubtreeIfNeeded];
  }
  ReleaseWindowAndSplitView(window, split);
  [pool drain];
}
BENCHMARK(BM_SplitViewDragStep)->Apply(PanelCounts)->Unit(benchmark::kMicrosecond);

// A pass asked for when nothing changed.
void BM_SplitViewIdlePass(benchmark::State &state) {
  int panels = static_cast<int>(state.range(0));
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSWindow *window = nil;
  VXSplitView *split = NewLaidOutSplitViewInWindow(panels, &window);
  for (auto _ : state) {
    [split layoutSubtreeIfNeeded];
  }
  ReleaseWindowAndSplitView(window, split);
  [pool drain];
}
BENCHMARK(BM_SplitViewIdlePass)->Apply(PanelCounts)->Unit(benchmark::kMicrosecond);

// Releasing a laid-out split view: every panel, divider and constraint.
void BM_SplitViewRelease(benchmark::State &state) {
  int panels = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    VXSplitView *split = NewSplitView(panels);
    [split layoutSubtreeIfNeeded];
    [pool drain];
    state.ResumeTiming();
    [split release];
  }
}
BENCHMARK(BM_SplitViewRelease)->Apply(PanelCounts)->Unit(benchmark::kMillisecond);

// 1000 mouseDragged: events through the application, each followed by the
// layout pass, in a key window; the time is per event.
void BM_DividerDragEvents(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  VXSplitView *split = NewSplitView(10);
  // A titled window, ordered in: drags happen only in the key window.
  NSWindow *window = [[NSWindow alloc] initWithContentRect:[split frame]
                                                 styleMask:NSTitledWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  [window setReleasedWhenClosed:NO];
  [window setContentView:split];
  [split release];
  [NSApp finishLaunching];
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
  state.counters["key"] = [window isKeyWindow] ? 1 : 0;
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
  NSView *panel = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 120, kHeight)] autorelease];
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
BENCHMARK(BM_SlideFrame)->Apply(PanelCounts)->Unit(benchmark::kMicrosecond);


// A conflict storm through AppKit: 12 views and random constraints between
// their edges, 1000 installed in batches of 100 (many of them refused as
// unsatisfiable); then one pass that adds a batch of 100 more, and one that
// removes a single required constraint. The log lines of the refusals are
// part of the cost.
struct Storm {
  NSView *root = nil;
  std::vector<NSView *> views;
  unsigned seed = 7;
  unsigned Next() {
    seed = seed * 1103515245u + 12345u;
    return (seed >> 8) & 0xffffff;
  }
  NSArray *Batch(int count) {
    static const NSLayoutAttribute attributes[] = {
        NSLayoutAttributeLeft, NSLayoutAttributeRight, NSLayoutAttributeTop,
        NSLayoutAttributeBottom, NSLayoutAttributeWidth, NSLayoutAttributeHeight};
    NSMutableArray *batch = [NSMutableArray array];
    for (int i = 0; i < count; i++) {
      NSView *a = views[Next() % views.size()];
      NSView *b = views[Next() % views.size()];
      NSLayoutConstraint *constraint = [NSLayoutConstraint
          constraintWithItem:a
                   attribute:attributes[Next() % 6]
                   relatedBy:(NSLayoutRelation)((int)(Next() % 3) - 1)
                      toItem:b
                   attribute:attributes[Next() % 6]
                  multiplier:1
                    constant:(double)(Next() % 200)];
      if (Next() % 2 == 0) {
        [constraint setPriority:(NSLayoutPriority)(1 + Next() % 999)];
      }
      [batch addObject:constraint];
    }
    return batch;
  }
};

void BM_ConflictStormPass(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  Storm storm;
  storm.root = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 800, 600)];
  for (int i = 0; i < 12; i++) {
    NSView *view = [[NSView alloc] initWithFrame:NSMakeRect(i * 10, i * 10, 50, 50)];
    [view setTranslatesAutoresizingMaskIntoConstraints:NO];
    [storm.root addSubview:view];
    storm.views.push_back(view);
    [view release];
  }
  for (int batch = 0; batch < 10; batch++) {
    [storm.root addConstraints:storm.Batch(100)];
    [storm.root layoutSubtreeIfNeeded];
  }
  bool removing = state.range(0) == 1;
  for (auto _ : state) {
    state.PauseTiming();
    NSAutoreleasePool *inner = [NSAutoreleasePool new];
    NSArray *batch = removing ? nil : storm.Batch(100);
    NSLayoutConstraint *leaving = nil;
    for (NSLayoutConstraint *constraint in [storm.root constraints]) {
      if ([constraint priority] == NSLayoutPriorityRequired) {
        leaving = constraint;
      }
    }
    state.ResumeTiming();
    if (removing) {
      [storm.root removeConstraint:leaving];
    } else {
      [storm.root addConstraints:batch];
    }
    [storm.root layoutSubtreeIfNeeded];
    state.PauseTiming();
    [inner drain];
    state.ResumeTiming();
  }
  state.counters["installed"] = (double)[[storm.root constraints] count];
  [storm.root release];
  [pool drain];
}
BENCHMARK(BM_ConflictStormPass)->Arg(0)->Arg(1)->Iterations(5)->Unit(benchmark::kMillisecond);
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
