// Slider cells with AppKit's geometry: -barRectFlipped: and
// -knobRectFlipped: give the rects that both drawing and tracking use (a
// subclass that overrides them moves the bar or knob everywhere), tick marks
// are placed under the knob's centre for each tick value and drawn, and the
// track rect, orientation and knob thickness are known before the first draw.
// GNUstep 0.29 sets all of these up only while drawing.

#import <AppKit/AppKit.h>

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

#include <cmath>
#include <unordered_set>

namespace {

// A tick mark is a short line across the track, at the knob's centre.
const CGFloat kTickLength = 4;
const CGFloat kTickWidth = 1;

// Cells whose orientation was set by -setVertical: rather than by their frame.
std::unordered_set<const void *> &ExplicitOrientation() {
  static std::unordered_set<const void *> cells;
  return cells;
}

// One of NSSliderCell's instance variables, by name.
template <typename T>
T &IvarRef(id object, const char *name) {
  Ivar ivar = class_getInstanceVariable([NSSliderCell class], name);
  return *(T *)((char *)object + ivar_getOffset(ivar));
}

}  // namespace

static NSRect &TrackRectIvar(NSSliderCell *cell) { return IvarRef<NSRect>(cell, "_trackRect"); }
// GNUstep stores 255 (-1 in a BOOL) for "not known yet": read it as a byte.
static unsigned char &VerticalIvar(NSSliderCell *cell) {
  return IvarRef<unsigned char>(cell, "_isVertical");
}

static BOOL TVSliderOrientationKnown(NSSliderCell *cell) {
  unsigned char stored = VerticalIvar(cell);
  return stored == 0 || stored == 1;
}

// Gives the knob cell the image GNUstep's knob drawing and knob rect expect
// for the orientation: the stock knob, stretched across the track.
static void TVSliderSetKnobImage(NSSliderCell *cell, BOOL vertical, NSRect track) {
  NSCell *knobCell = IvarRef<NSCell *>(cell, "_knobCell");
  // A copy: the named image is shared, and another slider's thickness
  // would otherwise become this one's.
  NSImage *image = [[[NSImage imageNamed:vertical ? @"common_SliderVert" : @"common_SliderHoriz"]
      copy] autorelease];
  if (image != nil) {
    NSSize size = [image size];
    [image setScalesWhenResized:YES];
    [image setSize:vertical ? NSMakeSize(NSWidth(track), size.height)
                            : NSMakeSize(size.width, NSHeight(track))];
  }
  [knobCell setImage:image];
}

// Lays the slider out in `frame` (the control's bounds): track rect,
// orientation and knob image, as drawing would.
static void TVSliderLayout(NSSliderCell *cell, NSRect frame) {
  if ([cell sliderType] != NSLinearSlider) {
    return;
  }
  NSRect track = [cell drawingRectForBounds:frame];
  TrackRectIvar(cell) = track;
  BOOL known = TVSliderOrientationKnown(cell);
  BOOL vertical = VerticalIvar(cell) == 1;
  if (ExplicitOrientation().count(cell) == 0) {
    vertical = NSHeight(track) > NSWidth(track);
  }
  if (!known || vertical != (VerticalIvar(cell) == 1) ||
      [IvarRef<NSCell *>(cell, "_knobCell") image] == nil) {
    TVSliderSetKnobImage(cell, vertical, track);
  }
  VerticalIvar(cell) = vertical ? 1 : 0;
}

// Lays out from the control view when drawing has not yet done it.
static void TVSliderPrepare(NSSliderCell *cell) {
  NSView *view = [cell controlView];
  if (view != nil && (NSIsEmptyRect(TrackRectIvar(cell)) || !TVSliderOrientationKnown(cell))) {
    TVSliderLayout(cell, [view bounds]);
  }
}

#pragma mark - Geometry

static NSRect (*originalKnobRect)(id, SEL, BOOL) = NULL;
static CGFloat (*originalKnobThickness)(id, SEL) = NULL;

static NSRect TVSliderTrackRect(NSSliderCell *self, SEL _cmd) {
  TVSliderPrepare(self);
  return TrackRectIvar(self);
}

static NSInteger TVSliderIsVertical(NSSliderCell *self, SEL _cmd) {
  TVSliderPrepare(self);
  if (!TVSliderOrientationKnown(self)) {
    return -1;  // no frame yet to tell
  }
  return VerticalIvar(self);
}

static NSRect TVSliderKnobRect(NSSliderCell *self, SEL _cmd, BOOL flipped) {
  TVSliderPrepare(self);
  return originalKnobRect(self, _cmd, flipped);
}

static CGFloat TVSliderKnobThickness(NSSliderCell *self, SEL _cmd) {
  TVSliderPrepare(self);
  return originalKnobThickness(self, _cmd);
}

// The centre of the knob, along the track, when the value is tick `index`.
static CGFloat TVTickCentre(NSSliderCell *cell, NSInteger index, BOOL flipped) {
  NSInteger count = [cell numberOfTickMarks];
  NSRect track = [cell trackRect];
  NSRect knob = [cell knobRectFlipped:flipped];
  BOOL vertical = [cell isVertical] == 1;
  CGFloat thickness = vertical ? NSHeight(knob) : NSWidth(knob);
  CGFloat length = (vertical ? NSHeight(track) : NSWidth(track)) - thickness;
  CGFloat fraction = count > 1 ? (CGFloat)index / (CGFloat)(count - 1) : 0.5;
  if (vertical) {
    // Values grow upwards on screen.
    return flipped ? NSMaxY(track) - thickness / 2 - fraction * length
                   : NSMinY(track) + thickness / 2 + fraction * length;
  }
  return NSMinX(track) + thickness / 2 + fraction * length;
}

static NSRect TVSliderTickRect(NSSliderCell *self, SEL _cmd, NSInteger index) {
  if (index < 0 || index >= [self numberOfTickMarks]) {
    return NSZeroRect;
  }
  BOOL flipped = [[self controlView] isFlipped];
  NSRect track = [self trackRect];
  CGFloat centre = TVTickCentre(self, index, flipped);
  NSTickMarkPosition position = [self tickMarkPosition];
  if ([self isVertical] == 1) {
    // NSTickMarkRight is NSTickMarkBelow.
    CGFloat x = position == NSTickMarkBelow ? NSMaxX(track) - kTickLength : NSMinX(track);
    return NSMakeRect(x, centre - kTickWidth / 2, kTickLength, kTickWidth);
  }
  BOOL belowIsHighY = flipped;
  BOOL atHighY = (position == NSTickMarkBelow) == belowIsHighY;
  CGFloat y = atHighY ? NSMaxY(track) - kTickLength : NSMinY(track);
  return NSMakeRect(centre - kTickWidth / 2, y, kTickWidth, kTickLength);
}

static double (*originalTickValue)(id, SEL, NSInteger) = NULL;
static double (*originalClosestTick)(id, SEL, double) = NULL;
static void (*originalSetTickCount)(id, SEL, NSInteger) = NULL;

static double TVSliderTickValue(NSSliderCell *self, SEL _cmd, NSInteger index) {
  if (index < 0 || index >= [self numberOfTickMarks]) {
    return 0;
  }
  return originalTickValue(self, _cmd, index);
}

static double TVSliderClosestTick(NSSliderCell *self, SEL _cmd, double value) {
  if (std::isnan(value)) {
    return [self minValue];
  }
  return originalClosestTick(self, _cmd, value);
}

static void TVSliderSetTickCount(NSSliderCell *self, SEL _cmd, NSInteger count) {
  originalSetTickCount(self, _cmd, count < 0 ? 0 : count);
}

#pragma mark - Drawing

static void (*originalDrawInterior)(id, SEL, NSRect, NSView *) = NULL;

static void TVSliderDrawInterior(NSSliderCell *self, SEL _cmd, NSRect frame, NSView *view) {
  if ([self sliderType] != NSLinearSlider) {
    originalDrawInterior(self, _cmd, frame, view);
    return;
  }
  static Ivar controlViewIvar = class_getInstanceVariable([NSActionCell class], "_control_view");
  if (view != nil && controlViewIvar != NULL) {
    object_setIvar(self, controlViewIvar, view);
  }
  TVSliderLayout(self, frame);
  BOOL flipped = [view isFlipped];
  [self drawBarInside:[self barRectFlipped:flipped] flipped:flipped];
  if ([self isVertical] == 0) {
    [[self titleCell] drawInteriorWithFrame:TrackRectIvar(self) inView:view];
  }
  if ([self numberOfTickMarks] > 0) {
    [self drawTickMarks];
  }
  [self drawKnob];
}

#pragma mark - Tracking

// Where in the knob the mouse holds it, along the track.
static CGFloat grabOffset = 0;

static void TVSliderTrackTo(NSSliderCell *cell, NSPoint point, NSView *view) {
  BOOL flipped = [view isFlipped];
  NSRect track = [cell trackRect];
  NSRect knob = [cell knobRectFlipped:flipped];
  BOOL vertical = [cell isVertical] == 1;
  CGFloat thickness = vertical ? NSHeight(knob) : NSWidth(knob);
  CGFloat travel = (vertical ? NSHeight(track) : NSWidth(track)) - thickness;
  if (!(travel > 0)) {
    return;
  }
  CGFloat position = (vertical ? point.y - NSMinY(track) : point.x - NSMinX(track)) - grabOffset;
  double fraction = position / travel;
  if (vertical && flipped) {
    fraction = 1 - fraction;  // the minimum is at the bottom
  }
  fraction = fraction < 0 ? 0 : (fraction > 1 ? 1 : fraction);
  double value = [cell minValue] + fraction * ([cell maxValue] - [cell minValue]);
  if ([cell allowsTickMarkValuesOnly] && [cell numberOfTickMarks] > 0) {
    value = [cell closestTickMarkValueToValue:value];
  }
  [cell setDoubleValue:value];
  [view setNeedsDisplay:YES];
}

static BOOL (*originalStartTracking)(id, SEL, NSPoint, NSView *) = NULL;
static BOOL (*originalContinueTracking)(id, SEL, NSPoint, NSPoint, NSView *) = NULL;

static BOOL TVSliderStartTracking(NSSliderCell *self, SEL _cmd, NSPoint point, NSView *view) {
  if ([self sliderType] != NSLinearSlider || view == nil) {
    return originalStartTracking(self, _cmd, point, view);
  }
  static Ivar controlViewIvar = class_getInstanceVariable([NSActionCell class], "_control_view");
  if (controlViewIvar != NULL) {
    object_setIvar(self, controlViewIvar, view);
  }
  TVSliderPrepare(self);
  NSRect knob = [self knobRectFlipped:[view isFlipped]];
  BOOL vertical = [self isVertical] == 1;
  if (NSPointInRect(point, knob)) {
    // A press on the knob keeps it under the mouse where it was taken.
    grabOffset = vertical ? point.y - NSMinY(knob) : point.x - NSMinX(knob);
  } else {
    grabOffset = (vertical ? NSHeight(knob) : NSWidth(knob)) / 2;
    TVSliderTrackTo(self, point, view);
  }
  return YES;
}

static BOOL TVSliderContinueTracking(NSSliderCell *self, SEL _cmd, NSPoint last, NSPoint point,
                                     NSView *view) {
  if ([self sliderType] != NSLinearSlider || view == nil) {
    return originalContinueTracking(self, _cmd, last, point, view);
  }
  TVSliderTrackTo(self, point, view);
  return YES;
}

#pragma mark - Lifecycle

static void (*originalSliderDealloc)(id, SEL) = NULL;

static void TVSliderDealloc(NSSliderCell *self, SEL _cmd) {
  ExplicitOrientation().erase(self);
  originalSliderDealloc(self, _cmd);
}

// A slider's cell knows its control view from the start, so that geometry
// asked before the first draw has a frame to work from.
static void TVAdoptCell(NSControl *control) {
  id cell = [control cell];
  static Ivar controlViewIvar = class_getInstanceVariable([NSActionCell class], "_control_view");
  if ([cell isKindOfClass:[NSActionCell class]] && controlViewIvar != NULL &&
      object_getIvar(cell, controlViewIvar) == nil) {
    object_setIvar(cell, controlViewIvar, control);
  }
}

static id (*originalSliderInit)(id, SEL, NSRect) = NULL;
static void (*originalSliderSetCell)(id, SEL, NSCell *) = NULL;

static id TVSliderInitWithFrame(NSSlider *self, SEL _cmd, NSRect frame) {
  self = originalSliderInit(self, _cmd, frame);
  if (self != nil) {
    TVAdoptCell(self);
  }
  return self;
}

static void TVSliderSetCell(NSSlider *self, SEL _cmd, NSCell *cell) {
  originalSliderSetCell(self, _cmd, cell);
  TVAdoptCell(self);
}

#pragma mark - Installation

@implementation NSSlider (TalvoPlatformGeometry)

- (void)setVertical:(BOOL)vertical {
  id cell = [self cell];
  if ([cell isKindOfClass:[NSSliderCell class]]) {
    [(NSSliderCell *)cell setVertical:vertical];
  }
}

@end

@implementation NSSliderCell (TalvoPlatformGeometry)

- (NSRect)barRectFlipped:(BOOL)flipped {
  return [self trackRect];
}

- (void)setVertical:(BOOL)vertical {
  ExplicitOrientation().insert(self);
  NSRect track = TrackRectIvar(self);
  if (!TVSliderOrientationKnown(self) || (VerticalIvar(self) == 1) != (vertical != NO)) {
    TVSliderSetKnobImage(self, vertical, track);
  }
  VerticalIvar(self) = vertical ? 1 : 0;
  [[self controlView] setNeedsDisplay:YES];
}

- (void)drawTickMarks {
  NSInteger count = [self numberOfTickMarks];
  if (count <= 0 || [NSGraphicsContext currentContext] == nil) {
    return;
  }
  [NSGraphicsContext saveGraphicsState];
  [([self isEnabled] ? [NSColor darkGrayColor] : [NSColor grayColor]) set];
  for (NSInteger i = 0; i < count; i++) {
    NSRectFill([self rectOfTickMarkAtIndex:i]);
  }
  [NSGraphicsContext restoreGraphicsState];
}

+ (void)load {
  Class cell = objc_getClass("NSSliderCell");
  TVReplaceInstanceMethod(cell, @selector(trackRect), (IMP)TVSliderTrackRect);
  TVReplaceInstanceMethod(cell, @selector(isVertical), (IMP)TVSliderIsVertical);
  originalKnobRect = (NSRect(*)(id, SEL, BOOL))TVReplaceInstanceMethod(
      cell, @selector(knobRectFlipped:), (IMP)TVSliderKnobRect);
  originalKnobThickness = (CGFloat(*)(id, SEL))TVReplaceInstanceMethod(
      cell, @selector(knobThickness), (IMP)TVSliderKnobThickness);
  TVReplaceInstanceMethod(cell, @selector(rectOfTickMarkAtIndex:), (IMP)TVSliderTickRect);
  originalTickValue = (double (*)(id, SEL, NSInteger))TVReplaceInstanceMethod(
      cell, @selector(tickMarkValueAtIndex:), (IMP)TVSliderTickValue);
  originalClosestTick = (double (*)(id, SEL, double))TVReplaceInstanceMethod(
      cell, @selector(closestTickMarkValueToValue:), (IMP)TVSliderClosestTick);
  originalSetTickCount = (void (*)(id, SEL, NSInteger))TVReplaceInstanceMethod(
      cell, @selector(setNumberOfTickMarks:), (IMP)TVSliderSetTickCount);
  originalDrawInterior = (void (*)(id, SEL, NSRect, NSView *))TVReplaceInstanceMethod(
      cell, @selector(drawInteriorWithFrame:inView:), (IMP)TVSliderDrawInterior);
  originalStartTracking = (BOOL(*)(id, SEL, NSPoint, NSView *))TVReplaceInstanceMethod(
      cell, @selector(startTrackingAt:inView:), (IMP)TVSliderStartTracking);
  originalContinueTracking = (BOOL(*)(id, SEL, NSPoint, NSPoint, NSView *))TVReplaceInstanceMethod(
      cell, @selector(continueTracking:at:inView:), (IMP)TVSliderContinueTracking);
  originalSliderDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(cell, @selector(dealloc),
                                                                      (IMP)TVSliderDealloc);
  originalSliderInit = (id(*)(id, SEL, NSRect))TVReplaceInstanceMethod(
      objc_getClass("NSSlider"), @selector(initWithFrame:), (IMP)TVSliderInitWithFrame);
  originalSliderSetCell = (void (*)(id, SEL, NSCell *))TVReplaceInstanceMethod(
      objc_getClass("NSSlider"), @selector(setCell:), (IMP)TVSliderSetCell);
}

@end
