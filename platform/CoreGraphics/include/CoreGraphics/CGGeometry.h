/*
 * Points, sizes and rectangles. CGPoint, CGSize and CGRect are GNUstep's
 * NSPoint, NSSize and NSRect (the same structs), so values pass between
 * AppKit and Core Graphics calls without conversion.
 *
 * Rectangles with a negative width or height are legal; the GetMin/Max/Mid
 * functions and every operation read them standardized, as Quartz does.
 * The null rectangle (CGRectNull) has infinite origin and zero size.
 * Not covered: CGRectDivide, dictionary representations.
 */
#ifndef TALVO_CGGEOMETRY_H
#define TALVO_CGGEOMETRY_H

#include <CoreGraphics/CGBase.h>

typedef NSPoint CGPoint;
typedef NSSize CGSize;
typedef NSRect CGRect;

typedef struct CGVector {
  CGFloat dx;
  CGFloat dy;
} CGVector;

typedef enum CGRectEdge {
  CGRectMinXEdge,
  CGRectMinYEdge,
  CGRectMaxXEdge,
  CGRectMaxYEdge
} CGRectEdge;

CG_EXTERN const CGPoint CGPointZero;
CG_EXTERN const CGSize CGSizeZero;
CG_EXTERN const CGRect CGRectZero;
CG_EXTERN const CGRect CGRectNull;
CG_EXTERN const CGRect CGRectInfinite;

static inline CGPoint CGPointMake(CGFloat x, CGFloat y) {
  CGPoint p;
  p.x = x;
  p.y = y;
  return p;
}

static inline CGSize CGSizeMake(CGFloat width, CGFloat height) {
  CGSize s;
  s.width = width;
  s.height = height;
  return s;
}

static inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  CGRect r;
  r.origin.x = x;
  r.origin.y = y;
  r.size.width = width;
  r.size.height = height;
  return r;
}

static inline CGVector CGVectorMake(CGFloat dx, CGFloat dy) {
  CGVector v;
  v.dx = dx;
  v.dy = dy;
  return v;
}

CG_EXTERN CGFloat CGRectGetMinX(CGRect rect);
CG_EXTERN CGFloat CGRectGetMidX(CGRect rect);
CG_EXTERN CGFloat CGRectGetMaxX(CGRect rect);
CG_EXTERN CGFloat CGRectGetMinY(CGRect rect);
CG_EXTERN CGFloat CGRectGetMidY(CGRect rect);
CG_EXTERN CGFloat CGRectGetMaxY(CGRect rect);
CG_EXTERN CGFloat CGRectGetWidth(CGRect rect);
CG_EXTERN CGFloat CGRectGetHeight(CGRect rect);

CG_EXTERN bool CGPointEqualToPoint(CGPoint a, CGPoint b);
CG_EXTERN bool CGSizeEqualToSize(CGSize a, CGSize b);
CG_EXTERN bool CGRectEqualToRect(CGRect a, CGRect b);

CG_EXTERN bool CGRectIsEmpty(CGRect rect);
CG_EXTERN bool CGRectIsNull(CGRect rect);
CG_EXTERN bool CGRectIsInfinite(CGRect rect);

CG_EXTERN CGRect CGRectStandardize(CGRect rect);
CG_EXTERN CGRect CGRectInset(CGRect rect, CGFloat dx, CGFloat dy);
CG_EXTERN CGRect CGRectOffset(CGRect rect, CGFloat dx, CGFloat dy);
CG_EXTERN CGRect CGRectIntegral(CGRect rect);
CG_EXTERN CGRect CGRectIntersection(CGRect a, CGRect b);
CG_EXTERN CGRect CGRectUnion(CGRect a, CGRect b);

CG_EXTERN bool CGRectContainsPoint(CGRect rect, CGPoint point);
CG_EXTERN bool CGRectContainsRect(CGRect rect, CGRect inner);
CG_EXTERN bool CGRectIntersectsRect(CGRect a, CGRect b);

#endif
