/*
 * Animation API of NSView that GNUstep 0.29 lacks: the animator proxy, the
 * per-view animations dictionary, and layers.
 *
 * Through the animator (inside an animation group, see
 * NSAnimationContext+TalvoPlatform.h) these animate: frame, frameOrigin,
 * frameSize, alphaValue, and any key for which -animationForKey: answers
 * an animation (a subclass's +defaultAnimationForKey:, or an entry of
 * `animations`, which may be a keyframe animation). hidden = YES is applied
 * when the group's duration has passed; hidden = NO at once. Each frame
 * marks the old and new rectangles for display.
 *
 * -layer makes a CALayer on demand (also when wantsLayer is NO, as the
 * toolkit may ask for one before opting in); its delegate is the view,
 * which answers NSNull for actions unless the current animation context
 * allows implicit animation. The layer's bounds, position (anchor point
 * 0,0), opacity and hidden are brought up to date with the view each time
 * -layer is asked for. -setLayer: makes a given layer the view's (its
 * delegate becomes the view if it has none). With wantsLayer the view
 * shows its layer in its window (NSView+TalvoLayerDrawing.h). Not
 * covered: makeBackingLayer, wantsUpdateLayer/updateLayer,
 * layerContentsRedrawPolicy.
 */
#ifndef TALVO_PLATFORM_NSVIEW_ANIMATION_H
#define TALVO_PLATFORM_NSVIEW_ANIMATION_H

#import <AppKit/NSAnimationContext+TalvoPlatform.h>
#import <AppKit/NSView.h>
#import <QuartzCore/QuartzCore.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSView (TalvoAnimation) <NSAnimatablePropertyContainer, CALayerDelegate>

- (instancetype)animator;
- (NSDictionary<NSString *, id> *)animations;
- (void)setAnimations:(nullable NSDictionary<NSString *, id> *)animations;
- (nullable id)animationForKey:(NSString *)key;
/** A basic animation for frame, frameOrigin, frameSize and alphaValue;
 * nil for other keys. */
+ (nullable id)defaultAnimationForKey:(NSString *)key;

- (BOOL)wantsLayer;
- (void)setWantsLayer:(BOOL)flag;
- (nullable CALayer *)layer;
- (void)setLayer:(nullable CALayer *)layer;

@end

NS_ASSUME_NONNULL_END

#endif
