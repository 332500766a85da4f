// Divider dragging, edge zones, cursor rectangles and collapsing a panel by
// dragging past its gap.

#import <Talvo/VXSplitView.h>

#include <math.h>

#include <vector>

#include "core/layout/SplitViewGeometry.hpp"
#import "layout/VXSplitView+Private.h"
#import "support/TalvoMRC.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

using talvo::layout::Edge;

NSString *const VXSplitViewWillDragDividerNotification = @"VXSplitViewWillDragDivider";
NSString *const VXSplitViewDidDragDividerNotification = @"VXSplitViewDidDragDividerNotification";

@implementation VXSplitView (Dragging)

#pragma mark - Public

- (NSInteger)dividerIndexForPoint:(NSPoint)point {
  std::vector<talvo::layout::DividerSpan> spans;
  for (VXSplitViewDivider *divider in _dividerViews) {
    NSRect frame = [divider frame];
    spans.push_back({NSMinX(frame), NSMaxX(frame), (int64_t)[divider index]});
  }
  return (NSInteger)talvo::layout::DividerIndexAt(point.x, spans,
                                                  (int64_t)[[self subviews] count]);
}

- (NSView *)hitTest:(NSPoint)point {
  NSPoint local = [self convertPoint:point fromView:[self superview]];
  NSInteger divider = [self dividerIndexForPoint:local];
  VXSplitViewPushPosition edge = [self _activePositionForLocation:local];
  if (divider == -1 && edge == VXSplitViewPushPositionNone) {
    return [super hitTest:point];
  }
  // Only points inside the split view are its own.
  return NSMouseInRect(point, [self frame], [[self superview] isFlipped]) ? self : nil;
}

- (BOOL)mouseDownCanMoveWindow {
  return NO;
}

- (void)resetCursorRects {
  [super resetCursorRects];
  if (![[self window] isKeyWindow]) {
    return;
  }
  NSRect bounds = [self bounds];
  if (_draggingConstraint != nil) {
    [self addCursorRect:bounds cursor:[NSCursor resizeLeftRightCursor]];
    return;
  }
  NSUInteger count = [_dividerViews count];
  for (NSUInteger i = 0; i < count; i++) {
    NSRect rect = NSInsetRect([self rectForDividerAtIndex:(NSInteger)i],
                              -talvo::layout::kDividerCursorBand, 0);
    [self addCursorRect:rect cursor:[NSCursor resizeLeftRightCursor]];
  }
  id<VXSplitViewDelegate> delegate = [self delegate];
  if (![delegate respondsToSelector:@selector(splitView:shouldActivePushPosition:)]) {
    return;
  }
  double zone = [self dividerThickness] + talvo::layout::kEdgeZoneExtra;
  if ([delegate splitView:self shouldActivePushPosition:VXSplitViewPushPositionBeginning]) {
    [self addCursorRect:NSMakeRect(NSMinX(bounds), NSMinY(bounds), zone, NSHeight(bounds))
                 cursor:[NSCursor resizeRightCursor]];
  }
  if ([delegate splitView:self shouldActivePushPosition:VXSplitViewPushPositionEnd]) {
    [self addCursorRect:NSMakeRect(NSWidth(bounds) - zone, NSMinY(bounds), zone, NSHeight(bounds))
                 cursor:[NSCursor resizeLeftCursor]];
  }
}

#pragma mark - Events

- (void)mouseDown:(NSEvent *)event {
  if (![[self window] isKeyWindow]) {
    return;
  }
  NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
  NSInteger index = [self dividerIndexForPoint:point];
  if (index == -1) {
    id<VXSplitViewDelegate> delegate = [self delegate];
    if ([delegate respondsToSelector:@selector(splitView:didClickAtPushPosition:)]) {
      VXSplitViewPushPosition edge = [self _activePositionForLocation:point];
      if (edge != VXSplitViewPushPositionNone) {
        [delegate splitView:self didClickAtPushPosition:edge];
      }
    }
    [super mouseDown:event];
    return;
  }
  // The drag moves the installed positions: a slide still running ends
  // now, and a set left stale by an earlier change is renewed first.
  [self _settleRunningSlide];
  [self _renewConstraintSetsIfStale];
  [self _updatePositionConstraints];
  if ((NSUInteger)index >= [_positionConstraints count]) {
    return;
  }
  NSLayoutConstraint *dragged = [_positionConstraints objectAtIndex:(NSUInteger)index];
  [dragged retain];
  [_draggingConstraint release];
  _draggingConstraint = dragged;
  [_draggingConstraint setConstant:floor([self dividerThickness] + point.x)];
  _draggingIndex = index;
  _collapsedPosition = VXSplitViewPushPositionNone;
  [[self window] invalidateCursorRectsForView:self];
  [[NSNotificationCenter defaultCenter] postNotificationName:VXSplitViewWillDragDividerNotification
                                                      object:self];
}

- (void)mouseDragged:(NSEvent *)event {
  if (_draggingConstraint == nil || _collapsedPosition != VXSplitViewPushPositionNone ||
      ![[self window] isKeyWindow]) {
    [super mouseDragged:event];
    return;
  }
  NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
  if (!NSPointInRect(point, [self bounds])) {
    [self _finishDrag:event];
    return;
  }
  [_draggingConstraint setConstant:floor([self dividerThickness] + point.x)];
  _collapsedPosition = [self _collapsedPositionForCurrentDeaggingConstraint];
  if (_collapsedPosition == VXSplitViewPushPositionNone) {
    return;
  }
  [self popSubViewAtPosition:_collapsedPosition];
  [self _finishDrag:event];
}

- (void)mouseUp:(NSEvent *)event {
  if (_draggingConstraint != nil && [[self window] isKeyWindow]) {
    [self _finishDrag:event];
    return;
  }
  [super mouseUp:event];
}

#pragma mark - Private

- (void)_finishDrag:(NSEvent *)event {
  if (_draggingConstraint == nil) {
    return;
  }
  if (_collapsedPosition == VXSplitViewPushPositionNone) {
    NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
    [_draggingConstraint setConstant:floor([self dividerThickness] + point.x)];
    // The frames must show the final constant before they are recorded.
    [self layoutSubtreeIfNeeded];
    NSInteger lastDivider = (NSInteger)[_dividerViews count] - 1;
    if (_draggingIndex == 0) {
      [self _updateAutosavedsizesForView:[self firstViewInLayout]];
    }
    if (_draggingIndex == lastDivider) {
      [self _updateAutosavedsizesForView:[self lastViewInLayout]];
    }
    [self setPositionConstraints:nil];
  }
  TalvoDestroy(_draggingConstraint);
  [[self window] invalidateCursorRectsForView:self];
  [[NSNotificationCenter defaultCenter] postNotificationName:VXSplitViewDidDragDividerNotification
                                                      object:self];
}

- (VXSplitViewPushPosition)_activePositionForLocation:(NSPoint)location {
  id<VXSplitViewDelegate> delegate = [self delegate];
  if (![delegate respondsToSelector:@selector(splitView:shouldActivePushPosition:)]) {
    return VXSplitViewPushPositionNone;
  }
  Edge candidate =
      talvo::layout::EdgeZoneAt(location.x, NSWidth([self bounds]), [self dividerThickness]);
  if (candidate == Edge::None) {
    return VXSplitViewPushPositionNone;
  }
  VXSplitViewPushPosition position = (VXSplitViewPushPosition)candidate;
  return [delegate splitView:self shouldActivePushPosition:position] ? position
                                                                     : VXSplitViewPushPositionNone;
}

- (VXSplitViewPushPosition)_collapsedPositionForCurrentDeaggingConstraint {
  id<VXSplitViewDelegate> delegate = [self delegate];
  if ([[self subviews] count] < 2 ||
      ![delegate respondsToSelector:@selector(splitView:shouldCollapseSubviewAtPushPosition:)]) {
    return VXSplitViewPushPositionNone;
  }
  Edge candidate = talvo::layout::CollapseCandidate(
      [_draggingConstraint constant], NSWidth([self bounds]),
      [self _collapseGapForPosition:VXSplitViewPushPositionBeginning],
      [self _collapseGapForPosition:VXSplitViewPushPositionEnd]);
  if (candidate == Edge::None) {
    return VXSplitViewPushPositionNone;
  }
  VXSplitViewPushPosition position = (VXSplitViewPushPosition)candidate;
  return [delegate splitView:self shouldCollapseSubviewAtPushPosition:position]
             ? position
             : VXSplitViewPushPositionNone;
}

- (double)_collapseGapForPosition:(VXSplitViewPushPosition)position {
  id<VXSplitViewDelegate> delegate = [self delegate];
  if ([delegate respondsToSelector:@selector(splitView:collapseGapForSubviewAtPushPosition:)]) {
    return [delegate splitView:self collapseGapForSubviewAtPushPosition:position];
  }
  return talvo::layout::kDefaultCollapseGap;
}

- (NSView *)firstViewInLayout {
  for (NSView *view in [self subviews]) {
    if (![view isKindOfClass:[VXSplitViewDivider class]]) {
      return view;
    }
  }
  return nil;
}

- (NSView *)lastViewInLayout {
  for (NSView *view in [[self subviews] reverseObjectEnumerator]) {
    if (![view isKindOfClass:[VXSplitViewDivider class]]) {
      return view;
    }
  }
  return nil;
}

@end
