// NSViewController's layout callbacks: what the passes send a controller,
// in which order, and only while the controller and its view live.

#import <AppKit/AppKit.h>

#import "support/TestSupport.h"

// Logs the layout messages its view and controller receive.
@interface TVLoggingLayoutView : NSView {
  NSMutableArray *_log;
}
@property(nonatomic, assign) NSMutableArray *log;
@end

@implementation TVLoggingLayoutView
@synthesize log = _log;
- (void)updateConstraints {
  [_log addObject:@"view.updateConstraints"];
  [super updateConstraints];
}
- (void)layout {
  [_log addObject:@"view.layout"];
  [super layout];
}
@end

@interface TVLoggingViewController : NSViewController {
  NSMutableArray *_log;
  NSLayoutConstraint *_width;
}
@property(nonatomic, assign) NSMutableArray *log;
@property(nonatomic, assign) NSLayoutConstraint *width;
@end

@implementation TVLoggingViewController
@synthesize log = _log;
@synthesize width = _width;
- (void)updateViewConstraints {
  [_log addObject:@"controller.updateViewConstraints"];
  // The place AppKit gives a controller to change its view's constraints.
  if (_width != nil) {
    [_width setConstant:120];
  }
  [super updateViewConstraints];
}
- (void)viewWillLayout {
  [_log addObject:@"controller.viewWillLayout"];
  [super viewWillLayout];
}
- (void)viewDidLayout {
  [_log addObject:@"controller.viewDidLayout"];
  [super viewDidLayout];
}
@end

// Makes its view in loadView by writing the view ivar through setView:, as
// AppKit's documentation asks.
@interface TVLoadingViewController : TVLoggingViewController
@end

@implementation TVLoadingViewController
- (void)loadView {
  TVLoggingLayoutView *view = [[TVLoggingLayoutView alloc] initWithFrame:NSMakeRect(0, 0, 40, 40)];
  [view setTranslatesAutoresizingMaskIntoConstraints:NO];
  [self setView:view];
  [view release];
}
@end

namespace {

class ViewControllerLayout : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    log_.reset([NSMutableArray new]);
    root_.reset([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
  }
  TVLoggingLayoutView *NewChild() {
    TVLoggingLayoutView *view =
        [[[TVLoggingLayoutView alloc] initWithFrame:NSMakeRect(0, 0, 40, 40)] autorelease];
    [view setTranslatesAutoresizingMaskIntoConstraints:NO];
    [view setLog:log_];
    [root_.get() addSubview:view];
    return view;
  }
  NSArray *Entries(NSString *prefix) {
    NSMutableArray *found = [NSMutableArray array];
    for (NSString *entry in log_.get()) {
      if ([entry hasPrefix:prefix]) {
        [found addObject:entry];
      }
    }
    return found;
  }
  Owned<NSMutableArray> log_;
  Owned<NSView> root_;
};

TEST_F(ViewControllerLayout, DefaultCallbacksCanBeCalledAndDoNothingHarmful) {
  Owned<NSViewController> controller([[NSViewController alloc] initWithNibName:nil bundle:nil]);
  [controller.get() updateViewConstraints];  // no view yet
  NSView *view = NewChild();
  [controller.get() setView:view];
  [view setNeedsUpdateConstraints:YES];
  // Called directly, the default brings a view that needs it up to date.
  [controller.get() updateViewConstraints];
  EXPECT_FALSE([view needsUpdateConstraints]);
  EXPECT_NSEQ(log_.get(), @[ @"view.updateConstraints" ]);
  [controller.get() viewWillLayout];
  [controller.get() viewDidLayout];
  EXPECT_EQ([log_.get() count], 1u);
}

// AppKit's order within one pass: the view's updateConstraints, then its
// controller's updateViewConstraints; later viewWillLayout, the view's
// layout, viewDidLayout.
TEST_F(ViewControllerLayout, ThePassesSendTheCallbacksInAppKitsOrder) {
  Owned<TVLoggingViewController> controller(
      [[TVLoggingViewController alloc] initWithNibName:nil bundle:nil]);
  [controller.get() setLog:log_];
  TVLoggingLayoutView *view = NewChild();
  [controller.get() setView:view];
  NSLayoutConstraint *width = [[view widthAnchor] constraintEqualToConstant:50];
  [controller.get() setWidth:width];
  [NSLayoutConstraint activateConstraints:@[
    width, [[view heightAnchor] constraintEqualToConstant:30],
    [[view leadingAnchor] constraintEqualToAnchor:[root_.get() leadingAnchor]],
    [[view topAnchor] constraintEqualToAnchor:[root_.get() topAnchor]]
  ]];
  [view setNeedsUpdateConstraints:YES];
  [root_.get() layoutSubtreeIfNeeded];

  NSArray *expected = @[
    @"view.updateConstraints", @"controller.updateViewConstraints", @"controller.viewWillLayout",
    @"view.layout", @"controller.viewDidLayout"
  ];
  EXPECT_NSEQ(log_.get(), expected);
  // The constant the controller set in the update pass is in this pass's
  // frames.
  EXPECT_EQ(NSWidth([view frame]), 120);
  EXPECT_EQ(NSHeight([view frame]), 30);

  // A later pass without an update request only lays out.
  [log_.get() removeAllObjects];
  [root_.get() setNeedsLayout:YES];
  [root_.get() layoutSubtreeIfNeeded];
  EXPECT_EQ([Entries(@"controller.updateViewConstraints") count], 0u);
  EXPECT_NSEQ(Entries(@"controller.view"),
              (@[ @"controller.viewWillLayout", @"controller.viewDidLayout" ]));
}

TEST_F(ViewControllerLayout, AViewMadeInLoadViewIsFoundToo) {
  Owned<TVLoadingViewController> controller(
      [[TVLoadingViewController alloc] initWithNibName:nil bundle:nil]);
  [controller.get() setLog:log_];
  TVLoggingLayoutView *view = (TVLoggingLayoutView *)[controller.get() view];
  ASSERT_TRUE(view != nil);
  [view setLog:log_];
  [root_.get() addSubview:view];
  [root_.get() layoutSubtreeIfNeeded];
  EXPECT_EQ([Entries(@"controller.viewWillLayout") count], 1u);
  EXPECT_EQ([Entries(@"controller.viewDidLayout") count], 1u);
}

// The link is weak both ways: a controller that lets its view go, or dies,
// is not sent anything for that view again.
TEST_F(ViewControllerLayout, OnlyTheControllerThatStillHasTheViewIsCalled) {
  TVLoggingLayoutView *view = NewChild();
  TVLoggingViewController *first = [[TVLoggingViewController alloc] initWithNibName:nil bundle:nil];
  [first setLog:log_];
  [first setView:view];
  Owned<NSMutableArray> secondLog([NSMutableArray new]);
  Owned<TVLoggingViewController> second(
      [[TVLoggingViewController alloc] initWithNibName:nil bundle:nil]);
  [second.get() setLog:secondLog];

  [first setView:[[[NSView alloc] initWithFrame:NSZeroRect] autorelease]];
  [second.get() setView:view];
  [root_.get() layoutSubtreeIfNeeded];
  EXPECT_EQ([Entries(@"controller.") count], 0u);
  EXPECT_EQ([secondLog.get() count], 2u);  // viewWillLayout, viewDidLayout

  // The controller dies while its view lives on: the next pass must not
  // message it (a freed controller would crash here).
  [first setView:view];
  [first release];
  [secondLog.get() removeAllObjects];
  [root_.get() setNeedsLayout:YES];
  [root_.get() layoutSubtreeIfNeeded];
  EXPECT_EQ([secondLog.get() count], 0u);
  EXPECT_NSEQ(Entries(@"view.layout"), (@[ @"view.layout", @"view.layout" ]));
}

TEST_F(ViewControllerLayout, AViewThatDiesTakesItsControllerLinkWithIt) {
  Owned<TVLoggingViewController> controller(
      [[TVLoggingViewController alloc] initWithNibName:nil bundle:nil]);
  [controller.get() setLog:log_];
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  TVLoggingLayoutView *view = [[TVLoggingLayoutView alloc] initWithFrame:NSMakeRect(0, 0, 40, 40)];
  [view setTranslatesAutoresizingMaskIntoConstraints:NO];
  [root_.get() addSubview:view];
  [controller.get() setView:view];
  [view removeFromSuperview];
  [view release];
  [pool drain];
  [controller.get() setView:NullOf<NSView *>()];  // the view is freed here
  // A new view at the same address must not inherit the old link.
  for (int i = 0; i < 8; i++) {
    NewChild();
  }
  [root_.get() layoutSubtreeIfNeeded];
  EXPECT_EQ([Entries(@"controller.") count], 0u);
}

}  // namespace
