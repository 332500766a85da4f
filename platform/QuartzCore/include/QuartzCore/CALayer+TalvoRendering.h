/*
 * Drawing a layer tree into a Core Graphics context.
 *
 * -renderInContext: draws the receiver in the context's user space (its
 * bounds where they lie there: its own position, anchor point and
 * transform are not applied), then its sublayers, back to front. Each
 * layer draws, within its bounds: `backgroundColor`, then `contents` (a
 * CGImage, or an NSImage through its CGImage) placed by `contentsGravity`
 * and always upright on screen, then its sublayers placed by position,
 * anchorPoint, bounds and `affineTransform` (and flipped when the layer's
 * geometry is). `masksToBounds` clips contents and sublayers to the
 * bounds. `opacity` applies to a layer with its sublayers as one group:
 * where a tree draws one thing only, the opacity is folded into its alpha;
 * otherwise the group is drawn offscreen at the context's device
 * resolution and composited.
 *
 * A view's backing layer also draws the view (its drawRect: and its
 * subviews) over its contents, as on macOS (NSView+TalvoLayerDrawing.h).
 *
 * A presentation layer draws its animated values, and its model's
 * sublayers draw as their presentation layers: the tree as it shows at the
 * animation clock's current time.
 *
 * Skipped without drawing: hidden layers, layers with an opacity that is
 * not above 0 (NaN included), layers whose geometry or transform is not
 * finite, contents of any other class, contents of zero size. A layer of
 * zero size still draws its sublayers unless it masks to its bounds.
 *
 * Not covered: drawInContext: and other delegate drawing, contentsRect,
 * contentsCenter, shadows, borders, corner radius, masks, filters and 3D
 * transforms. An NSImage's CGImage is made on every call (a CGImage is
 * drawn directly).
 */
#ifndef TALVO_CALAYER_RENDERING_H
#define TALVO_CALAYER_RENDERING_H

#import <QuartzCore/CALayer.h>

NS_ASSUME_NONNULL_BEGIN

@interface CALayer (TalvoRendering)
- (void)renderInContext:(CGContextRef)ctx;
@end

NS_ASSUME_NONNULL_END

#endif
