// What a layout pass does when little or nothing changed, trees laid out
// outside any window, and constraints whose items go away.

#import <Talvo/Talvo.h>

#import "platform/AppKit/autolayout/TVLayoutDiagnostics.h"
#import "support/TestSupport.h"

// Counts the layout and updateConstraints messages it receives.
@interface TVPassCounterView : NSView {
 @public
  int _layouts;
  int _updates;
}
@end

@implementation TVPassCounterView
- (void)layout {
  _layouts++;
  [super layout];
}
- (void)updateConstraints {
  _updates++;
  [super updateConstraints];
}
@end

// Counts the panels that die.
static int panelDeaths = 0;
@interface TVCountedPanel : NSView
@end
@implementation TVCountedPanel
- (void)dealloc {
  panelDeaths++;
  [super dealloc];
}
@end

namespace {

VXSplitView *NewSplitView(int panels, Class panelClass = [NSView class]) {
  VXSplitView *split = [[VXSplitView alloc] initWithFrame:NSMakeRect(0, 0, panels * 41, 300)];
  for (int i = 0; i < panels; i++) {
    NSView *panel = [[panelClass alloc] initWithFrame:NSMakeRect(i * 41, 0, 40, 300)];
    [split addSubview:panel];
    [panel release];
  }
  return split;
}

class LayoutPass : public PooledTest {};

// A split view laid out on its own, outside any window, places its panels
// from their frames: the pass composes each view's offset itself.
TEST_F(LayoutPass, ATreeOutsideAWindowStartsFromItsFrames) {
  Owned<NSView> root([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 500, 300)]);
  Owned<VXSplitView> split(NewSplitView(5));
  [split.get() setFrameOrigin:NSMakePoint(40, 0)];
  [root.get() addSubview:split.get()];
  [root.get() layoutSubtreeIfNeeded];
  NSArray *views = [split.get() viewsInLayout];
  ASSERT_EQ([views count], 5u);
  for (NSUInteger i = 0; i < 5; i++) {
    NSRect frame = [[views objectAtIndex:i] frame];
    EXPECT_EQ(NSMinX(frame), i * 41.0);
    EXPECT_EQ(NSWidth(frame), i + 1 < 5 ? 40.0 : 41.0);  // the last fills to the end
  }
}

TEST_F(LayoutPass, APassWithNothingChangedSendsNothing) {
  Owned<VXSplitView> split(NewSplitView(4, [TVPassCounterView class]));
  [split.get() layoutSubtreeIfNeeded];
  NSArray *views = [split.get() viewsInLayout];
  TVPassCounterView *first = [views objectAtIndex:0];
  int layouts = first->_layouts;
  int updates = first->_updates;
  NSRect frame = [first frame];
  for (int i = 0; i < 3; i++) {
    [split.get() layoutSubtreeIfNeeded];
  }
  EXPECT_EQ(first->_layouts, layouts);
  EXPECT_EQ(first->_updates, updates);
  EXPECT_TRUE(NSEqualRects([first frame], frame));
}

// A divider drag changes one constant: the pass edits it in place and moves
// just the two neighbours; views elsewhere are not laid out again.
TEST_F(LayoutPass, AConstantChangeMovesOnlyTheViewsItConcerns) {
  Owned<VXSplitView> split(NewSplitView(6, [TVPassCounterView class]));
  [split.get() layoutSubtreeIfNeeded];
  NSArray *views = [split.get() viewsInLayout];
  TVPassCounterView *far = [views objectAtIndex:5];
  int farLayouts = far->_layouts;
  NSLayoutConstraint *position = [[split.get() positionConstraints] objectAtIndex:1];
  [position setConstant:[position constant] + 7];
  [split.get() layoutSubtreeIfNeeded];
  EXPECT_EQ(NSWidth([[views objectAtIndex:1] frame]), 47);
  EXPECT_EQ(NSMinX([[views objectAtIndex:2] frame]), 89);
  EXPECT_EQ(NSWidth([[views objectAtIndex:2] frame]), 33);
  EXPECT_EQ(far->_layouts, farLayouts);
  EXPECT_EQ(NSMinX([far frame]), 205);
}

// A view resized by code that its constraints leave free keeps the new
// size; the solver follows it instead of putting it back.
TEST_F(LayoutPass, AFrameSetByCodeIsFollowedWhereConstraintsLeaveRoom) {
  Owned<NSView> root([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
  NSView *box = [[[NSView alloc] initWithFrame:NSMakeRect(10, 10, 50, 50)] autorelease];
  [box setTranslatesAutoresizingMaskIntoConstraints:NO];
  [root.get() addSubview:box];
  [root.get() addConstraint:[NSLayoutConstraint constraintWithItem:box
                                                         attribute:NSLayoutAttributeLeft
                                                         relatedBy:NSLayoutRelationEqual
                                                            toItem:root.get()
                                                         attribute:NSLayoutAttributeLeft
                                                        multiplier:1
                                                          constant:20]];
  [root.get() layoutSubtreeIfNeeded];
  EXPECT_TRUE(NSEqualRects([box frame], NSMakeRect(20, 10, 50, 50)))
      << [NSStringFromRect([box frame]) UTF8String];
  [box setFrame:NSMakeRect(0, 30, 70, 40)];
  [root.get() layoutSubtreeIfNeeded];
  // Left is held by its constraint; the rest stays where the code put it.
  EXPECT_TRUE(NSEqualRects([box frame], NSMakeRect(20, 30, 70, 40)))
      << [NSStringFromRect([box frame]) UTF8String];
}

// Constraints do not retain their items. A view that goes away takes every
// constraint naming it out of whatever holds it, and those constraints stay
// inert: activating one, or laying out the tree that held it, touches
// nothing freed.
TEST_F(LayoutPass, ConstraintsNamingADeallocatedViewGoInert) {
  Owned<NSView> root([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
  NSView *child = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)];
  [root.get() addSubview:child];
  Owned<NSLayoutConstraint> pin([[NSLayoutConstraint constraintWithItem:child
                                                               attribute:NSLayoutAttributeWidth
                                                               relatedBy:NSLayoutRelationEqual
                                                                  toItem:root.get()
                                                               attribute:NSLayoutAttributeWidth
                                                              multiplier:0.5
                                                                constant:0] retain]);
  [pin.get() setActive:YES];
  EXPECT_EQ([[root.get() constraints] count], 1u);
  [child removeFromSuperview];
  EXPECT_EQ([[root.get() constraints] count], 0u);
  [child release];  // gone
  EXPECT_EQ([pin.get() firstItem], nil);
  [pin.get() setActive:YES];
  EXPECT_FALSE([pin.get() isActive]);
  [root.get() addConstraint:pin.get()];
  EXPECT_EQ([[root.get() constraints] count], 0u);
  [root.get() layoutSubtreeIfNeeded];
}

// A constraint installed in one tree that names a view of another: that
// view's deallocation takes it out, and the next pass of the first tree
// goes on without it.
TEST_F(LayoutPass, AForeignItemThatGoesAwayLeavesTheOtherTreeWhole) {
  Owned<NSView> root([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
  NSView *mine = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)] autorelease];
  [mine setTranslatesAutoresizingMaskIntoConstraints:NO];
  [root.get() addSubview:mine];
  NSView *stranger = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 40, 40)];
  [root.get() addConstraint:[NSLayoutConstraint constraintWithItem:mine
                                                         attribute:NSLayoutAttributeWidth
                                                         relatedBy:NSLayoutRelationEqual
                                                            toItem:stranger
                                                         attribute:NSLayoutAttributeWidth
                                                        multiplier:1
                                                          constant:0]];
  [root.get() layoutSubtreeIfNeeded];
  [stranger release];
  EXPECT_EQ([[root.get() constraints] count], 0u);
  [root.get() layoutSubtreeIfNeeded];
  EXPECT_EQ(NSWidth([mine frame]), 10);
}

TEST_F(LayoutPass, ANaNPriorityChangesNothing) {
  NSView *view = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
  NSLayoutConstraint *width = [NSLayoutConstraint constraintWithItem:view
                                                           attribute:NSLayoutAttributeWidth
                                                           relatedBy:NSLayoutRelationEqual
                                                              toItem:nil
                                                           attribute:NSLayoutAttributeNotAnAttribute
                                                          multiplier:1
                                                            constant:10];
  [width setPriority:250];
  [width setPriority:NAN];
  EXPECT_EQ([width priority], 250);
}

// Releasing a laid-out split view leaves nothing behind that a later pass
// or a later split view could trip on.
TEST_F(LayoutPass, ReleasingASplitViewReleasesItsViewsAndConstraints) {
  panelDeaths = 0;
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  VXSplitView *split = NewSplitView(30, [TVCountedPanel class]);
  [split layoutSubtreeIfNeeded];
  [split release];
  [pool drain];  // GNUstep lets removed subviews go through the pool
  EXPECT_EQ(panelDeaths, 30);
  Owned<VXSplitView> again(NewSplitView(3));
  [again.get() layoutSubtreeIfNeeded];
  EXPECT_EQ([[again.get() dividerViews] count], 2u);
}


// Constraints refused as unsatisfiable are tried again when a required one
// leaves: a few in the pass that follows, the rest in the passes after it,
// each pass asking for the next until none is left waiting.
TEST_F(LayoutPass, RefusedConstraintsComeBackOverTheFollowingPasses) {
  Owned<NSView> root([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
  NSView *view = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 5, 5)] autorelease];
  [view setTranslatesAutoresizingMaskIntoConstraints:NO];
  [root.get() addSubview:view];
  auto width = [&](double points) {
    return [NSLayoutConstraint constraintWithItem:view
                                        attribute:NSLayoutAttributeWidth
                                        relatedBy:NSLayoutRelationEqual
                                           toItem:nil
                                        attribute:NSLayoutAttributeNotAnAttribute
                                       multiplier:1
                                         constant:points];
  };
  NSLayoutConstraint *narrow = width(10);
  [root.get() addConstraint:narrow];
  for (int i = 0; i < 40; i++) {
    [root.get() addConstraint:width(20)];  // each refused while narrow holds
  }
  NSUInteger broken = TVLayoutBrokenConstraintCount();
  [root.get() layoutSubtreeIfNeeded];
  EXPECT_EQ(TVLayoutBrokenConstraintCount(), broken + 40);
  EXPECT_EQ(NSWidth([view frame]), 10);

  [root.get() removeConstraint:narrow];
  [root.get() layoutSubtreeIfNeeded];
  EXPECT_EQ(NSWidth([view frame]), 20);
  EXPECT_TRUE([root.get() needsLayout]);  // more tries are owed
  for (int pass = 0; pass < 5 && [root.get() needsLayout]; pass++) {
    [root.get() layoutSubtreeIfNeeded];
  }
  EXPECT_FALSE([root.get() needsLayout]);
  EXPECT_EQ(TVLayoutBrokenConstraintCount(), broken + 40);  // none refused again
}

}  // namespace
