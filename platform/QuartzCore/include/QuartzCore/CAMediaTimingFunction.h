/*
 * Timing functions: a cubic Bézier curve from (0,0) to (1,1) that maps an
 * animation's progress to eased progress.
 *
 * x coordinates of control points outside 0…1 are clamped so that the curve
 * stays a function. Not covered: archiving.
 */
#ifndef TALVO_CAMEDIATIMINGFUNCTION_H
#define TALVO_CAMEDIATIMINGFUNCTION_H

#import <QuartzCore/CABase.h>

NS_ASSUME_NONNULL_BEGIN

/** (0,0) (1,1) */
CA_EXTERN NSString *const kCAMediaTimingFunctionLinear;
/** (0.42,0) (1,1) */
CA_EXTERN NSString *const kCAMediaTimingFunctionEaseIn;
/** (0,0) (0.58,1) */
CA_EXTERN NSString *const kCAMediaTimingFunctionEaseOut;
/** (0.42,0) (0.58,1) */
CA_EXTERN NSString *const kCAMediaTimingFunctionEaseInEaseOut;
/** (0.25,0.1) (0.25,1) */
CA_EXTERN NSString *const kCAMediaTimingFunctionDefault;

@interface CAMediaTimingFunction : NSObject {
  float _points[4];
}

/** One of the kCAMediaTimingFunction names; nil (logged) for another name
 * (Core Animation raises). */
+ (nullable instancetype)functionWithName:(NSString *)name;
+ (instancetype)functionWithControlPoints:(float)c1x :(float)c1y :(float)c2x :(float)c2y;
- (instancetype)initWithControlPoints:(float)c1x :(float)c1y :(float)c2x :(float)c2y;

/** Index 0 is (0,0), 1 and 2 the control points, 3 is (1,1). Another index
 * leaves `values` untouched. */
- (void)getControlPointAtIndex:(size_t)index values:(float[_Nonnull 2])values;

/** Eased progress for `t` in 0…1 (clamped): solves the curve for x = t
 * (Newton's method with a bisection fallback) and answers y. Exactly 0 at 0
 * and 1 at 1. Apple's class has the same method privately; Talvo's
 * animations and tests call it. */
- (float)_solveForInput:(float)t;

@end

NS_ASSUME_NONNULL_END

#endif
