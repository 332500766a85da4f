// VXButton, VXButtonCell and VXAnimatedButton: hover state from synthesized
// motion, key-status redraws, the faded interior, and the fades.
#import <Talvo/VXAnimatedButton.h>
#import <Talvo/VXButton.h>
#import <Talvo/VXButtonCell.h>
#import <Talvo/VXGradientButtonCell.h>

#import "controls/ControlsTestSupport.h"
#import "platform/QuartzCore/TVAnimationClock.h"

using HoverButtonTest = ControlsTest;

namespace {

// The button's pixels as its window holds them after drawing only what was
// marked for display (+1).
NSBitmapImageRep *NewDirtySnapshot(NSView *view) {
  [[view window] displayIfNeeded];
  [view lockFocus];
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]];
  [view unlockFocus];
  return rep;
}

// Moves the pointer to `point` of `view`'s window content (window coordinates).
void MoveTo(NSWindow *window, NSPoint point) {
  SendMouseEvent([window contentView], NSMouseMoved, point);
}

}  // namespace

TEST_F(HoverButtonTest, ButtonsMadeInCodeGetAButtonCell) {
  Owned<VXButton> button([[VXButton alloc] initWithFrame:NSMakeRect(0, 0, 60, 24)]);
  EXPECT_EQ([VXButton cellClass], [VXButtonCell class]);
  EXPECT_TRUE([[button.get() cell] isKindOfClass:[VXButtonCell class]]);
  Owned<VXAnimatedButton> animated(
      [[VXAnimatedButton alloc] initWithFrame:NSMakeRect(0, 0, 60, 24)]);
  EXPECT_TRUE([[animated.get() cell] isKindOfClass:[VXButtonCell class]]);
}

TEST_F(HoverButtonTest, HoverFollowsThePointerInAndOutAndWhenTheButtonMoves) {
  NSWindow *window = Window(NSMakeRect(100, 100, 200, 100));
  VXButton *button = [[[VXButton alloc] initWithFrame:NSMakeRect(20, 20, 60, 24)] autorelease];
  [[window contentView] addSubview:button];
  Pump(0.02);
  VXButtonCell *cell = [button cell];
  MoveTo(window, NSMakePoint(5, 5));
  EXPECT_FALSE([cell isMouseAbove]);
  [window displayIfNeeded];
  MoveTo(window, NSMakePoint(40, 30));
  EXPECT_TRUE([cell isMouseAbove]);
  EXPECT_TRUE([button needsDisplay]);
  [window displayIfNeeded];
  MoveTo(window, NSMakePoint(150, 80));
  EXPECT_FALSE([cell isMouseAbove]);
  EXPECT_TRUE([button needsDisplay]);

  // Moved to a new place: the tracked area follows (AppKit asks the button
  // to update its areas when its geometry changes).
  [button setFrameOrigin:NSMakePoint(120, 60)];
  Pump(0.05);
  MoveTo(window, NSMakePoint(40, 30));
  EXPECT_FALSE([cell isMouseAbove]);
  MoveTo(window, NSMakePoint(140, 70));
  EXPECT_TRUE([cell isMouseAbove]);
  MoveTo(window, NSMakePoint(5, 5));
  EXPECT_FALSE([cell isMouseAbove]);
}

TEST_F(HoverButtonTest, EachUpdateReplacesTheTrackedAreaWithOneOverTheBounds) {
  NSWindow *window = Window(NSMakeRect(100, 100, 200, 100));
  VXButton *button = [[[VXButton alloc] initWithFrame:NSMakeRect(20, 20, 60, 24)] autorelease];
  [[window contentView] addSubview:button];
  for (int i = 0; i < 3; ++i) [button updateTrackingAreas];
  [button setFrameSize:NSMakeSize(80, 30)];
  Pump(0.05);  // AppKit asks for the update in a later run-loop turn
  NSArray *areas = [button trackingAreas];
  ASSERT_EQ([areas count], 1u);
  EXPECT_TRUE(NSEqualRects([[areas objectAtIndex:0] rect], NSMakeRect(0, 0, 80, 30)))
      << [NSStringFromRect([[areas objectAtIndex:0] rect]) UTF8String];
  EXPECT_EQ([[areas objectAtIndex:0] owner], button);
}

TEST_F(HoverButtonTest, HoverReachesAGradientCellAndACellWithoutTheFlagIsLeftAlone) {
  NSWindow *window = Window(NSMakeRect(100, 100, 200, 100));
  VXButton *button = [[[VXButton alloc] initWithFrame:NSMakeRect(20, 20, 60, 24)] autorelease];
  VXGradientButtonCell *gradient = [[[VXGradientButtonCell alloc] initTextCell:@""] autorelease];
  [button setCell:gradient];
  [[window contentView] addSubview:button];
  MoveTo(window, NSMakePoint(5, 5));
  MoveTo(window, NSMakePoint(40, 30));
  EXPECT_TRUE([gradient isMouseAbove]);
  MoveTo(window, NSMakePoint(5, 5));
  EXPECT_FALSE([gradient isMouseAbove]);

  [button setCell:[[[NSButtonCell alloc] initTextCell:@"plain"] autorelease]];
  [button mouseEntered:NullOf<NSEvent *>()];
  [button mouseExited:NullOf<NSEvent *>()];
}

TEST_F(HoverButtonTest, KeyChangesRedrawAndANonKeyWindowFadesTitleAndImage) {
  NSWindow *window = Window(NSMakeRect(100, 100, 120, 60));
  VXButton *button = [[[VXButton alloc] initWithFrame:NSMakeRect(10, 10, 100, 40)] autorelease];
  [button setBordered:NO];
  [button setImagePosition:NSImageOnly];
  [button setImage:SquareIcon(NSMakeSize(20, 20), 0, [NSColor blackColor])];
  [[window contentView] addSubview:button];
  ASSERT_TRUE([window isKeyWindow]);
  Owned<NSBitmapImageRep> key(NewViewSnapshot(button));
  EXPECT_PIXEL(RepPixel(key, 50, 20), 0, 0, 0, 255);

  NSWindow *other = Window(NSMakeRect(400, 100, 50, 50));
  [other makeKeyAndOrderFront:nil];
  ASSERT_FALSE([window isKeyWindow]);
  // Only the key change marked the button: a redraw of what is dirty fades it.
  Owned<NSBitmapImageRep> faded(NewDirtySnapshot(button));
  EXPECT_PIXEL(RepPixel(faded, 50, 20), 179, 179, 179, 255);  // black at 0.3 over white

  [window makeKeyAndOrderFront:nil];
  Owned<NSBitmapImageRep> back(NewDirtySnapshot(button));
  EXPECT_PIXEL(RepPixel(back, 50, 20), 0, 0, 0, 255);
}

TEST_F(HoverButtonTest, AnimatedButtonWithoutLayerOrWindowHidesAtOnce) {
  NSWindow *window = Window(NSMakeRect(100, 100, 120, 60));
  VXAnimatedButton *plain =
      [[[VXAnimatedButton alloc] initWithFrame:NSMakeRect(10, 10, 60, 24)] autorelease];
  [[window contentView] addSubview:plain];
  [plain setAlphaValue:0.6];
  [plain setHidden:YES];
  EXPECT_TRUE([plain isHidden]);
  EXPECT_DOUBLE_EQ([plain alphaValue], 0.6);
  [plain setHidden:NO];
  EXPECT_FALSE([plain isHidden]);
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);

  Owned<VXAnimatedButton> loose([[VXAnimatedButton alloc] initWithFrame:NSMakeRect(0, 0, 60, 24)]);
  [loose.get() setWantsLayer:YES];
  [loose.get() setHidden:YES];
  EXPECT_TRUE([loose.get() isHidden]);
  EXPECT_DOUBLE_EQ([loose.get() alphaValue], 1.0);
}

TEST_F(HoverButtonTest, AnimatedButtonFadesOutThenHidesAndAShowDuringTheFadeChangesNothing) {
  NSWindow *window = Window(NSMakeRect(100, 100, 120, 60));
  VXAnimatedButton *button =
      [[[VXAnimatedButton alloc] initWithFrame:NSMakeRect(10, 10, 60, 24)] autorelease];
  [[window contentView] addSubview:button];
  [button setWantsLayer:YES];

  [button setHidden:NO];  // already shown: nothing
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);

  [button setHidden:YES];
  EXPECT_FALSE([button isHidden]);
  Advance(0.1);
  EXPECT_GT([button alphaValue], 0.0);
  EXPECT_LT([button alphaValue], 1.0);
  [button setHidden:NO];  // still shown: changes nothing
  EXPECT_FALSE([button isHidden]);
  Advance(0.2);
  RunLoopTurn();
  EXPECT_TRUE([button isHidden]);
  EXPECT_DOUBLE_EQ([button alphaValue], 0.0);

  [button setHidden:YES];  // already hidden: nothing
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);

  [button setHidden:NO];
  EXPECT_FALSE([button isHidden]);
  EXPECT_DOUBLE_EQ([button alphaValue], 0.0);
  Advance(0.1);
  EXPECT_GT([button alphaValue], 0.0);
  Advance(0.2);
  RunLoopTurn();
  EXPECT_DOUBLE_EQ([button alphaValue], 1.0);
  EXPECT_FALSE([button isHidden]);
}

TEST_F(HoverButtonTest, AButtonLeavingAndDeallocatingStopsWatchingItsWindow) {
  NSWindow *window = Window(NSMakeRect(100, 100, 120, 60));
  {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    VXButton *button = [[VXButton alloc] initWithFrame:NSMakeRect(10, 10, 60, 24)];
    [[window contentView] addSubview:button];
    [button removeFromSuperview];
    [button release];
    [pool drain];
  }
  // Key changes and motion after the button died reach nothing freed.
  NSWindow *other = Window(NSMakeRect(400, 100, 50, 50));
  [other makeKeyAndOrderFront:nil];
  [window makeKeyAndOrderFront:nil];
  MoveTo(window, NSMakePoint(30, 20));
  MoveTo(window, NSMakePoint(100, 50));
}
