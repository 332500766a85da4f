#import <Foundation/Foundation.h>

#import <Talvo/VXSplitViewDelegate.h>

@class NSLayoutConstraint;
@class NSView;
@class VXSplitView;

NS_ASSUME_NONNULL_BEGIN

/**
 * The edge-specific steps of pushing and popping a split view's panels.
 * Class methods only; positionerForPosition: hands out the class for an
 * edge. This base class answers nil and zero and does nothing.
 */
@interface VXSplitViewPositioner : NSObject

/** VXSplitViewPositionerAtEnd for End, VXSplitViewPositionerAtBeginning
 * for every other value. */
+ (Class)positionerForPosition:(VXSplitViewPushPosition)position;

/** The panel at this edge. */
+ (nullable NSView *)positionedViewInSplitView:(VXSplitView *)splitView;

/** The view-stack constraint that pins the panel to this edge. */
+ (nullable NSLayoutConstraint *)sideConstraintInSplitView:(VXSplitView *)splitView;

/** The position constraint next to the panel. */
+ (nullable NSLayoutConstraint *)dividerConstraintInSplitView:(VXSplitView *)splitView;

/** Adds `view` so that it becomes the view in layout at this edge. */
+ (void)pushView:(NSView *)view
      atPosition:(VXSplitViewPushPosition)position
     inSplitView:(VXSplitView *)splitView;

/** The divider constraint's constant while a panel `width` wide is out of
 * sight, and when it is fully in. */
+ (double)initialDividerConstantForWidth:(double)width inSplitView:(VXSplitView *)splitView;
+ (double)finalDividerConstantForWidth:(double)width inSplitView:(VXSplitView *)splitView;

@end

NS_ASSUME_NONNULL_END
