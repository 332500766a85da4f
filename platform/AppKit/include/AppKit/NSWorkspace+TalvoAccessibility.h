/*
 * The display accommodations a user can ask for, as NSWorkspace reports
 * them on macOS. GNUstep 0.29 has none of them.
 *
 * Each is a boolean user default under the name macOS's universal-access
 * settings use: "reduceMotion", "reduceTransparency", "increaseContrast".
 * A user sets one for every application with
 *   defaults write NSGlobalDomain reduceMotion YES
 * or for one run with the argument `-reduceMotion YES`.
 *
 * Once any of them has been read, a change of one (through the user
 * defaults, in this process) posts
 * NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification on the
 * workspace's notification centre, as macOS does, to this process's
 * observers only (GNUstep's workspace centre would send it to every
 * application, and each one sees the change itself).
 *
 * Not covered: the other accommodations (differentiate without colour,
 * invert colours, the voice-over and switch-control states), and changes
 * made by another process while this one runs (GNUstep reads the defaults
 * database again only when asked to synchronise).
 */
#ifndef TALVO_PLATFORM_NSWORKSPACE_ACCESSIBILITY_H
#define TALVO_PLATFORM_NSWORKSPACE_ACCESSIBILITY_H

#import <AppKit/NSWorkspace.h>

APPKIT_EXPORT NSString *const NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification;

@interface NSWorkspace (TalvoAccessibility)
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;
@property(readonly) BOOL accessibilityDisplayShouldReduceTransparency;
@property(readonly) BOOL accessibilityDisplayShouldIncreaseContrast;
@end

#endif
