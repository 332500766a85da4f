// Random sequences of pushes, pops, divider drags, window resizes and
// animation-clock steps on a split view in a real window, checked against a
// model of where every panel should be after each settled step. Set
// TALVO_SPLIT_SEED to replay a run; the seed is printed with any failure.

#import <Talvo/Talvo.h>

#include <stdlib.h>

#include <algorithm>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#import "layout/VXSplitView+Private.h"
#import "platform/AppKit/autolayout/TVLayoutDiagnostics.h"
#import "platform/QuartzCore/TVAnimationClock.h"
#import "support/TestSupport.h"

// Counts the push and collapse notifications of one split view.
@interface TVSplitNotificationCounter : NSObject {
 @public
  int _willPush, _didPush, _willCollapse, _didCollapse, _willDrag, _didDrag;
}
@end

@implementation TVSplitNotificationCounter
- (instancetype)initWithSplitView:(VXSplitView *)split {
  self = [super init];
  if (self != nil) {
    NSNotificationCenter *center = [NSNotificationCenter defaultCenter];
    [center addObserver:self selector:@selector(note:) name:nil object:split];
  }
  return self;
}
- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  [super dealloc];
}
- (void)note:(NSNotification *)note {
  NSString *name = [note name];
  if ([name isEqualToString:VXSplitViewWillPushSubviewNotification]) _willPush++;
  if ([name isEqualToString:VXSplitViewDidPushSubviewNotification]) _didPush++;
  if ([name isEqualToString:VXSplitViewWillCollapseSubviewNotification]) _willCollapse++;
  if ([name isEqualToString:VXSplitViewDidCollapseSubviewNotification]) _didCollapse++;
  if ([name isEqualToString:VXSplitViewWillDragDividerNotification]) _willDrag++;
  if ([name isEqualToString:VXSplitViewDidDragDividerNotification]) _didDrag++;
}
- (BOOL)slideRunning {
  return _willPush != _didPush || _willCollapse != _didCollapse;
}
@end

// Lets drags collapse a panel when the test says so.
@interface TVCollapsingDelegate : NSObject <VXSplitViewDelegate> {
 @public
  BOOL _collapse;
}
@end

@implementation TVCollapsingDelegate
- (BOOL)splitView:(VXSplitView *)splitView
    shouldCollapseSubviewAtPushPosition:(VXSplitViewPushPosition)position {
  return _collapse;
}
@end

namespace {

const double kThickness = 1;

// Where the views should be: the views in layout in order and, for each
// view after a divider, the x at which it starts.
struct Model {
  std::vector<NSView *> views;
  std::vector<double> xs;  // xs[0] is 0: the first view is pinned
  double width = 0;

  void Push(NSView *view, bool atEnd, double w) {
    if (views.empty()) {
      views.push_back(view);
      xs.push_back(0);
      return;
    }
    if (atEnd) {
      views.push_back(view);
      xs.push_back(width - w);
    } else {
      views.insert(views.begin(), view);
      xs.insert(xs.begin(), 0);
      xs[1] = w + kThickness;
    }
    KeepInOrder();
  }
  // The split view never lets a view start before the one in front ends.
  void KeepInOrder() {
    for (size_t k = 1; k < xs.size(); k++) {
      xs[k] = std::max(xs[k], xs[k - 1] + kThickness);
    }
  }
  void Pop(bool atEnd) {
    if (views.size() < 2) {
      return;
    }
    if (atEnd) {
      views.pop_back();
      xs.pop_back();
    } else {
      views.erase(views.begin());
      xs.erase(xs.begin());
      xs[0] = 0;
    }
    KeepInOrder();
  }
  double ExpectedWidth(size_t k) const {
    double end = k + 1 < views.size() ? xs[k + 1] - kThickness : width;
    return end - xs[k];
  }
  bool HasRoom() const {
    for (size_t k = 0; k < views.size(); k++) {
      if (ExpectedWidth(k) < 0) {
        return false;
      }
    }
    return true;
  }
};

std::string Describe(VXSplitView *split) {
  std::ostringstream out;
  for (NSView *view in [split subviews]) {
    NSRect frame = [view frame];
    out << ([view isKindOfClass:[VXSplitViewDivider class]] ? "|" : "V") << NSMinX(frame) << "+"
        << NSWidth(frame) << " ";
  }
  out << "positions";
  for (NSLayoutConstraint *position in [split positionConstraints]) {
    out << " " << [position constant];
  }
  return out.str();
}

class SplitViewStateMachine : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) {
      GTEST_SKIP() << "needs a window server";
    }
    TVAnimationClockSetManual(YES);
    window_.reset([[NSWindow alloc] initWithContentRect:NSMakeRect(50, 50, 720, 400)
                                              styleMask:NSTitledWindowMask | NSResizableWindowMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO]);
    [window_.get() setReleasedWhenClosed:NO];
    split_ = [[[VXSplitView alloc] initWithFrame:NSMakeRect(0, 0, 720, 400)] autorelease];
    [split_ setTranslatesAutoresizingMaskIntoConstraints:NO];
    NSView *content = [window_.get() contentView];
    [content addSubview:split_];
    [content addConstraints:[NSLayoutConstraint constraintsWithVisualFormat:@"H:|[split]|"
                                                                    options:0
                                                                    metrics:nil
                                                                      views:@{@"split" : split_}]];
    [content addConstraints:[NSLayoutConstraint constraintsWithVisualFormat:@"V:|[split]|"
                                                                    options:0
                                                                    metrics:nil
                                                                      views:@{@"split" : split_}]];
    [split_ setDelegate:delegate_.get()];
    counter_.reset([[TVSplitNotificationCounter alloc] initWithSplitView:split_]);
    [window_.get() makeKeyAndOrderFront:nil];
    model_.width = 720;
  }
  void TearDown() override {
    TVAnimationClockAdvance(10);
    TVAnimationClockSetManual(NO);
    [split_ setDelegate:nil];
    counter_.reset();
    [window_.get() close];
    window_.reset();
    PooledTest::TearDown();
  }

  NSView *NewPanel(double width) {
    return [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, width, 400)] autorelease];
  }

  void Mouse(NSEventType type, double x) {
    SendMouseEvent(split_, type, NSMakePoint(x, 200));
  }

  void Settle() {
    TVAnimationClockAdvance(0.3);
    [[window_.get() contentView] layoutSubtreeIfNeeded];
  }

  // Reads the model back from the position constraints after a drag, which
  // places dividers where the mouse went (as far as the neighbours allow).
  void ResyncModel() {
    [split_ layoutSubtreeIfNeeded];
    NSArray *views = [split_ viewsInLayout];
    NSArray *positions = [split_ positionConstraints];
    model_.views.clear();
    model_.xs.clear();
    for (NSView *view in views) {
      size_t k = model_.views.size();
      model_.views.push_back(view);
      model_.xs.push_back(k == 0 || k > [positions count]
                              ? 0
                              : [[positions objectAtIndex:k - 1] constant]);
    }
  }

  // Every invariant of a settled split view; returns false on the first
  // broken one (with a failure recorded).
  bool CheckSettled(const std::string &step) {
    [split_ layoutSubtreeIfNeeded];
    SCOPED_TRACE(step + " :: " + Describe(split_));
    NSRect bounds = [split_ bounds];
    EXPECT_NEAR(NSWidth(bounds), model_.width, 1e-6);
    // The views in layout are the model's, in order.
    NSMutableArray *inLayout = [NSMutableArray array];
    for (NSView *view in [split_ subviews]) {
      if (![view isKindOfClass:[VXSplitViewDivider class]]) {
        [inLayout addObject:view];
      }
    }
    if ([inLayout count] != model_.views.size()) {
      ADD_FAILURE() << "views in split view: " << [inLayout count] << ", model "
                    << model_.views.size();
      return false;
    }
    for (size_t k = 0; k < model_.views.size(); k++) {
      if ([inLayout objectAtIndex:k] != model_.views[k]) {
        ADD_FAILURE() << "view " << k << " is not the model's";
        return false;
      }
    }
    // Views and dividers tile the bounds: no gap, no overlap, no negative
    // width, full height.
    double x = 0;
    NSUInteger index = 0;
    for (NSView *view in inLayout) {
      NSRect frame = [view frame];
      if (fabs(NSMinX(frame) - x) > 1e-6 || NSWidth(frame) < -1e-9 ||
          fabs(NSHeight(frame) - NSHeight(bounds)) > 1e-6 || fabs(NSMinY(frame)) > 1e-6) {
        ADD_FAILURE() << "view " << index << " does not tile";
        return false;
      }
      x = NSMaxX(frame);
      if (index + 1 < [inLayout count]) {
        if ([[split_ dividerViews] count] <= index) {
          ADD_FAILURE() << "missing divider " << index;
          return false;
        }
        NSRect divider = [[[split_ dividerViews] objectAtIndex:index] frame];
        if (fabs(NSMinX(divider) - x) > 1e-6 || fabs(NSWidth(divider) - kThickness) > 1e-6) {
          ADD_FAILURE() << "divider " << index << " does not tile";
          return false;
        }
        x = NSMaxX(divider);
      }
      index++;
    }
    if (!model_.views.empty() && fabs(x - NSWidth(bounds)) > 1e-6) {
      ADD_FAILURE() << "the chain ends at " << x;
      return false;
    }
    // Each panel has its width when there is room for every one.
    if (model_.HasRoom()) {
      for (size_t k = 0; k < model_.views.size(); k++) {
        double expected = model_.ExpectedWidth(k);
        double actual = NSWidth([model_.views[k] frame]);
        if (fabs(expected - actual) > 1e-6) {
          ADD_FAILURE() << "view " << k << " is " << actual << " wide, expected " << expected;
          return false;
        }
      }
    }
    // Every will has its did once nothing slides.
    TVSplitNotificationCounter *c = counter_.get();
    if (c->_willPush != c->_didPush || c->_willCollapse != c->_didCollapse ||
        c->_willDrag != c->_didDrag) {
      ADD_FAILURE() << "unbalanced notifications: push " << c->_willPush << "/" << c->_didPush
                    << " collapse " << c->_willCollapse << "/" << c->_didCollapse;
      return false;
    }
    if (TVLayoutBrokenConstraintCount() != brokenAtStart_) {
      ADD_FAILURE() << "a required constraint was broken";
      return false;
    }
    // The split view holds exactly its two sets, and they name its views.
    std::set<NSLayoutConstraint *> expected;
    for (NSLayoutConstraint *constraint in [split_ viewStackConstraints]) {
      expected.insert(constraint);
    }
    for (NSLayoutConstraint *constraint in [split_ positionConstraints]) {
      expected.insert(constraint);
    }
    std::set<NSLayoutConstraint *> installed;
    for (NSLayoutConstraint *constraint in [split_ constraints]) {
      installed.insert(constraint);
      for (id item : {[constraint firstItem], [constraint secondItem]}) {
        if (item != nil && item != split_ && [item superview] != split_) {
          ADD_FAILURE() << "an installed constraint names a view that left";
          return false;
        }
      }
    }
    if (installed != expected) {
      ADD_FAILURE() << "installed constraints: " << installed.size() << ", sets "
                    << expected.size();
      return false;
    }
    return true;
  }

  Owned<NSWindow> window_;
  VXSplitView *split_ = nil;
  Owned<TVCollapsingDelegate> delegate_{[TVCollapsingDelegate new]};
  Owned<TVSplitNotificationCounter> counter_;
  Model model_;
  NSUInteger brokenAtStart_ = TVLayoutBrokenConstraintCount();
};

}  // namespace

namespace {

TEST_F(SplitViewStateMachine, RandomOperationsKeepAConsistentLayout) {
  unsigned seed = (unsigned)time(nullptr);
  if (const char *given = getenv("TALVO_SPLIT_SEED")) {
    seed = (unsigned)strtoul(given, nullptr, 10);
  }
  SCOPED_TRACE("TALVO_SPLIT_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  auto uniform = [&](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  auto chance = [&](double p) { return uniform(0, 1) < p; };
  NSArray *names = @[ @"navigator", @"inspector", @"library" ];

#if defined(__has_feature) && __has_feature(address_sanitizer)
  const int kSteps = 600;  // the sanitizers' build runs each step a few times slower
#else
  const int kSteps = 2500;
#endif
  std::string history;
  for (int step = 0; step < kSteps; step++) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    int choice = (int)uniform(0, 100);
    // Keep between none and a handful of panels: pushes give way to pops.
    if (choice < 30 && model_.views.size() >= 6) {
      choice += 20;
    }
    bool animated = chance(0.5);
    [split_ setAnimated:animated];
    std::ostringstream what;
    what << step << ":";
    if (choice < 30) {
      bool atEnd = chance(0.5);
      NSString *name = chance(0.6) ? [names objectAtIndex:(NSUInteger)uniform(0, 3)] : nil;
      NSNumber *saved = name != nil ? [[split_ autosavedSizes] objectForKey:name] : nil;
      double w = floor(uniform(10, 260));
      NSView *panel = NewPanel(w);
      double expected = saved != nil ? [saved doubleValue] : w;
      [split_ pushSubView:panel
               atPosition:atEnd ? VXSplitViewPushPositionEnd : VXSplitViewPushPositionBeginning
             autosaveName:name];
      model_.Push(panel, atEnd, expected);
      what << "push " << (atEnd ? "end " : "begin ") << expected << (animated ? " anim" : "");
    } else if (choice < 50) {
      bool atEnd = chance(0.5);
      [split_ popSubViewAtPosition:atEnd ? VXSplitViewPushPositionEnd
                                         : VXSplitViewPushPositionBeginning];
      model_.Pop(atEnd);
      what << "pop " << (atEnd ? "end" : "begin") << (animated ? " anim" : "");
    } else if (choice < 65) {
      // A drag of a random divider through real events, ending anywhere.
      [split_ layoutSubtreeIfNeeded];
      NSArray *dividers = [split_ dividerViews];
      if ([dividers count] == 0) {
        what << "no drag";
      } else {
        delegate_.get()->_collapse = chance(0.3);
        NSUInteger index = (NSUInteger)uniform(0, [dividers count]);
        double from = NSMinX([[dividers objectAtIndex:index] frame]) + 0.5;
        double to = floor(uniform(2, model_.width - 2)) + 0.5;
        Mouse(NSLeftMouseDown, from);
        Mouse(NSLeftMouseDragged, (from + to) / 2);
        Mouse(NSLeftMouseDragged, to);
        Mouse(NSLeftMouseUp, to);
        Settle();
        ResyncModel();
        what << "drag " << index << " " << from << "->" << to;
      }
    } else if (choice < 75) {
      double width = floor(uniform(300, 900));
      NSRect frame = [window_.get() frame];
      frame.size.width = width;
      [window_.get() setFrame:frame display:NO];
      model_.width = NSWidth([[window_.get() contentView] bounds]);
      what << "resize " << model_.width;
    } else {
      double dt = uniform(0, 0.2);
      TVAnimationClockAdvance(dt);
      what << "tick " << dt;
    }
    history += what.str() + "\n";
    if (getenv("TALVO_SPLIT_VERBOSE") != nullptr) {
      fprintf(stderr, "%s :: %s\n", what.str().c_str(), Describe(split_).c_str());
      [split_ layoutSubtreeIfNeeded];
      TVSplitNotificationCounter *c = counter_.get();
      fprintf(stderr, "   laid out: %s W=%g push %d/%d collapse %d/%d\n", Describe(split_).c_str(),
              NSWidth([split_ bounds]), c->_willPush, c->_didPush, c->_willCollapse,
              c->_didCollapse);
    }
    if (![counter_.get() slideRunning]) {
      if (!CheckSettled(what.str())) {
        [pool drain];
        FAIL() << "after " << step + 1 << " steps:\n" << history.substr(history.size() > 4000 ? history.size() - 4000 : 0);
      }
    } else if (chance(0.2)) {
      Settle();
      if (!CheckSettled(what.str() + " (settled)")) {
        [pool drain];
        FAIL() << "after " << step + 1 << " steps:\n" << history.substr(history.size() > 4000 ? history.size() - 4000 : 0);
      }
    }
    [pool drain];
  }
}

// The gallery's sequence: an animated push into the empty split view, then
// panels pushed at both edges while it still slides.
TEST_F(SplitViewStateMachine, PushesDuringTheFirstSlideKeepTheirWidths) {
  [split_ setAutosavedSizes:[NSMutableDictionary dictionaryWithDictionary:@{
    @"nav" : @180.0,
    @"insp" : @200.0
  }]];
  [split_ setAnimated:YES];
  NSView *content = NewPanel(720);
  [split_ pushSubView:content atPosition:VXSplitViewPushPositionBeginning autosaveName:nil];
  [split_ setAnimated:NO];
  NSView *navigator = NewPanel(50);
  NSView *inspector = NewPanel(50);
  [split_ pushSubView:navigator atPosition:VXSplitViewPushPositionBeginning autosaveName:@"nav"];
  [split_ pushSubView:inspector atPosition:VXSplitViewPushPositionEnd autosaveName:@"insp"];
  [window_.get() display];
  TVAnimationClockSetManual(NO);
  RunMainLoopUntil([] { return false; }, 0.3);
  TVAnimationClockSetManual(YES);
  [window_.get() display];
  EXPECT_NSEQ(NSStringFromRect([navigator frame]), NSStringFromRect(NSMakeRect(0, 0, 180, 400)));
  EXPECT_NSEQ(NSStringFromRect([content frame]), NSStringFromRect(NSMakeRect(181, 0, 338, 400)));
  EXPECT_NSEQ(NSStringFromRect([inspector frame]), NSStringFromRect(NSMakeRect(520, 0, 200, 400)));

  // And the split view is not stuck: an animated pop and push of the
  // inspector bring it back at its width.
  [split_ setAnimated:YES];
  [split_ popSubViewAtPosition:VXSplitViewPushPositionEnd];
  TVAnimationClockAdvance(0.3);
  [split_ pushSubView:inspector atPosition:VXSplitViewPushPositionEnd autosaveName:@"insp"];
  TVAnimationClockAdvance(0.3);
  [split_ layoutSubtreeIfNeeded];
  EXPECT_NSEQ(NSStringFromRect([inspector frame]), NSStringFromRect(NSMakeRect(520, 0, 200, 400)));
}

}  // namespace

