/*
 * Axial and radial shadings: a CGFunction of one input gives the colour
 * (the space's components, then alpha if the function returns one more)
 * along the axis. Drawn by CGContextDrawShading (declared in CGContext.h)
 * as a gradient of 256 samples of the function, taken at drawing time.
 *
 * Not covered: function-based (CGShadingCreate with a 2-D function)
 * shadings, and, as for CGGradient, one-sided extension of radial shadings
 * (either flag extends both ends).
 */
#ifndef TALVO_CGSHADING_H
#define TALVO_CGSHADING_H

#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGFunction.h>
#include <CoreGraphics/CGGeometry.h>

typedef struct CGShading *CGShadingRef;

// NULL if the space or function is NULL. The shading retains both.
CG_EXTERN CGShadingRef CGShadingCreateAxial(CGColorSpaceRef space, CGPoint start, CGPoint end,
                                            CGFunctionRef function, bool extendStart,
                                            bool extendEnd);
CG_EXTERN CGShadingRef CGShadingCreateRadial(CGColorSpaceRef space, CGPoint start,
                                             CGFloat startRadius, CGPoint end, CGFloat endRadius,
                                             CGFunctionRef function, bool extendStart,
                                             bool extendEnd);
CG_EXTERN CGShadingRef CGShadingRetain(CGShadingRef shading);
CG_EXTERN void CGShadingRelease(CGShadingRef shading);

#endif
