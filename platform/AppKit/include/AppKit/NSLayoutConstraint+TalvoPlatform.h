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
 * Not covered yet: the solver-backed layout pass (frames are not changed by
 * constraints in this version), NSLayoutAnchor, shouldBeArchived.
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

@interface NSView (TalvoPlatformConstraints)

/** The constraints installed on this view, in the order they were added. */
- (NSArray *)constraints;
- (void)addConstraint:(NSLayoutConstraint *)constraint;
- (void)addConstraints:(NSArray *)constraints;
- (void)removeConstraint:(NSLayoutConstraint *)constraint;
- (void)removeConstraints:(NSArray *)constraints;

@end

NS_ASSUME_NONNULL_END

#endif
