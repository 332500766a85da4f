// Pushing and popping edge panels, sliding when animated, with their widths
// remembered under autosave names.

#import <QuartzCore/QuartzCore.h>
#import <Talvo/VXSplitView.h>
#import <Talvo/VXSplitViewPositioner.h>

#import "layout/VXSplitView+Private.h"

#include <math.h>

#include <unordered_map>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

NSString *const VXSplitViewWillPushSubviewNotification = @"VXSplitViewWillPushSubviewNotification";
NSString *const VXSplitViewDidPushSubviewNotification = @"VXSplitViewDidPushSubviewNotification";
NSString *const VXSplitViewWillCollapseSubviewNotification =
    @"VXSplitViewWillCollapseSubviewNotification";
NSString *const VXSplitViewDidCollapseSubviewNotification =
    @"VXSplitViewDidCollapseSubviewNotification";
NSString *const VXSplitViewPushPositionKey = @"VXSplitViewPushPositionKey";

static const NSTimeInterval VXSplitViewSlideDuration = 0.25;

// The slide a split view is running: what it moves and where it ends, so
// that a push, a pop or a drag arriving meanwhile can build on the layout
// the slide is heading for instead of the frames it shows halfway.
@interface _VXSplitViewSlide : NSObject {
 @public
  BOOL _isPop;
  NSView *_view;  // the panel sliding in or out
  NSLayoutConstraint *_divider;
  double _finalDividerConstant;
  BOOL _settled;  // something took over before the slide ended
}
@end

@implementation _VXSplitViewSlide
- (void)dealloc {
  [_divider release];
  [_view release];
  [super dealloc];
}
@end

namespace {

// At most one slide per split view; the split view is retained by the
// slide's completion, so an entry never outlives its key.
std::unordered_map<VXSplitView *, _VXSplitViewSlide *> &RunningSlides() {
  static auto *slides = new std::unordered_map<VXSplitView *, _VXSplitViewSlide *>();
  return *slides;
}

_VXSplitViewSlide *RunningSlide(VXSplitView *splitView) {
  auto found = RunningSlides().find(splitView);
  return found != RunningSlides().end() ? found->second : nil;
}

void BeginSlide(VXSplitView *splitView, _VXSplitViewSlide *slide) {
  [RunningSlide(splitView) release];
  RunningSlides()[splitView] = [slide retain];
}

void EndSlide(VXSplitView *splitView, _VXSplitViewSlide *slide) {
  auto found = RunningSlides().find(splitView);
  if (found != RunningSlides().end() && found->second == slide) {
    [found->second release];
    RunningSlides().erase(found);
  }
}

// Opens the animation group of one slide; the caller sets its completion,
// animates and closes it.
void BeginSlideGroup(NSString *timing) {
  [NSAnimationContext beginGrouping];
  NSAnimationContext *context = [NSAnimationContext currentContext];
  [context setDuration:VXSplitViewSlideDuration];
  [context setTimingFunction:[CAMediaTimingFunction functionWithName:timing]];
}

}  // namespace

@implementation VXSplitView (PushPop)

#pragma mark - Public

- (void)pushSubView:(NSView *)view
         atPosition:(VXSplitViewPushPosition)position
       autosaveName:(NSString *)autosaveName {
  if (![view isKindOfClass:[NSView class]] || [view superview] == self || view == self ||
      [self isDescendantOf:view]) {
    return;
  }
  NSNumber *saved = [autosaveName isKindOfClass:[NSString class]]
                        ? [[self autosavedSizes] objectForKey:autosaveName]
                        : nil;
  double width = [saved isKindOfClass:[NSNumber class]] ? [saved doubleValue] : NSWidth([view bounds]);
  if (!(width >= 0) || !isfinite(width)) {
    width = 0;
  }
  [self postNotification:VXSplitViewWillPushSubviewNotification position:position];

  NSRect frame = [view frame];
  frame.size.width = width;
  [view setFrame:frame];
  if ([_viewsInLayout count] == 0) {
    [self _updateDividerViews];
  }
  // Positions at the trailing edge count from the width the split view has
  // now, after a window resize that has not been laid out yet too.
  [self layoutSubtreeIfNeeded];
  [self _settleRunningSlide];
  NSMapTable *intents = [self _positionIntents];
  Class positioner = [VXSplitViewPositioner positionerForPosition:position];
  [positioner pushView:view atPosition:position inSplitView:self];
  if ([autosaveName isKindOfClass:[NSString class]]) {
    [_viewsSavednameMapping setObject:autosaveName forKey:view];
  }

  // Both sets are renewed at once, the other panels keeping the places they
  // have (or are sliding to), so that the new panel comes in at its width
  // and the next drag moves the divider the user grabs.
  [self _rebuildConstraintsWithIntents:intents];
  NSLayoutConstraint *side = [positioner sideConstraintInSplitView:self];
  NSLayoutConstraint *divider = [positioner dividerConstraintInSplitView:self];
  [divider setConstant:[positioner finalDividerConstantForWidth:width inSplitView:self]];
  [self _keepPositionsInOrder];
  double finalConstant = [divider constant];
  if (![self animated] || _isInAnimation) {
    [side setConstant:0];
    [self _postPushNotificationOnPosition:position];
    return;
  }

  _isInAnimation = YES;
  _VXSplitViewSlide *slide = [[_VXSplitViewSlide new] autorelease];
  slide->_view = [view retain];
  slide->_divider = [divider retain];
  slide->_finalDividerConstant = finalConstant;
  BeginSlide(self, slide);
  [side setConstant:-width];
  [divider setConstant:[positioner initialDividerConstantForWidth:width inSplitView:self]];
  BeginSlideGroup(kCAMediaTimingFunctionEaseOut);
  NSAnimationContext *context = [NSAnimationContext currentContext];
  [self retain];  // until the slide has ended
  [slide retain];
  [context setCompletionHandler:^{
    EndSlide(self, slide);
    self->_isInAnimation = NO;
    [self _postPushNotificationOnPosition:position];
    [slide release];
    [self release];
  }];
  [[side animator] setConstant:0];
  [[divider animator] setConstant:finalConstant];
  [NSAnimationContext endGrouping];
}

- (void)popSubViewAtPosition:(VXSplitViewPushPosition)position {
  // A panel still sliding out leaves now, so that this pop takes the one
  // that will be at the edge.
  [self _settleRunningSlide];
  // Dividers left over from the last pop until the next update pass do not
  // count: a lone panel stays.
  if ([[self _subviewsInLayout] count] < 2) {
    return;
  }
  [self postNotification:VXSplitViewWillCollapseSubviewNotification position:position];
  Class positioner = [VXSplitViewPositioner positionerForPosition:position];
  NSView *view = [positioner positionedViewInSplitView:self];
  double width = view != nil ? NSWidth([view bounds]) : 0;
  [self _updateAutosavedsizesForView:view];
  // A slide at the trailing edge counts from the width the split view has
  // now, after a window resize that has not been laid out yet too.
  [self layoutSubtreeIfNeeded];

  if (![self animated] || _isInAnimation) {
    [self removePoppedView:view position:position];
    return;
  }
  [self _renewConstraintSetsIfStale];
  NSLayoutConstraint *side = [positioner sideConstraintInSplitView:self];
  NSLayoutConstraint *divider = [positioner dividerConstraintInSplitView:self];
  _isInAnimation = YES;
  _VXSplitViewSlide *slide = [[_VXSplitViewSlide new] autorelease];
  slide->_isPop = YES;
  slide->_view = [view retain];
  BeginSlide(self, slide);
  BeginSlideGroup(kCAMediaTimingFunctionEaseIn);
  NSAnimationContext *context = [NSAnimationContext currentContext];
  [self retain];  // with the slide and its view, until the slide has ended
  [slide retain];
  [context setCompletionHandler:^{
    EndSlide(self, slide);
    if (slide->_settled) {
      // Taken away already by whatever interrupted the slide.
      [self _postPopNotificationForPosition:position];
    } else {
      [self removePoppedView:slide->_view position:position];
    }
    self->_isInAnimation = NO;
    [slide release];
    [self release];
  }];
  [[side animator] setConstant:-width];
  [[divider animator] setConstant:[positioner initialDividerConstantForWidth:width
                                                                 inSplitView:self]];
  [NSAnimationContext endGrouping];
}

#pragma mark - Private

- (void)_postPushNotificationOnPosition:(VXSplitViewPushPosition)position {
  [self postNotification:VXSplitViewDidPushSubviewNotification position:position];
}

- (void)_postPopNotificationForPosition:(VXSplitViewPushPosition)position {
  [self postNotification:VXSplitViewDidCollapseSubviewNotification position:position];
}

- (void)_updateAutosavedsizesForView:(NSView *)view {
  if (view == nil) {
    return;
  }
  NSString *name = [_viewsSavednameMapping objectForKey:view];
  if (name == nil) {
    return;
  }
  [[self autosavedSizes] setObject:[NSNumber numberWithDouble:NSWidth([view frame])] forKey:name];
}

- (void)postNotification:(NSString *)name position:(VXSplitViewPushPosition)position {
  NSDictionary *info = [NSDictionary dictionaryWithObject:[NSNumber numberWithInt:position]
                                                   forKey:VXSplitViewPushPositionKey];
  [[NSNotificationCenter defaultCenter] postNotificationName:name object:self userInfo:info];
}

// Takes the popped panel away. The other views keep their places: both
// sets are rebuilt at once from the positions they have.
- (void)removePoppedView:(NSView *)view position:(VXSplitViewPushPosition)position {
  [self _removeViewKeepingPositions:view];
  [self _postPopNotificationForPosition:position];
}

- (void)_removeViewKeepingPositions:(NSView *)view {
  NSMapTable *intents = [self _positionIntents];
  [[view retain] autorelease];
  if ([view superview] == self) {
    [view removeFromSuperview];  // the chain goes stale with it
  }
  if (view != nil) {
    [_viewsSavednameMapping removeObjectForKey:view];
  }
  [self _installPositionsForViews:[self _subviewsInLayout] intents:intents];
}

// Brings a running slide to the end it is heading for, at once: its panel
// is in at its width, or out and removed. The slide's completion still
// reports it when its time is up.
- (void)_settleRunningSlide {
  _VXSplitViewSlide *slide = RunningSlide(self);
  if (slide == nil || slide->_settled) {
    return;
  }
  [[slide retain] autorelease];
  NSMapTable *intents = [self _positionIntents];
  slide->_settled = YES;
  EndSlide(self, slide);
  if (slide->_isPop) {
    NSView *view = slide->_view;
    if ([view superview] == self) {
      [view removeFromSuperview];
    }
    [_viewsSavednameMapping removeObjectForKey:view];
  }
  [self _installPositionsForViews:[self _subviewsInLayout] intents:intents];
}

// Where each view after a divider is meant to start: the installed position
// set where it names a view in layout, a running push at the place it is
// sliding to.
- (NSMapTable *)_positionIntents {
  NSMapTable *intents = [NSMapTable strongToStrongObjectsMapTable];
  for (NSLayoutConstraint *position in _positionConstraints) {
    id item = [position firstItem];
    if ([item superview] == self) {
      [intents setObject:[NSNumber numberWithDouble:[position constant]] forKey:item];
    }
  }
  _VXSplitViewSlide *slide = RunningSlide(self);
  if (slide != nil && !slide->_settled && !slide->_isPop && slide->_divider != nil) {
    id item = [slide->_divider firstItem];
    if ([item superview] == self) {
      [intents setObject:[NSNumber numberWithDouble:slide->_finalDividerConstant] forKey:item];
    }
  }
  return intents;
}

// Renews both sets now: the chain for the views the split view holds, and
// their positions (below).
- (void)_rebuildConstraintsWithIntents:(NSMapTable *)intents {
  [self setViewStackConstraints:nil];
  [self setPositionConstraints:nil];
  [self _updateViewStackConstraints];
  [self _installPositionsForViews:_viewsInLayout intents:intents];
}

// Installs a position for each of `views` after the first, taken from
// `intents` where known and otherwise just after the view before it at that
// view's width. The chain may still be stale: positions name only the views
// and the split view, and the next update pass keeps them.
- (void)_installPositionsForViews:(NSArray *)views intents:(NSMapTable *)intents {
  NSUInteger count = [views count];
  if (count < 2) {
    [self setPositionConstraints:nil];
    return;
  }
  double thickness = [self dividerThickness];
  double previousX = 0;
  NSMutableArray *positions = [NSMutableArray arrayWithCapacity:count - 1];
  for (NSUInteger k = 1; k < count; k++) {
    NSView *view = [views objectAtIndex:k];
    NSNumber *intent = [intents objectForKey:view];
    double x = intent != nil
                   ? [intent doubleValue]
                   : previousX + NSWidth([[views objectAtIndex:k - 1] frame]) + thickness;
    [positions addObject:[self _positionConstraintForView:view constant:x]];
    previousX = x;
  }
  [self setPositionConstraints:positions];
  [self _keepPositionsInOrder];
}

// The subviews that are not dividers, in order: the views in layout the
// next divider refresh will find.
- (NSArray *)_subviewsInLayout {
  NSMutableArray *views = [NSMutableArray array];
  for (NSView *view in [self subviews]) {
    if (![view isKindOfClass:[VXSplitViewDivider class]]) {
      [views addObject:view];
    }
  }
  return views;
}

// A view never starts before the one in front of it ends: a divider dragged
// past its neighbour, then a panel pushed or popped, would leave positions
// out of order, and no layout could honour them all.
- (void)_keepPositionsInOrder {
  double thickness = [self dividerThickness];
  double previousX = 0;
  for (NSLayoutConstraint *position in _positionConstraints) {
    double x = fmax([position constant], previousX + thickness);
    if (x != [position constant]) {
      [position setConstant:x];
    }
    previousX = x;
  }
}

// Sets that no longer belong to the views (a pop left the chain stale, a
// subview came or went) are renewed before something moves their constants.
- (void)_renewConstraintSetsIfStale {
  if (![self _constraintSetsMatchViews]) {
    [self _rebuildConstraintsWithIntents:[self _positionIntents]];
  }
}

// Whether the installed sets are the ones the current views need.
- (BOOL)_constraintSetsMatchViews {
  if (_viewStackConstraints == nil) {
    return NO;
  }
  NSArray *inLayout = [self _subviewsInLayout];
  if (![inLayout isEqualToArray:_viewsInLayout]) {
    return NO;
  }
  NSUInteger count = [inLayout count];
  if (count < 2) {
    return YES;
  }
  if ([_positionConstraints count] != count - 1) {
    return NO;
  }
  for (NSUInteger k = 1; k < count; k++) {
    if ([[_positionConstraints objectAtIndex:k - 1] firstItem] != [inLayout objectAtIndex:k]) {
      return NO;
    }
  }
  return YES;
}

@end
