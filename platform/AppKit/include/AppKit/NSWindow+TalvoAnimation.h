/*
 * Animation API of NSWindow that GNUstep 0.29 lacks. Through the animator
 * (inside an animation group) these animate: -setFrame:display: (each
 * frame calls -setFrame:display: with the flag given), alphaValue, and any
 * key for which -animationForKey: answers an animation. The proxy's
 * -setFrame: is -setFrame:display:YES. animationBehavior and a blocking
 * -setFrame:display:animate: on the animation clock are in
 * NSWindow+TalvoPlatform.h.
 */
#ifndef TALVO_PLATFORM_NSWINDOW_ANIMATION_H
#define TALVO_PLATFORM_NSWINDOW_ANIMATION_H

#import <AppKit/NSAnimationContext+TalvoPlatform.h>
#import <AppKit/NSWindow.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSWindow (TalvoAnimation) <NSAnimatablePropertyContainer>

- (instancetype)animator;
- (NSDictionary<NSString *, id> *)animations;
- (void)setAnimations:(nullable NSDictionary<NSString *, id> *)animations;
- (nullable id)animationForKey:(NSString *)key;
/** A basic animation for frame and alphaValue; nil for other keys. */
+ (nullable id)defaultAnimationForKey:(NSString *)key;

@end

NS_ASSUME_NONNULL_END

#endif
