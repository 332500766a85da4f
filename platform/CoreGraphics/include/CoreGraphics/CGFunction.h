/*
 * Functions for shadings: a callback evaluated at points of its domain.
 * Only what CGShading needs: one input (domainDimension 1) is evaluated;
 * `range`, when given, clamps the outputs. Not covered: functions of more
 * than one input.
 */
#ifndef TALVO_CGFUNCTION_H
#define TALVO_CGFUNCTION_H

#include <CoreGraphics/CGBase.h>

typedef struct CGFunction *CGFunctionRef;

typedef void (*CGFunctionEvaluateCallback)(void *info, const CGFloat *inData, CGFloat *outData);
typedef void (*CGFunctionReleaseInfoCallback)(void *info);

typedef struct CGFunctionCallbacks {
  unsigned int version;  // 0
  CGFunctionEvaluateCallback evaluate;
  CGFunctionReleaseInfoCallback releaseInfo;
} CGFunctionCallbacks;

// `domain` holds 2 * domainDimension values (NULL: 0...1), `range`
// 2 * rangeDimension (NULL: no clamping). NULL without an evaluate callback
// or with rangeDimension 0. releaseInfo runs when the last reference goes.
CG_EXTERN CGFunctionRef CGFunctionCreate(void *info, size_t domainDimension, const CGFloat *domain,
                                         size_t rangeDimension, const CGFloat *range,
                                         const CGFunctionCallbacks *callbacks);
CG_EXTERN CGFunctionRef CGFunctionRetain(CGFunctionRef function);
CG_EXTERN void CGFunctionRelease(CGFunctionRef function);

#endif
