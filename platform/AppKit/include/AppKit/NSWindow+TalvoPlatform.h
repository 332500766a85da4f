/*
 * Window API of Apple's AppKit that GNUstep 0.29 lacks or answers wrongly,
 * for windows drawn without a window manager (as under Xvfb).
 *
 * - titlebarAppearsTransparent and titleVisibility are stored and marked for
 *   display; GNUstep draws no title bar of its own here (frame equals
 *   content), so nothing else changes on screen.
 * - standardWindowButton: answers a button for the close, miniaturize and
 *   zoom kinds of a titled window (nil for other windows and kinds), made
 *   by GNUstep for the style mask when it has none, enabled as the mask
 *   says. It is kept by the window, not placed in any view (nothing draws
 *   a title bar here), so hiding it sticks and shows nowhere.
 * - setStyleMask: keeps every bit in styleMask (the full-size-content bit
 *   included) and restyles the X window.
 * - animationBehavior is stored; windows order in and out without an
 *   animation of their own here, whatever it says.
 * - setFrame:display:animate: with YES moves the frame over
 *   animationResizeTime: with an ease-in-out pace, pumping events every
 *   frame, and returns when the frame has arrived, as AppKit does. Its
 *   clock is the platform's animation clock (tests can drive it).
 * - backingScaleFactor answers the real scale of the backing (2 under
 *   -GSScaleFactor 2, GNUstep's userSpaceScaleFactor); convertRectToBacking:
 *   and convertRectFromBacking: scale by it. Under -GSScaleFactor 2 GNUstep
 *   keeps window frames in device pixels and scales views; NSScreen's
 *   backingScaleFactor answers the same scale (NSScreen+TalvoPlatform.h).
 * - hasShadow is YES for a titled window until setHasShadow: says
 *   otherwise, as on AppKit (GNUstep answers NO for every window). The
 *   shadow shows in window-list pictures (CGWindow.h); the X server draws
 *   none.
 * - isMovable (YES at first) is stored; a window that is not movable
 *   answers NO to isMovableByWindowBackground, so GNUstep does not drag it
 *   by its background. Code still moves it.
 * - isSheet answers whether the window is another window's attached sheet.
 * - NSDisableScreenUpdates/NSEnableScreenUpdates nest and are counted;
 *   nothing is held back (GNUstep flushes each window as it draws).
 * - Window levels and child windows keep their order without a window
 *   manager: after a window is ordered in, every visible window of a higher
 *   level and every child is put back above it; children move with their
 *   parent in setFrame:display:.
 *
 * Not covered: drawn title bars and buttons, tabbing, title bar
 * accessories, the full-screen style bit's behaviour, other applications'
 * windows in the level order, animationBehavior's animations, the
 * scale-change notifications.
 */
#ifndef TALVO_PLATFORM_NSWINDOW_PLATFORM_H
#define TALVO_PLATFORM_NSWINDOW_PLATFORM_H

#import <AppKit/NSWindow.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSInteger, NSWindowTitleVisibility) {
  NSWindowTitleVisible = 0,
  NSWindowTitleHidden = 1,
};

typedef NS_ENUM(NSInteger, NSWindowAnimationBehavior) {
  NSWindowAnimationBehaviorDefault = 0,
  NSWindowAnimationBehaviorNone = 2,
  NSWindowAnimationBehaviorDocumentWindow = 3,
  NSWindowAnimationBehaviorUtilityWindow = 4,
  NSWindowAnimationBehaviorAlertPanel = 5,
};

@interface NSWindow (TalvoPlatform)

/** Whether the title bar draws no background of its own; NO at first. */
- (BOOL)titlebarAppearsTransparent;
- (void)setTitlebarAppearsTransparent:(BOOL)transparent;

/** NSWindowTitleVisible at first; other values are ignored. */
- (NSWindowTitleVisibility)titleVisibility;
- (void)setTitleVisibility:(NSWindowTitleVisibility)visibility;

/** NSWindowAnimationBehaviorDefault at first; unknown values are ignored. */
- (NSWindowAnimationBehavior)animationBehavior;
- (void)setAnimationBehavior:(NSWindowAnimationBehavior)behavior;

/** Stores the whole mask and restyles the window; the frame is kept. */
- (void)setStyleMask:(NSWindowStyleMask)styleMask;

/** The rect in backing pixels (times backingScaleFactor), and back. */
- (NSRect)convertRectToBacking:(NSRect)rect;
- (NSRect)convertRectFromBacking:(NSRect)rect;

/** Whether the user may move the window; YES at first. */
- (BOOL)isMovable;
- (void)setMovable:(BOOL)movable;

/** Whether the window is attached to another window as its sheet. */
- (BOOL)isSheet;

@end

#ifdef __cplusplus
extern "C" {
#endif
/** Nesting calls; see above. */
__attribute__((visibility("default"))) void NSDisableScreenUpdates(void);
__attribute__((visibility("default"))) void NSEnableScreenUpdates(void);
/** How deep the disable calls are nested now (0: updates on). */
__attribute__((visibility("default"))) NSInteger TVScreenUpdatesDisabledCount(void);
#ifdef __cplusplus
}
#endif

NS_ASSUME_NONNULL_END

#endif
