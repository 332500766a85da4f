/*
 * Colours: components in a gray or RGB colour space followed by alpha.
 * Not covered: pattern colours, CGColorCreateCopyByMatchingToColorSpace,
 * named system colours (CGColorGetConstantColor answers black, white and
 * clear only).
 */
#ifndef TALVO_CGCOLOR_H
#define TALVO_CGCOLOR_H

#include <CoreGraphics/CGColorSpace.h>

// GNUstep's <AppKit/NSColor.h> declares the same type.
typedef struct CGColor *CGColorRef;

CG_EXTERN const CFStringRef kCGColorBlack;
CG_EXTERN const CFStringRef kCGColorWhite;
CG_EXTERN const CFStringRef kCGColorClear;

// `components` holds the space's components and alpha. NULL if an
// argument is NULL.
CG_EXTERN CGColorRef CGColorCreate(CGColorSpaceRef space, const CGFloat *components);
CG_EXTERN CGColorRef CGColorCreateGenericGray(CGFloat gray, CGFloat alpha);
CG_EXTERN CGColorRef CGColorCreateGenericRGB(CGFloat red, CGFloat green, CGFloat blue,
                                             CGFloat alpha);
CG_EXTERN CGColorRef CGColorCreateCopyWithAlpha(CGColorRef color, CGFloat alpha);
// Not owned by the caller.
CG_EXTERN CGColorRef CGColorGetConstantColor(CFStringRef name);
CG_EXTERN CGColorRef CGColorRetain(CGColorRef color);
CG_EXTERN void CGColorRelease(CGColorRef color);
CG_EXTERN bool CGColorEqualToColor(CGColorRef a, CGColorRef b);
// Colour components plus one for alpha.
CG_EXTERN size_t CGColorGetNumberOfComponents(CGColorRef color);
CG_EXTERN const CGFloat *CGColorGetComponents(CGColorRef color);
CG_EXTERN CGFloat CGColorGetAlpha(CGColorRef color);
// Not owned by the caller.
CG_EXTERN CGColorSpaceRef CGColorGetColorSpace(CGColorRef color);

#endif
