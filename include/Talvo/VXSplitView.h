#import <AppKit/AppKit.h>

#import <Talvo/TalvoExport.h>
#import <Talvo/VXSplitViewDelegate.h>
#import <Talvo/VXSplitViewDivider.h>

NS_ASSUME_NONNULL_BEGIN

/** Posted when a divider drag starts. Its value is
 * "VXSplitViewWillDragDivider". */
TALVO_EXTERN NSString *const VXSplitViewWillDragDividerNotification;
/** Posted when a divider drag ends, also when it ended by collapsing a panel. */
TALVO_EXTERN NSString *const VXSplitViewDidDragDividerNotification;
/** Posted by a push before the view is added. */
TALVO_EXTERN NSString *const VXSplitViewWillPushSubviewNotification;
/** Posted by a push once the view is in place. */
TALVO_EXTERN NSString *const VXSplitViewDidPushSubviewNotification;
/** Posted by a pop (also one a drag causes) before anything changes. */
TALVO_EXTERN NSString *const VXSplitViewWillCollapseSubviewNotification;
/** Posted by a pop once the view has been removed. */
TALVO_EXTERN NSString *const VXSplitViewDidCollapseSubviewNotification;
/** The user-information key of the push and collapse notifications: an
 * NSNumber holding the VXSplitViewPushPosition. */
TALVO_EXTERN NSString *const VXSplitViewPushPositionKey;

/** Draws divider `index` in `rect` (the divider's bounds, dividerThickness
 * wide) instead of the default strips. */
typedef void (^VXSplitViewDividerDrawer)(NSInteger index, NSRect rect);

/**
 * A container that lays its subviews out side by side, leading to trailing,
 * separated by divider views, every view spanning the full height. All
 * geometry is layout constraints the split view builds and installs on
 * itself: the view-stack set (required) chains views and dividers edge to
 * edge and pins the chain to both edges; the position set (priority 490)
 * fixes where each view after a divider starts. Either set is nil while
 * stale and is rebuilt by the next constraint update pass.
 */
@interface VXSplitView : NSView {
  NSLayoutConstraint *_draggingConstraint;
  NSInteger _draggingIndex;
  NSMapTable *_viewsSavednameMapping;
  VXSplitViewPushPosition _collapsedPosition;
  BOOL _isInAnimation;
  BOOL _animated;
  NSMutableDictionary *_autosavedSizes;
  VXSplitViewDividerDrawer _dividerDrawer;
  id<VXSplitViewDelegate> _delegate;
  NSColor *_backgroundColor;
  NSArray *_viewStackConstraints;
  NSArray *_positionConstraints;
  NSMutableArray *_dividerViews;
  NSArray *_viewsInLayout;
}

/** Push and pop animate when YES. */
@property(atomic, assign) BOOL animated;
/** Autosave name to width (an NSNumber holding a double). */
@property(atomic, strong) NSMutableDictionary *autosavedSizes;
/** Custom divider drawing; nil for the default strips. */
@property(atomic, copy, nullable) VXSplitViewDividerDrawer dividerDrawer;
/** Not retained. */
@property(atomic, assign, nullable) id<VXSplitViewDelegate> delegate;
/** Fills the dirty area when set. */
@property(atomic, strong, nullable) NSColor *backgroundColor;
/** The installed view-stack constraints; nil while stale. Setting removes
 * the old set from the split view and installs the new one (or, for nil,
 * asks for a constraint update), then redisplays the split view. */
@property(nonatomic, strong, nullable) NSArray *viewStackConstraints;
/** The installed position constraints; nil while stale. Setting replaces
 * the installed set like viewStackConstraints, without redisplay. */
@property(nonatomic, strong, nullable) NSArray *positionConstraints;
/** The dividers, in index order. */
@property(nonatomic, strong) NSMutableArray *dividerViews;
/** The subviews that are not dividers, leading to trailing, as of the last
 * divider refresh. */
@property(nonatomic, strong) NSArray *viewsInLayout;

/** Always 1.0; every divider width, position, hit and cursor zone uses it,
 * so a subclass may override it. */
- (double)dividerThickness;

/** The divider's rectangle: at the end of view `index` in layout (x 0 when
 * there is no such view), dividerThickness wide, the full bounds high. */
- (NSRect)rectForDividerAtIndex:(NSInteger)index;

/** Marks rectForDividerAtIndex: for redisplay. */
- (void)setNeedsDisplayForDivider:(NSInteger)index;

/** A new set of position constraints from the views' current frames, not
 * installed; nil with fewer than two views in layout. */
- (nullable NSArray *)constraintsForPositions;

@end

/** Dragging dividers, edge zones and collapsing panels. Drags run only in
 * the key window. */
@interface VXSplitView (Dragging)

/** The index of the divider within 4 points of `point` (split view
 * coordinates; only x counts), or -1. */
- (NSInteger)dividerIndexForPoint:(NSPoint)point;

@end

/** Edge panels that come and go. */
@interface VXSplitView (PushPop)

/** Adds `view` as the panel at `position`, at the width last recorded under
 * `autosaveName` (else its own width), sliding it in when animated. */
- (void)pushSubView:(NSView *)view
         atPosition:(VXSplitViewPushPosition)position
       autosaveName:(nullable NSString *)autosaveName;

/** Takes the panel at `position` away, recording its width under its
 * autosave name, sliding it out when animated. Nothing happens with fewer
 * than two subviews. */
- (void)popSubViewAtPosition:(VXSplitViewPushPosition)position;

@end

NS_ASSUME_NONNULL_END
