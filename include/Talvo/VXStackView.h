#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * A container that lines up its visible subviews one after the other, left
 * to right or top to bottom, and stretches each across the other axis.
 *
 * All geometry is one set of required layout constraints that the stack
 * view builds, installs on itself and replaces as a whole. The set is nil
 * while stale: adding or removing a subview makes it stale, and the next
 * constraint update pass rebuilds it. Hiding or showing a subview, or
 * changing `vertical` or `margin`, takes effect only when the set is next
 * rebuilt (set it to nil to force that).
 *
 * Subviews added to a stack view stop translating their autoresizing mask
 * into constraints.
 */
@interface VXStackView : NSView {
  BOOL _vertical;
  double _margin;
  NSArray<NSLayoutConstraint *> *_viewStackConstraints;
}

/** YES stacks top to bottom (Top and Bottom edges), NO left to right (Left
 * and Right edges). Default NO. */
@property(atomic, assign) BOOL vertical;

/** The constant of each neighbour-to-neighbour constraint,
 * previous.end = next.start + margin: along the axis, with vertical
 * distances measured downward, each view starts `margin` points before its
 * predecessor ends. A negative margin leaves a gap of its size, a positive
 * one makes neighbours overlap. Default 0. */
@property(atomic, assign) double margin;

/** The installed set; nil while stale. Setting a different array removes the
 * old set from the stack view and installs the new one, or, for nil, asks
 * for a constraint update. Setting the current array does nothing. */
@property(nonatomic, strong, nullable) NSArray<NSLayoutConstraint *> *viewStackConstraints;

/** Builds and installs the set when there is none; does nothing otherwise.
 * Called by updateConstraints. */
- (void)_updateViewStackConstraints;

@end

NS_ASSUME_NONNULL_END
