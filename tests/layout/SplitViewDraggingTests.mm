// Dragging dividers with real mouse events in a key window, edge zones,
// collapsing, and pushing and popping panels.

#import <Talvo/Talvo.h>
#import <Talvo/VXSplitViewPositionerAtBeginning.h>
#import <Talvo/VXSplitViewPositionerAtEnd.h>

#import "layout/VXSplitView+Private.h"
#import "platform/QuartzCore/TVAnimationClock.h"
#import "support/TestSupport.h"

// A delegate whose answers tests set, and which logs what it is asked.
@interface TVSplitDelegate : NSObject <VXSplitViewDelegate> {
 @public
  BOOL _activeBeginning;
  BOOL _activeEnd;
  BOOL _collapse;
  NSMutableArray *_log;
}
@end

@implementation TVSplitDelegate
- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _log = [NSMutableArray new];
  }
  return self;
}
- (void)dealloc {
  [_log release];
  [super dealloc];
}
- (BOOL)splitView:(VXSplitView *)splitView shouldActivePushPosition:(VXSplitViewPushPosition)p {
  return p == VXSplitViewPushPositionEnd ? _activeEnd : _activeBeginning;
}
- (void)splitView:(VXSplitView *)splitView didClickAtPushPosition:(VXSplitViewPushPosition)p {
  [_log addObject:[NSString stringWithFormat:@"click %d", p]];
}
- (BOOL)splitView:(VXSplitView *)splitView
    shouldCollapseSubviewAtPushPosition:(VXSplitViewPushPosition)p {
  [_log addObject:[NSString stringWithFormat:@"collapse? %d", p]];
  return _collapse;
}
@end

// Records split-view notifications by name (and position, when given).
@interface TVNotificationLog : NSObject {
 @public
  NSMutableArray *_names;
}
@end

@implementation TVNotificationLog
- (instancetype)initWithObject:(id)object {
  self = [super init];
  if (self != nil) {
    _names = [NSMutableArray new];
    for (NSString *name in @[ VXSplitViewWillDragDividerNotification,
                              VXSplitViewDidDragDividerNotification,
                              VXSplitViewWillPushSubviewNotification,
                              VXSplitViewDidPushSubviewNotification,
                              VXSplitViewWillCollapseSubviewNotification,
                              VXSplitViewDidCollapseSubviewNotification ]) {
      [[NSNotificationCenter defaultCenter] addObserver:self
                                               selector:@selector(record:)
                                                   name:name
                                                 object:object];
    }
  }
  return self;
}
- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  [_names release];
  [super dealloc];
}
- (void)record:(NSNotification *)notification {
  NSNumber *position = [[notification userInfo] objectForKey:VXSplitViewPushPositionKey];
  [_names addObject:position != nil ? [NSString stringWithFormat:@"%@ %@", [notification name],
                                                                 position]
                                    : [notification name]];
}
@end

// Records the cursor rectangles the split view asks for.
@interface TVCursorSplitView : VXSplitView {
 @public
  NSMutableArray *_cursorRects;
}
@end

@implementation TVCursorSplitView
- (void)addCursorRect:(NSRect)rect cursor:(NSCursor *)cursor {
  NSString *kind = cursor == [NSCursor resizeLeftRightCursor]
                       ? @"leftRight"
                       : (cursor == [NSCursor resizeRightCursor] ? @"right" : @"left");
  [_cursorRects addObject:[NSString stringWithFormat:@"%@ %@", kind, NSStringFromRect(rect)]];
}
- (void)dealloc {
  [_cursorRects release];
  [super dealloc];
}
@end

namespace {

class SplitViewDragging : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) {
      GTEST_SKIP() << "needs a window server";
    }
    window_.reset([[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 400, 300)
                                              styleMask:NSTitledWindowMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO]);
    [window_.get() setReleasedWhenClosed:NO];
    split_ = [[[TVCursorSplitView alloc] initWithFrame:NSMakeRect(0, 0, 400, 300)] autorelease];
    ((TVCursorSplitView *)split_)->_cursorRects = [NSMutableArray new];
    [[window_.get() contentView] addSubview:split_];
    [split_ setDelegate:delegate_];
    log_.reset([[TVNotificationLog alloc] initWithObject:split_]);
    [window_.get() makeKeyAndOrderFront:nil];
  }
  void TearDown() override {
    [split_ setDelegate:nil];
    [window_.get() close];
    window_.reset();
    PooledTest::TearDown();
  }
  NSView *Panel(double width) {
    return [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, width, 300)] autorelease];
  }
  // Two views: 0…150, divider 150, 151…400.
  void TwoViews() {
    [split_ pushSubView:Panel(400) atPosition:VXSplitViewPushPositionBeginning autosaveName:@"main"];
    [split_ pushSubView:Panel(249) atPosition:VXSplitViewPushPositionEnd autosaveName:@"side"];
    [split_ layoutSubtreeIfNeeded];
    [log_.get()->_names removeAllObjects];
  }
  void Mouse(NSEventType type, double x, double y = 150) {
    SendMouseEvent(split_, type, NSMakePoint(x, y));
  }
  NSArray *Names() { return log_.get()->_names; }

  Owned<NSWindow> window_;
  Owned<TVSplitDelegate> delegate_{[TVSplitDelegate new]};
  Owned<TVNotificationLog> log_;
  VXSplitView *split_ = nil;
};

TEST_F(SplitViewDragging, PushedPanelsTakeTheirWidthsAndSitAtTheirEdges) {
  TwoViews();
  NSArray *views = [split_ viewsInLayout];
  ASSERT_EQ([views count], 2u);
  EXPECT_EQ(NSWidth([[views objectAtIndex:1] frame]), 249);
  EXPECT_EQ(NSMinX([[views objectAtIndex:1] frame]), 151);
  EXPECT_EQ(NSWidth([[views objectAtIndex:0] frame]), 150);
  EXPECT_EQ([split_ dividerIndexForPoint:NSMakePoint(146.5, 0)], 0);
  EXPECT_EQ([split_ dividerIndexForPoint:NSMakePoint(146.0, 0)], -1);
}

TEST_F(SplitViewDragging, DragMovesTheDividerAndRecordsBothEdgeWidths) {
  TwoViews();
  Mouse(NSLeftMouseDown, 150.7);
  NSLayoutConstraint *dragged = [[split_ positionConstraints] objectAtIndex:0];
  EXPECT_EQ([dragged constant], 151);  // floor(1 + 150.7)
  Mouse(NSLeftMouseDragged, 199.2);
  EXPECT_EQ([dragged constant], 200);
  [split_ layoutSubtreeIfNeeded];
  EXPECT_EQ(NSWidth([[[split_ viewsInLayout] objectAtIndex:0] frame]), 199);
  Mouse(NSLeftMouseUp, 219.5);
  EXPECT_NSEQ([split_ autosavedSizes], (@{@"main" : @219.0, @"side" : @180.0}));
  EXPECT_EQ([split_ positionConstraints], nil);  // renewed by the next pass
  EXPECT_NSEQ(Names(), (@[ VXSplitViewWillDragDividerNotification,
                           VXSplitViewDidDragDividerNotification ]));
  [split_ layoutSubtreeIfNeeded];
  EXPECT_EQ([[[split_ positionConstraints] objectAtIndex:0] constant], 220);
}

TEST_F(SplitViewDragging, LeavingTheBoundsEndsTheDragOnce) {
  TwoViews();
  Mouse(NSLeftMouseDown, 150.2);
  Mouse(NSLeftMouseDragged, 180, 400);  // above the split view
  Mouse(NSLeftMouseDragged, 190);
  Mouse(NSLeftMouseUp, 190);
  EXPECT_NSEQ(Names(), (@[ VXSplitViewWillDragDividerNotification,
                           VXSplitViewDidDragDividerNotification ]));
}

TEST_F(SplitViewDragging, DraggingPastTheGapCollapsesWhenTheDelegateAgrees) {
  TwoViews();
  delegate_.get()->_collapse = YES;
  Mouse(NSLeftMouseDown, 150.2);
  Mouse(NSLeftMouseDragged, 360.0);  // constant 361 > 400 - 40
  EXPECT_NSEQ(delegate_.get()->_log, (@[ @"collapse? 1" ]));
  EXPECT_NSEQ(Names(), (@[ VXSplitViewWillDragDividerNotification,
                           @"VXSplitViewWillCollapseSubviewNotification 1",
                           @"VXSplitViewDidCollapseSubviewNotification 1",
                           VXSplitViewDidDragDividerNotification ]));
  [split_ layoutSubtreeIfNeeded];
  EXPECT_EQ([[split_ viewsInLayout] count], 1u);
  EXPECT_EQ([[split_ dividerViews] count], 0u);
  EXPECT_EQ(NSWidth([[[split_ viewsInLayout] objectAtIndex:0] frame]), 400);
  // The popped panel's width was kept under its name.
  EXPECT_NSEQ([[split_ autosavedSizes] objectForKey:@"side"], @249.0);
}

TEST_F(SplitViewDragging, AnimatedCollapseReportsTheDragBeforeTheCollapseEnds) {
  TwoViews();
  TVAnimationClockSetManual(YES);
  [split_ setAnimated:YES];
  delegate_.get()->_collapse = YES;
  Mouse(NSLeftMouseDown, 150.2);
  Mouse(NSLeftMouseDragged, 360.0);
  EXPECT_NSEQ(Names(), (@[ VXSplitViewWillDragDividerNotification,
                           @"VXSplitViewWillCollapseSubviewNotification 1",
                           VXSplitViewDidDragDividerNotification ]));
  EXPECT_EQ([[split_ subviews] count], 3u);  // still sliding out
  TVAnimationClockAdvance(0.3);
  EXPECT_NSEQ([Names() lastObject], @"VXSplitViewDidCollapseSubviewNotification 1");
  EXPECT_EQ([[split_ subviews] count], 2u);
  TVAnimationClockSetManual(NO);
}

TEST_F(SplitViewDragging, DelegateRefusalOrAbsenceMeansNoCollapse) {
  TwoViews();
  Mouse(NSLeftMouseDown, 150.2);
  Mouse(NSLeftMouseDragged, 20);  // constant 21 < 40: asks about Beginning
  EXPECT_NSEQ(delegate_.get()->_log, (@[ @"collapse? 0" ]));
  Mouse(NSLeftMouseUp, 20);
  EXPECT_EQ([[split_ viewsInLayout] count], 2u);

  [split_ setDelegate:nil];
  Mouse(NSLeftMouseDown, 21);
  Mouse(NSLeftMouseDragged, 5);
  Mouse(NSLeftMouseUp, 5);
  EXPECT_EQ([split_ _collapseGapForPosition:VXSplitViewPushPositionEnd], 40.0);
  EXPECT_EQ([[split_ subviews] count], 3u);
}

TEST_F(SplitViewDragging, NothingHappensInAWindowThatIsNotKey) {
  TwoViews();
  Owned<NSWindow> other([[NSWindow alloc] initWithContentRect:NSMakeRect(600, 100, 50, 50)
                                                    styleMask:NSTitledWindowMask
                                                      backing:NSBackingStoreBuffered
                                                        defer:NO]);
  [other.get() setReleasedWhenClosed:NO];
  [other.get() makeKeyAndOrderFront:nil];
  [window_.get() resignKeyWindow];
  ASSERT_FALSE([window_.get() isKeyWindow]);
  [split_ mouseDown:[NSEvent mouseEventWithType:NSLeftMouseDown
                                       location:[split_ convertPoint:NSMakePoint(150.5, 10)
                                                              toView:nil]
                                  modifierFlags:0
                                      timestamp:0
                                   windowNumber:[window_.get() windowNumber]
                                        context:nil
                                    eventNumber:0
                                     clickCount:1
                                       pressure:1]];
  EXPECT_EQ([Names() count], 0u);
  [other.get() close];
}

TEST_F(SplitViewDragging, EdgeZonesCaptureClicksOnlyWhenActive) {
  TwoViews();
  NSView *content = [window_.get() contentView];
  NSView *first = [[split_ viewsInLayout] objectAtIndex:0];
  EXPECT_EQ([content hitTest:NSMakePoint(3, 100)], first);
  delegate_.get()->_activeBeginning = YES;
  EXPECT_EQ([split_ _activePositionForLocation:NSMakePoint(6.0, 0)], VXSplitViewPushPositionBeginning);
  EXPECT_EQ([split_ _activePositionForLocation:NSMakePoint(6.1, 0)], VXSplitViewPushPositionNone);
  EXPECT_EQ([content hitTest:NSMakePoint(3, 100)], split_);
  // Over a divider the split view takes the click even above a subview.
  EXPECT_EQ([content hitTest:NSMakePoint(148, 100)], split_);
  Mouse(NSLeftMouseDown, 3);
  EXPECT_NSEQ(delegate_.get()->_log, (@[ @"click 0" ]));
}

TEST_F(SplitViewDragging, CursorRectsCoverDividersEdgesAndTheWholeViewWhileDragging) {
  TwoViews();
  NSMutableArray *rects = ((TVCursorSplitView *)split_)->_cursorRects;
  delegate_.get()->_activeEnd = YES;
  [rects removeAllObjects];
  [split_ resetCursorRects];
  ASSERT_EQ([rects count], 2u);
  EXPECT_NSEQ([rects objectAtIndex:0],
              ([@"leftRight " stringByAppendingString:NSStringFromRect(NSMakeRect(148, 0, 5, 300))]));
  EXPECT_NSEQ([rects objectAtIndex:1],
              ([@"left " stringByAppendingString:NSStringFromRect(NSMakeRect(394, 0, 6, 300))]));

  Mouse(NSLeftMouseDown, 150.2);
  [rects removeAllObjects];
  [split_ resetCursorRects];
  EXPECT_NSEQ(rects, (@[ [@"leftRight " stringByAppendingString:NSStringFromRect(NSMakeRect(0, 0, 400, 300))] ]));
  Mouse(NSLeftMouseUp, 150.2);
}

TEST_F(SplitViewDragging, PushUsesTheAutosavedWidthAndPopRecordsIt) {
  [split_ setAutosavedSizes:[NSMutableDictionary dictionaryWithObject:@240.0 forKey:@"inspector"]];
  NSView *main = Panel(400);
  [split_ pushSubView:main atPosition:VXSplitViewPushPositionBeginning autosaveName:nil];
  NSView *inspector = Panel(100);
  [split_ pushSubView:inspector atPosition:VXSplitViewPushPositionEnd autosaveName:@"inspector"];
  EXPECT_EQ(NSWidth([inspector frame]), 240);
  [split_ layoutSubtreeIfNeeded];
  EXPECT_EQ(NSMinX([inspector frame]), 160);
  EXPECT_NSEQ(Names(), (@[ @"VXSplitViewWillPushSubviewNotification 0",
                           @"VXSplitViewDidPushSubviewNotification 0",
                           @"VXSplitViewWillPushSubviewNotification 1",
                           @"VXSplitViewDidPushSubviewNotification 1" ]));
  [log_.get()->_names removeAllObjects];

  [inspector setFrame:NSMakeRect(220, 0, 180, 300)];
  [split_ popSubViewAtPosition:VXSplitViewPushPositionEnd];
  EXPECT_NSEQ([[split_ autosavedSizes] objectForKey:@"inspector"], @180.0);
  EXPECT_EQ([inspector superview], nil);
  EXPECT_NSEQ(Names(), (@[ @"VXSplitViewWillCollapseSubviewNotification 1",
                           @"VXSplitViewDidCollapseSubviewNotification 1" ]));
  // A single view left once the dividers are renewed: nothing more to pop.
  [split_ layoutSubtreeIfNeeded];
  [split_ popSubViewAtPosition:VXSplitViewPushPositionBeginning];
  EXPECT_EQ([main superview], split_);
  EXPECT_EQ([Names() count], 2u);
}

TEST_F(SplitViewDragging, PositionersAnswerForTheirEdges) {
  EXPECT_EQ([VXSplitViewPositioner positionerForPosition:1], [VXSplitViewPositionerAtEnd class]);
  for (VXSplitViewPushPosition p : {0, -1, 7}) {
    EXPECT_EQ([VXSplitViewPositioner positionerForPosition:p],
              [VXSplitViewPositionerAtBeginning class]);
  }
  [split_ setFrameSize:NSMakeSize(600, 300)];
  EXPECT_EQ([VXSplitViewPositionerAtEnd initialDividerConstantForWidth:200 inSplitView:split_], 600);
  EXPECT_EQ([VXSplitViewPositionerAtEnd finalDividerConstantForWidth:200 inSplitView:split_], 400);
  EXPECT_EQ([VXSplitViewPositionerAtBeginning finalDividerConstantForWidth:200 inSplitView:split_],
            201);
  EXPECT_EQ([VXSplitViewPositioner sideConstraintInSplitView:split_], nil);
}

}  // namespace
