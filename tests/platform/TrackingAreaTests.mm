// Tracking areas driven by synthesized motion events in real windows: what
// their owners are told, in which order, under which options, and when a
// view moves under a still mouse.

#import <AppKit/AppKit.h>

#import "support/TestSupport.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

// Logs what it is told: "entered", "exited", "moved", "cursor", each with
// the event's tracking area and user data checked against the area's.
@interface TVTrackingOwner : NSObject {
 @public
  NSMutableArray *_log;
  NSMutableArray *_events;
}
@end

@implementation TVTrackingOwner
- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _log = [NSMutableArray new];
    _events = [NSMutableArray new];
  }
  return self;
}
- (void)dealloc {
  [_events release];
  [_log release];
  [super dealloc];
}
- (void)record:(NSString *)what event:(NSEvent *)event {
  [_log addObject:what];
  [_events addObject:event];
}
- (void)mouseEntered:(NSEvent *)event {
  [self record:@"entered" event:event];
}
- (void)mouseExited:(NSEvent *)event {
  [self record:@"exited" event:event];
}
- (void)mouseMoved:(NSEvent *)event {
  [self record:@"moved" event:event];
}
- (void)cursorUpdate:(NSEvent *)event {
  [self record:@"cursor" event:event];
}
@end

// Counts updateTrackingAreas and keeps one area over its bounds, replaced
// on each call (the usual pattern).
@interface TVUpdatingView : NSView {
 @public
  int _updates;
  NSTrackingArea *_area;
  TVTrackingOwner *_owner;
}
@end

@implementation TVUpdatingView
- (void)dealloc {
  [_area release];
  [super dealloc];
}
- (void)updateTrackingAreas {
  _updates++;
  if (_area != nil) {
    [self removeTrackingArea:_area];
    [_area release];
  }
  _area = [[NSTrackingArea alloc] initWithRect:[self bounds]
                                       options:NSTrackingMouseEnteredAndExited |
                                               NSTrackingActiveAlways
                                         owner:_owner
                                      userInfo:nil];
  [self addTrackingArea:_area];
  [super updateTrackingAreas];
}
@end

namespace {

class TrackingAreas : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) {
      GTEST_SKIP() << "needs a window server";
    }
    static bool launched = false;
    if (!launched) {
      [NSApp finishLaunching];
      launched = true;
    }
    [NSApp activateIgnoringOtherApps:YES];
    window_.reset([[NSWindow alloc] initWithContentRect:NSMakeRect(60, 300, 300, 200)
                                              styleMask:NSTitledWindowMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO]);
    [window_.get() setReleasedWhenClosed:NO];
    view_.reset([[NSView alloc] initWithFrame:NSMakeRect(50, 50, 100, 80)]);
    [[window_.get() contentView] addSubview:view_];
    [window_.get() makeKeyAndOrderFront:nil];
    PumpEvents();
  }
  void TearDown() override {
    if (view_.get() != nil) {
      for (NSTrackingArea *area in [view_.get() trackingAreas]) {
        [view_.get() removeTrackingArea:area];
      }
    }
    [window_.get() close];
    view_.reset();
    window_.reset();
    PooledTest::TearDown();
  }
  // A motion event at `point` in window coordinates, sent at once.
  void Move(NSPoint point, NSEventType type = NSMouseMoved) {
    [NSApp sendEvent:[NSEvent mouseEventWithType:type
                                        location:point
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:[window_.get() windowNumber]
                                         context:nil
                                     eventNumber:0
                                      clickCount:1
                                        pressure:1]];
  }
  NSTrackingArea *AddArea(NSTrackingAreaOptions options, NSRect rect, id owner,
                          NSDictionary *userInfo = nil) {
    NSTrackingArea *area = [[[NSTrackingArea alloc] initWithRect:rect
                                                         options:options
                                                           owner:owner
                                                        userInfo:userInfo] autorelease];
    [view_.get() addTrackingArea:area];
    return area;
  }

  Owned<NSWindow> window_;
  Owned<NSView> view_;
};

const NSTrackingAreaOptions kEnterExit = NSTrackingMouseEnteredAndExited | NSTrackingActiveAlways;
// In window coordinates: outside the view (50,50 100x80), inside it, inside again.
const NSPoint kOutside = {10, 10};
const NSPoint kInside = {100, 90};
const NSPoint kInsideToo = {110, 95};
const NSPoint kFarOutside = {250, 190};

TEST(TrackingAreaOptions, HaveAppKitsValues) {
  // GNUstep 0.29 numbers the activity options one bit too low.
  EXPECT_EQ(NSTrackingMouseEnteredAndExited, 0x01);
  EXPECT_EQ(NSTrackingMouseMoved, 0x02);
  EXPECT_EQ(NSTrackingCursorUpdate, 0x04);
  EXPECT_EQ(NSTrackingActiveWhenFirstResponder, 0x10);
  EXPECT_EQ(NSTrackingActiveInKeyWindow, 0x20);
  EXPECT_EQ(NSTrackingActiveInActiveApp, 0x40);
  EXPECT_EQ(NSTrackingActiveAlways, 0x80);
  EXPECT_EQ(NSTrackingAssumeInside, 0x100);
  EXPECT_EQ(NSTrackingInVisibleRect, 0x200);
  EXPECT_EQ(NSTrackingEnabledDuringMouseDrag, 0x400);
  // An area made with AppKit's values keeps them, copies too.
  Owned<NSTrackingArea> area([[NSTrackingArea alloc] initWithRect:NSMakeRect(1, 2, 3, 4)
                                                          options:0x80 | 0x200 | 0x01
                                                            owner:nil
                                                         userInfo:nil]);
  Owned<NSTrackingArea> copy([area.get() copy]);
  EXPECT_EQ([copy.get() options], (NSTrackingAreaOptions)(0x80 | 0x200 | 0x01));
  EXPECT_TRUE([copy.get() userInfo] == nil);
}

TEST_F(TrackingAreas, EnterMoveExitReachTheOwnerInOrderWithAreaAndUserInfo) {
  Owned<TVTrackingOwner> owner([TVTrackingOwner new]);
  NSDictionary *info = @{@"role" : @"hover"};
  NSTrackingArea *area = AddArea(kEnterExit | NSTrackingMouseMoved, NSMakeRect(0, 0, 100, 80),
                                 owner, info);
  EXPECT_NSEQ([area userInfo], info);
  Move(kOutside);
  Move(kInside);
  Move(kInsideToo);
  Move(kFarOutside);
  Move(kOutside);
  EXPECT_NSEQ(owner.get()->_log, (@[ @"entered", @"moved", @"moved", @"exited" ]));
  ASSERT_EQ([owner.get()->_events count], 4u);
  NSEvent *entered = [owner.get()->_events objectAtIndex:0];
  EXPECT_EQ([entered type], NSMouseEntered);
  EXPECT_EQ([entered trackingArea], area);
  EXPECT_EQ((id)[entered userData], (id)[area userInfo]);
  EXPECT_EQ([entered locationInWindow].x, kInside.x);  // window coordinates
  EXPECT_EQ([entered locationInWindow].y, kInside.y);
  EXPECT_EQ([entered windowNumber], [window_.get() windowNumber]);
  NSEvent *exited = [owner.get()->_events objectAtIndex:3];
  EXPECT_EQ([exited type], NSMouseExited);
  EXPECT_EQ([exited trackingArea], area);
  // Other events have no tracking area.
  EXPECT_TRUE([[owner.get()->_events objectAtIndex:1] trackingArea] == nil);
}

TEST_F(TrackingAreas, OnlyTheRequestedKindsAreSentAndRectsAreInViewCoordinates) {
  Owned<TVTrackingOwner> crossings([TVTrackingOwner new]);
  Owned<TVTrackingOwner> moves([TVTrackingOwner new]);
  Owned<TVTrackingOwner> cursor([TVTrackingOwner new]);
  // The right half of the view only: window x 100...150.
  AddArea(kEnterExit, NSMakeRect(50, 0, 50, 80), crossings);
  AddArea(NSTrackingMouseMoved | NSTrackingActiveAlways, NSMakeRect(50, 0, 50, 80), moves);
  AddArea(NSTrackingCursorUpdate | NSTrackingActiveAlways, NSMakeRect(50, 0, 50, 80), cursor);
  Move(NSMakePoint(90, 90));  // in the view, left of the area
  EXPECT_EQ([crossings.get()->_log count], 0u);
  Move(NSMakePoint(120, 90));
  Move(NSMakePoint(125, 90));
  EXPECT_NSEQ(crossings.get()->_log, (@[ @"entered" ]));
  EXPECT_NSEQ(moves.get()->_log, (@[ @"moved", @"moved" ]));
  EXPECT_NSEQ(cursor.get()->_log, (@[ @"cursor" ]));
  EXPECT_EQ([(NSEvent *)[cursor.get()->_events objectAtIndex:0] type], NSCursorUpdate);
}

TEST_F(TrackingAreas, ExitsComeBeforeEntriesWhenTheMouseCrossesFromOneAreaToAnother) {
  Owned<TVTrackingOwner> owner([TVTrackingOwner new]);
  NSTrackingArea *left = AddArea(kEnterExit, NSMakeRect(0, 0, 50, 80), owner);
  NSTrackingArea *right = AddArea(kEnterExit, NSMakeRect(50, 0, 50, 80), owner);
  Move(NSMakePoint(120, 90));  // right
  Move(NSMakePoint(70, 90));   // left
  EXPECT_NSEQ(owner.get()->_log, (@[ @"entered", @"exited", @"entered" ]));
  EXPECT_EQ([[owner.get()->_events objectAtIndex:0] trackingArea], right);
  EXPECT_EQ([[owner.get()->_events objectAtIndex:1] trackingArea], right);
  EXPECT_EQ([[owner.get()->_events objectAtIndex:2] trackingArea], left);
}

TEST_F(TrackingAreas, ActivityOptionsFollowKeyWindowAndApplicationState) {
  Owned<TVTrackingOwner> always([TVTrackingOwner new]);
  Owned<TVTrackingOwner> keyOnly([TVTrackingOwner new]);
  Owned<TVTrackingOwner> app([TVTrackingOwner new]);
  Owned<TVTrackingOwner> none([TVTrackingOwner new]);
  NSRect all = NSMakeRect(0, 0, 100, 80);
  AddArea(kEnterExit, all, always);
  AddArea(NSTrackingMouseEnteredAndExited | NSTrackingActiveInKeyWindow, all, keyOnly);
  AddArea(NSTrackingMouseEnteredAndExited | NSTrackingActiveInActiveApp, all, app);
  AddArea(NSTrackingMouseEnteredAndExited, all, none);  // no activity option: never

  Owned<NSWindow> other([[NSWindow alloc] initWithContentRect:NSMakeRect(500, 300, 100, 100)
                                                    styleMask:NSTitledWindowMask
                                                      backing:NSBackingStoreBuffered
                                                        defer:NO]);
  [other.get() setReleasedWhenClosed:NO];
  [other.get() makeKeyAndOrderFront:nil];
  PumpEvents();
  ASSERT_FALSE([window_.get() isKeyWindow]);
  Move(kInside);
  Move(kFarOutside);
  EXPECT_NSEQ(always.get()->_log, (@[ @"entered", @"exited" ]));
  EXPECT_EQ([keyOnly.get()->_log count], 0u);
  EXPECT_EQ([app.get()->_log count], [NSApp isActive] ? 2u : 0u);
  EXPECT_EQ([none.get()->_log count], 0u);

  [window_.get() makeKeyAndOrderFront:nil];
  PumpEvents();
  ASSERT_TRUE([window_.get() isKeyWindow]);
  Move(kInside);
  EXPECT_NSEQ(keyOnly.get()->_log, (@[ @"entered" ]));
  // Losing key status while inside ends the area's hover at the next event.
  [other.get() makeKeyAndOrderFront:nil];
  PumpEvents();
  Move(kInsideToo);
  EXPECT_NSEQ(keyOnly.get()->_log, (@[ @"entered", @"exited" ]));
  [other.get() close];
}

TEST_F(TrackingAreas, AssumeInsideMakesTheFirstEventOutsideAnExit) {
  Owned<TVTrackingOwner> assumed([TVTrackingOwner new]);
  Owned<TVTrackingOwner> plain([TVTrackingOwner new]);
  AddArea(kEnterExit | NSTrackingAssumeInside, NSMakeRect(0, 0, 100, 80), assumed);
  AddArea(kEnterExit, NSMakeRect(0, 0, 100, 80), plain);
  Move(kFarOutside);
  EXPECT_NSEQ(assumed.get()->_log, (@[ @"exited" ]));
  EXPECT_EQ([plain.get()->_log count], 0u);
}

TEST_F(TrackingAreas, InVisibleRectFollowsTheViewAndIgnoresTheAreasRect) {
  Owned<TVTrackingOwner> owner([TVTrackingOwner new]);
  AddArea(kEnterExit | NSTrackingInVisibleRect, NSZeroRect, owner);
  Move(kInside);
  EXPECT_NSEQ(owner.get()->_log, (@[ @"entered" ]));
  Move(kOutside);
  // Half of a grown view lies outside the window: only the visible part
  // counts, and the new frame applies at once.
  [view_.get() setFrame:NSMakeRect(200, 20, 300, 100)];
  Move(NSMakePoint(250, 60));
  EXPECT_NSEQ(owner.get()->_log, (@[ @"entered", @"exited", @"entered" ]));
  Move(NSMakePoint(100, 90));  // where the view used to be
  EXPECT_NSEQ(owner.get()->_log, (@[ @"entered", @"exited", @"entered", @"exited" ]));
}

TEST_F(TrackingAreas, AViewMovingUnderAStillMouseEntersAndExits) {
  Owned<TVTrackingOwner> owner([TVTrackingOwner new]);
  AddArea(kEnterExit | NSTrackingInVisibleRect, NSZeroRect, owner);
  Move(NSMakePoint(200, 150));  // outside the view; the mouse stays here
  [view_.get() setFrame:NSMakeRect(180, 130, 50, 50)];
  PumpEvents();
  EXPECT_NSEQ(owner.get()->_log, (@[ @"entered" ]));
  [view_.get() setFrameOrigin:NSMakePoint(10, 10)];
  PumpEvents();
  EXPECT_NSEQ(owner.get()->_log, (@[ @"entered", @"exited" ]));
  // Hiding counts too.
  [view_.get() setFrameOrigin:NSMakePoint(180, 130)];
  PumpEvents();
  [view_.get() setHidden:YES];
  PumpEvents();
  EXPECT_NSEQ(owner.get()->_log, (@[ @"entered", @"exited", @"entered", @"exited" ]));
}

TEST_F(TrackingAreas, UpdateTrackingAreasRunsWhenAViewArrivesOrChangesGeometryOnly) {
  Owned<TVTrackingOwner> owner([TVTrackingOwner new]);
  Owned<TVUpdatingView> view([[TVUpdatingView alloc] initWithFrame:NSMakeRect(0, 0, 40, 40)]);
  view.get()->_owner = owner;
  [[window_.get() contentView] addSubview:view];
  PumpEvents();
  EXPECT_EQ(view.get()->_updates, 1);
  PumpEvents();
  [view.get() setFrame:[view.get() frame]];  // no change
  PumpEvents();
  EXPECT_EQ(view.get()->_updates, 1);
  [view.get() setFrameSize:NSMakeSize(60, 60)];
  PumpEvents();
  EXPECT_EQ(view.get()->_updates, 2);
  // The area it made in the update covers the new size at once.
  Move(NSMakePoint(55, 55));
  EXPECT_NSEQ(owner.get()->_log, (@[ @"entered" ]));
  EXPECT_EQ([[view.get() trackingAreas] count], 1u);
  // A superview's move changes where the view is in its window.
  [[window_.get() contentView] setFrameOrigin:NSMakePoint(5, 0)];
  PumpEvents();
  EXPECT_EQ(view.get()->_updates, 3);
  [view.get() removeFromSuperview];
}

TEST_F(TrackingAreas, DragsCountOnlyForAreasEnabledDuringDrag) {
  Owned<TVTrackingOwner> plain([TVTrackingOwner new]);
  Owned<TVTrackingOwner> dragging([TVTrackingOwner new]);
  AddArea(kEnterExit | NSTrackingMouseMoved, NSMakeRect(0, 0, 100, 80), plain);
  AddArea(kEnterExit | NSTrackingMouseMoved | NSTrackingEnabledDuringMouseDrag,
          NSMakeRect(0, 0, 100, 80), dragging);
  Move(kInside, NSLeftMouseDragged);
  Move(kFarOutside, NSLeftMouseDragged);
  EXPECT_EQ([plain.get()->_log count], 0u);
  // No mouseMoved: for drags (they go to the view the drag started in).
  EXPECT_NSEQ(dragging.get()->_log, (@[ @"entered", @"exited" ]));
}

TEST_F(TrackingAreas, AddRemoveAndListKeepOrderAndOwnership) {
  Owned<TVTrackingOwner> owner([TVTrackingOwner new]);
  NSTrackingArea *first = AddArea(kEnterExit, NSMakeRect(0, 0, 10, 10), owner);
  NSTrackingArea *second = AddArea(kEnterExit, NSMakeRect(0, 0, 100, 80), owner);
  EXPECT_NSEQ([view_.get() trackingAreas], (@[ first, second ]));
  [view_.get() addTrackingArea:first];  // already there
  [view_.get() addTrackingArea:nil];
  [view_.get() addTrackingArea:(NSTrackingArea *)@"not an area"];
  EXPECT_EQ([[view_.get() trackingAreas] count], 2u);
  Owned<NSTrackingArea> stranger([[NSTrackingArea alloc] initWithRect:NSZeroRect
                                                              options:kEnterExit
                                                                owner:owner
                                                             userInfo:nil]);
  [view_.get() removeTrackingArea:stranger];
  [view_.get() removeTrackingArea:nil];
  EXPECT_EQ([[view_.get() trackingAreas] count], 2u);
  [view_.get() removeTrackingArea:second];
  EXPECT_NSEQ([view_.get() trackingAreas], (@[ first ]));
  Move(kInside);
  EXPECT_EQ([owner.get()->_log count], 0u);  // the removed area is silent

  // The view holds its areas while it lives and lets go when it goes.
  Owned<NSTrackingArea> kept([[NSTrackingArea alloc] initWithRect:NSZeroRect
                                                          options:kEnterExit
                                                            owner:owner
                                                         userInfo:@{@"k" : @1}]);
  NSView *temporary = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)];
  [temporary addTrackingArea:kept];
  EXPECT_EQ([kept.get() retainCount], 2u);
  [temporary release];
  EXPECT_EQ([kept.get() retainCount], 1u);
  // A copy keeps what the original holds.
  Owned<NSTrackingArea> copy([kept.get() copy]);
  EXPECT_NSEQ([copy.get() userInfo], (@{@"k" : @1}));
  EXPECT_EQ([copy.get() owner], owner.get());
  EXPECT_EQ([copy.get() options], kEnterExit);
}

TEST_F(TrackingAreas, AnOwnerMayRemoveAreasWhileItIsTold) {
  // A view that drops all its areas when the mouse enters one.
  Owned<TVTrackingOwner> owner([TVTrackingOwner new]);
  AddArea(kEnterExit | NSTrackingMouseMoved, NSMakeRect(0, 0, 100, 80), owner);
  AddArea(kEnterExit, NSMakeRect(0, 0, 100, 80), owner);
  Move(kInside);
  for (NSTrackingArea *area in [view_.get() trackingAreas]) {
    [view_.get() removeTrackingArea:area];
  }
  Move(kFarOutside);
  EXPECT_NSEQ(owner.get()->_log, (@[ @"entered", @"entered", @"moved" ]));
  // The events of removed areas no longer name them.
  EXPECT_TRUE([[owner.get()->_events objectAtIndex:0] trackingArea] == nil);
}

}  // namespace
