/*
 * Paths: moves, lines, quadratic and cubic curves, closes. Every adder
 * takes an optional transform (`m`, may be NULL) applied to the points it
 * adds. Rectangles and ellipses go counter-clockwise in a y-up space.
 * Not covered: stroked and dashed copies (CGPathCreateCopyByStrokingPath,
 * CGPathCreateCopyByDashingPath), CGPathAddRelativeArc, transformed copies.
 */
#ifndef TALVO_CGPATH_H
#define TALVO_CGPATH_H

#include <CoreGraphics/CGAffineTransform.h>

typedef struct CGPath *CGMutablePathRef;
typedef const struct CGPath *CGPathRef;

typedef enum CGPathElementType {
  kCGPathElementMoveToPoint,
  kCGPathElementAddLineToPoint,
  kCGPathElementAddQuadCurveToPoint,
  kCGPathElementAddCurveToPoint,
  kCGPathElementCloseSubpath
} CGPathElementType;

typedef struct CGPathElement {
  CGPathElementType type;
  CGPoint *points;
} CGPathElement;

typedef void (*CGPathApplierFunction)(void *info, const CGPathElement *element);

typedef enum CGPathDrawingMode {
  kCGPathFill,
  kCGPathEOFill,
  kCGPathStroke,
  kCGPathFillStroke,
  kCGPathEOFillStroke
} CGPathDrawingMode;

CG_EXTERN CGMutablePathRef CGPathCreateMutable(void);
CG_EXTERN CGPathRef CGPathCreateCopy(CGPathRef path);
CG_EXTERN CGMutablePathRef CGPathCreateMutableCopy(CGPathRef path);
CG_EXTERN CGPathRef CGPathCreateWithRect(CGRect rect, const CGAffineTransform *m);
CG_EXTERN CGPathRef CGPathCreateWithEllipseInRect(CGRect rect, const CGAffineTransform *m);
CG_EXTERN CGPathRef CGPathRetain(CGPathRef path);
CG_EXTERN void CGPathRelease(CGPathRef path);

CG_EXTERN void CGPathMoveToPoint(CGMutablePathRef path, const CGAffineTransform *m, CGFloat x,
                                 CGFloat y);
CG_EXTERN void CGPathAddLineToPoint(CGMutablePathRef path, const CGAffineTransform *m, CGFloat x,
                                    CGFloat y);
CG_EXTERN void CGPathAddQuadCurveToPoint(CGMutablePathRef path, const CGAffineTransform *m,
                                         CGFloat cpx, CGFloat cpy, CGFloat x, CGFloat y);
CG_EXTERN void CGPathAddCurveToPoint(CGMutablePathRef path, const CGAffineTransform *m,
                                     CGFloat cp1x, CGFloat cp1y, CGFloat cp2x, CGFloat cp2y,
                                     CGFloat x, CGFloat y);
CG_EXTERN void CGPathCloseSubpath(CGMutablePathRef path);
CG_EXTERN void CGPathAddRect(CGMutablePathRef path, const CGAffineTransform *m, CGRect rect);
CG_EXTERN void CGPathAddRects(CGMutablePathRef path, const CGAffineTransform *m,
                              const CGRect *rects, size_t count);
CG_EXTERN void CGPathAddLines(CGMutablePathRef path, const CGAffineTransform *m,
                              const CGPoint *points, size_t count);
CG_EXTERN void CGPathAddEllipseInRect(CGMutablePathRef path, const CGAffineTransform *m,
                                      CGRect rect);
CG_EXTERN void CGPathAddRoundedRect(CGMutablePathRef path, const CGAffineTransform *m,
                                    CGRect rect, CGFloat cornerWidth, CGFloat cornerHeight);
// `clockwise` in the path's own y-up sense.
CG_EXTERN void CGPathAddArc(CGMutablePathRef path, const CGAffineTransform *m, CGFloat x,
                            CGFloat y, CGFloat radius, CGFloat startAngle, CGFloat endAngle,
                            bool clockwise);
CG_EXTERN void CGPathAddArcToPoint(CGMutablePathRef path, const CGAffineTransform *m, CGFloat x1,
                                   CGFloat y1, CGFloat x2, CGFloat y2, CGFloat radius);
CG_EXTERN void CGPathAddPath(CGMutablePathRef path, const CGAffineTransform *m, CGPathRef other);

CG_EXTERN bool CGPathIsEmpty(CGPathRef path);
CG_EXTERN bool CGPathEqualToPath(CGPathRef a, CGPathRef b);
CG_EXTERN CGPoint CGPathGetCurrentPoint(CGPathRef path);
// Includes control points; CGRectNull for an empty path.
CG_EXTERN CGRect CGPathGetBoundingBox(CGPathRef path);
CG_EXTERN CGRect CGPathGetPathBoundingBox(CGPathRef path);
CG_EXTERN bool CGPathContainsPoint(CGPathRef path, const CGAffineTransform *m, CGPoint point,
                                   bool eoFill);
CG_EXTERN void CGPathApply(CGPathRef path, void *info, CGPathApplierFunction function);

#endif
