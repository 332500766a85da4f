#import <Foundation/Foundation.h>

@class VXSplitView;

/** An edge of a split view: where a panel is pushed, popped or collapsed. */
typedef int32_t VXSplitViewPushPosition;
enum {
  VXSplitViewPushPositionBeginning = 0,  ///< the leading edge, first view in layout
  VXSplitViewPushPositionEnd = 1,        ///< the trailing edge, last view in layout
  VXSplitViewPushPositionNone = -1,      ///< no position
};

NS_ASSUME_NONNULL_BEGIN

/** What a split view asks of its delegate; every method is optional. */
@protocol VXSplitViewDelegate <NSObject>
@optional

/** Whether the edge zone at `position` captures clicks and shows a resize
 * cursor. */
- (BOOL)splitView:(VXSplitView *)splitView shouldActivePushPosition:(VXSplitViewPushPosition)position;

/** A click that hit no divider landed in an active edge zone. */
- (void)splitView:(VXSplitView *)splitView didClickAtPushPosition:(VXSplitViewPushPosition)position;

/** Whether the panel at `position` collapses when a divider is dragged past
 * its collapse gap. Without this method nothing collapses. */
- (BOOL)splitView:(VXSplitView *)splitView
    shouldCollapseSubviewAtPushPosition:(VXSplitViewPushPosition)position;

/** The collapse gap for `position`, in points (40 without this method). */
- (double)splitView:(VXSplitView *)splitView
    collapseGapForSubviewAtPushPosition:(VXSplitViewPushPosition)position;

@end

NS_ASSUME_NONNULL_END
