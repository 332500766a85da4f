/*
 * Layers: geometry, opacity and contents, and the animations running on
 * them. Nothing draws or composites layers here: `contents` is stored for
 * whoever draws it, and the presentation layer answers what an in-flight
 * animation shows at this moment of the animation clock.
 *
 * Changing an animatable property (bounds, position, anchorPoint, opacity)
 * of a layer runs its action, as in Core Animation: the delegate's
 * -actionForLayer:forKey: (NSNull: none), then the `actions` dictionary,
 * then +defaultActionForKey:, which answers a basic animation from the
 * presented value over the transaction's duration. A value found on the
 * way that is neither an action nor NSNull counts as NSNull (no action, the
 * change is made). A view's backing layer
 * has the view as delegate, which answers NSNull unless its animation
 * context allows implicit animation. +[CATransaction setDisableActions:]
 * turns actions off.
 *
 * Keys of the structure properties animate whole or by field: "position",
 * "position.x", "bounds.size", "bounds.size.width", "anchorPoint.y", ...
 * Other keys animate through key-value coding; keys a layer does not
 * declare are stored, as Core Animation stores them.
 *
 * Drawing: -renderInContext: (CALayer+TalvoRendering.h) draws a layer
 * tree, and a layer-backed view shows its layer in its window
 * (NSView+TalvoLayerDrawing.h), from `contents` (a CGImage or an NSImage)
 * placed by `contentsGravity`, `backgroundColor`, `opacity`, `hidden`,
 * `masksToBounds`, `affineTransform` and the sublayers, sampled by
 * `minificationFilter`/`magnificationFilter`.
 *
 * Not covered: display, drawInContext:, setNeedsDisplay, contentsRect,
 * contentsCenter, filters, 3D transforms (CATransform3D), masks, shadows,
 * borders, corner radius, hit testing, coordinate conversion, layer
 * timing (layers do not adopt CAMediaTiming), sublayers of presentation
 * layers (a presentation layer has none: renderers take the model's
 * sublayers' presentation layers), archiving. backgroundColor,
 * contentsGravity, masksToBounds, affineTransform and the filters do not
 * animate; minificationFilterBias is not there.
 */
#ifndef TALVO_CALAYER_H
#define TALVO_CALAYER_H

#import <QuartzCore/CABase.h>
#import <QuartzCore/CAAnimation.h>

NS_ASSUME_NONNULL_BEGIN

@class CALayer;

/** Values of `contentsGravity`: where the contents go in the bounds. The
 * names are the directions on screen (top is up whatever the layer's
 * geometry). */
CA_EXTERN NSString *const kCAGravityCenter;
CA_EXTERN NSString *const kCAGravityTop;
CA_EXTERN NSString *const kCAGravityBottom;
CA_EXTERN NSString *const kCAGravityLeft;
CA_EXTERN NSString *const kCAGravityRight;
CA_EXTERN NSString *const kCAGravityTopLeft;
CA_EXTERN NSString *const kCAGravityTopRight;
CA_EXTERN NSString *const kCAGravityBottomLeft;
CA_EXTERN NSString *const kCAGravityBottomRight;
CA_EXTERN NSString *const kCAGravityResize;
CA_EXTERN NSString *const kCAGravityResizeAspect;
CA_EXTERN NSString *const kCAGravityResizeAspectFill;

/** Values of `minificationFilter` and `magnificationFilter`: how contents
 * are sampled when drawn smaller or larger than their pixels. Linear is
 * bilinear; trilinear draws with the engine's better (slower) filter, as
 * there are no mipmaps here. */
CA_EXTERN NSString *const kCAFilterNearest;
CA_EXTERN NSString *const kCAFilterLinear;
CA_EXTERN NSString *const kCAFilterTrilinear;

@protocol CAAction
/** Runs the action: an animation adds itself to `object` (a layer) for the
 * key. */
- (void)runActionForKey:(NSString *)event
                 object:(id)anObject
              arguments:(nullable NSDictionary *)dict;
@end

@interface NSNull (TalvoCAAction) <CAAction>
@end

@interface CAAnimation (TalvoCAAction) <CAAction>
@end

@protocol CALayerDelegate <NSObject>
@optional
/** An action for the layer's key, NSNull for none, or nil to look further. */
- (nullable id<CAAction>)actionForLayer:(CALayer *)layer forKey:(NSString *)event;
@end

@interface CALayer : NSObject {
  CGRect _bounds;
  CGPoint _position;
  CGPoint _anchorPoint;
  BOOL _geometryFlipped;
  id _contents;
  CGFloat _contentsScale;
  float _opacity;
  BOOL _hidden;
  NSString *_name;
  id<CALayerDelegate> _delegate;
  NSDictionary<NSString *, id<CAAction>> *_actions;
  CALayer *_superlayer;
  NSMutableArray *_sublayers;
  NSMutableDictionary *_animationTracks;  // key -> running animation
  NSMutableArray *_animationKeys;  // in the order added
  NSMutableDictionary *_undeclaredValues;
  CALayer *_modelLayer;  // presentation copies only
  CGColorRef _backgroundColor;
  NSString *_contentsGravity;
  BOOL _masksToBounds;
  CGAffineTransform _affineTransform;
  CGImageRef _contentsImage;  // an NSImage's pixels, made at first draw
  NSString *_minificationFilter;
  NSString *_magnificationFilter;
}

+ (instancetype)layer;
/** Copies `layer`'s properties (used to make presentation layers). */
- (instancetype)initWithLayer:(id)layer;

@property(nonatomic, assign) CGRect bounds;
/** The anchor point's place in the superlayer. */
@property(nonatomic, assign) CGPoint position;
/** In unit coordinates of the bounds; (0.5, 0.5) by default. */
@property(nonatomic, assign) CGPoint anchorPoint;
/** Derived from bounds, position and anchorPoint; setting it sets the
 * position and the bounds' size. */
@property(nonatomic, assign) CGRect frame;
@property(nonatomic, assign, getter=isGeometryFlipped) BOOL geometryFlipped;
@property(nonatomic, retain, nullable) id contents;
@property(nonatomic, assign) CGFloat contentsScale;
/** kCAGravityResize by default; an unknown value places like it. */
@property(nonatomic, copy) NSString *contentsGravity;
/** kCAFilterLinear by default; an unknown value samples like it. */
@property(nonatomic, copy) NSString *minificationFilter;
@property(nonatomic, copy) NSString *magnificationFilter;
/** Retained; NULL (the default) draws nothing under the contents. */
@property(nonatomic, assign, nullable) CGColorRef backgroundColor;
/** Whether sublayers are clipped to the bounds; NO by default. */
@property(nonatomic, assign) BOOL masksToBounds;
/** Applied about the anchor point, in the superlayer's space; identity by
 * default. */
@property(nonatomic, assign) CGAffineTransform affineTransform;
/** 1 by default. */
@property(nonatomic, assign) float opacity;
@property(nonatomic, assign, getter=isHidden) BOOL hidden;
@property(nonatomic, copy, nullable) NSString *name;
/** Not retained. */
@property(nonatomic, assign, nullable) id<CALayerDelegate> delegate;
@property(nonatomic, copy, nullable) NSDictionary<NSString *, id<CAAction>> *actions;

@property(nonatomic, readonly, nullable) CALayer *superlayer;
@property(nonatomic, copy, nullable) NSArray<CALayer *> *sublayers;
- (void)addSublayer:(CALayer *)layer;
- (void)insertSublayer:(CALayer *)layer atIndex:(unsigned)index;
- (void)removeFromSuperlayer;

/** A copy of the layer showing every animation at the clock's current
 * time (autoreleased; a new copy each call). */
- (nullable instancetype)presentationLayer;
/** The layer a presentation copy was made from; the layer itself otherwise. */
- (instancetype)modelLayer;

/** Adds a copy of `animation` under `key` (nil: a key of its own),
 * replacing (and stopping) any animation under the same key. A duration of
 * 0 becomes the transaction's duration. */
- (void)addAnimation:(CAAnimation *)animation forKey:(nullable NSString *)key;
/** The layer's copy, or nil. Changing it has no effect. */
- (nullable CAAnimation *)animationForKey:(NSString *)key;
- (void)removeAnimationForKey:(NSString *)key;
- (void)removeAllAnimations;
- (nullable NSArray<NSString *> *)animationKeys;

+ (nullable id<CAAction>)defaultActionForKey:(NSString *)event;
- (nullable id<CAAction>)actionForKey:(NSString *)event;

@end

NS_ASSUME_NONNULL_END

#endif
