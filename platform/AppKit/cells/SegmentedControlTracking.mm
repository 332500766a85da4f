// Segmented cells track the mouse by their segments' widths, the way AppKit
// lays them out, so that hit-testing does not depend on drawing: GNUstep 0.29
// hit-tests against frames recorded while drawing, so a cell that draws
// without calling super selects nothing. The three tracking modes behave as
// AppKit documents them (select one; toggle any; momentary, selected only
// while pressed), a segment's menu opens when the segment is pressed, and a
// segment index out of range is ignored instead of raising.

#import <AppKit/AppKit.h>

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

#include <cmath>

static Ivar SelectedSegmentIvar() {
  static Ivar ivar = class_getInstanceVariable([NSSegmentedCell class], "_selected_segment");
  return ivar;
}

// Writes the selected segment index alone, leaving the segments' flags.
static void TVSetSelectedIndex(NSSegmentedCell *cell, NSInteger index) {
  Ivar ivar = SelectedSegmentIvar();
  if (ivar != NULL) {
    *(NSInteger *)((char *)cell + ivar_getOffset(ivar)) = index;
  }
}

static BOOL TVSegmentInRange(NSSegmentedCell *cell, NSInteger segment) {
  return segment >= 0 && segment < [cell segmentCount];
}

// The frame of each segment in `frame`: the segments of width 0 share what
// the fixed-width segments leave, equally.
static NSRect TVSegmentFrame(NSSegmentedCell *cell, NSRect frame, NSInteger segment) {
  NSInteger count = [cell segmentCount];
  CGFloat fixed = 0;
  NSInteger automatic = 0;
  for (NSInteger i = 0; i < count; i++) {
    CGFloat width = [cell widthForSegment:i];
    if (width > 0) {
      fixed += width;
    } else {
      automatic++;
    }
  }
  CGFloat shared = automatic > 0 ? MAX(0, NSWidth(frame) - fixed) / (CGFloat)automatic : 0;
  CGFloat x = NSMinX(frame);
  for (NSInteger i = 0; i < count; i++) {
    CGFloat width = [cell widthForSegment:i];
    if (!(width > 0)) {
      width = shared;
    }
    if (i == segment) {
      return NSMakeRect(x, NSMinY(frame), width, NSHeight(frame));
    }
    x += width;
  }
  return NSZeroRect;
}

// Draws each segment in the frame hit-testing uses.
static void TVSegmentedDrawInterior(NSSegmentedCell *self, SEL _cmd, NSRect frame, NSView *view) {
  static Ivar controlViewIvar = class_getInstanceVariable([NSActionCell class], "_control_view");
  if (view != nil && controlViewIvar != NULL) {
    object_setIvar(self, controlViewIvar, view);
  }
  NSInteger count = [self segmentCount];
  for (NSInteger i = 0; i < count; i++) {
    [self drawSegment:i inFrame:TVSegmentFrame(self, frame, i) withView:view];
  }
}

static NSInteger TVSegmentAtPoint(NSSegmentedCell *cell, NSPoint point, NSView *view) {
  if (view == nil) {
    return -1;
  }
  NSRect frame = [view bounds];
  if (point.y < NSMinY(frame) || point.y > NSMaxY(frame)) {
    return -1;
  }
  NSInteger count = [cell segmentCount];
  for (NSInteger i = 0; i < count; i++) {
    NSRect segmentFrame = TVSegmentFrame(cell, frame, i);
    if (point.x >= NSMinX(segmentFrame) && point.x < NSMaxX(segmentFrame)) {
      return i;
    }
  }
  return -1;
}

#pragma mark - Tracking

// The segment pressed in the current tracking (one mouse, one tracking).
static NSSegmentedCell *pressedCell = nil;
static NSInteger pressedSegment = -1;
static BOOL (*originalTrackMouse)(id, SEL, NSEvent *, NSRect, NSView *, BOOL) = NULL;
static void (*originalSetSelected)(id, SEL, BOOL, NSInteger) = NULL;

static void TVSetSegmentFlag(NSSegmentedCell *cell, NSInteger segment, BOOL flag) {
  // GNUstep's setter moves the selected index too; keep it where it was.
  NSInteger selected = [cell selectedSegment];
  NSSegmentSwitchTracking mode = [cell trackingMode];
  // In select-one mode GNUstep's setter also clears the selected segment.
  [cell setTrackingMode:NSSegmentSwitchTrackingSelectAny];
  originalSetSelected(cell, @selector(setSelected:forSegment:), flag, segment);
  [cell setTrackingMode:mode];
  TVSetSelectedIndex(cell, selected);
}

static void TVShowSegmentMenu(NSSegmentedCell *cell, NSInteger segment, NSMenu *menu,
                              NSView *view, NSEvent *event) {
  NSRect frame = TVSegmentFrame(cell, [view bounds], segment);
  // The menu hangs below the segment's leading bottom corner.
  NSPoint corner = NSMakePoint(NSMinX(frame), [view isFlipped] ? NSMaxY(frame) : NSMinY(frame));
  NSPoint inWindow = [view convertPoint:corner toView:nil];
  NSEvent *at = [NSEvent mouseEventWithType:[event type]
                                   location:inWindow
                              modifierFlags:[event modifierFlags]
                                  timestamp:[event timestamp]
                               windowNumber:[[view window] windowNumber]
                                    context:nil
                                eventNumber:[event eventNumber]
                                 clickCount:[event clickCount]
                                   pressure:[event pressure]];
  @try {
    [NSMenu popUpContextMenu:menu withEvent:at forView:view];
  } @catch (NSException *exception) {
    NSLog(@"Segment menu failed to open: %@", exception);
  }
}

static BOOL TVSegmentedTrackMouse(NSSegmentedCell *self, SEL _cmd, NSEvent *event, NSRect frame,
                                  NSView *view, BOOL untilMouseUp) {
  if (event != nil && view != nil && [self isEnabled]) {
    NSPoint point = [view convertPoint:[event locationInWindow] fromView:nil];
    NSInteger segment = TVSegmentAtPoint(self, point, view);
    NSMenu *menu = segment >= 0 ? [self menuForSegment:segment] : nil;
    if (menu != nil && [self isEnabledForSegment:segment]) {
      // The menu's own tracking takes the rest of the click.
      TVShowSegmentMenu(self, segment, menu, view, event);
      return YES;
    }
  }
  return originalTrackMouse(self, _cmd, event, frame, view, untilMouseUp);
}

static BOOL TVSegmentedStartTracking(NSSegmentedCell *self, SEL _cmd, NSPoint point,
                                     NSView *view) {
  pressedCell = self;
  pressedSegment = TVSegmentAtPoint(self, point, view);
  if (pressedSegment >= 0 && ![self isEnabledForSegment:pressedSegment]) {
    pressedSegment = -1;
  }
  if ([self trackingMode] == NSSegmentSwitchTrackingMomentary && pressedSegment >= 0) {
    TVSetSegmentFlag(self, pressedSegment, YES);
    [view setNeedsDisplay:YES];
  }
  return YES;
}

static BOOL TVSegmentedContinueTracking(NSSegmentedCell *self, SEL _cmd, NSPoint last,
                                        NSPoint point, NSView *view) {
  if (pressedCell == self && pressedSegment >= 0 &&
      [self trackingMode] == NSSegmentSwitchTrackingMomentary) {
    // A momentary segment looks pressed only while the mouse is over it.
    BOOL over = TVSegmentAtPoint(self, point, view) == pressedSegment;
    if (over != [self isSelectedForSegment:pressedSegment]) {
      TVSetSegmentFlag(self, pressedSegment, over);
      [view setNeedsDisplay:YES];
    }
  }
  return YES;
}

static void TVSegmentedStopTracking(NSSegmentedCell *self, SEL _cmd, NSPoint last, NSPoint stop,
                                    NSView *view, BOOL mouseIsUp) {
  NSInteger pressed = pressedCell == self ? pressedSegment : -1;
  pressedCell = nil;
  pressedSegment = -1;
  NSSegmentSwitchTracking mode = [self trackingMode];
  if (mode == NSSegmentSwitchTrackingMomentary && pressed >= 0) {
    TVSetSegmentFlag(self, pressed, NO);
  }
  NSInteger segment = mouseIsUp ? TVSegmentAtPoint(self, stop, view) : -1;
  if (segment >= 0 && [self isEnabledForSegment:segment]) {
    switch (mode) {
      case NSSegmentSwitchTrackingSelectAny: {
        BOOL on = ![self isSelectedForSegment:segment];
        TVSetSegmentFlag(self, segment, on);
        NSInteger selected = on ? segment : [self selectedSegment];
        if (!on && selected == segment) {
          // The lowest segment still on stands for the selection.
          selected = -1;
          for (NSInteger i = 0; i < [self segmentCount] && selected < 0; i++) {
            if ([self isSelectedForSegment:i]) {
              selected = i;
            }
          }
        }
        TVSetSelectedIndex(self, selected);
        break;
      }
      case NSSegmentSwitchTrackingMomentary:
        // Nothing stays selected; the action still learns which was clicked.
        TVSetSelectedIndex(self, segment);
        break;
      case NSSegmentSwitchTrackingSelectOne:
      default:
        [self setSelectedSegment:segment];
        break;
    }
  }
  [view setNeedsDisplay:YES];
}

#pragma mark - Index checks

// Each per-segment method, by signature, with the original to call for an
// index in range.
namespace {
struct TVSegmentMethod {
  SEL selector;
  IMP original;
};
}  // namespace

static TVSegmentMethod segmentMethods[24];
static int segmentMethodCount = 0;

static IMP TVOriginalFor(SEL selector) {
  for (int i = 0; i < segmentMethodCount; i++) {
    if (sel_isEqual(segmentMethods[i].selector, selector)) {
      return segmentMethods[i].original;
    }
  }
  return NULL;
}

static id TVSegmentGetObject(NSSegmentedCell *self, SEL _cmd, NSInteger segment) {
  IMP original = TVOriginalFor(_cmd);
  if (original == NULL || !TVSegmentInRange(self, segment)) {
    return nil;
  }
  return ((id(*)(id, SEL, NSInteger))original)(self, _cmd, segment);
}

static BOOL TVSegmentGetBool(NSSegmentedCell *self, SEL _cmd, NSInteger segment) {
  IMP original = TVOriginalFor(_cmd);
  if (original == NULL || !TVSegmentInRange(self, segment)) {
    return NO;
  }
  return ((BOOL(*)(id, SEL, NSInteger))original)(self, _cmd, segment);
}

static NSInteger TVSegmentGetInteger(NSSegmentedCell *self, SEL _cmd, NSInteger segment) {
  IMP original = TVOriginalFor(_cmd);
  if (original == NULL || !TVSegmentInRange(self, segment)) {
    return 0;
  }
  return ((NSInteger(*)(id, SEL, NSInteger))original)(self, _cmd, segment);
}

static CGFloat TVSegmentGetWidth(NSSegmentedCell *self, SEL _cmd, NSInteger segment) {
  IMP original = TVOriginalFor(_cmd);
  if (original == NULL || !TVSegmentInRange(self, segment)) {
    return 0;
  }
  return ((CGFloat(*)(id, SEL, NSInteger))original)(self, _cmd, segment);
}

static void TVSegmentSetObject(NSSegmentedCell *self, SEL _cmd, id value, NSInteger segment) {
  IMP original = TVOriginalFor(_cmd);
  if (original != NULL && TVSegmentInRange(self, segment)) {
    ((void (*)(id, SEL, id, NSInteger))original)(self, _cmd, value, segment);
  }
}

static void TVSegmentSetBool(NSSegmentedCell *self, SEL _cmd, BOOL value, NSInteger segment) {
  IMP original = TVOriginalFor(_cmd);
  if (original != NULL && TVSegmentInRange(self, segment)) {
    ((void (*)(id, SEL, BOOL, NSInteger))original)(self, _cmd, value, segment);
  }
}

static void TVSegmentSetInteger(NSSegmentedCell *self, SEL _cmd, NSInteger value,
                                NSInteger segment) {
  IMP original = TVOriginalFor(_cmd);
  if (original != NULL && TVSegmentInRange(self, segment)) {
    ((void (*)(id, SEL, NSInteger, NSInteger))original)(self, _cmd, value, segment);
  }
}

static void TVSegmentSetWidth(NSSegmentedCell *self, SEL _cmd, CGFloat width, NSInteger segment) {
  IMP original = TVOriginalFor(_cmd);
  // A negative or non-finite width is no width at all.
  if (original != NULL && TVSegmentInRange(self, segment) && std::isfinite(width) && width >= 0) {
    ((void (*)(id, SEL, CGFloat, NSInteger))original)(self, _cmd, width, segment);
  }
}

// A segment's label, centred in its frame.
static void TVDrawSegmentLabel(NSSegmentedCell *cell, NSInteger segment, NSString *label,
                               NSRect frame) {
  NSFont *font = [cell font] ?: [NSFont systemFontOfSize:0];
  NSColor *color = [cell isEnabled] && [cell isEnabledForSegment:segment]
                       ? [NSColor controlTextColor]
                       : [NSColor disabledControlTextColor];
  NSDictionary *attributes = [NSDictionary
      dictionaryWithObjectsAndKeys:font, NSFontAttributeName, color, NSForegroundColorAttributeName, nil];
  NSSize size = [label sizeWithAttributes:attributes];
  NSPoint origin = NSMakePoint(NSMidX(frame) - size.width / 2, NSMidY(frame) - size.height / 2);
  [NSGraphicsContext saveGraphicsState];
  NSRectClip(frame);
  [label drawAtPoint:origin withAttributes:attributes];
  [NSGraphicsContext restoreGraphicsState];
}

static void TVSegmentDraw(NSSegmentedCell *self, SEL _cmd, NSInteger segment, NSRect frame,
                          NSView *view) {
  IMP original = TVOriginalFor(_cmd);
  if (original == NULL || !TVSegmentInRange(self, segment)) {
    return;
  }
  // GNUstep 0.29 leaks the text attributes of every label it draws: it draws
  // the bezel and image here, the label is drawn below.
  IMP setLabel = TVOriginalFor(@selector(setLabel:forSegment:));
  NSString *label = [[[self labelForSegment:segment] retain] autorelease];
  BOOL ownLabel = setLabel != NULL && label != nil;
  if (ownLabel) {
    ((void (*)(id, SEL, id, NSInteger))setLabel)(self, @selector(setLabel:forSegment:), nil, segment);
  }
  ((void (*)(id, SEL, NSInteger, NSRect, NSView *))original)(self, _cmd, segment, frame, view);
  if (ownLabel) {
    ((void (*)(id, SEL, id, NSInteger))setLabel)(self, @selector(setLabel:forSegment:), label, segment);
    if ([label length] > 0) {
      TVDrawSegmentLabel(self, segment, label, frame);
    }
  }
}

static void TVSegmentSetSelectedSegment(NSSegmentedCell *self, SEL _cmd, NSInteger segment) {
  if (segment == -1) {
    // No selection: every segment off.
    for (NSInteger i = 0; i < [self segmentCount]; i++) {
      TVSetSegmentFlag(self, i, NO);
    }
    TVSetSelectedIndex(self, -1);
    return;
  }
  IMP original = TVOriginalFor(_cmd);
  if (original != NULL && TVSegmentInRange(self, segment)) {
    ((void (*)(id, SEL, NSInteger))original)(self, _cmd, segment);
  }
}

static void TVSegmentSetCount(NSSegmentedCell *self, SEL _cmd, NSInteger count) {
  IMP original = TVOriginalFor(_cmd);
  if (original == NULL || count < 0 || count > 2048) {
    return;
  }
  ((void (*)(id, SEL, NSInteger))original)(self, _cmd, count);
  if ([self selectedSegment] >= count) {
    TVSetSelectedIndex(self, -1);
  }
}

static void TVHookSegmentMethod(SEL selector, IMP replacement) {
  IMP original = TVReplaceInstanceMethod(objc_getClass("NSSegmentedCell"), selector, replacement);
  if (original != NULL && segmentMethodCount < (int)(sizeof segmentMethods / sizeof segmentMethods[0])) {
    segmentMethods[segmentMethodCount].selector = selector;
    segmentMethods[segmentMethodCount].original = original;
    segmentMethodCount++;
  }
}

#pragma mark - Installation

@implementation NSSegmentedControl (TalvoPlatformTracking)

- (NSSegmentSwitchTracking)trackingMode {
  return [[self cell] respondsToSelector:@selector(trackingMode)] ? [[self cell] trackingMode]
                                                                   : NSSegmentSwitchTrackingSelectOne;
}

- (void)setTrackingMode:(NSSegmentSwitchTracking)mode {
  if ([[self cell] respondsToSelector:@selector(setTrackingMode:)]) {
    [[self cell] setTrackingMode:mode];
  }
}

@end

@interface NSSegmentedCell (TalvoPlatformTracking)
@end

@implementation NSSegmentedCell (TalvoPlatformTracking)

+ (void)load {
  Class cell = objc_getClass("NSSegmentedCell");
  originalTrackMouse = (BOOL(*)(id, SEL, NSEvent *, NSRect, NSView *, BOOL))TVReplaceInstanceMethod(
      cell, @selector(trackMouse:inRect:ofView:untilMouseUp:), (IMP)TVSegmentedTrackMouse);
  TVReplaceInstanceMethod(cell, @selector(drawInteriorWithFrame:inView:),
                          (IMP)TVSegmentedDrawInterior);
  TVReplaceInstanceMethod(cell, @selector(startTrackingAt:inView:), (IMP)TVSegmentedStartTracking);
  TVReplaceInstanceMethod(cell, @selector(continueTracking:at:inView:),
                          (IMP)TVSegmentedContinueTracking);
  TVReplaceInstanceMethod(cell, @selector(stopTracking:at:inView:mouseIsUp:),
                          (IMP)TVSegmentedStopTracking);

  originalSetSelected = (void (*)(id, SEL, BOOL, NSInteger))TVReplaceInstanceMethod(
      cell, @selector(setSelected:forSegment:), (IMP)TVSegmentSetBool);
  if (originalSetSelected != NULL) {
    segmentMethods[segmentMethodCount].selector = @selector(setSelected:forSegment:);
    segmentMethods[segmentMethodCount].original = (IMP)originalSetSelected;
    segmentMethodCount++;
  }
  TVHookSegmentMethod(@selector(setEnabled:forSegment:), (IMP)TVSegmentSetBool);
  TVHookSegmentMethod(@selector(isSelectedForSegment:), (IMP)TVSegmentGetBool);
  TVHookSegmentMethod(@selector(isEnabledForSegment:), (IMP)TVSegmentGetBool);
  TVHookSegmentMethod(@selector(imageForSegment:), (IMP)TVSegmentGetObject);
  TVHookSegmentMethod(@selector(labelForSegment:), (IMP)TVSegmentGetObject);
  TVHookSegmentMethod(@selector(menuForSegment:), (IMP)TVSegmentGetObject);
  TVHookSegmentMethod(@selector(toolTipForSegment:), (IMP)TVSegmentGetObject);
  TVHookSegmentMethod(@selector(setImage:forSegment:), (IMP)TVSegmentSetObject);
  TVHookSegmentMethod(@selector(setLabel:forSegment:), (IMP)TVSegmentSetObject);
  TVHookSegmentMethod(@selector(setMenu:forSegment:), (IMP)TVSegmentSetObject);
  TVHookSegmentMethod(@selector(setToolTip:forSegment:), (IMP)TVSegmentSetObject);
  TVHookSegmentMethod(@selector(tagForSegment:), (IMP)TVSegmentGetInteger);
  TVHookSegmentMethod(@selector(setTag:forSegment:), (IMP)TVSegmentSetInteger);
  TVHookSegmentMethod(@selector(widthForSegment:), (IMP)TVSegmentGetWidth);
  TVHookSegmentMethod(@selector(setWidth:forSegment:), (IMP)TVSegmentSetWidth);
  TVHookSegmentMethod(@selector(drawSegment:inFrame:withView:), (IMP)TVSegmentDraw);
  TVHookSegmentMethod(@selector(setSelectedSegment:), (IMP)TVSegmentSetSelectedSegment);
  TVHookSegmentMethod(@selector(setSegmentCount:), (IMP)TVSegmentSetCount);
}

@end
