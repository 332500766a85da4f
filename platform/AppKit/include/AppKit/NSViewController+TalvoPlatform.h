/*
 * NSViewController's Auto Layout callbacks on GNUstep.
 *
 * The layout passes send a view's controller (the controller whose view it
 * is) updateViewConstraints in the update pass, right after the view's own
 * updateConstraints, and viewWillLayout and viewDidLayout around the view's
 * layout. A controller's view is known once it is set (setView:, nib
 * outlets) or loaded (loadView, -view); the link is weak both ways and goes
 * when either dies or the controller takes another view.
 *
 * The default updateViewConstraints updates the view's constraints if the
 * view still needs it (the update pass has already done so when it sends
 * the message); overrides call super last, as on macOS. viewWillLayout and
 * viewDidLayout do nothing by default.
 *
 * Not covered: viewDidLoad, viewWillAppear and the other appearance
 * callbacks, preferredContentSize, child view controllers, storyboards'
 * layout callbacks.
 */
#ifndef TALVO_PLATFORM_NSVIEWCONTROLLER_H
#define TALVO_PLATFORM_NSVIEWCONTROLLER_H

#import <AppKit/NSViewController.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSViewController (TalvoPlatformLayout)

/** Override to add or change the constraints of the controller's views;
 * call super as the last step. */
- (void)updateViewConstraints;
/** Sent before the view's layout in a layout pass. */
- (void)viewWillLayout;
/** Sent after the view's layout in a layout pass. */
- (void)viewDidLayout;

@end

NS_ASSUME_NONNULL_END

#endif
