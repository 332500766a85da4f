/*
 * Colour spaces. Everything is device RGB or device gray: the generic and
 * sRGB spaces are accepted by name and behave as device RGB/gray (no
 * colour management). Not covered: CMYK, Lab, indexed, pattern and ICC
 * spaces, rendering intents.
 */
#ifndef TALVO_CGCOLORSPACE_H
#define TALVO_CGCOLORSPACE_H

#include <CoreGraphics/CGBase.h>

typedef struct CGColorSpace *CGColorSpaceRef;

typedef enum CGColorSpaceModel {
  kCGColorSpaceModelUnknown = -1,
  kCGColorSpaceModelMonochrome = 0,
  kCGColorSpaceModelRGB = 1,
  kCGColorSpaceModelCMYK = 2,
  kCGColorSpaceModelLab = 3,
  kCGColorSpaceModelDeviceN = 4,
  kCGColorSpaceModelIndexed = 5,
  kCGColorSpaceModelPattern = 6
} CGColorSpaceModel;

CG_EXTERN const CFStringRef kCGColorSpaceGenericGray;
CG_EXTERN const CFStringRef kCGColorSpaceGenericRGB;
CG_EXTERN const CFStringRef kCGColorSpaceSRGB;

CG_EXTERN CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void);
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateDeviceGray(void);
// NULL for a name other than the three above.
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name);
CG_EXTERN CGColorSpaceRef CGColorSpaceRetain(CGColorSpaceRef space);
CG_EXTERN void CGColorSpaceRelease(CGColorSpaceRef space);
CG_EXTERN size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef space);
CG_EXTERN CGColorSpaceModel CGColorSpaceGetModel(CGColorSpaceRef space);
// The name it was created with (device spaces: NULL). Not retained.
CG_EXTERN CFStringRef CGColorSpaceGetName(CGColorSpaceRef space);

#endif
