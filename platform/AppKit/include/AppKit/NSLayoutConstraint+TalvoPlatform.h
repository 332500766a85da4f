/*
 * NSLayoutConstraint API that GNUstep 0.29 lacks or leaves as stubs.
 *
 * Every constraint made on GNUstep (by the class constructors, copy or
 * decoding) is an instance of a private subclass with real storage: a
 * mutable constant and priority, an identifier, and an active flag.
 * Constraints compare by identity, as on macOS (GNUstep's own isEqual:
 * compares fields, so that removing one of two equal constraints from an
 * array removed both).
 *
 * setActive:YES installs the constraint on the closest common ancestor of
 * its items (or on the only item's superview... as on macOS: the first
 * item itself when it has no second item); setActive:NO removes it from the
 * view that holds it.
 *
 * +constraintsWithVisualFormat:options:metrics:views: parses Apple's visual
 * format language and answers the same constraints as AppKit (items,
 * attributes, order). "|" is the superview of the view it is connected to.
 * A malformed format or an unknown name logs a message naming the problem
 * and answers an empty array (AppKit raises).
 *
 * Views run AppKit's two passes before their window displays: update
 * constraints (leaves first), then layout, which solves every constraint
 * installed in the window with a Cassowary solver and sets the frames of
 * the views that do not translate their autoresizing mask. The engine's
 * vertical axis grows downward, as AppKit's does, whatever the flippedness
 * of the views. Views that translate their autoresizing mask (the default
 * for views made in code) keep their frames through generated constraints;
 * with a resized superview they keep their distance from its bottom-left
 * corner (an autoresizing mask of none). Unsatisfiable required
 * constraints are logged and left out, as AppKit breaks them.
 *
 * Not covered: NSLayoutAnchor, right-to-left user interfaces (leading is
 * left), baselines (treated as the bottom edge), content hugging and
 * compression resistance priorities other than 250 and 750, alignment
 * rects, shouldBeArchived.
 */
#ifndef TALVO_PLATFORM_NSLAYOUTCONSTRAINT_H
#define TALVO_PLATFORM_NSLAYOUTCONSTRAINT_H

#import <AppKit/NSLayoutConstraint.h>
#import <AppKit/NSView.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSLayoutConstraint (TalvoPlatform)

- (void)setConstant:(CGFloat)constant;
- (nullable NSString *)identifier;
- (void)setIdentifier:(nullable NSString *)identifier;

@end

// GNUstep implements this but does not declare it (without a declaration,
// callers pass the float as garbage).
@interface NSLayoutConstraint (TalvoPlatformPriority)

/** 1…1000; 1000 is required. Values outside are clamped. A required
 * constraint that is installed cannot become optional, nor the reverse
 * (macOS raises; this logs and ignores the change). */
- (void)setPriority:(NSLayoutPriority)priority;

@end

/** Marks a dimension without an intrinsic size. */
static const CGFloat NSViewNoIntrinsicMetric = -1;

@interface NSView (TalvoPlatformConstraints)

/** The constraints installed on this view, in the order they were added. */
- (NSArray *)constraints;
- (void)addConstraint:(NSLayoutConstraint *)constraint;
- (void)addConstraints:(NSArray *)constraints;
- (void)removeConstraint:(NSLayoutConstraint *)constraint;
- (void)removeConstraints:(NSArray *)constraints;

@end

@interface NSView (TalvoPlatformLayout)

/** YES (the default) keeps the view's frame through generated constraints. */
- (BOOL)translatesAutoresizingMaskIntoConstraints;
- (void)setTranslatesAutoresizingMaskIntoConstraints:(BOOL)flag;

+ (BOOL)requiresConstraintBasedLayout;

- (BOOL)needsUpdateConstraints;
- (void)setNeedsUpdateConstraints:(BOOL)flag;
/** Override to (re)build constraints; call super. Called by the update pass. */
- (void)updateConstraints;
- (void)updateConstraintsForSubtreeIfNeeded;

- (BOOL)needsLayout;
- (void)setNeedsLayout:(BOOL)flag;
/** Sets the frames of the subviews that the constraints place. */
- (void)layout;
- (void)layoutSubtreeIfNeeded;

/** NSViewNoIntrinsicMetric in both dimensions by default. */
- (NSSize)intrinsicContentSize;
- (void)invalidateIntrinsicContentSize;

@end

NS_ASSUME_NONNULL_END

#endif
