// Private seams between the anchor, guide, view-controller and window files
// of the Auto Layout stand-in.
#ifndef TALVO_PLATFORM_LAYOUT_ANCHOR_SUPPORT_H
#define TALVO_PLATFORM_LAYOUT_ANCHOR_SUPPORT_H

#import <AppKit/AppKit.h>

#ifdef __cplusplus
extern "C" {
#endif

/** A new anchor (+1) of the class Apple uses for `attribute` (X axis, Y axis
 * or dimension) whose item is `item`, not retained: the item owns its
 * anchors and detaches them when it goes away. */
__attribute__((visibility("hidden"))) NSLayoutAnchor *TVNewLayoutAnchor(id item,
                                                                        NSLayoutAttribute attribute);

/** Clears an anchor's item, so that an anchor kept past its item answers nil
 * and makes no constraint. */
__attribute__((visibility("hidden"))) void TVDetachLayoutAnchor(NSLayoutAnchor *anchor);

/** Installs, once, the NSView dealloc hook that forgets a view's anchors,
 * guides and view controller. Installed on first use rather than from +load
 * so that it runs before the constraint storage's own hook releases the
 * view's layout state. */
__attribute__((visibility("hidden"))) void TVInstallViewLifetimeHook(void);

/** Called by the view lifetime hook (each file forgets its own records). */
__attribute__((visibility("hidden"))) void TVForgetLayoutGuidesOfView(NSView *view);
__attribute__((visibility("hidden"))) void TVForgetViewControllerOfView(NSView *view);

#ifdef __cplusplus
}
#endif

#endif
