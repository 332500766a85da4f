/*
 * Animating a constraint's constant through its animator (inside an
 * animation group): each frame sets the constant, which asks for a layout
 * pass, so the views move as the constant changes.
 */
#ifndef TALVO_PLATFORM_NSLAYOUTCONSTRAINT_ANIMATION_H
#define TALVO_PLATFORM_NSLAYOUTCONSTRAINT_ANIMATION_H

#import <AppKit/NSAnimationContext+TalvoPlatform.h>
#import <AppKit/NSLayoutConstraint.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSLayoutConstraint (TalvoAnimation) <NSAnimatablePropertyContainer>

- (instancetype)animator;
- (NSDictionary<NSString *, id> *)animations;
- (void)setAnimations:(nullable NSDictionary<NSString *, id> *)animations;
- (nullable id)animationForKey:(NSString *)key;
/** A basic animation for constant; nil for other keys. */
+ (nullable id)defaultAnimationForKey:(NSString *)key;

@end

NS_ASSUME_NONNULL_END

#endif
