/*
 * NSWindow's Auto Layout API on GNUstep.
 *
 * layoutIfNeeded runs the update-constraints and layout passes for the
 * window's content view at once (frames are set when it returns);
 * updateConstraintsIfNeeded runs only the update pass.
 *
 * A window whose content is laid out by constraints is sized by them as on
 * macOS: when a layout pass is due (or layoutIfNeeded runs) and the
 * content's required constraints need more room than the content has, the
 * window grows to the content's fitting size, keeping its top-left corner;
 * setFrame:display: (and what goes through it, setContentSize: included)
 * below that size is limited to it, keeping the requested top edge.
 * contentMinSize and contentMaxSize are GNUstep's, kept as set and applied
 * by GNUstep to user resizing; constraints win over contentMaxSize.
 *
 * Not covered: contentLayoutGuide and contentLayoutRect, anchorAttributeForOrientation:,
 * visualizeConstraints:, windows that shrink to fit (a window only grows to
 * its content's fitting size, as AppKit does without a maximum constraint).
 */
#ifndef TALVO_PLATFORM_NSWINDOW_LAYOUT_H
#define TALVO_PLATFORM_NSWINDOW_LAYOUT_H

#import <AppKit/NSWindow.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSWindow (TalvoPlatformLayout)

/** Runs the update-constraints and layout passes of the content view now. */
- (void)layoutIfNeeded;
/** Runs the update-constraints pass of the content view now. */
- (void)updateConstraintsIfNeeded;

@end

NS_ASSUME_NONNULL_END

#endif
