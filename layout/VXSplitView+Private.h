// The split view's own operations, shared by its drag, push and pop code and
// by the tests. Not installed.
#import <Talvo/VXSplitView.h>

NS_ASSUME_NONNULL_BEGIN

@interface VXSplitView (Private)

/** Rebuilds the dividers and the viewsInLayout snapshot. */
- (void)_updateDividerViews;
/** Builds and installs the view-stack constraints if there are none. */
- (void)_updateViewStackConstraints;
/** Builds and installs the position constraints if there are none. */
- (void)_updatePositionConstraints;
/** Invalidates both constraint sets and rebuilds them at once. */
- (void)_forceUpdateConstraints;

// Dragging
- (void)_finishDrag:(NSEvent *)event;
- (VXSplitViewPushPosition)_activePositionForLocation:(NSPoint)location;
- (VXSplitViewPushPosition)_collapsedPositionForCurrentDeaggingConstraint;
- (double)_collapseGapForPosition:(VXSplitViewPushPosition)position;

// Pushing and popping
- (void)_postPushNotificationOnPosition:(VXSplitViewPushPosition)position;
- (void)_postPopNotificationForPosition:(VXSplitViewPushPosition)position;
- (void)_updateAutosavedsizesForView:(NSView *)view;

@end

NS_ASSUME_NONNULL_END
