/*
 * NSLayoutAnchor and the anchors of NSView on GNUstep.
 *
 * GNUstep 0.29 declares NSLayoutAnchor, NSLayoutXAxisAnchor,
 * NSLayoutYAxisAnchor and NSLayoutDimension, but its anchors have no item
 * and every factory makes a left-to-left constraint. The platform layer
 * replaces their methods: an anchor knows its item (a view or a layout
 * guide, not retained: an anchor kept after its item went answers nil for
 * item and makes no constraint) and its attribute, and every
 * constraint…Anchor: factory answers the constraint AppKit makes (first
 * item and attribute from the receiver, second from the argument, priority
 * 1000, not active). Dimension factories take a multiplier; the
 * …ToConstant: factories make a constraint with no second item. A view's
 * anchor is made once and answered again on every request; copy answers the
 * anchor itself.
 *
 * Apple's type rules hold: an X-axis anchor constrains only to X-axis
 * anchors, a Y-axis anchor (baselines included) only to Y-axis anchors, a
 * dimension only to dimensions, and leading/trailing never to left/right.
 * Where AppKit raises (a mismatch, a nil or foreign argument, an anchor
 * without an item, a non-finite multiplier or constant) these answer nil and
 * log the mistake the first time it happens.
 *
 * Not covered: anchorWithOffsetToAnchor: (answers nil),
 * constraintEqualToSystemSpacingAfterAnchor:multiplier: and its siblings,
 * hasAmbiguousLayout (NO) and constraintsAffectingLayout (empty), keyed
 * coding of anchors. The anchors of an NSLayoutGuide are declared by
 * GNUstep's NSLayoutGuide.h; see NSLayoutGuide+TalvoPlatform.h.
 */
#ifndef TALVO_PLATFORM_NSLAYOUTANCHOR_H
#define TALVO_PLATFORM_NSLAYOUTANCHOR_H

#import <AppKit/NSLayoutAnchor.h>
#import <AppKit/NSView.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSView (TalvoPlatformAnchors)

- (NSLayoutXAxisAnchor *)leadingAnchor;
- (NSLayoutXAxisAnchor *)trailingAnchor;
- (NSLayoutXAxisAnchor *)leftAnchor;
- (NSLayoutXAxisAnchor *)rightAnchor;
- (NSLayoutXAxisAnchor *)centerXAnchor;
- (NSLayoutYAxisAnchor *)topAnchor;
- (NSLayoutYAxisAnchor *)bottomAnchor;
- (NSLayoutYAxisAnchor *)centerYAnchor;
- (NSLayoutYAxisAnchor *)firstBaselineAnchor;
- (NSLayoutYAxisAnchor *)lastBaselineAnchor;
- (NSLayoutDimension *)widthAnchor;
- (NSLayoutDimension *)heightAnchor;

@end

NS_ASSUME_NONNULL_END

#endif
