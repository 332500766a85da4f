/*
 * Affine transforms: x' = a x + c y + tx, y' = b x + d y + ty.
 * Translate/Scale/Rotate prepend the new operation (it applies to points
 * first), as Apple's do. Angles are radians, positive counter-clockwise in
 * a y-up space. Not covered: CGAffineTransformDecomposition.
 */
#ifndef TALVO_CGAFFINETRANSFORM_H
#define TALVO_CGAFFINETRANSFORM_H

#include <CoreGraphics/CGGeometry.h>

typedef struct CGAffineTransform {
  CGFloat a, b, c, d;
  CGFloat tx, ty;
} CGAffineTransform;

CG_EXTERN const CGAffineTransform CGAffineTransformIdentity;

CG_EXTERN CGAffineTransform CGAffineTransformMake(CGFloat a, CGFloat b, CGFloat c, CGFloat d,
                                                  CGFloat tx, CGFloat ty);
CG_EXTERN CGAffineTransform CGAffineTransformMakeTranslation(CGFloat tx, CGFloat ty);
CG_EXTERN CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy);
CG_EXTERN CGAffineTransform CGAffineTransformMakeRotation(CGFloat angle);
CG_EXTERN bool CGAffineTransformIsIdentity(CGAffineTransform t);
CG_EXTERN bool CGAffineTransformEqualToTransform(CGAffineTransform t1, CGAffineTransform t2);
CG_EXTERN CGAffineTransform CGAffineTransformTranslate(CGAffineTransform t, CGFloat tx, CGFloat ty);
CG_EXTERN CGAffineTransform CGAffineTransformScale(CGAffineTransform t, CGFloat sx, CGFloat sy);
CG_EXTERN CGAffineTransform CGAffineTransformRotate(CGAffineTransform t, CGFloat angle);
// A singular transform comes back unchanged.
CG_EXTERN CGAffineTransform CGAffineTransformInvert(CGAffineTransform t);
// t1 then t2.
CG_EXTERN CGAffineTransform CGAffineTransformConcat(CGAffineTransform t1, CGAffineTransform t2);
CG_EXTERN CGPoint CGPointApplyAffineTransform(CGPoint point, CGAffineTransform t);
CG_EXTERN CGSize CGSizeApplyAffineTransform(CGSize size, CGAffineTransform t);
// Bounding box of the transformed corners.
CG_EXTERN CGRect CGRectApplyAffineTransform(CGRect rect, CGAffineTransform t);

#endif
