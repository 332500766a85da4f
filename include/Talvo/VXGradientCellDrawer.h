#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * Paints an icon (normally a black-on-clear template image) so that it looks
 * stamped into a control: its shape filled with a gradient, a light edge one
 * point under it, an inner shadow along the inside of its outline and dark
 * washes for mouse-over and pressing. The owner copies its state into the
 * flags before each draw; the setters store only and never redisplay.
 *
 * The look (the defaults of the three shadow values) is chosen once, at
 * init: the newer look 0.0 / 1.0 / 1.0, the older 0.35 / 2.0 / 0.85.
 */
@interface VXGradientCellDrawer : NSObject {
  BOOL _enabledDrawing;
  BOOL _highlightedDrawing;
  BOOL _mainWindowDrawing;
  BOOL _mouseOverDrawing;
  NSGradient *_gradient;
  NSGradient *_onGradient;
  NSInteger _drawingState;
  double _lightShadowOpacity;
  double _innerShadowRadius;
  double _innerShadowOpacity;
}

/** The control is usable: full opacity, washes apply. NO. */
@property(nonatomic) BOOL enabledDrawing;
/** The control is pressed. NO. */
@property(nonatomic) BOOL highlightedDrawing;
/** The control's window counts as active. NO. */
@property(nonatomic) BOOL mainWindowDrawing;
/** The pointer is over the control. NO. */
@property(nonatomic) BOOL mouseOverDrawing;
/** The fill in every state but on; the shared gray preset. */
@property(nonatomic, strong, nullable) NSGradient *gradient;
/** The fill when drawingState is 1; nil. */
@property(nonatomic, strong, nullable) NSGradient *onGradient;
/** The owner's state: 0 off, 1 on, -1 mixed (only 1 counts). 0. */
@property(nonatomic) NSInteger drawingState;
/** Alpha of the white edge under the icon; 0 or less: no edge. */
@property(nonatomic) double lightShadowOpacity;
/** Blur of the inner shadow and the bitmaps' margin; 0 or less: none. */
@property(nonatomic) double innerShadowRadius;
/** Alpha of the black inner shadow. */
@property(nonatomic) double innerShadowOpacity;

/**
 * Draws `image` centred in `frame` (whole-point origin, shrunk in
 * proportion when it does not fit) in the current graphics context. Nil
 * images, empty or non-finite frames and contexts that cannot draw: nothing.
 */
- (void)drawImage:(nullable NSImage *)image inFrame:(NSRect)frame;

@end

NS_ASSUME_NONNULL_END
