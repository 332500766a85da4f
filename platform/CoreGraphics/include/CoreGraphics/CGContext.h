/*
 * Drawing contexts.
 *
 * A context comes from CGBitmapContextCreate or from AppKit
 * (-[NSGraphicsContext graphicsPort] / -CGContext). An AppKit context's
 * Quartz calls and AppKit drawing share one graphics state: the CTM is
 * GNUstep's (Quartz user space is the focused view's user space, flipped
 * views included), fill and stroke colours are GNUstep's (so [NSColor set]
 * colours a following CGContextFillRect and CGContextSetRGBFillColor a
 * following NSRectFill), CGContextSaveGState/RestoreGState are
 * saveGraphicsState/restoreGraphicsState, clips land in the same clip, and
 * global alpha, shadow, blend mode and mask clips apply to AppKit fills,
 * strokes, images, gradients and text as well.
 *
 * Shadow offsets are in base space (y up, unaffected by the CTM); the blur
 * is a Gaussian with sigma = blur / 2. Blend modes are bounded by the drawn
 * shape. kCGBlendModePlusDarker is drawn as Multiply.
 *
 * Gradients and shadings fill the clip (see CGGradient.h, CGShading.h).
 *
 * Not covered: patterns, text (CGContextShowText
 * and friends), PDF contexts and pages, transparency layers, CGLayer,
 * rendering intent, flatness, font smoothing, hairline (zero-width)
 * strokes. A bitmap context's clip set before it is wrapped by
 * +[NSGraphicsContext graphicsContextWithCGContext:flipped:] applies to its
 * Quartz calls only, not to AppKit drawing.
 */
#ifndef TALVO_CGCONTEXT_H
#define TALVO_CGCONTEXT_H

#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGGradient.h>
#include <CoreGraphics/CGImage.h>
#include <CoreGraphics/CGShading.h>
#include <CoreGraphics/CGPath.h>

// GNUstep's <AppKit/NSGraphicsContext.h> declares the same type.
typedef struct CGContext *CGContextRef;

typedef enum CGLineCap { kCGLineCapButt, kCGLineCapRound, kCGLineCapSquare } CGLineCap;
typedef enum CGLineJoin { kCGLineJoinMiter, kCGLineJoinRound, kCGLineJoinBevel } CGLineJoin;

typedef enum CGInterpolationQuality {
  kCGInterpolationDefault = 0,
  kCGInterpolationNone = 1,
  kCGInterpolationLow = 2,
  kCGInterpolationMedium = 4,
  kCGInterpolationHigh = 3
} CGInterpolationQuality;

typedef enum CGBlendMode {
  kCGBlendModeNormal,
  kCGBlendModeMultiply,
  kCGBlendModeScreen,
  kCGBlendModeOverlay,
  kCGBlendModeDarken,
  kCGBlendModeLighten,
  kCGBlendModeColorDodge,
  kCGBlendModeColorBurn,
  kCGBlendModeSoftLight,
  kCGBlendModeHardLight,
  kCGBlendModeDifference,
  kCGBlendModeExclusion,
  kCGBlendModeHue,
  kCGBlendModeSaturation,
  kCGBlendModeColor,
  kCGBlendModeLuminosity,
  kCGBlendModeClear,
  kCGBlendModeCopy,
  kCGBlendModeSourceIn,
  kCGBlendModeSourceOut,
  kCGBlendModeSourceAtop,
  kCGBlendModeDestinationOver,
  kCGBlendModeDestinationIn,
  kCGBlendModeDestinationOut,
  kCGBlendModeDestinationAtop,
  kCGBlendModeXOR,
  kCGBlendModePlusDarker,
  kCGBlendModePlusLighter
} CGBlendMode;

CG_EXTERN CGContextRef CGContextRetain(CGContextRef c);
CG_EXTERN void CGContextRelease(CGContextRef c);
CG_EXTERN void CGContextFlush(CGContextRef c);
CG_EXTERN void CGContextSynchronize(CGContextRef c);

CG_EXTERN void CGContextSaveGState(CGContextRef c);
CG_EXTERN void CGContextRestoreGState(CGContextRef c);

CG_EXTERN void CGContextConcatCTM(CGContextRef c, CGAffineTransform transform);
CG_EXTERN void CGContextScaleCTM(CGContextRef c, CGFloat sx, CGFloat sy);
CG_EXTERN void CGContextTranslateCTM(CGContextRef c, CGFloat tx, CGFloat ty);
CG_EXTERN void CGContextRotateCTM(CGContextRef c, CGFloat angle);
CG_EXTERN CGAffineTransform CGContextGetCTM(CGContextRef c);

CG_EXTERN void CGContextSetFillColorWithColor(CGContextRef c, CGColorRef color);
CG_EXTERN void CGContextSetStrokeColorWithColor(CGContextRef c, CGColorRef color);
CG_EXTERN void CGContextSetRGBFillColor(CGContextRef c, CGFloat red, CGFloat green, CGFloat blue,
                                        CGFloat alpha);
CG_EXTERN void CGContextSetRGBStrokeColor(CGContextRef c, CGFloat red, CGFloat green,
                                          CGFloat blue, CGFloat alpha);
CG_EXTERN void CGContextSetGrayFillColor(CGContextRef c, CGFloat gray, CGFloat alpha);
CG_EXTERN void CGContextSetGrayStrokeColor(CGContextRef c, CGFloat gray, CGFloat alpha);
CG_EXTERN void CGContextSetLineWidth(CGContextRef c, CGFloat width);
CG_EXTERN void CGContextSetLineCap(CGContextRef c, CGLineCap cap);
CG_EXTERN void CGContextSetLineJoin(CGContextRef c, CGLineJoin join);
CG_EXTERN void CGContextSetMiterLimit(CGContextRef c, CGFloat limit);
CG_EXTERN void CGContextSetLineDash(CGContextRef c, CGFloat phase, const CGFloat *lengths,
                                    size_t count);
CG_EXTERN void CGContextSetAlpha(CGContextRef c, CGFloat alpha);
CG_EXTERN void CGContextSetBlendMode(CGContextRef c, CGBlendMode mode);
CG_EXTERN void CGContextSetShadow(CGContextRef c, CGSize offset, CGFloat blur);
// NULL colour turns the shadow off.
CG_EXTERN void CGContextSetShadowWithColor(CGContextRef c, CGSize offset, CGFloat blur,
                                           CGColorRef color);
CG_EXTERN void CGContextSetInterpolationQuality(CGContextRef c, CGInterpolationQuality quality);
CG_EXTERN CGInterpolationQuality CGContextGetInterpolationQuality(CGContextRef c);
CG_EXTERN void CGContextSetShouldAntialias(CGContextRef c, bool shouldAntialias);
CG_EXTERN void CGContextSetAllowsAntialiasing(CGContextRef c, bool allowsAntialiasing);

CG_EXTERN void CGContextBeginPath(CGContextRef c);
CG_EXTERN void CGContextMoveToPoint(CGContextRef c, CGFloat x, CGFloat y);
CG_EXTERN void CGContextAddLineToPoint(CGContextRef c, CGFloat x, CGFloat y);
CG_EXTERN void CGContextAddCurveToPoint(CGContextRef c, CGFloat cp1x, CGFloat cp1y, CGFloat cp2x,
                                        CGFloat cp2y, CGFloat x, CGFloat y);
CG_EXTERN void CGContextAddQuadCurveToPoint(CGContextRef c, CGFloat cpx, CGFloat cpy, CGFloat x,
                                            CGFloat y);
CG_EXTERN void CGContextAddRect(CGContextRef c, CGRect rect);
CG_EXTERN void CGContextAddRects(CGContextRef c, const CGRect *rects, size_t count);
CG_EXTERN void CGContextAddLines(CGContextRef c, const CGPoint *points, size_t count);
CG_EXTERN void CGContextAddEllipseInRect(CGContextRef c, CGRect rect);
CG_EXTERN void CGContextAddArc(CGContextRef c, CGFloat x, CGFloat y, CGFloat radius,
                               CGFloat startAngle, CGFloat endAngle, int clockwise);
CG_EXTERN void CGContextAddArcToPoint(CGContextRef c, CGFloat x1, CGFloat y1, CGFloat x2,
                                      CGFloat y2, CGFloat radius);
CG_EXTERN void CGContextClosePath(CGContextRef c);
CG_EXTERN void CGContextAddPath(CGContextRef c, CGPathRef path);
CG_EXTERN bool CGContextIsPathEmpty(CGContextRef c);
CG_EXTERN CGPoint CGContextGetPathCurrentPoint(CGContextRef c);
CG_EXTERN CGRect CGContextGetPathBoundingBox(CGContextRef c);
// The current path in user space (+1).
CG_EXTERN CGPathRef CGContextCopyPath(CGContextRef c);

CG_EXTERN void CGContextFillPath(CGContextRef c);
CG_EXTERN void CGContextEOFillPath(CGContextRef c);
CG_EXTERN void CGContextStrokePath(CGContextRef c);
CG_EXTERN void CGContextDrawPath(CGContextRef c, CGPathDrawingMode mode);
CG_EXTERN void CGContextFillRect(CGContextRef c, CGRect rect);
CG_EXTERN void CGContextFillRects(CGContextRef c, const CGRect *rects, size_t count);
CG_EXTERN void CGContextStrokeRect(CGContextRef c, CGRect rect);
CG_EXTERN void CGContextStrokeRectWithWidth(CGContextRef c, CGRect rect, CGFloat width);
CG_EXTERN void CGContextClearRect(CGContextRef c, CGRect rect);
CG_EXTERN void CGContextFillEllipseInRect(CGContextRef c, CGRect rect);
CG_EXTERN void CGContextStrokeEllipseInRect(CGContextRef c, CGRect rect);
CG_EXTERN void CGContextStrokeLineSegments(CGContextRef c, const CGPoint *points, size_t count);
// Upright in a y-up space; an image mask paints the fill colour.
CG_EXTERN void CGContextDrawImage(CGContextRef c, CGRect rect, CGImageRef image);
// Fill the clip; points and radii in user space.
CG_EXTERN void CGContextDrawLinearGradient(CGContextRef c, CGGradientRef gradient,
                                           CGPoint startPoint, CGPoint endPoint,
                                           CGGradientDrawingOptions options);
CG_EXTERN void CGContextDrawRadialGradient(CGContextRef c, CGGradientRef gradient,
                                           CGPoint startCenter, CGFloat startRadius,
                                           CGPoint endCenter, CGFloat endRadius,
                                           CGGradientDrawingOptions options);
CG_EXTERN void CGContextDrawShading(CGContextRef c, CGShadingRef shading);

CG_EXTERN void CGContextClip(CGContextRef c);
CG_EXTERN void CGContextEOClip(CGContextRef c);
CG_EXTERN void CGContextClipToRect(CGContextRef c, CGRect rect);
CG_EXTERN void CGContextClipToRects(CGContextRef c, const CGRect *rects, size_t count);
// An image mask lets paint in where its samples are 0; an image with alpha
// by its alpha; a gray image where it is white. Nothing is drawn outside
// `rect`.
CG_EXTERN void CGContextClipToMask(CGContextRef c, CGRect rect, CGImageRef mask);
CG_EXTERN CGRect CGContextGetClipBoundingBox(CGContextRef c);

#endif
