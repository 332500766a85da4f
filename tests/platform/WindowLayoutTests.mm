// NSWindow's Auto Layout API on GNUstep: passes run on request, and windows
// sized by their content's constraints. Real windows under Xvfb.

#import <AppKit/AppKit.h>

#import "support/TestSupport.h"

// Counts the passes that reach it.
@interface TVPassCountingView : NSView {
  int _updates;
  int _layouts;
}
@property(nonatomic, readonly) int updates;
@property(nonatomic, readonly) int layouts;
@end

@implementation TVPassCountingView
@synthesize updates = _updates;
@synthesize layouts = _layouts;
- (void)updateConstraints {
  _updates++;
  [super updateConstraints];
}
- (void)layout {
  _layouts++;
  [super layout];
}
@end

namespace {

class WindowLayout : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) {
      GTEST_SKIP() << "needs a window server";
    }
    // High enough on the screen that growing downward keeps the window on it.
    window_.reset([[NSWindow alloc] initWithContentRect:NSMakeRect(50, 300, 300, 200)
                                              styleMask:NSTitledWindowMask | NSResizableWindowMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO]);
    [window_.get() setReleasedWhenClosed:NO];
    content_ = [[[TVPassCountingView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)] autorelease];
    [window_.get() setContentView:content_];
  }
  void TearDown() override {
    [window_.get() close];
    window_.reset();
    PooledTest::TearDown();
  }
  NSView *Panel() {
    NSView *panel = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
    [panel setTranslatesAutoresizingMaskIntoConstraints:NO];
    [content_ addSubview:panel];
    return panel;
  }
  NSSize ContentSize() { return [[window_.get() contentView] frame].size; }

  Owned<NSWindow> window_;
  TVPassCountingView *content_ = nil;
};

TEST_F(WindowLayout, LayoutIfNeededAppliesFramesAtOnce) {
  NSView *panel = Panel();
  [NSLayoutConstraint activateConstraints:@[
    [[panel leadingAnchor] constraintEqualToAnchor:[content_ leadingAnchor] constant:10],
    [[panel trailingAnchor] constraintEqualToAnchor:[content_ trailingAnchor] constant:-10],
    [[panel topAnchor] constraintEqualToAnchor:[content_ topAnchor] constant:15],
    [[panel heightAnchor] constraintEqualToConstant:50],
  ]];
  // Never ordered in, never displayed: only layoutIfNeeded runs the pass.
  [window_.get() layoutIfNeeded];
  EXPECT_TRUE(NSEqualRects([panel frame], NSMakeRect(10, 135, 280, 50)))
      << [NSStringFromRect([panel frame]) UTF8String];
  EXPECT_GE([content_ layouts], 1);
  EXPECT_FALSE([content_ needsLayout]);
}

TEST_F(WindowLayout, UpdateConstraintsIfNeededRunsOnlyTheUpdatePass) {
  [window_.get() layoutIfNeeded];
  int layouts = [content_ layouts];
  int updates = [content_ updates];
  [content_ setNeedsUpdateConstraints:YES];
  [window_.get() updateConstraintsIfNeeded];
  EXPECT_EQ([content_ updates], updates + 1);
  EXPECT_EQ([content_ layouts], layouts);
  EXPECT_FALSE([content_ needsUpdateConstraints]);
  [window_.get() updateConstraintsIfNeeded];  // nothing left to update
  EXPECT_EQ([content_ updates], updates + 1);
}

TEST_F(WindowLayout, AWindowWithoutAContentViewIgnoresTheCalls) {
  Owned<NSWindow> bare([[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 100, 100)
                                                   styleMask:NSBorderlessWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:YES]);
  [bare.get() setReleasedWhenClosed:NO];
  [bare.get() setContentView:NullOf<NSView *>()];
  [bare.get() layoutIfNeeded];
  [bare.get() updateConstraintsIfNeeded];
  [bare.get() close];
}

TEST_F(WindowLayout, WindowsWithoutConstraintsResizeFreely) {
  NSView *plain = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 280, 180)] autorelease];
  [content_ addSubview:plain];
  [window_.get() setContentSize:NSMakeSize(120, 90)];
  EXPECT_TRUE(NSEqualSizes(ContentSize(), NSMakeSize(120, 90)));
}

// The content's required constraints need 500 x 260: the window grows to it
// when it lays out, keeping its top edge, and refuses to get smaller.
TEST_F(WindowLayout, AWindowGrowsToWhatItsContentsConstraintsNeed) {
  NSView *panel = Panel();
  [NSLayoutConstraint activateConstraints:@[
    [[panel leadingAnchor] constraintEqualToAnchor:[content_ leadingAnchor] constant:20],
    [[panel trailingAnchor] constraintEqualToAnchor:[content_ trailingAnchor] constant:-20],
    [[panel topAnchor] constraintEqualToAnchor:[content_ topAnchor] constant:20],
    [[panel bottomAnchor] constraintEqualToAnchor:[content_ bottomAnchor] constant:-20],
    [[panel widthAnchor] constraintGreaterThanOrEqualToConstant:460],
    [[panel heightAnchor] constraintGreaterThanOrEqualToConstant:220],
  ]];
  EXPECT_TRUE(NSEqualSizes([content_ fittingSize], NSMakeSize(500, 260)))
      << [NSStringFromSize([content_ fittingSize]) UTF8String];
  CGFloat top = NSMaxY([window_.get() frame]);
  [window_.get() layoutIfNeeded];
  EXPECT_TRUE(NSEqualSizes(ContentSize(), NSMakeSize(500, 260)))
      << [NSStringFromSize(ContentSize()) UTF8String];
  EXPECT_EQ(NSMaxY([window_.get() frame]), top);
  EXPECT_TRUE(NSEqualRects([panel frame], NSMakeRect(20, 20, 460, 220)))
      << [NSStringFromRect([panel frame]) UTF8String];

  [window_.get() setContentSize:NSMakeSize(200, 100)];
  EXPECT_TRUE(NSEqualSizes(ContentSize(), NSMakeSize(500, 260)))
      << [NSStringFromSize(ContentSize()) UTF8String];
  // Bigger is fine, and the constraints follow.
  [window_.get() setContentSize:NSMakeSize(600, 300)];
  [window_.get() layoutIfNeeded];
  EXPECT_TRUE(NSEqualSizes(ContentSize(), NSMakeSize(600, 300)));
  EXPECT_TRUE(NSEqualRects([panel frame], NSMakeRect(20, 20, 560, 260)));
}

// Growth happens in the pass before the window displays, too.
TEST_F(WindowLayout, AWindowOrderedInGrowsBeforeItShows) {
  NSView *panel = Panel();
  [NSLayoutConstraint activateConstraints:@[
    [[panel leadingAnchor] constraintEqualToAnchor:[content_ leadingAnchor]],
    [[panel trailingAnchor] constraintEqualToAnchor:[content_ trailingAnchor]],
    [[panel topAnchor] constraintEqualToAnchor:[content_ topAnchor]],
    [[panel bottomAnchor] constraintEqualToAnchor:[content_ bottomAnchor]],
    [[panel widthAnchor] constraintEqualToConstant:350],
    [[panel heightAnchor] constraintGreaterThanOrEqualToConstant:120],
  ]];
  [window_.get() orderFront:nil];
  EXPECT_EQ(ContentSize().width, 350);
  EXPECT_EQ(ContentSize().height, 200);  // 120 fits: the window keeps its height
  EXPECT_TRUE(NSEqualRects([panel frame], NSMakeRect(0, 0, 350, 200)))
      << [NSStringFromRect([panel frame]) UTF8String];
}

TEST_F(WindowLayout, FittingSizeIsTheSmallestTheConstraintsAllow) {
  Owned<NSView> box([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 400, 400)]);
  NSView *label = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
  [label setTranslatesAutoresizingMaskIntoConstraints:NO];
  [box.get() addSubview:label];
  [NSLayoutConstraint activateConstraints:@[
    [[label leadingAnchor] constraintEqualToAnchor:[box.get() leadingAnchor] constant:8],
    [[box.get() trailingAnchor] constraintEqualToAnchor:[label trailingAnchor] constant:12],
    [[label topAnchor] constraintEqualToAnchor:[box.get() topAnchor] constant:4],
    [[box.get() bottomAnchor] constraintGreaterThanOrEqualToAnchor:[label bottomAnchor] constant:6],
    [[label widthAnchor] constraintEqualToConstant:100],
    [[label heightAnchor] constraintEqualToConstant:20],
  ]];
  EXPECT_TRUE(NSEqualSizes([box.get() fittingSize], NSMakeSize(120, 30)))
      << [NSStringFromSize([box.get() fittingSize]) UTF8String];
  // Asking does not resize the view.
  EXPECT_TRUE(NSEqualSizes([box.get() frame].size, NSMakeSize(400, 400)));
}

}  // namespace
