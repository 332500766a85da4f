// Private to the platform layer: what windows and views keep for the API
// GNUstep 0.29 lacks, held in side tables that their dealloc clears (no
// ivar of GNUstep's is borrowed, so other hooks stay free to use them).
#ifndef TALVO_PLATFORM_WINDOW_STATE_H
#define TALVO_PLATFORM_WINDOW_STATE_H

#import <AppKit/AppKit.h>

#define TV_WINDOWS_HIDDEN __attribute__((visibility("hidden")))

@interface _TVWindowPlatformState : NSObject {
 @public
  BOOL _titlebarAppearsTransparent;
  NSWindowTitleVisibility _titleVisibility;
  NSWindowAnimationBehavior _animationBehavior;
  BOOL _immovable;
  // Whether -setHasShadow: was called; until then titled windows answer YES.
  BOOL _shadowSet;
  NSAppearance *_appearance;
  // The standard buttons made for the window, by NSWindowButton kind.
  NSMutableDictionary *_buttons;
}
@end

@interface _TVVisualEffectSettings : NSObject {
 @public
  NSVisualEffectMaterial _material;
  NSVisualEffectBlendingMode _blendingMode;
  NSVisualEffectState _state;
  BOOL _emphasized;
  NSImage *_maskImage;
}
@end

/** The window's state; made on first use when `create` is YES, else nil
 * until then. */
TV_WINDOWS_HIDDEN _TVWindowPlatformState *TVWindowPlatformState(NSWindow *window, BOOL create);

/** The appearance set on a view (nil: inherited), and setting it. */
TV_WINDOWS_HIDDEN NSAppearance *TVViewAppearance(NSView *view);
TV_WINDOWS_HIDDEN void TVSetViewAppearance(NSView *view, NSAppearance *appearance);

/** The settings of a visual effect view; made on first use. */
TV_WINDOWS_HIDDEN _TVVisualEffectSettings *TVVisualEffectSettings(NSView *view);

#endif
