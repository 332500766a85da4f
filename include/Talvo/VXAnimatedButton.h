#import <Talvo/VXButton.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * A VXButton whose hiding and showing fade (the animation group's default
 * duration) when it is layer-backed and in a window; otherwise, and when
 * the hidden state would not change, it hides and shows at once. A fading-
 * out button stays shown and clickable until the fade ends, is then hidden
 * and left at opacity 0; a setHidden:NO arriving meanwhile changes nothing.
 */
@interface VXAnimatedButton : VXButton

- (void)setHidden:(BOOL)flag;

@end

NS_ASSUME_NONNULL_END
