/*
 * <AppKit/AppKit.h> for Talvo on GNUstep: GNUstep's AppKit, then the parts
 * of Apple's AppKit API that GNUstep 0.29 lacks and Talvo's platform layer
 * supplies. Toolkit code imports this header by its Apple name and never
 * knows which AppKit it is built on.
 */
#include_next <AppKit/AppKit.h>

#import <AppKit/NSEvent+TalvoPlatform.h>
#import <AppKit/NSLayoutConstraint+TalvoPlatform.h>
#import <AppKit/NSGraphicsContext+TalvoPlatform.h>
#import <AppKit/NSAnimationContext+TalvoPlatform.h>
#import <AppKit/NSView+TalvoAnimation.h>
#import <AppKit/NSView+TalvoLayerDrawing.h>
#import <AppKit/NSWindow+TalvoAnimation.h>
#import <AppKit/NSLayoutConstraint+TalvoAnimation.h>
#import <AppKit/NSScreen+TalvoPlatform.h>
#import <AppKit/NSLayoutAnchor+TalvoPlatform.h>
#import <AppKit/NSLayoutGuide+TalvoPlatform.h>
#import <AppKit/NSView+TalvoLayoutGeometry.h>
#import <AppKit/NSViewController+TalvoPlatform.h>
#import <AppKit/NSWindow+TalvoLayout.h>
#import <AppKit/NSWindow+TalvoPlatform.h>
#import <AppKit/NSAppearance+TalvoPlatform.h>
#import <AppKit/NSVisualEffectView.h>
#import <AppKit/NSPasteboard+TalvoPlatform.h>
#import <AppKit/NSImage+TalvoImageTypes.h>
#import <Foundation/NSFileManager+TalvoPlatform.h>
#import <AppKit/NSCell+TalvoPlatform.h>
#import <AppKit/NSScroller+TalvoPlatform.h>
#import <AppKit/NSView+TalvoTracking.h>
#import <AppKit/NSTableRowView.h>
#import <AppKit/NSImage+TalvoTemplate.h>
#import <AppKit/NSWorkspace+TalvoAccessibility.h>
#import <AppKit/NSBundle+TalvoNibLoading.h>
#import <AppKit/NSBundle+TalvoImages.h>
#import <AppKit/NSCell+TalvoPlatform.h>
#import <AppKit/NSScroller+TalvoPlatform.h>
#import <Foundation/NSURL+TalvoPlatform.h>
