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
/** A position constraint: `view`'s leading edge at `constant` from the
 * split view's, at the position priority. */
- (nullable NSLayoutConstraint *)_positionConstraintForView:(NSView *)view
                                                   constant:(double)constant;

// Dragging
- (void)_finishDrag:(NSEvent *)event;
- (VXSplitViewPushPosition)_activePositionForLocation:(NSPoint)location;
- (VXSplitViewPushPosition)_collapsedPositionForCurrentDeaggingConstraint;
- (double)_collapseGapForPosition:(VXSplitViewPushPosition)position;

// Pushing and popping
- (void)_postPushNotificationOnPosition:(VXSplitViewPushPosition)position;
- (void)_postPopNotificationForPosition:(VXSplitViewPushPosition)position;
- (void)_updateAutosavedsizesForView:(NSView *)view;
/** Ends a running slide at once where it was heading (its completion still
 * reports it when its time is up). */
- (void)_settleRunningSlide;
/** Where each view after a divider is meant to start, by view. */
- (NSMapTable *)_positionIntents;
/** Renews both sets now, positions from `intents` where known. */
- (void)_rebuildConstraintsWithIntents:(NSMapTable *)intents;
/** Moves installed positions that start before the view in front ends. */
- (void)_keepPositionsInOrder;
/** Installs positions for `views` (from `intents` where known) and
 * leaves the chain as it is. */
- (void)_installPositionsForViews:(NSArray *)views intents:(NSMapTable *)intents;
/** The subviews that are not dividers, in order. */
- (NSArray *)_subviewsInLayout;
/** Whether the installed sets belong to the views the split view holds. */
- (BOOL)_constraintSetsMatchViews;
/** Renews both sets (positions from their intents) when they do not. */
- (void)_renewConstraintSetsIfStale;

@end

NS_ASSUME_NONNULL_END
