/*
 * Gradients: colours at locations 0...1, drawn by CGContextDrawLinearGradient
 * and CGContextDrawRadialGradient (declared in CGContext.h) through cairo's
 * gradient patterns, interpolated in device RGB.
 *
 * Not covered: interpolation in the gradient's own colour space (gray
 * gradients are drawn as RGB, which gives the same pixels), and one-sided
 * extension of radial gradients: kCGGradientDrawsBeforeStartLocation or
 * kCGGradientDrawsAfterEndLocation alone extends both ends of a radial
 * gradient (linear gradients honour each option exactly).
 */
#ifndef TALVO_CGGRADIENT_H
#define TALVO_CGGRADIENT_H

#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGColorSpace.h>

typedef struct CGGradient *CGGradientRef;

typedef uint32_t CGGradientDrawingOptions;
enum {
  kCGGradientDrawsBeforeStartLocation = 1 << 0,
  kCGGradientDrawsAfterEndLocation = 1 << 1
};

// `components` holds `count` colours of the space's components plus alpha;
// `locations` NULL spreads them evenly from 0 to 1. NULL if the space is
// NULL or count is 0.
CG_EXTERN CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef space,
                                                            const CGFloat *components,
                                                            const CGFloat *locations,
                                                            size_t count);
// `colors` is an array (NSArray). CGColorRef is not an object on this
// platform, so its elements are NSValues holding CGColorRefs
// (+[NSValue valueWithPointer:]) or objects answering -CGColor, such as
// NSColor. The space may be NULL. NULL for an empty array or any other
// element.
CG_EXTERN CGGradientRef CGGradientCreateWithColors(CGColorSpaceRef space, CFArrayRef colors,
                                                   const CGFloat *locations);
CG_EXTERN CGGradientRef CGGradientRetain(CGGradientRef gradient);
CG_EXTERN void CGGradientRelease(CGGradientRef gradient);

#endif
