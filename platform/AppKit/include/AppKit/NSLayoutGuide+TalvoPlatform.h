/*
 * NSLayoutGuide on GNUstep.
 *
 * GNUstep 0.29 declares NSLayoutGuide and NSView's guide methods but its
 * guides have no anchors, release nothing and cannot be added to a view.
 * The platform layer makes them work: -[NSView addLayoutGuide:] gives the
 * guide to the view (removing it from any view that had it),
 * removeLayoutGuide: takes it back together with the constraints, held by
 * the view or its ancestors, that name it, and layoutGuides answers them in
 * the order they were added. A guide's owningView is not retained and
 * becomes nil when the view goes away; setting it adds the guide to the
 * view (nil removes it). identifier is copied ("" until set). The ten
 * anchors are made on first request; constraints to them are made and
 * activated like constraints to views.
 *
 * layoutFrame (and GNUstep's frame) is the rectangle the layout pass
 * solved for the guide, in the owning view's coordinate system; zero until
 * a pass has placed the guide.
 *
 * Not covered: hasAmbiguousLayout (NO), constraintsAffectingLayoutForOrientation:,
 * keyed coding of guides, NSWindow's contentLayoutGuide.
 */
#ifndef TALVO_PLATFORM_NSLAYOUTGUIDE_H
#define TALVO_PLATFORM_NSLAYOUTGUIDE_H

#import <AppKit/NSLayoutGuide.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSLayoutGuide (TalvoPlatform)

/** The guide's rectangle in its owning view's coordinates, after a pass. */
- (NSRect)layoutFrame;

@end

NS_ASSUME_NONNULL_END

#endif
