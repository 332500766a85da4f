// Bad input to the layout and controls headers: split view, positioners,
// stack view, live-resize view, container constraints, popover shape.

#import <Talvo/Talvo.h>

#import "robustness/RobustnessSupport.h"
#import "support/TestSupport.h"

namespace {

class LayoutRobustness : public PooledTest {
 protected:
  NSView *NewView() { return [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 50, 50)] autorelease]; }
};

TEST_F(LayoutRobustness, ContainerConstraints) {
  NSView *container = NewView();
  NSView *item = NewView();
  [container addSubview:item];
  id result = nil;
  for (id a : {(id)nil, bad::WrongObject(), (id)item}) {
    for (id b : {(id)nil, bad::WrongObject(), (id)container}) {
      EXPECT_CALM(result = [NSLayoutConstraint constraintWithItem:a inContainer:b attribute:NSLayoutAttributeLeft constant:1]);
      EXPECT_CALM(result = [NSLayoutConstraint constraintsWithItem:a inContainer:b edgeInsets:NSEdgeInsetsMake(1, 2, 3, 4)]);
      EXPECT_CALM(result = [NSLayoutConstraint constraintsWithItem:a fittedInContainer:b]);
    }
  }
  for (double v : bad::kValues) {
    EXPECT_CALM(result = [NSLayoutConstraint constraintWithItem:item inContainer:container attribute:NSLayoutAttributeTop constant:v]) << v;
    EXPECT_CALM(result = [NSLayoutConstraint constraintsWithItem:item inContainer:container edgeInsets:NSEdgeInsetsMake(v, v, v, v)]) << v;
  }
  for (int attribute : {-1, 0, 99, 1 << 20}) {
    EXPECT_CALM(result = [NSLayoutConstraint constraintWithItem:item inContainer:container attribute:(NSLayoutAttribute)attribute constant:0]) << attribute;
  }
}

TEST_F(LayoutRobustness, SplitViewQueries) {
  Owned<VXSplitView> split([[VXSplitView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
  [split.get() pushSubView:NewView() atPosition:VXSplitViewPushPositionBeginning autosaveName:nil];
  [split.get() pushSubView:NewView() atPosition:VXSplitViewPushPositionEnd autosaveName:@"end"];
  id result = nil;
  for (NSInteger index : {(NSInteger)-1, (NSInteger)2, (NSInteger)1000, NSIntegerMax, NSIntegerMin}) {
    NSRect rect = NSZeroRect;
    EXPECT_CALM(rect = [split.get() rectForDividerAtIndex:index]) << index;
    EXPECT_CALM([split.get() setNeedsDisplayForDivider:index]) << index;
  }
  for (double v : bad::kValues) {
    NSInteger index = 0;
    EXPECT_CALM(index = [split.get() dividerIndexForPoint:NSMakePoint(v, v)]) << v;
  }
  EXPECT_CALM(result = [split.get() constraintsForPositions]);
  double thickness = 0;
  EXPECT_CALM(thickness = [split.get() dividerThickness]);
  EXPECT_CALM([split.get() setBackgroundColor:bad::WrongObject()]);
  EXPECT_CALM([split.get() setFrame:NSMakeRect(0, 0, NAN, INFINITY)]);
  EXPECT_CALM([split.get() layoutSubtreeIfNeeded]);
}

TEST_F(LayoutRobustness, SplitViewPushAndPop) {
  Owned<VXSplitView> split([[VXSplitView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
  EXPECT_CALM([split.get() pushSubView:NullOf<NSView *>() atPosition:VXSplitViewPushPositionEnd autosaveName:nil]);
  EXPECT_CALM([split.get() pushSubView:NewView() atPosition:VXSplitViewPushPositionEnd autosaveName:bad::WrongObject()]);
  for (VXSplitViewPushPosition position : {(VXSplitViewPushPosition)VXSplitViewPushPositionNone, (VXSplitViewPushPosition)7, (VXSplitViewPushPosition)INT32_MIN}) {
    EXPECT_CALM([split.get() pushSubView:NewView() atPosition:position autosaveName:nil]) << position;
    EXPECT_CALM([split.get() popSubViewAtPosition:position]) << position;
  }
  EXPECT_CALM([split.get() popSubViewAtPosition:VXSplitViewPushPositionBeginning]);
  EXPECT_CALM([split.get() popSubViewAtPosition:VXSplitViewPushPositionBeginning]);
  EXPECT_CALM([split.get() popSubViewAtPosition:VXSplitViewPushPositionEnd]);
  EXPECT_CALM([split.get() popSubViewAtPosition:VXSplitViewPushPositionEnd]);  // nothing left
  // Saved widths of the wrong class or value.
  [split.get() setAutosavedSizes:[NSMutableDictionary dictionaryWithObjectsAndKeys:@"wide", @"a", @(NAN), @"b", @(-1e300), @"c", nil]];
  for (NSString *name in @[ @"a", @"b", @"c" ]) {
    EXPECT_CALM([split.get() pushSubView:NewView() atPosition:VXSplitViewPushPositionEnd autosaveName:name]) << [name UTF8String];
    EXPECT_CALM([split.get() layoutSubtreeIfNeeded]);
    EXPECT_CALM([split.get() popSubViewAtPosition:VXSplitViewPushPositionEnd]);
  }
}

TEST_F(LayoutRobustness, Positioners) {
  Owned<VXSplitView> split([[VXSplitView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
  Class positioner = Nil;
  for (VXSplitViewPushPosition position : {(VXSplitViewPushPosition)VXSplitViewPushPositionNone, (VXSplitViewPushPosition)9, (VXSplitViewPushPosition)INT32_MAX}) {
    EXPECT_CALM(positioner = [VXSplitViewPositioner positionerForPosition:position]) << position;
  }
  for (Class cls : {[VXSplitViewPositionerAtBeginning class], [VXSplitViewPositionerAtEnd class]}) {
    id result = nil;
    for (VXSplitView *target : {NullOf<VXSplitView *>(), split.get()}) {
      EXPECT_CALM(result = [cls positionedViewInSplitView:target]);
      EXPECT_CALM(result = [cls sideConstraintInSplitView:target]);
      EXPECT_CALM(result = [cls dividerConstraintInSplitView:target]);
      for (double v : bad::kValues) {
        double constant = 0;
        EXPECT_CALM(constant = [cls initialDividerConstantForWidth:v inSplitView:target]) << v;
        EXPECT_CALM(constant = [cls finalDividerConstantForWidth:v inSplitView:target]) << v;
      }
    }
  }
}

// A pushed object that is not a view is refused.
TEST_F(LayoutRobustness, SplitViewPushOfANonView) {
  Owned<VXSplitView> split([[VXSplitView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
  EXPECT_CALM([split.get() pushSubView:bad::WrongObject() atPosition:VXSplitViewPushPositionEnd autosaveName:nil]);
}

// Positioners asked about something that is not a split view answer nil or
// zero.
TEST_F(LayoutRobustness, PositionersWithANonSplitView) {
  VXSplitView *target = (VXSplitView *)bad::WrongObject();
  for (Class cls : {[VXSplitViewPositionerAtBeginning class], [VXSplitViewPositionerAtEnd class]}) {
    id result = nil;
    double constant = 0;
    EXPECT_CALM(result = [cls positionedViewInSplitView:target]);
    EXPECT_CALM(result = [cls sideConstraintInSplitView:target]);
    EXPECT_CALM(result = [cls dividerConstraintInSplitView:target]);
    EXPECT_CALM(constant = [cls initialDividerConstantForWidth:10 inSplitView:target]);
    EXPECT_CALM(constant = [cls finalDividerConstantForWidth:10 inSplitView:target]);
  }
}

TEST_F(LayoutRobustness, StackAndLiveResizeViews) {
  Owned<VXStackView> stack([[VXStackView alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)]);
  [stack.get() addSubview:NewView()];
  [stack.get() addSubview:NewView()];
  for (double v : bad::kValues) {
    EXPECT_CALM([stack.get() setMargin:v]) << v;
    EXPECT_CALM([stack.get() _updateViewStackConstraints]) << v;
    EXPECT_CALM([stack.get() layoutSubtreeIfNeeded]) << v;
  }
  EXPECT_CALM([stack.get() setVertical:YES]);
  EXPECT_CALM([stack.get() setViewStackConstraints:(id)@[ @"not a constraint" ]]);
  Owned<VXLiveResizeView> live([[VXLiveResizeView alloc] initWithFrame:NSMakeRect(0, 0, NAN, INFINITY)]);
  EXPECT_CALM([live.get() viewDidEndLiveResize]);
  Owned<VXSplitViewDivider> divider([[VXSplitViewDivider alloc] initWithFrame:NSZeroRect]);
  EXPECT_CALM([divider.get() setIndex:-5]);
  BOOL vibrant = NO;
  EXPECT_CALM(vibrant = [divider.get() allowsVibrancy]);
}

TEST_F(LayoutRobustness, PopoverShape) {
  Owned<VXPopoverShape> shape([VXPopoverShape new]);
  id result = nil;
  for (double v : bad::kValues) {
    EXPECT_CALM([shape.get() setArrowXOrigin:v]) << v;
    EXPECT_CALM([shape.get() setArrowWidth:v]) << v;
    EXPECT_CALM([shape.get() setArrowHeight:v]) << v;
    EXPECT_CALM([shape.get() setRadius:v]) << v;
    EXPECT_CALM([shape.get() setBounds:CGRectMake(v, 0, v, 10)]) << v;
    EXPECT_CALM(result = [shape.get() path]) << v;
    EXPECT_CALM([shape.get() setArrowOriginAtMiddle]) << v;
    EXPECT_CALM(result = [shape.get() popoverShapeWithOffset:v]) << v;
    EXPECT_CALM(result = [[shape.get() popoverShapeWithOffset:1] path]) << v;
  }
}

}  // namespace
