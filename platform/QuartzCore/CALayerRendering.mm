// Drawing layer trees through Core Graphics: background, contents by
// gravity, sublayers, opacity as a group.

#import <AppKit/AppKit.h>

#import "platform/QuartzCore/TVLayerRendering.h"

#include <CoreGraphics/CGTalvoBridge.h>

#include <algorithm>
#include <cmath>

// A layer's delegate that draws into it: a view whose backing layer it is
// (its drawRect: and its subviews), implemented on the AppKit side.
@interface NSObject (TVLayerHostedDrawing)
- (BOOL)_tv_drawsIntoLayer:(CALayer *)layer;
- (void)_tv_drawIntoLayer:(CALayer *)layer context:(CGContextRef)c;
@end

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

// Offscreen groups larger than this per side fall back to folding the
// opacity into each part (overlaps then show through).
const CGFloat kMaxGroupSide = 8192;

bool Finite(CGRect r) {
  return std::isfinite(r.origin.x) && std::isfinite(r.origin.y) && std::isfinite(r.size.width) &&
         std::isfinite(r.size.height) && r.size.width >= 0 && r.size.height >= 0;
}

bool Finite(CGAffineTransform t) {
  return std::isfinite(t.a) && std::isfinite(t.b) && std::isfinite(t.c) && std::isfinite(t.d) &&
         std::isfinite(t.tx) && std::isfinite(t.ty);
}

// Where contents of `size` go in `bounds` (y up) for `gravity`.
CGRect GravityRect(NSString *gravity, CGRect bounds, CGSize size) {
  CGFloat bx = bounds.origin.x, by = bounds.origin.y;
  CGFloat bw = bounds.size.width, bh = bounds.size.height;
  CGFloat w = size.width, h = size.height;
  if ([gravity isEqualToString:kCAGravityResizeAspect] ||
      [gravity isEqualToString:kCAGravityResizeAspectFill]) {
    CGFloat sx = bw / w, sy = bh / h;
    CGFloat s = [gravity isEqualToString:kCAGravityResizeAspect] ? std::min(sx, sy) : std::max(sx, sy);
    w *= s;
    h *= s;
    return CGRectMake(bx + (bw - w) / 2, by + (bh - h) / 2, w, h);
  }
  CGFloat x = bx + (bw - w) / 2, y = by + (bh - h) / 2;
  if ([gravity isEqualToString:kCAGravityCenter]) return CGRectMake(x, y, w, h);
  bool top = [gravity isEqualToString:kCAGravityTop] ||
             [gravity isEqualToString:kCAGravityTopLeft] ||
             [gravity isEqualToString:kCAGravityTopRight];
  bool bottom = [gravity isEqualToString:kCAGravityBottom] ||
                [gravity isEqualToString:kCAGravityBottomLeft] ||
                [gravity isEqualToString:kCAGravityBottomRight];
  bool left = [gravity isEqualToString:kCAGravityLeft] ||
              [gravity isEqualToString:kCAGravityTopLeft] ||
              [gravity isEqualToString:kCAGravityBottomLeft];
  bool right = [gravity isEqualToString:kCAGravityRight] ||
               [gravity isEqualToString:kCAGravityTopRight] ||
               [gravity isEqualToString:kCAGravityBottomRight];
  if (!top && !bottom && !left && !right) return bounds;  // resize, and anything unknown
  if (top) y = by + bh - h;
  if (bottom) y = by;
  if (left) x = bx;
  if (right) x = bx + bw - w;
  return CGRectMake(x, y, w, h);
}

// How a layer filter samples, in Quartz's terms. Linear is bilinear
// (Quartz's low quality); trilinear has no mipmaps here and takes the
// engine's default, slower filter.
CGInterpolationQuality InterpolationFor(NSString *filter) {
  if ([filter isEqualToString:kCAFilterNearest]) return kCGInterpolationNone;
  if ([filter isEqualToString:kCAFilterTrilinear]) return kCGInterpolationDefault;
  return kCGInterpolationLow;
}

// Whether user space runs y down on the device (a flipped view or layer).
bool SpaceIsFlipped(CGContextRef c) {
  CGAffineTransform m = CGContextGetCTM(c);
  return m.a * m.d - m.b * m.c < 0;
}

}  // namespace

@implementation CALayer (TalvoRendering)

- (void)renderInContext:(CGContextRef)ctx {
  if (!ctx || _hidden || !(_opacity > 0) || !Finite(_bounds)) {
    return;
  }
  @try {
    CGContextSaveGState(ctx);
    [self _tv_renderIn:ctx alpha:1 rect:_bounds ownFlip:YES withOpacity:YES];
    CGContextRestoreGState(ctx);
  } @catch (NSException *exception) {
    NSLog(@"CALayer: rendering stopped: %@", exception);
  }
}

#pragma mark - Private

// The layers drawn under this one: the presentation copies of the model's
// sublayers for a presentation layer.
- (NSArray *)_tv_renderedSublayers {
  if (_modelLayer == nil) {
    return _sublayers;
  }
  NSArray *model = _modelLayer->_sublayers;
  if ([model count] == 0) {
    return nil;
  }
  NSMutableArray *shown = [NSMutableArray arrayWithCapacity:[model count]];
  for (CALayer *sublayer in model) {
    [shown addObject:[sublayer presentationLayer]];
  }
  return shown;
}

- (BOOL)_tv_isDrawable {
  return !_hidden && _opacity > 0 && Finite(_bounds) && std::isfinite(_position.x) &&
         std::isfinite(_position.y) && std::isfinite(_anchorPoint.x) &&
         std::isfinite(_anchorPoint.y) && Finite(_affineTransform);
}

- (CGImageRef)_tv_contentsImageWithSize:(CGSize *)size {
  id contents = _contents;
  CGImageRef image = NULL;
  CGSize points = CGSizeZero;
  if (TVCGImageIsLive(contents)) {
    image = (CGImageRef)contents;
    CGFloat scale = _contentsScale > 0 && std::isfinite(_contentsScale) ? _contentsScale : 1;
    points = CGSizeMake(CGImageGetWidth(image) / scale, CGImageGetHeight(image) / scale);
  } else if ([contents isKindOfClass:[NSImage class]]) {
    points = [(NSImage *)contents size];
    if (points.width > 0 && points.height > 0) {
      // Made once per contents and kept by the model layer, which every
      // presentation copy of it shares.
      CALayer *model = _modelLayer != nil ? _modelLayer : self;
      if (_contentsImage == NULL && model->_contents == contents) {
        image = model->_contentsImage;
        if (image == NULL) {
          image = [(NSImage *)contents CGImageForProposedRect:NULL context:nil hints:nil];
          model->_contentsImage = CGImageRetain(image);
        }
      } else {
        image = _contentsImage != NULL
                    ? _contentsImage
                    : [(NSImage *)contents CGImageForProposedRect:NULL context:nil hints:nil];
      }
    }
  }
  if (!image || !(points.width > 0) || !(points.height > 0) || !std::isfinite(points.width) ||
      !std::isfinite(points.height)) {
    return NULL;
  }
  if (size) *size = points;
  return image;
}

// The view that draws into this layer, if any.
- (id)_tv_drawingDelegate {
  CALayer *model = _modelLayer != nil ? _modelLayer : self;
  id delegate = model->_delegate;
  return [delegate respondsToSelector:@selector(_tv_drawsIntoLayer:)] &&
                 [delegate _tv_drawsIntoLayer:model]
             ? delegate
             : nil;
}

// How many things the layer and its sublayers draw, counted up to `limit`.
- (int)_tv_partCountUpTo:(int)limit {
  int count = 0;
  if ([self _tv_drawingDelegate] != nil) return limit;  // a view draws any number
  if (_backgroundColor != NULL) count++;
  if (_contents != nil) count++;  // an estimate: unusable contents still count
  for (CALayer *sublayer in [self _tv_renderedSublayers]) {
    if (count >= limit) break;
    if ([sublayer _tv_isDrawable]) count += [sublayer _tv_partCountUpTo:limit - count];
  }
  return std::min(count, limit);
}

// The area the layer and its sublayers may draw in, in the layer's space.
- (CGRect)_tv_drawnBoundsFlip:(BOOL)ownFlip {
  CGRect area = (_backgroundColor != NULL || _contents != nil || [self _tv_drawingDelegate] != nil)
                    ? _bounds
                    : CGRectNull;
  if (_masksToBounds) {
    return _bounds;
  }
  for (CALayer *sublayer in [self _tv_renderedSublayers]) {
    if (![sublayer _tv_isDrawable]) continue;
    CGRect inner = [sublayer _tv_drawnBoundsFlip:YES];
    if (CGRectIsNull(inner)) continue;
    CGAffineTransform t = [sublayer _tv_transformInParentFlip:ownFlip && _geometryFlipped
                                                 parentBounds:_bounds];
    area = CGRectUnion(area, CGRectApplyAffineTransform(inner, t));
  }
  return area;
}

// Maps the layer's own space into its superlayer's.
- (CGAffineTransform)_tv_transformInParentFlip:(BOOL)parentFlipped parentBounds:(CGRect)parent {
  CGAffineTransform t = CGAffineTransformIdentity;
  if (parentFlipped) {
    t = CGAffineTransformMake(1, 0, 0, -1, 0, CGRectGetMinY(parent) + CGRectGetMaxY(parent));
  }
  t = CGAffineTransformTranslate(t, _position.x, _position.y);
  t = CGAffineTransformConcat(_affineTransform, t);
  CGFloat ax = _bounds.origin.x + _anchorPoint.x * _bounds.size.width;
  CGFloat ay = _bounds.origin.y + _anchorPoint.y * _bounds.size.height;
  return CGAffineTransformTranslate(t, -ax, -ay);
}

// Draws the layer, whose bounds map to `rect` in the current user space,
// with `alpha` from the layers above it and (withOpacity) its own opacity.
- (void)_tv_renderIn:(CGContextRef)c
               alpha:(CGFloat)alpha
                rect:(CGRect)rect
             ownFlip:(BOOL)ownFlip
         withOpacity:(BOOL)withOpacity {
  CGFloat opacity = withOpacity ? std::min<CGFloat>(_opacity, 1) : 1;
  if (opacity < 1 && [self _tv_partCountUpTo:2] > 1 &&
      [self _tv_renderGroupIn:c alpha:alpha * opacity rect:rect ownFlip:ownFlip]) {
    return;
  }
  [self _tv_drawIn:c alpha:alpha * opacity rect:rect ownFlip:ownFlip content:YES sublayers:YES];
}

// The layer and its sublayers drawn offscreen at device resolution, then
// composited with `alpha`. NO when no group could be made.
- (BOOL)_tv_renderGroupIn:(CGContextRef)c
                    alpha:(CGFloat)alpha
                     rect:(CGRect)rect
                  ownFlip:(BOOL)ownFlip {
  CGAffineTransform toRect = CGAffineTransformIdentity;
  if (!CGRectEqualToRect(rect, _bounds) && _bounds.size.width > 0 && _bounds.size.height > 0) {
    toRect = CGAffineTransformMakeTranslation(rect.origin.x, rect.origin.y);
    toRect = CGAffineTransformScale(toRect, rect.size.width / _bounds.size.width,
                                    rect.size.height / _bounds.size.height);
    toRect = CGAffineTransformTranslate(toRect, -_bounds.origin.x, -_bounds.origin.y);
  }
  CGRect drawn = [self _tv_drawnBoundsFlip:ownFlip];
  if (CGRectIsNull(drawn)) return YES;  // nothing to draw
  drawn = CGRectApplyAffineTransform(drawn, toRect);
  CGRect user = CGRectIntersection(drawn, CGContextGetClipBoundingBox(c));
  if (CGRectIsEmpty(user)) return YES;
  CGAffineTransform ctm = CGContextGetCTM(c);
  CGRect device = CGRectIntegral(CGRectApplyAffineTransform(user, ctm));
  if (!Finite(device) || device.size.width > kMaxGroupSide || device.size.height > kMaxGroupSide) {
    return NO;
  }
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef group = CGBitmapContextCreate(NULL, size_t(device.size.width),
                                             size_t(device.size.height), 8, 0, space,
                                             kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little);
  CGColorSpaceRelease(space);
  if (!group) return NO;
  CGContextTranslateCTM(group, -device.origin.x, -device.origin.y);
  CGContextConcatCTM(group, ctm);
  CGContextSetInterpolationQuality(group, CGContextGetInterpolationQuality(c));
  [self _tv_drawIn:group alpha:1 rect:rect ownFlip:ownFlip content:YES sublayers:YES];
  CGImageRef image = CGBitmapContextCreateImage(group);
  CGContextRelease(group);
  if (image) {
    CGContextSaveGState(c);
    CGContextConcatCTM(c, CGAffineTransformInvert(ctm));  // user space = device space
    CGContextSetAlpha(c, alpha);
    CGContextSetInterpolationQuality(c, kCGInterpolationNone);
    CGContextDrawImage(c, device, image);
    CGContextRestoreGState(c);
    CGImageRelease(image);
  }
  return YES;
}

- (void)_tv_drawIn:(CGContextRef)c
             alpha:(CGFloat)alpha
              rect:(CGRect)rect
           ownFlip:(BOOL)ownFlip
           content:(BOOL)drawContent
         sublayers:(BOOL)drawSublayers {
  CGContextSaveGState(c);
  if (_masksToBounds) {
    CGContextClipToRect(c, rect);
  }
  CGContextSetAlpha(c, alpha);
  if (drawContent && _backgroundColor != NULL && rect.size.width > 0 && rect.size.height > 0) {
    CGContextSetFillColorWithColor(c, _backgroundColor);
    CGContextFillRect(c, rect);
  }
  CGSize size = CGSizeZero;
  CGImageRef image = drawContent && _contents != nil ? [self _tv_contentsImageWithSize:&size] : NULL;
  if (image && rect.size.width > 0 && rect.size.height > 0) {
    CGContextSaveGState(c);
    if (SpaceIsFlipped(c)) {
      // Contents stay upright on screen: draw them in a y-up copy of the rect.
      CGContextTranslateCTM(c, 0, CGRectGetMinY(rect) + CGRectGetMaxY(rect));
      CGContextScaleCTM(c, 1, -1);
    }
    // Gravity works in the layer's points; `rect` may scale them.
    CGSize scaled = CGSizeMake(size.width * (_bounds.size.width > 0 ? rect.size.width / _bounds.size.width : 1),
                               size.height * (_bounds.size.height > 0 ? rect.size.height / _bounds.size.height : 1));
    CGRect placed = GravityRect(_contentsGravity, rect, scaled);
    // Smaller or larger than its pixels on the device decides the filter.
    CGRect device = CGRectApplyAffineTransform(placed, CGContextGetCTM(c));
    BOOL smaller = device.size.width * device.size.height <
                   CGFloat(CGImageGetWidth(image)) * CGFloat(CGImageGetHeight(image));
    CGContextSetInterpolationQuality(
        c, InterpolationFor(smaller ? _minificationFilter : _magnificationFilter));
    CGContextDrawImage(c, placed, image);
    CGContextRestoreGState(c);
  }
  id view = drawContent ? [self _tv_drawingDelegate] : nil;
  if (view != nil && rect.size.width > 0 && rect.size.height > 0) {
    CGContextSaveGState(c);
    CGContextTranslateCTM(c, rect.origin.x, rect.origin.y);
    [view _tv_drawIntoLayer:(_modelLayer != nil ? _modelLayer : self) context:c];
    CGContextRestoreGState(c);
  }
  NSArray *sublayers = drawSublayers ? [self _tv_renderedSublayers] : nil;
  if ([sublayers count] > 0) {
    // The bounds' space, in which sublayers are placed.
    if (!CGRectEqualToRect(rect, _bounds) && _bounds.size.width > 0 && _bounds.size.height > 0) {
      CGContextTranslateCTM(c, rect.origin.x, rect.origin.y);
      CGContextScaleCTM(c, rect.size.width / _bounds.size.width, rect.size.height / _bounds.size.height);
      CGContextTranslateCTM(c, -_bounds.origin.x, -_bounds.origin.y);
    }
    BOOL flip = ownFlip && _geometryFlipped;
    for (CALayer *sublayer in sublayers) {
      if (![sublayer _tv_isDrawable]) continue;
      CGContextSaveGState(c);
      CGContextConcatCTM(c, [sublayer _tv_transformInParentFlip:flip parentBounds:_bounds]);
      [sublayer _tv_renderIn:c alpha:alpha rect:sublayer->_bounds ownFlip:YES withOpacity:YES];
      CGContextRestoreGState(c);
    }
  }
  CGContextRestoreGState(c);
}

@end

@implementation CALayer (TalvoRenderingPrivate)

- (void)_tv_renderTreeInContext:(CGContextRef)c inRect:(CGRect)rect {
  if (!c || !Finite(rect) || ![self _tv_isDrawable]) return;
  @try {
    [self _tv_renderIn:c alpha:1 rect:rect ownFlip:NO withOpacity:YES];
  } @catch (NSException *exception) {
    NSLog(@"CALayer: rendering stopped: %@", exception);
  }
}

- (void)_tv_renderInContext:(CGContextRef)c
                     inRect:(CGRect)rect
                    content:(BOOL)content
                  sublayers:(BOOL)sublayers {
  if (!c || !Finite(rect) || !Finite(_bounds)) return;
  @try {
    [self _tv_drawIn:c alpha:1 rect:rect ownFlip:NO content:content sublayers:sublayers];
  } @catch (NSException *exception) {
    NSLog(@"CALayer: rendering stopped: %@", exception);
  }
}

@end
