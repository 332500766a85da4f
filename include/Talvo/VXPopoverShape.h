#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * The outline of a popover balloon: a rounded body with a triangular arrow
 * rising from its top edge to the top of `bounds` (unflipped coordinates).
 * The outline is built on demand and kept until a value changes; setting a
 * value to the one it has keeps it. Values are used unchecked, negative ones
 * included.
 */
@interface VXPopoverShape : NSObject {
  NSBezierPath *_path;
  CGFloat _arrowXOrigin;
  CGFloat _arrowWidth;
  CGFloat _arrowHeight;
  CGFloat _radius;
  CGRect _bounds;
}

/** The outline, the same object until a value changes; do not change it. */
@property(nonatomic, strong, readonly) NSBezierPath *path;
/** x of the apex in the bounds' coordinates (not from their origin); 0. */
@property(nonatomic) CGFloat arrowXOrigin;
/** Width of the arrow's base; 10. */
@property(nonatomic) CGFloat arrowWidth;
/** From the body's top edge to the apex; 10. */
@property(nonatomic) CGFloat arrowHeight;
/** Corner radius of the body; 4. */
@property(nonatomic) CGFloat radius;
/** The whole shape, arrow included; zero. */
@property(nonatomic) CGRect bounds;

/** Puts the apex over the middle of the bounds. */
- (void)setArrowOriginAtMiddle;

/** A new shape `offset` inside the receiver: body top `offset` lower, apex
 * 1.5 x offset lower, base and radius `offset` smaller, same apex x. */
- (VXPopoverShape *)popoverShapeWithOffset:(CGFloat)offset;

@end

NS_ASSUME_NONNULL_END
